#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <variant>

#include "NimbuscopeKit/Networking/ApiErrors.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/Core/Result.hpp"
#include "Platform/Defaults/NSUserDefaults.hpp"
#include "Platform/Security/DeviceIdentifier.hpp"

namespace nimbuscope {

/// Credentials that cannot be used: they are empty or not printable ASCII, so that neither their stored form
/// nor a header could hold them.
struct UnusableCredentials {};

/// Why a reply gave no credentials, or why they could not be stored.
using AuthorizationError =
    std::variant<APIError, SerializationError, ApiError, UnusableCredentials, platform::DefaultsError>;

/// One line that holds nothing of the credentials.
[[nodiscard]] NIMBUSCOPE_EXPORT std::string description(const AuthorizationError& error);

/// The upper-case text of the device's identifier, or of a random one where it has none; credentials stored
/// under such a one cannot be read by a later process.
[[nodiscard]] NIMBUSCOPE_EXPORT std::string deviceKey(const platform::DeviceIdentifier& device);

/// Each byte of `text` exclusive-or that of `deviceKey` at its place, over and over; its own inverse for
/// ASCII. Ends before the first byte that is not ASCII in the result; empty for an empty key.
[[nodiscard]] NIMBUSCOPE_EXPORT std::string scrambled(std::string_view text, std::string_view deviceKey);

/// The credentials of this installation, and where they are kept: scrambled and in base 64, so that they are
/// not read in passing. The store's file is the owner's alone. One thread at a time.
class NIMBUSCOPE_EXPORT Authorization {
  public:
    static constexpr std::string_view AUTH_KEY_NAME = "ak1";
    static constexpr std::string_view AUTH_SECRET_NAME = "as2";

    std::string key;     ///< access key; empty when there is none
    std::string secret;  ///< empty when there is none

    /// Reads what is stored. What cannot be read, or only one of the two, counts as none.
    Authorization(std::shared_ptr<platform::NSUserDefaults> storage, std::string deviceKey);

    /// The store of the application group, or the standard one where that cannot be opened.
    [[nodiscard]] static platform::DefaultsResult<std::shared_ptr<platform::NSUserDefaults>> openStorage(
        platform::NSUserDefaultsSuites& suites);

    /// Takes and stores the credentials of the server's reply. After an error everything is as it was. An
    /// error names the first of: no JSON object, "code", "message", "data", a code other than 0.
    [[nodiscard]] platform::Result<void, AuthorizationError> accept(std::string_view json);

    /// True when both are there.
    [[nodiscard]] bool exists() const { return !key.empty() && !secret.empty(); }

    /// Stores both.
    [[nodiscard]] platform::DefaultsResult<void> save() const;

    /// Removes what is stored; `key` and `secret` stay.
    [[nodiscard]] platform::DefaultsResult<void> reset() const;

  private:
    std::shared_ptr<platform::NSUserDefaults> storage_;
    std::string deviceKey_;
};

}  // namespace nimbuscope

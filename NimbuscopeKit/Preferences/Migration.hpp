#pragma once

#include <algorithm>
#include <concepts>
#include <nlohmann/json_fwd.hpp>
#include <optional>

#include "NimbuscopeKit/Preferences/AppPreferences.hpp"
#include "NimbuscopeKit/Preferences/PreferencesServiceError.hpp"
#include "Platform/Coding/CodingError.hpp"
#include "Platform/Core/Data.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/Core/Result.hpp"

/// How a stored record is brought from the version in which it was stored to the newest.
namespace nimbuscope {

/// Versions of a schema: whole numbers, which order them, listed in ascending order.
template <class V>
concept VersionType = platform::Enumeration<V> && std::same_as<platform::RawValue<V>, std::int64_t>;

/// A record that carries the version of its schema under the key "version".
template <class R>
concept Versionable = requires(const R& record) {
    requires VersionType<std::remove_cvref_t<decltype(record.version)>>;
    { R::migrate(record.version) } -> std::same_as<Migration>;
};

/// The newest version of a record's schema.
template <class R>
inline constexpr auto newestVersion = platform::allCases<decltype(R::version)>().back();

/// One step between versions: an edit of the stored record as a generic dictionary, or nothing to do.
class Migration {
  public:
    using Edit = void (*)(nlohmann::ordered_json& dictionary);

    [[nodiscard]] static constexpr Migration migrate(Edit edit) { return Migration(edit); }
    [[nodiscard]] static constexpr Migration none() { return Migration(nullptr); }

    /// Carries the step out on a JSON object.
    void operator()(nlohmann::ordered_json& dictionary) const {
        if (edit_ != nullptr) {
            edit_(dictionary);
        }
    }

  private:
    explicit constexpr Migration(Edit edit) : edit_(edit) {}

    Edit edit_;
};

static_assert(Versionable<AppPreferences>);

/// Why a stored record cannot be brought up to date.
struct MigrationError {
    /// The version is at fault; none where the bytes are not a JSON object.
    std::optional<PreferencesServiceError> serviceError;
    platform::DecodingError cause;  ///< where and why
};

/// The stored record in the newest version; none where it is of that version, whatever else it holds. What no
/// step touches stays as it is: keys keep their order, integers of 64 bits and reals their value and kind.
[[nodiscard]] NIMBUSCOPE_EXPORT platform::Result<std::optional<platform::Data>, MigrationError>
migratedPreferences(const platform::Data& stored);

}  // namespace nimbuscope

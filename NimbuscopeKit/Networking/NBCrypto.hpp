#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "Platform/Core/Export.hpp"
#include "Platform/Core/NSObject.hpp"
#include "Platform/Security/CommonCrypto.hpp"
#include "Platform/Security/SecKeyStore.hpp"
#include "Platform/Security/SecRandom.hpp"

namespace nimbuscope {

/// The base of the API's addresses at its built-in host: "https://", the host and "/mobile/".
[[nodiscard]] NIMBUSCOPE_EXPORT std::string builtInApiBaseURL();

/// The server's public key as it stands in the program: PEM text without line breaks, each byte exclusive-or
/// that of `builtInApiBaseURL` at its place, over and over. Made when the program is built.
inline constexpr std::size_t networkPublicKeySize = 442;
extern const std::array<std::uint8_t, networkPublicKeySize> nbNetworkPublicKey;

/// Ciphers for replies, and the server's public key to encrypt to. One thread at a time.
class NIMBUSCOPE_EXPORT NBCrypto final : public platform::NSObject {
  public:
    /// Puts the server's key into `keyStore` and keeps a reference to it.
    NBCrypto(platform::SecKeyStore& keyStore, std::shared_ptr<platform::SecRandom> random);

    [[nodiscard]] std::string_view className() const override { return "NBCrypto"; }

    [[nodiscard]] platform::Data randomBytes(std::size_t length) const;

    /// AES-256 in CBC mode with PKCS #7 padding; see `platform::crypt`. Where that fails, its status goes to
    /// the log on standard error and the output has no bytes.
    [[nodiscard]] platform::Data crypt(platform::Bytes data, platform::Bytes initialisationVector,
                                       platform::Bytes key, platform::CryptOperation operation) const;

    /// One block that the server alone can decrypt (RSA-OAEP); none where the key could not be imported or
    /// `data` is too long for it.
    [[nodiscard]] std::optional<platform::Data> encodeKey(platform::Bytes data) const;

  private:
    std::shared_ptr<const platform::SecKey> serverPublicKey_;
    std::shared_ptr<platform::SecRandom> random_;
};

}  // namespace nimbuscope

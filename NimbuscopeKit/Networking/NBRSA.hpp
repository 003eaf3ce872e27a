#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "Platform/Core/Export.hpp"
#include "Platform/Core/Result.hpp"
#include "Platform/Security/SecKeyStore.hpp"

namespace nimbuscope {

/// Why bytes are no SubjectPublicKeyInfo of an RSA key.
struct PublicKeyError {
    std::uint64_t offset = 0;  ///< of the byte at fault
    std::string reason;

    bool operator==(const PublicKeyError&) const = default;
};

/// Turns public RSA keys from text into references to keys of a key store.
class NIMBUSCOPE_EXPORT NBRSA {
  public:
    /// Puts the key that `pem` holds into the store, in place of the one put there before, and returns a
    /// reference to it; null where the text holds none. The text may go without its first and last line, and
    /// characters that base 64 does not know do not count.
    [[nodiscard]] static std::shared_ptr<const platform::SecKey> addPublicKey(
        std::string_view pem, platform::SecKeyStore& keyStore);

    /// The RSAPublicKey (PKCS #1) inside the DER bytes of a SubjectPublicKeyInfo (RFC 5280); borrowed from
    /// them. Lengths are stepped over, not compared with what follows.
    [[nodiscard]] static platform::Result<platform::Bytes, PublicKeyError> stripPublicKeyHeader(
        platform::Bytes der);
};

}  // namespace nimbuscope

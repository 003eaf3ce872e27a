#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "Platform/Core/Data.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/Core/Result.hpp"
#include "Platform/Security/CommonCrypto.hpp"

namespace nimbuscope::platform {

/// Why a key store or a key did not do what it was asked.
enum class SecError {
    duplicateItem,  ///< there is a key under this tag
    itemNotFound,   ///< there is none
    decode,         ///< the bytes are no key
    parameter,      ///< more data than the key can encrypt
};

/// A public RSA key. Safe from any thread.
class NIMBUSCOPE_EXPORT SecKey {
  public:
    virtual ~SecKey() = default;

    /// Length of what it encrypts to, in bytes.
    [[nodiscard]] virtual std::size_t blockSize() const = 0;

    /// One block of RSA-OAEP (RFC 8017) with SHA-1, also for the mask; different with each call.
    [[nodiscard]] virtual Result<Data, SecError> encrypt(Bytes data) const = 0;
};

/// Keeps public RSA keys under application tags. One thread at a time.
class NIMBUSCOPE_EXPORT SecKeyStore {
  public:
    virtual ~SecKeyStore() = default;

    /// Takes the bytes of an RSAPublicKey (PKCS #1, DER).
    [[nodiscard]] virtual Result<void, SecError> add(std::string_view applicationTag, Bytes publicKey) = 0;

    /// A reference to the key under the tag; it may outlive the store.
    [[nodiscard]] virtual Result<std::shared_ptr<const SecKey>, SecError> copyMatching(
        std::string_view applicationTag) const = 0;

    /// Removes the key under the tag, if there is one.
    virtual void deleteMatching(std::string_view applicationTag) = 0;
};

}  // namespace nimbuscope::platform

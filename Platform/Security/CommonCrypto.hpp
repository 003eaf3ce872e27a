#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>

#include "Platform/Core/Data.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/Core/Result.hpp"

/// Hashing, message authentication and ciphers.
namespace nimbuscope::platform {

using Bytes = std::span<const std::uint8_t>;
using SHA256Digest = std::array<std::uint8_t, 32>;

/// Hashes with working memory that is kept from call to call. One thread at a time.
class NIMBUSCOPE_EXPORT SHA256 {
  public:
    SHA256();
    ~SHA256();
    SHA256(const SHA256&) = delete;
    SHA256& operator=(const SHA256&) = delete;

    /// The hash of `data` (FIPS 180-4).
    [[nodiscard]] SHA256Digest hash(Bytes data);

    /// The authentication code of `data` under `key` (RFC 2104 with SHA-256).
    [[nodiscard]] SHA256Digest hmac(Bytes key, Bytes data);

  private:
    struct Context;
    std::unique_ptr<Context> context_;
};

enum class CryptOperation { encrypt, decrypt };

/// Why a cipher gave nothing; the numbers are those of the status in the log.
enum class CryptError {
    parameter = -4300,  ///< the key or the initialisation vector is too short, or the data too long
    alignment = -4303,  ///< what is to be decrypted does not consist of whole blocks
    decode = -4304,     ///< what was decrypted does not end in padding
};

inline constexpr std::size_t aesKeySize = 32;
inline constexpr std::size_t aesBlockSize = 16;

/// AES-256 in CBC mode with PKCS #7 padding. Of `key` the first 32 bytes count, of `initialisationVector` the
/// first 16. Safe from any thread.
[[nodiscard]] NIMBUSCOPE_EXPORT Result<Data, CryptError> crypt(CryptOperation operation,
                                                               Bytes initialisationVector, Bytes key,
                                                               Bytes data);

}  // namespace nimbuscope::platform

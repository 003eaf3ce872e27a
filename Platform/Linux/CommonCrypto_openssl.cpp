#include <openssl/evp.h>

#include <algorithm>
#include <initializer_list>
#include <limits>

#include "Platform/Core/Fatal.hpp"
#include "Platform/Security/CommonCrypto.hpp"

namespace nimbuscope::platform {
namespace {

template <auto release>
struct Release {
    template <class T>
    void operator()(T* object) const {
        release(object);
    }
};

using DigestContext = std::unique_ptr<EVP_MD_CTX, Release<EVP_MD_CTX_free>>;
using CipherContext = std::unique_ptr<EVP_CIPHER_CTX, Release<EVP_CIPHER_CTX_free>>;

void require(bool succeeded) {
    precondition(succeeded, "OpenSSL has no SHA-256 or no memory");
}

}  // namespace

/// One digest context, begun anew for each hash: that costs less than half of what a context of OpenSSL's
/// HMAC takes to be keyed anew.
struct SHA256::Context {
    DigestContext digest{EVP_MD_CTX_new()};

    SHA256Digest hash(std::initializer_list<Bytes> parts) const {
        SHA256Digest result;
        require(EVP_DigestInit_ex2(digest.get(), nullptr, nullptr) == 1);
        for (const Bytes part : parts) {
            require(EVP_DigestUpdate(digest.get(), part.data(), part.size()) == 1);
        }
        require(EVP_DigestFinal_ex(digest.get(), result.data(), nullptr) == 1);
        return result;
    }
};

SHA256::SHA256() : context_(std::make_unique<Context>()) {
    require(context_->digest && EVP_DigestInit_ex2(context_->digest.get(), EVP_sha256(), nullptr) == 1);
}

SHA256::~SHA256() = default;

SHA256Digest SHA256::hash(Bytes data) {
    return context_->hash({data});
}

SHA256Digest SHA256::hmac(Bytes key, Bytes data) {
    constexpr std::uint8_t innerPad = 0x36;  // RFC 2104, ipad and opad
    constexpr std::uint8_t outerPad = 0x5C;
    std::array<std::uint8_t, 64> block{};
    if (key.size() > block.size()) {
        std::ranges::copy(hash(key), block.begin());
    } else {
        std::ranges::copy(key, block.begin());
    }
    const auto turn = [&block](unsigned pad) {
        std::ranges::transform(block, block.begin(), [pad](std::uint8_t byte) -> std::uint8_t {
            return static_cast<std::uint8_t>(byte ^ pad);
        });
    };
    turn(innerPad);
    const SHA256Digest inner = context_->hash({block, data});
    turn(innerPad ^ outerPad);
    return context_->hash({block, inner});
}

Result<Data, CryptError> crypt(CryptOperation operation, Bytes initialisationVector, Bytes key, Bytes data) {
    const bool encrypts = operation == CryptOperation::encrypt;
    constexpr std::size_t longest = std::numeric_limits<int>::max() - aesBlockSize;
    if (key.size() < aesKeySize || initialisationVector.size() < aesBlockSize || data.size() > longest) {
        return std::unexpected(CryptError::parameter);
    }
    if (!encrypts && data.size() % aesBlockSize != 0) {
        return std::unexpected(CryptError::alignment);
    }
    const CipherContext context(EVP_CIPHER_CTX_new());
    Data output(data.size() + aesBlockSize);
    int written = 0;
    int rest = 0;
    require(context && EVP_CipherInit_ex2(context.get(), EVP_aes_256_cbc(), key.data(),
                                          initialisationVector.data(), encrypts ? 1 : 0, nullptr) == 1);
    if (EVP_CipherUpdate(context.get(), output.data(), &written, data.data(),
                         static_cast<int>(data.size())) != 1 ||
        EVP_CipherFinal_ex(context.get(), output.data() + written, &rest) != 1) {
        return std::unexpected(CryptError::decode);
    }
    output.resize(static_cast<std::size_t>(written) + static_cast<std::size_t>(rest));
    return output;
}

}  // namespace nimbuscope::platform

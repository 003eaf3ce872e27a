#include <openssl/core_names.h>
#include <openssl/evp.h>
#include <openssl/params.h>

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
using Digest = std::unique_ptr<EVP_MD, Release<EVP_MD_free>>;
using MAC = std::unique_ptr<EVP_MAC, Release<EVP_MAC_free>>;
using MACContext = std::unique_ptr<EVP_MAC_CTX, Release<EVP_MAC_CTX_free>>;

void require(bool succeeded) {
    precondition(succeeded, "OpenSSL has no SHA-256 or no memory");
}

}  // namespace

struct SHA256::Contexts {
    Digest digest{EVP_MD_fetch(nullptr, "SHA256", nullptr)};
    DigestContext hash{EVP_MD_CTX_new()};
    MACContext hmac;
};

SHA256::SHA256() : contexts_(std::make_unique<Contexts>()) {
    const MAC hmac(EVP_MAC_fetch(nullptr, OSSL_MAC_NAME_HMAC, nullptr));
    require(contexts_->digest && contexts_->hash && hmac);
    contexts_->hmac.reset(EVP_MAC_CTX_new(hmac.get()));
    char name[] = "SHA256";
    const OSSL_PARAM parameters[] = {OSSL_PARAM_construct_utf8_string(OSSL_MAC_PARAM_DIGEST, name, 0),
                                     OSSL_PARAM_construct_end()};
    require(contexts_->hmac && EVP_MAC_CTX_set_params(contexts_->hmac.get(), parameters) == 1);
}

SHA256::~SHA256() = default;

SHA256Digest SHA256::hash(Bytes data) {
    EVP_MD_CTX* context = contexts_->hash.get();
    SHA256Digest digest;
    require(EVP_DigestInit_ex2(context, contexts_->digest.get(), nullptr) == 1 &&
            EVP_DigestUpdate(context, data.data(), data.size()) == 1 &&
            EVP_DigestFinal_ex(context, digest.data(), nullptr) == 1);
    return digest;
}

SHA256Digest SHA256::hmac(Bytes key, Bytes data) {
    EVP_MAC_CTX* context = contexts_->hmac.get();
    constexpr std::uint8_t none = 0;  // without an address the context would keep its key
    SHA256Digest code;
    std::size_t size = 0;
    require(EVP_MAC_init(context, key.empty() ? &none : key.data(), key.size(), nullptr) == 1 &&
            EVP_MAC_update(context, data.data(), data.size()) == 1 &&
            EVP_MAC_final(context, code.data(), &size, code.size()) == 1 && size == code.size());
    return code;
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

#include "Platform/Linux/Security_openssl.hpp"

#include <openssl/evp.h>
#include <openssl/rand.h>
#include <openssl/rsa.h>

#include <algorithm>
#include <utility>

#include "Platform/Core/Fatal.hpp"

namespace nimbuscope::platform {
namespace {

struct ReleaseKey {
    void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
};
using Key = std::unique_ptr<EVP_PKEY, ReleaseKey>;

struct ReleaseContext {
    void operator()(EVP_PKEY_CTX* context) const { EVP_PKEY_CTX_free(context); }
};
using Context = std::unique_ptr<EVP_PKEY_CTX, ReleaseContext>;

class OpenSSLKey final : public SecKey {
  public:
    explicit OpenSSLKey(Key key) : key_(std::move(key)) {}

    [[nodiscard]] std::size_t blockSize() const override {
        return static_cast<std::size_t>(EVP_PKEY_get_size(key_.get()));
    }

    [[nodiscard]] Result<Data, SecError> encrypt(Bytes data) const override {
        const Context context(EVP_PKEY_CTX_new(key_.get(), nullptr));
        Data output(blockSize());
        std::size_t size = output.size();
        if (!context || EVP_PKEY_encrypt_init(context.get()) != 1 ||
            EVP_PKEY_CTX_set_rsa_padding(context.get(), RSA_PKCS1_OAEP_PADDING) != 1 ||
            EVP_PKEY_CTX_set_rsa_oaep_md(context.get(), EVP_sha1()) != 1 ||
            EVP_PKEY_CTX_set_rsa_mgf1_md(context.get(), EVP_sha1()) != 1 ||
            EVP_PKEY_encrypt(context.get(), output.data(), &size, data.data(), data.size()) != 1) {
            return std::unexpected(SecError::parameter);
        }
        output.resize(size);
        return output;
    }

  private:
    Key key_;
};

/// The key that is written in exactly these bytes; null when none is.
Key readKey(Bytes publicKey) {
    const unsigned char* position = publicKey.data();
    Key key(d2i_PublicKey(EVP_PKEY_RSA, nullptr, &position, static_cast<long>(publicKey.size())));
    return position == publicKey.data() + publicKey.size() ? std::move(key) : nullptr;
}

}  // namespace

void OpenSSLRandom::copyBytes(std::span<std::uint8_t> bytes) {
    constexpr std::size_t most = 1U << 20U;  // at once
    while (!bytes.empty()) {
        const auto part = bytes.first(std::min(bytes.size(), most));
        precondition(RAND_bytes(part.data(), static_cast<int>(part.size())) == 1, "no randomness");
        bytes = bytes.subspan(part.size());
    }
}

Result<void, SecError> OpenSSLKeyStore::add(std::string_view applicationTag, Bytes publicKey) {
    if (keys_.contains(applicationTag)) {
        return std::unexpected(SecError::duplicateItem);
    }
    Key key = readKey(publicKey);
    if (!key) {
        return std::unexpected(SecError::decode);
    }
    keys_.emplace(applicationTag, std::make_shared<OpenSSLKey>(std::move(key)));
    return {};
}

Result<std::shared_ptr<const SecKey>, SecError> OpenSSLKeyStore::copyMatching(
    std::string_view applicationTag) const {
    const auto found = keys_.find(applicationTag);
    if (found == keys_.end()) {
        return std::unexpected(SecError::itemNotFound);
    }
    return found->second;
}

void OpenSSLKeyStore::deleteMatching(std::string_view applicationTag) {
    const auto found = keys_.find(applicationTag);
    if (found != keys_.end()) {
        keys_.erase(found);
    }
}

}  // namespace nimbuscope::platform

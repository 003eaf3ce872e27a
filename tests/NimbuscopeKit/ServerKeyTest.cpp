#include <gtest/gtest.h>
#include <openssl/pem.h>
#include <openssl/rsa.h>

#include "NimbuscopeKit/Networking/NBCrypto.hpp"
#include "NimbuscopeKit/Networking/NBRSA.hpp"
#include "Platform/Coding/Base64.hpp"
#include "Platform/Linux/Security_openssl.hpp"
#include "tests/support/SecurityFakes.hpp"
#include "tests/support/TemporaryDirectory.hpp"

namespace nimbuscope::testing {
namespace {

using namespace platform;

const std::string keys = NIMBUSCOPE_SOURCE_DIRECTORY "/tests/data/networking/server-";

Data publicKeyInfo() {
    std::string pem = readFile(keys + "public-key.pem");
    std::erase(pem, '\n');
    return base64Decoded(std::string_view(pem).substr(26, 392)).value();
}

template <class Store>
struct KeyStoreContract : ::testing::Test {};
using KeyStores = ::testing::Types<InMemoryKeyStore, OpenSSLKeyStore>;
TYPED_TEST_SUITE(KeyStoreContract, KeyStores);

TYPED_TEST(KeyStoreContract, keepsKeysUnderTheirTags) {
    TypeParam store;
    const Data info = publicKeyInfo();
    const auto publicKey = NBRSA::stripPublicKeyHeader(info).value();
    EXPECT_EQ(store.copyMatching("a").error(), SecError::itemNotFound);
    EXPECT_EQ(store.add("a", Data{1}).error(), SecError::decode);
    EXPECT_EQ(store.add("a", {}).error(), SecError::decode);
    ASSERT_TRUE(store.add("a", publicKey));
    EXPECT_EQ(store.add("a", publicKey).error(), SecError::duplicateItem);
    ASSERT_TRUE(store.add("b", publicKey));
    const auto key = store.copyMatching("a").value();
    store.deleteMatching("a");
    store.deleteMatching("a");
    EXPECT_FALSE(store.copyMatching("a"));
    EXPECT_TRUE(store.copyMatching("b"));
    EXPECT_EQ(key->blockSize(), 256U);
    EXPECT_EQ(key->encrypt(Data(214))->size(), 256U);
    EXPECT_EQ(key->encrypt(Data(215)).error(), SecError::parameter);
}

TEST(NBRSA, walksNoFurtherThanTheBytesGo) {
    Data info = publicKeyInfo();
    for (std::size_t size = 0; size < 24; ++size) {
        EXPECT_FALSE(NBRSA::stripPublicKeyHeader(Bytes(info).first(size))) << size;
    }
    const struct {
        std::size_t offset;
        std::uint8_t byte;
        PublicKeyError error;
    } faults[]{{0, 0x31, {0, "expected a sequence"}},
               {1, 0xFF, {1, "expected a sequence"}},
               {1, 0x80, {2, "expected the identifier of rsaEncryption"}},
               {18, 0x05, {4, "expected the identifier of rsaEncryption"}},
               {19, 0x04, {19, "expected a bit string"}},
               {23, 0x01, {23, "expected a bit string of whole bytes"}}};
    for (const auto& [offset, byte, error] : faults) {
        Data bent = info;
        bent[offset] = byte;
        bent.resize(120);
        EXPECT_EQ(NBRSA::stripPublicKeyHeader(bent).error(), error);
    }
    InMemoryKeyStore store;
    const std::string pem = readFile(keys + "public-key.pem");
    EXPECT_TRUE(NBRSA::addPublicKey("note\n" + pem + "note", store));
    EXPECT_TRUE(NBRSA::addPublicKey(" " + pem.substr(27, pem.size() - 27 - 25) + "\t*", store))
        << "in its place";
    EXPECT_FALSE(NBRSA::addPublicKey("-----END PUBLIC KEY-----" + pem.substr(0, 300), store));
    EXPECT_FALSE(NBRSA::addPublicKey("", store));
    store.findFault = SecError::itemNotFound;
    EXPECT_FALSE(NBRSA::addPublicKey(pem, store));
    store.addFault = SecError::duplicateItem;
    EXPECT_FALSE(NBCrypto(store, nullptr).encodeKey(Data(1))) << "without a key";
}

TEST(NBCrypto, encryptsToTheKeyThatTheBuildMasked) {
    OpenSSLKeyStore store;
    const Data secret = platform::dataOf("thirty-two bytes of session key!");
    const auto block = NBCrypto(store, nullptr).encodeKey(secret).value();
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen((keys + "private-key.pem").c_str(), "r"),
                                                     &fclose);
    const std::shared_ptr<EVP_PKEY> key(PEM_read_PrivateKey(file.get(), nullptr, nullptr, nullptr),
                                        EVP_PKEY_free);
    const std::shared_ptr<EVP_PKEY_CTX> context(EVP_PKEY_CTX_new(key.get(), nullptr), EVP_PKEY_CTX_free);
    Data plain(256);
    std::size_t size = plain.size();
    ASSERT_EQ(EVP_PKEY_decrypt_init(context.get()), 1);
    ASSERT_EQ(EVP_PKEY_CTX_set_rsa_padding(context.get(), RSA_PKCS1_OAEP_PADDING), 1);
    ASSERT_EQ(EVP_PKEY_decrypt(context.get(), plain.data(), &size, block.data(), block.size()), 1);
    plain.resize(size);
    EXPECT_EQ(plain, secret);
}

}  // namespace
}  // namespace nimbuscope::testing

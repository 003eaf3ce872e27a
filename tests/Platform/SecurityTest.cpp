#include <gtest/gtest.h>
#include <openssl/pem.h>
#include <openssl/rsa.h>

#include "NimbuscopeKit/Networking/NBCrypto.hpp"
#include "NimbuscopeKit/Networking/NBRSA.hpp"
#include "Platform/Coding/Base64.hpp"
#include "Platform/Linux/DeviceIdentifier_machineid.hpp"
#include "Platform/Linux/Security_openssl.hpp"
#include "tests/support/SecurityFakes.hpp"
#include "tests/support/TemporaryDirectory.hpp"

namespace nimbuscope::testing {
namespace {

using namespace platform;

const std::string keys = NIMBUSCOPE_SOURCE_DIRECTORY "/tests/data/networking/server-";

Data bytes(std::string_view hexadecimal) {
    Data result;
    for (std::size_t i = 0; i < hexadecimal.size(); i += 2) {
        result.push_back(
            static_cast<std::uint8_t>(std::stoi(std::string(hexadecimal.substr(i, 2)), nullptr, 16)));
    }
    return result;
}

Data dataOf(const SHA256Digest& digest) {
    return {digest.begin(), digest.end()};
}

TEST(SHA256, givesThePublishedCodes) {
    SHA256 sha256;
    EXPECT_EQ(dataOf(sha256.hash(platform::dataOf("abc"))),
              bytes("ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"));
    const struct {  // RFC 4231, section 4; the empty ones from RFC 2104's definition
        Data key;
        Data data;
        const char* code;
    } cases[]{
        {Data(20, 0x0B), platform::dataOf("Hi There"),
         "b0344c61d8db38535ca8afceaf0bf12b881dc200c9833da726e9376c2e32cff7"},
        {platform::dataOf("Jefe"), platform::dataOf("what do ya want for nothing?"),
         "5bdcc146bf60754e6a042426089575c75a003f089d2739839dec58b964ec3843"},
        {{}, {}, "b613679a0814d9ec772f95d778c35fc5ff1697c493715653c6c712144292c5ad"},
        {Data(20, 0xAA), Data(50, 0xDD), "773ea91e36800e46854db8ebd09181a72959098b3ef8c122d9635514ced565fe"},
        {bytes("0102030405060708090a0b0c0d0e0f10111213141516171819"), Data(50, 0xCD),
         "82558a389a443c0ea4cc819899f2083a85f0faa3e578f8077a2e3ff46729665b"},
        {Data(131, 0xAA), platform::dataOf("Test Using Larger Than Block-Size Key - Hash Key First"),
         "60e431591ee0b67f0d8a26aacbf5b77f8e0bc6213728c5140546040f0ee37f54"},
        {Data(131, 0xAA),
         platform::dataOf(
             "This is a test using a larger than block-size key and a larger than block-size data. "
             "The key needs to be hashed before being used by the HMAC algorithm."),
         "9b09ffa71b942fcb27635fbcd5b0e944bfdc63644f0713938a7f51535c3a35e2"},
    };
    for (const auto& [key, data, code] : cases) {
        EXPECT_EQ(dataOf(sha256.hmac(key, data)), bytes(code)) << code;
    }
}

TEST(Crypt, givesThePublishedBlocksAndRefusesTheRest) {
    // SP 800-38A, F.2.5; the block of padding comes behind.
    const Data key = bytes("603deb1015ca71be2b73aef0857d77811f352c073b6108d72d9810a30914dff4");
    const Data vector = bytes("000102030405060708090a0b0c0d0e0f");
    const Data plain = bytes(
        "6bc1bee22e409f96e93d7e117393172aae2d8a571e03ac9c9eb76fac45af8e51"
        "30c81c46a35ce411e5fbc1191a0a52eff69f2445df4f9b17ad2b417be66c3710");
    const Data cipher = bytes(
        "f58c4c04d6e5f1ba779eabfb5f7bfbd69cfc4e967edb808d679f777bc6702c7d"
        "39f23369a9d9bacfa530e26304231461b2eb05e2c39be9fcda6c19078c6a9d1b");
    const auto encrypted = crypt(CryptOperation::encrypt, vector, key, plain).value();
    EXPECT_EQ(Data(encrypted.begin(), encrypted.begin() + 64), cipher);
    EXPECT_EQ(encrypted.size(), 80U);
    const NBCrypto crypto(*std::make_unique<OpenSSLKeyStore>(), std::make_shared<OpenSSLRandom>());
    for (std::size_t size = 0; size <= 33; ++size) {
        const Data data(plain.begin(), plain.begin() + static_cast<std::ptrdiff_t>(size));
        const Data there = crypto.crypt(data, vector, key, CryptOperation::encrypt);
        EXPECT_EQ(there.size(), size / 16 * 16 + 16);
        EXPECT_EQ(crypto.crypt(there, vector, key, CryptOperation::decrypt), data);
    }
    const struct {
        Data vector;
        Data key;
        Data data;
        int status;
    } faults[]{{vector, Data(31), encrypted, -4300},
               {Data(15), key, encrypted, -4300},
               {vector, key, Data(17), -4303},
               {vector, key, cipher, -4304},
               {vector, key, {}, -4304}};
    for (const auto& [faultyVector, faultyKey, data, status] : faults) {
        ::testing::internal::CaptureStderr();
        EXPECT_EQ(crypto.crypt(data, faultyVector, faultyKey, CryptOperation::decrypt), Data());
        EXPECT_EQ(::testing::internal::GetCapturedStderr(),
                  "CCCrypt status: " + std::to_string(status) + '\n');
    }
    EXPECT_NE(crypto.randomBytes(33), crypto.randomBytes(33));
    EXPECT_EQ(crypto.randomBytes(33).size(), 33U);
}

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

TEST(MachineDeviceIdentifier, isStableAndHidesTheMachineId) {
    const TemporaryDirectory directory;
    const auto identifier = [&](const std::string& content) {
        writeFile(directory.path("machine-id"), content);
        return MachineDeviceIdentifier(directory.path("machine-id")).identifierForVendor();
    };
    const std::string id = "0123456789abcdef0123456789abcdef";
    const auto first = identifier(id + '\n');
    ASSERT_TRUE(first);
    EXPECT_EQ(identifier(id), first);
    EXPECT_NE(identifier("1" + id.substr(1)), first);
    EXPECT_NE(Data(first->bytes.begin(), first->bytes.end()), bytes(id));
    for (const std::string& none : {std::string(), "uninitialized\n" + id, id + "0", "g" + id.substr(1),
                                    id.substr(2), std::string(32, '0')}) {
        EXPECT_EQ(identifier(none), std::nullopt) << none;
    }
    EXPECT_EQ(MachineDeviceIdentifier(directory.path("none")).identifierForVendor(), std::nullopt);
}

}  // namespace
}  // namespace nimbuscope::testing

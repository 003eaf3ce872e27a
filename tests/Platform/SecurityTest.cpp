#include <gtest/gtest.h>

#include "NimbuscopeKit/Networking/NBCrypto.hpp"
#include "Platform/Linux/DeviceIdentifier_machineid.hpp"
#include "Platform/Linux/Security_openssl.hpp"
#include "tests/support/TemporaryDirectory.hpp"

namespace nimbuscope::testing {
namespace {

using namespace platform;

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

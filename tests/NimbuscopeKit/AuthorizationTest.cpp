#include <gtest/gtest.h>

#include "NimbuscopeKit/Networking/Authorization.hpp"
#include "Platform/Coding/Base64.hpp"
#include "tests/support/FailingUserDefaults.hpp"
#include "tests/support/InMemoryUserDefaults.hpp"
#include "tests/support/SecurityFakes.hpp"

namespace nimbuscope::testing {
namespace {

const std::string device = "01234567-89AB-CDEF-0123-456789ABCDEF";

struct AuthorizationTest : ::testing::Test {
    std::shared_ptr<InMemoryUserDefaults> group = std::make_shared<InMemoryUserDefaults>();
    std::shared_ptr<FailingUserDefaults> store = std::make_shared<FailingUserDefaults>(group);

    Authorization open(const std::string& key = device) { return {store, key}; }
    void put(std::string_view name, const std::string& bytes) {
        ASSERT_TRUE(group->set(name, platform::base64Encoded(platform::dataOf(bytes))));
    }
};

TEST_F(AuthorizationTest, keepsWhatTheServerGivesScrambled) {
    // The key's beginning is the device's: equal characters give NUL.
    const std::string secret = "0123" + std::string(40, 's') + "~ ";
    auto authorization = open();
    ASSERT_TRUE(authorization.accept(R"({"code":0.0,"message":"","x":[],"data":{"key":"K","secret":")" +
                                     secret + R"(","more":""}})"));
    EXPECT_EQ(group->object("ak1").value(), platform::base64Encoded(platform::dataOf("{")));
    const auto stored = platform::base64Decoded(*group->object("as2").value()->as<std::string>()).value();
    EXPECT_EQ(platform::textOf(stored).substr(0, 5), std::string_view("\0\0\0\0G", 5));
    EXPECT_EQ(open().key, "K");
    EXPECT_EQ(open().secret, secret);
    ASSERT_TRUE(authorization.reset());
    EXPECT_TRUE(authorization.exists()) << "in memory";
    EXPECT_FALSE(open().exists());
}

TEST_F(AuthorizationTest, unreadableCredentialsCountAsNone) {
    put("ak1", scrambled("key", device));
    EXPECT_FALSE(open().exists()) << "only one";
    put("as2", scrambled("secret", device));
    EXPECT_TRUE(open().exists());
    for (const char* bytes : {"\xFF", "\xC3\xA9", "", "\x3A\x3B"}) {  // the last stands for line feeds
        put("as2", bytes);
        EXPECT_FALSE(open().exists());
        EXPECT_EQ(open().key, "");
    }
    for (const platform::DefaultsValue& value :
         {platform::DefaultsValue(true), platform::DefaultsValue(std::string("!"))}) {
        ASSERT_TRUE(group->set("as2", value));
        EXPECT_FALSE(open().exists());
    }
    put("as2", scrambled("secret", device));
    EXPECT_FALSE(open("").exists()) << "no device key";
    store->readFault = platform::DefaultsError::Code::damaged;
    EXPECT_FALSE(open().exists());
    EXPECT_EQ(scrambled(scrambled("text", device), device), "text");
    EXPECT_EQ(scrambled("ab\x80"
                        "c",
                        "0"),
              "QR")
        << "ends where ASCII does";
}

TEST_F(AuthorizationTest, namesTheFirstFaultOfAReplyAndStoresNothing) {
    const std::string parameters = "Authorization paramethers is missing";
    const std::string data = R"("data":{"key":"k","secret":"s"})";
    const std::pair<std::string, std::string> replies[]{
        {"", "jsonError: the reply is not the JSON expected"},
        {"[]", "jsonError: the reply is not the JSON expected"},
        {"{}", "Code is missing"},
        {R"({"code":true,"message":"m",)" + data + "}", "Code is missing"},
        {R"({"code":1.5,"message":"m",)" + data + "}", "Code is missing"},
        {R"({"code":0,)" + data + "}", "Message is missing"},
        {R"({"code":0,"message":null,)" + data + "}", "Message is missing"},
        {R"({"code":3,"message":"m"})", parameters},
        {R"({"code":0,"message":"m","data":{"key":"k"}})", parameters},
        {R"({"code":0,"message":"m","data":{"key":"k","secret":"s","n":1}})", parameters},
        {R"({"code":0,"message":"m","data":["key","secret"]})", parameters},
        {R"({"code":3,"message":"line\nfeed",)" + data + "}", "the server refused: line feed"},
        {R"({"code":0,"message":"m","data":{"key":"ké","secret":"hidden"}})",
         "the server gave credentials that are empty or not printable ASCII"},
        {R"({"code":0,"message":"m","data":{"key":"k","secret":""}})",
         "the server gave credentials that are empty or not printable ASCII"},
        {R"({"code":0,"message":"m","data":{"key":"k\r\nX: y","secret":"s"}})",
         "the server gave credentials that are empty or not printable ASCII"},
    };
    for (const auto& [reply, reason] : replies) {
        auto authorization = open();
        const auto accepted = authorization.accept(reply);
        ASSERT_FALSE(accepted) << reply;
        EXPECT_EQ(description(accepted.error()), reason) << reply;
        EXPECT_FALSE(authorization.exists());
    }
    auto authorization = open();
    authorization.key = "old";
    store->writeFault = platform::DefaultsError::Code::readOnly;
    EXPECT_FALSE(authorization.accept(R"({"code":0,"message":"",)" + data + "}"));
    EXPECT_EQ(authorization.key, "old");
    EXPECT_TRUE(group->dictionaryRepresentation()->empty());
}

TEST(DeviceKey, isTheDevicesTextOrARandomOne) {
    FixedDevice none;
    EXPECT_EQ(deviceKey(none).size(), 36U);
    EXPECT_NE(deviceKey(none), deviceKey(none));
    none.identifier = platform::UUID{{0xAB}};
    EXPECT_EQ(deviceKey(none), "AB000000-0000-0000-0000-000000000000");
}

}  // namespace
}  // namespace nimbuscope::testing

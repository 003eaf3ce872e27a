#include <gtest/gtest.h>

#include "Platform/URLLoading/URLComponents.hpp"

namespace nimbuscope::platform {
namespace {

using Items = std::vector<URLQueryItem>;

TEST(URLComponents, haveTheirPartsDecodedAndNothingNormalised) {
    struct {
        const char* url;
        const char* host;
        const char* path;
        Items items;
        const char* sent;  ///< where it differs from the URL
    } const cases[] = {
        {"https://h.example", "h.example", "", {}, nullptr},
        {"HTTPS://H-1.Example:8443//a/../%2F%41;é",
         "H-1.Example",
         "//a/../"
         "/A;é",
         {},
         "https://H-1.Example:8443//a/../%2F%41;%C3%A9"},
        {"https://[::1]:1/?", "[::1]", "/", {}, nullptr},
        {"https://h?b=2&a=%261&x&=&&q=a+b=c#f?",
         "h",
         "",
         {{"b", "2"}, {"a", "&1"}, {"x", {}}, {"", ""}, {"", {}}, {"q", "a+b=c"}},
         nullptr},
        {"https://u:p@h/#/?", "h", "/", {}, nullptr},
        {"https://h/\"|[?{é}", "h", "/\"|[", {{"{é}", {}}}, "https://h/%22%7C%5B?%7B%C3%A9%7D"},
    };
    for (const auto& [url, host, path, items, sent] : cases) {
        const auto components = URLComponents::parse(url);
        ASSERT_TRUE(components) << url << ": " << components.error().message();
        EXPECT_EQ(components->host, host) << url;
        EXPECT_EQ(components->path(), path) << url;
        EXPECT_EQ(components->queryItems(), items) << url;
        const std::string user = components->user.value_or("");
        EXPECT_EQ(components->string(), sent != nullptr ? sent : std::string(url)) << user;
    }
}

TEST(URLComponents, refuseWhatHasNoOneMeaning) {
    for (const char* url : {"",
                            "h.example/x",
                            "https:/h",
                            "://h",
                            "1s://h",
                            "https://",
                            "https:///x",
                            "https://h:0/",
                            "https://h:/",
                            "https://h:65536/",
                            "https://h:1x/",
                            "https://h..example/",
                            "https://h%41/",
                            "https://hé/",
                            "https://[12]/",
                            "https://[::1/",
                            "https://::1/",
                            "https://[::g]/",
                            "https://h/a b",
                            "https://h/\r\nX: y",
                            "https://h/%",
                            "https://h/%4",
                            "https://h/%4g",
                            "https://h/?%",
                            "https://h/%ff",
                            "https://h/?a=%C3",
                            "https://h/\xC3",
                            "https://a@b@h\\x/"}) {
        const auto components = URLComponents::parse(url);
        ASSERT_FALSE(components) << url;
        EXPECT_EQ(components.error().code, URLError::Code::badURL) << url;
    }
}

TEST(URLComponents, hostsOfOthersCannotBendAURL) {
    for (const char* host : {"localhost:8443", "a-b.example", "[::1]:1", "127.0.0.1"}) {
        EXPECT_TRUE(isValidHostAndPort(host)) << host;
    }
    for (const char* host :
         {"", "host/x?", "user@host", "h\r\nX: y", "h:", "h:99999", "h#", "h .example", "."}) {
        EXPECT_FALSE(isValidHostAndPort(host)) << host;
    }
}

}  // namespace
}  // namespace nimbuscope::platform

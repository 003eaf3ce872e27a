#include <gtest/gtest.h>

#include "Platform/URLLoading/URLComponents.hpp"

namespace nimbuscope::platform {
namespace {

/// Host, path and parameters, decoded, and the URL as it is sent.
std::string partsOf(const URLComponents& url) {
    std::string parts = url.host + ' ' + url.path() + ' ';
    for (const auto& [name, value] : url.queryItems()) {
        parts += '(' + name + (value ? '=' + *value : "") + ')';
    }
    return parts + ' ' + url.string();
}

TEST(URLComponents, haveTheirPartsDecodedAndNothingNormalised) {
    const std::pair<std::string, std::string> cases[] = {
        {"https://h.example", "h.example   https://h.example"},
        {"HTTPS://H-1.E:8443//a/../%2F%41;é", "H-1.E //a/..//A;é  https://H-1.E:8443//a/../%2F%41;%C3%A9"},
        {"https://[::1]:1/?", "[::1] /  https://[::1]:1/?"},
        {"https://h?b=2&a=%261&x&=&&q=a+b=c#f?",
         "h  (b=2)(a=&1)(x)(=)()(q=a+b=c) https://h?b=2&a=%261&x&=&&q=a+b=c#f?"},
        {"https://u:p@h/#/?", "h /  https://u:p@h/#/?"},
        {"https://h/\"|[?{é}", "h /\"|[ ({é}) https://h/%22%7C%5B?%7B%C3%A9%7D"},
    };
    for (const auto& [url, parts] : cases) {
        const auto components = URLComponents::parse(url);
        ASSERT_TRUE(components) << url << ": " << components.error().message();
        EXPECT_EQ(partsOf(*components), parts);
    }
}

TEST(URLComponents, refuseWhatHasNoOneMeaning) {
    const char* const malformed =
        "|h.example/x|https:/h|://h|1s://h|https://|https:///x|https://h:0/|https://h:/|https://h:65536/"
        "|https://h:1x/"
        "|https://h..example/|https://h%41/|https://hé/|https://[12]/|https://[::1/|https://::1/|https://"
        "[::g]/"
        "|https://h/a b|https://h/\r\nX: y|https://h/%|https://h/%4|https://h/%4g|https://h/?%|https://h/%ff"
        "|https://h/?a=%C3|https://h/\xC3|https://a@b@h\\x/";
    std::istringstream list(malformed);
    for (std::string url; std::getline(list, url, '|');) {
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

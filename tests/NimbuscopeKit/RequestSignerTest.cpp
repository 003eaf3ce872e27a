#include <gtest/gtest.h>

#include "NimbuscopeKit/Networking/RequestSigner.hpp"
#include "tests/support/SignatureVerifier.hpp"

namespace nimbuscope::testing {
namespace {

using namespace std::chrono_literals;

constexpr std::array<std::string_view, 1> host{"host"};
constexpr auto instant = std::chrono::sys_days(2024y / 3 / 7) + 9h + 15min + 2s;

TEST(RequestSigner, bringsPathAndQueryIntoOneForm) {
    const struct {
        std::string url;
        std::string path;
        std::string query;
    } cases[]{
        {"https://h/a/../b//c.%2e", "/a/../b//c..", ""},
        {"https://h:8443/%41%2F%c3%a9;%3B?", "/A/%C3%A9%3B%3B", ""},
        {"https://h", "", ""},
        {"https://u@h/!$&'()*+,=:@-._~%20%25%3F%23", "/!$&'()*+,=:@-._~%20%25%3F%23", ""},
        {"https://h/?b=2&a=1#f", "/", "a=1&b=2"},
        {"https://h/?q=caf%C3%A9&flag&a=1%262+3", "/", "a=1&2+3&flag=&q=café"},
        {"https://h/?a=1&a&a=0&=&&Z=", "/", "=&=&Z=&a=1&a=&a=0"},
        {"https://h/?%C3%BF=1&%F0%9F%8C%A7=2&z=3", "/", "z=3&ÿ=1&🌧=2"},
        {"https://h/?a==b=%3D", "/", "a==b=="},
    };
    for (const auto& [url, path, query] : cases) {
        EXPECT_EQ(canonicalRequest("GET", url).value(),
                  "GET\n" + path + '\n' + query + "\nhost:h\nUNSIGNED-PAYLOAD");
    }
    for (const char* url :
         {"https://h/%", "https://h/%4", "https://h/?%GG", "https://h/%FF", "https://h/?a=%C3", "https:///a",
          "h/a", "https://h/a b", "https://h/\r\nx: y", ""}) {
        EXPECT_FALSE(canonicalRequest("GET", url)) << url;
    }
}

TEST(RequestSigner, signsAsTheServerVerifies) {
    const std::string maps =
        "https://api.nimbus.example/mobile/maps/?step=600&nowcast_interval=600&interval=7200";
    RequestSigner signer;
    const auto known = signer.sign({.url = maps}, host, "AK", "s3cret", instant).value();
    EXPECT_EQ(known.signature, "12bf47b35f34c71dc58a79d75c030ab8ea1d50d6bd99e8d60da6b8d08761f509");
    EXPECT_EQ(known.credential, "AK/20240307/eu-west-1/mobile/nb_request");
    EXPECT_EQ(known.date, "20240307T091502Z");
    const std::array<std::string_view, 2> unsorted{"x", "host"};
    EXPECT_EQ(signer.sign({.url = maps}, unsorted, "AK", "s3cret", instant)->signedHeaders, "host,x");

    const std::string secrets[]{"", "x", std::string(62, 'k'), std::string(63, 'k'), std::string(500, 'k')};
    const std::string targets[]{"/", "/mobile/%7Euser/;a?b=%26&a+c&&=1", "/caf%C3%A9?%C3%A9=%E2%82%AC&z=1"};
    const RequestSigner::Instant instants[]{instant,
                                            std::chrono::sys_days(2024y / 2 / 29) + 23h + 59min + 59s,
                                            std::chrono::sys_days(1969y / 12 / 31), instant + 999ms};
    for (const std::string& secret : secrets) {
        for (const std::string& target : targets) {
            for (const auto at : instants) {
                platform::URLRequest request{.url = "https://localhost:8443" + target, .httpMethod = "POST"};
                const auto headers = signer.sign(request, host, "a/b", secret, at).value().headers();
                request.httpBody = platform::dataOf("never signed");
                EXPECT_EQ(signer.sign(request, host, "a/b", secret, at).value().headers(), headers);
                EXPECT_EQ(faultOfSignature({"POST", target, "localhost:8443",
                                            [&](const auto& name) { return headers.value(name).value(); }},
                                           {{"a/b", secret}}),
                          "");
            }
        }
    }
}

}  // namespace
}  // namespace nimbuscope::testing

#include <gtest/gtest.h>

#include "Platform/URLLoading/CachingURLSession.hpp"
#include "Platform/URLLoading/HTTPCaching.hpp"
#include "tests/support/InMemoryURLCache.hpp"
#include "tests/support/ManualRunLoop.hpp"
#include "tests/support/ScriptedURLSession.hpp"

namespace nimbuscope::testing {
namespace {

using namespace std::chrono_literals;
using platform::HTTPHeaders;
using platform::URLRequest;

class CachingURLSession : public ::testing::Test {
  protected:
    void SetUp() override { server_->settings.urlCache = cache_; }

    /// What a GET with these fields gets: a body, a status, or "error"; preceded by "+" when it was loaded.
    std::string get(const HTTPHeaders& headers = {}, URLRequest request = {}) {
        request.url = "https://a/";
        request.headers = headers;
        const std::size_t before = server_->requests.size();
        std::string got = "error";
        session_.dataTask(request, [&](platform::URLSessionResult result) {
            if (result) {
                const auto status = result->response.statusCode;
                got = status == 200 ? platform::textOf(*result->data) : std::to_string(status);
            }
        });
        return (server_->requests.size() > before ? "+" : "") + got;
    }

    void serve(int status, const std::string& body, const HTTPHeaders& headers) {
        server_->answer = [=](const URLRequest& request) { return respond(request, status, body, headers); };
    }

    /// Loads a response with these fields and returns what follows it after `later`.
    std::string again(const HTTPHeaders& headers, std::chrono::nanoseconds later,
                      const HTTPHeaders& asked = {}) {
        cache_->removeAllCachedResponses();
        clock_->start = begin_ - clock_->elapsed();
        serve(200, "1", headers);
        EXPECT_EQ(get(), "+1");
        serve(200, "2", headers);
        clock_->advance(later);
        return get(asked);
    }

    std::shared_ptr<ManualRunLoop> clock_ = std::make_shared<ManualRunLoop>();
    std::chrono::system_clock::time_point begin_ = clock_->start;
    std::shared_ptr<InMemoryURLCache> cache_ = std::make_shared<InMemoryURLCache>();
    std::shared_ptr<ScriptedURLSession> server_ = std::make_shared<ScriptedURLSession>(nullptr);
    platform::CachingURLSession session_{server_, clock_};
};

TEST_F(CachingURLSession, answersWhileAResponseIsFreshAndNoLonger) {
    const HTTPHeaders::Field date{"Date", "Thu, 07 Mar 2024 00:00:00 GMT"};  // when the clock starts
    const HTTPHeaders::Field minute{"Cache-Control", "max-age=60"};
    const std::pair<HTTPHeaders, std::chrono::seconds> cases[] = {
        {{minute}, 60s},
        {{{"cache-control", "private=\"a, b\", MAX-AGE=\"60\""}, {"Expires", "0"}}, 60s},
        {{minute, {"Age", "20"}}, 40s},
        {{{"Cache-Control", "max-age=99999999999999999999"}, {"Age", "2147483600"}}, 48s},
        {{{"Cache-Control", "max-age=60, max-age=30"}}, 30s},
        {{{"Expires", "Thu, 07 Mar 2024 00:01:00 GMT"}, date}, 60s},
        {{{"Expires", "Thu, 07 Mar 2024 00:01:00 GMT"}}, 60s},
        {{minute, {"Date", "Wed, 06 Mar 2024 23:59:50 GMT"}}, 50s},
        {{{"Expires", "0"}}, 0s},
        {{{"Cache-Control", "max-age"}, {"Expires", "Thu, 07 Mar 2025 00:01:00 GMT"}}, 0s},
        {{{"Cache-Control", "max-age=60, no-cache"}}, 0s},
        {{{"Cache-Control", "max-age=60, no-store"}}, 0s},
        {{minute, {"Vary", "*"}}, 0s},
        {{}, 0s},
    };
    for (const auto& [headers, lifetime] : cases) {
        SCOPED_TRACE(headers.fields().empty() ? "-" : headers.fields().front().value);
        EXPECT_EQ(again(headers, lifetime), "+2");
        EXPECT_TRUE(lifetime == 0s || again(headers, lifetime - 1s) == "1");
    }
}

TEST_F(CachingURLSession, heedsWhatTheRequestAsks) {
    const HTTPHeaders fresh{{"Cache-Control", "max-age=60"}, {"Vary", "Accept, X"}};
    EXPECT_EQ(again(fresh, 10s, {{"Cache-Control", "max-age=11"}}), "1");
    using Field = HTTPHeaders::Field;
    for (const Field& asked : {Field{"Cache-Control", "no-cache"}, Field{"Cache-Control", "max-age=10"},
                               Field{"Cache-Control", "no-store"}, Field{"Accept", "b"}, Field{"x", "b"},
                               Field{"Authorization", "b"}, Field{"Range", "bytes=0-1"}}) {
        EXPECT_EQ(again(fresh, 10s, {asked}), "+2") << asked.name;
    }
    EXPECT_EQ(again(fresh, 10s), "1");
    clock_->start -= 60s;
    EXPECT_EQ(get(), "+2") << "the clock was set back";
}

TEST_F(CachingURLSession, storesNothingForThoseWhoProveWhoTheyAre) {
    serve(200, "secret", {{"Cache-Control", "max-age=60"}});
    EXPECT_EQ(get({}, {.isAuthorized = true}), "+secret");
    EXPECT_EQ(get({{"Authorization", "me"}}), "+secret");
    EXPECT_EQ(get({}, {.httpMethod = "POST"}), "+secret");
    serve(404, "none", {{"Cache-Control", "max-age=60"}});
    EXPECT_EQ(get(), "+404");
    server_->answer = [](auto&) { return std::unexpected(platform::URLError{}); };
    EXPECT_EQ(get(), "+error");
    EXPECT_TRUE(cache_->isEmpty());
    serve(200, "new", {{"Cache-Control", "max-age=60"}});
    EXPECT_EQ(get({}, {.cachePolicy = platform::URLRequestCachePolicy::reloadIgnoringLocalCacheData}),
              "+new");
    EXPECT_EQ(get({}, {.isAuthorized = true}), "+new");
    EXPECT_EQ(get(), "new");
    EXPECT_EQ(get({}, {.httpMethod = "POST"}), "+new");
    EXPECT_EQ(get(), "+new") << "what was posted to has changed";
    serve(500, "", {});
    EXPECT_EQ(get({}, {.httpMethod = "POST"}), "+500");
    EXPECT_EQ(get(), "new") << "nothing was posted";
}

TEST_F(CachingURLSession, asksWhetherAStaleResponseIsStillTrue) {
    const HTTPHeaders stale{{"ETag", "\"v1\""}, {"Last-Modified", "x"}, {"Cache-Control", "max-age=0"}};
    serve(200, "1", stale);
    EXPECT_EQ(get(), "+1");
    serve(304, "", {{"Cache-Control", "max-age=60"}, {"Content-Length", "0"}});
    EXPECT_EQ(get(), "+1");
    EXPECT_EQ(server_->requests.back().headers.value("If-None-Match"), "\"v1\"");
    EXPECT_EQ(server_->requests.back().headers.value("If-Modified-Since"), "x");
    clock_->advance(59s);
    EXPECT_EQ(get(), "1") << "the answer 304 made it fresh";
    clock_->advance(1s);
    serve(500, "", {});
    EXPECT_EQ(get(), "+500");
    serve(200, "2", stale);
    EXPECT_EQ(get(), "+2");
    serve(304, "", {});
    EXPECT_EQ(get(), "+2");
    EXPECT_EQ(get({{"If-None-Match", "\"mine\""}}), "+304");
}

TEST(HTTPDate, isReadInAllThreeForms) {
    for (const char* text :
         {"Sun, 06 Nov 1994 08:49:37 GMT", "Sunday, 06-Nov-94 08:49:37 GMT", "Sun Nov  6 08:49:37 1994"}) {
        EXPECT_EQ(platform::parseHTTPDate(text), std::chrono::sys_seconds(784111777s)) << text;
    }
    for (const char* text : {"", "0", "-1", "Sun, 31 Feb 1994 08:49:37 GMT", "Sun, 06 Nov 1994 24:00:00 GMT",
                             "Sun, 06 Nov 08:49:37 GMT", "Sun, 262 Nov 1994 08:49:37 GMT",
                             "Sun, 06 Nov 67530 08:49:37 GMT", "Sun, 06 Nov 1994 8:49:37 GMT"}) {
        EXPECT_EQ(platform::parseHTTPDate(text), std::nullopt) << text;
    }
}

}  // namespace
}  // namespace nimbuscope::testing

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
    /// What a GET with these fields gets: a body, a status, or "error"; preceded by "+" when it was loaded.
    std::string get(HTTPHeaders headers = {}, const URLRequest& other = {}) {
        URLRequest request = other;
        request.url = "https://a/";
        request.headers = std::move(headers);
        const std::size_t before = server_->requests.size();
        std::string got;
        session_.dataTask(request, [&](platform::URLSessionResult result) {
            got = !result                              ? "error"
                  : result->response.statusCode == 200 ? std::string(platform::textOf(*result->data))
                                                       : std::to_string(result->response.statusCode);
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
        serve(200, "1", headers);
        EXPECT_EQ(get(), "+1");
        serve(200, "2", headers);
        clock_->advance(later);
        return get(asked);
    }

    std::shared_ptr<ManualRunLoop> clock_ = std::make_shared<ManualRunLoop>();
    std::shared_ptr<InMemoryURLCache> cache_ = std::make_shared<InMemoryURLCache>();
    std::shared_ptr<ScriptedURLSession> server_ = std::make_shared<ScriptedURLSession>(nullptr);
    platform::CachingURLSession session_{server_, clock_};

    void SetUp() override { server_->settings.urlCache = cache_; }
};

TEST_F(CachingURLSession, answersWhileAResponseIsFreshAndNoLonger) {
    const auto begin = clock_->start;
    const std::string date = "Thu, 07 Mar 2024 00:00:00 GMT";  // when the clock starts
    const struct {
        HTTPHeaders headers;
        std::chrono::seconds lifetime;
    } cases[] = {
        {{{"Cache-Control", "max-age=60"}}, 60s},
        {{{"cache-control", "private=\"a, b\", MAX-AGE=\"60\""}, {"Expires", "0"}}, 60s},
        {{{"Cache-Control", "max-age=60"}, {"Age", "20"}}, 40s},
        {{{"Cache-Control", "max-age=99999999999999999999"}, {"Age", "2147483600"}}, 48s},
        {{{"Cache-Control", "max-age=60, max-age=30"}}, 30s},
        {{{"Expires", "Thu, 07 Mar 2024 00:01:00 GMT"}, {"Date", date}}, 60s},
        {{{"Expires", "Thursday, 07-Mar-24 00:01:00 GMT"}}, 60s},
        {{{"Expires", "Thu Mar  7 00:01:00 2024"}}, 60s},
        {{{"Expires", "0"}}, 0s},
        {{{"Cache-Control", "max-age"}, {"Expires", "Thu, 07 Mar 2025 00:01:00 GMT"}}, 0s},
        {{{"Cache-Control", "max-age=60, no-cache"}}, 0s},
        {{{"Cache-Control", "max-age=60, no-store"}}, 0s},
        {{{"Cache-Control", "max-age=60"}, {"Vary", "*"}}, 0s},
        {{}, 0s},
    };
    for (const auto& [headers, lifetime] : cases) {
        SCOPED_TRACE(headers.value("Cache-Control").value_or("-"));
        for (const auto later : {lifetime - 1s, lifetime}) {
            clock_->start -= clock_->elapsed() + clock_->start - begin;
            if (later >= 0s) {
                EXPECT_EQ(again(headers, later), later < lifetime ? "1" : "+2");
            }
        }
    }
}

TEST_F(CachingURLSession, heedsWhatTheRequestAsks) {
    const HTTPHeaders fresh{{"Cache-Control", "max-age=60"}, {"Vary", "Accept, X"}};
    EXPECT_EQ(again(fresh, 10s), "1");
    EXPECT_EQ(again(fresh, 10s, {{"Cache-Control", "max-age=11"}}), "1");
    for (const HTTPHeaders& asked :
         {HTTPHeaders{{"Cache-Control", "no-cache"}}, HTTPHeaders{{"Cache-Control", "max-age=10"}},
          HTTPHeaders{{"Cache-Control", "no-store"}}, HTTPHeaders{{"Accept", "b"}}, HTTPHeaders{{"x", "b"}},
          HTTPHeaders{{"Authorization", "b"}}, HTTPHeaders{{"Range", "bytes=0-1"}}}) {
        EXPECT_EQ(again(fresh, 10s, asked), "+2") << asked.fields().front().name;
    }
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
    EXPECT_EQ(get(), "new");
    EXPECT_EQ(get({}, {.httpMethod = "POST"}), "+new");
    EXPECT_EQ(get(), "+new") << "what was posted to has changed";
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
    using std::chrono::sys_seconds;
    const sys_seconds instant(784111777s);
    for (const char* text :
         {"Sun, 06 Nov 1994 08:49:37 GMT", "Sunday, 06-Nov-94 08:49:37 GMT", "Sun Nov  6 08:49:37 1994"}) {
        EXPECT_EQ(platform::parseHTTPDate(text), instant) << text;
    }
    for (const char* text : {"", "0", "-1", "Sun, 31 Feb 1994 08:49:37 GMT", "Sun, 06 Nov 1994 24:00:00 GMT",
                             "Sun, 06 Nov 08:49:37 GMT", "Sun, 06 Nov 1994 8:49:37 GMT"}) {
        EXPECT_EQ(platform::parseHTTPDate(text), std::nullopt) << text;
    }
}

}  // namespace
}  // namespace nimbuscope::testing

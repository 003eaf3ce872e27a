#pragma once

#include <gtest/gtest.h>

#include <string>

#include "Platform/URLLoading/URLCache.hpp"

/// What every response cache does, real or fake. `Fixture::open(capacity)` gives the same cache every time.
namespace nimbuscope::testing {

[[nodiscard]] inline platform::CachedURLResponse cached(const std::string& url, const std::string& body) {
    using std::chrono::sys_days;
    return {{url, 200, {{"A", "1: é"}, {"B", ""}, {"A", "2"}}},
            platform::dataOf(body),
            {{"Accept", "*/*"}},
            sys_days{std::chrono::year(2024) / 3 / 7},
            sys_days{std::chrono::year(2024) / 3 / 8}};
}

template <class Fixture>
class URLCacheContract : public ::testing::Test {
  protected:
    Fixture fixture_;
};

TYPED_TEST_SUITE_P(URLCacheContract);

TYPED_TEST_P(URLCacheContract, keepsTheLastResponseOfEachURLUntilItIsRemoved) {
    const auto cache = this->fixture_.open(1U << 20U);
    EXPECT_EQ(cache->cachedResponse("https://a/"), std::nullopt);
    cache->removeCachedResponse("https://a/");
    for (const auto& response : {cached("https://a/", "old"), cached("https://a/", std::string("n\0w", 3)),
                                 cached("https://a/?", ""), cached("https://b/", "b")}) {
        cache->storeCachedResponse(response);
    }
    const auto again = this->fixture_.open(1U << 20U);
    EXPECT_EQ(again->cachedResponse("https://a/"), cached("https://a/", std::string("n\0w", 3)));
    EXPECT_EQ(again->cachedResponse("https://a/?"), cached("https://a/?", ""));
    again->removeCachedResponse("https://a/");
    EXPECT_EQ(again->cachedResponse("https://a/"), std::nullopt);
    EXPECT_TRUE(cache->cachedResponse("https://b/"));
    again->removeAllCachedResponses();
    EXPECT_EQ(cache->cachedResponse("https://b/"), std::nullopt);
}

TYPED_TEST_P(URLCacheContract, givesUpWhatWasNotAskedForTheLongest) {
    const auto cache = this->fixture_.open(4000);
    for (const char* url : {"https://1/", "https://2/", "https://3/"}) {
        cache->storeCachedResponse(cached(url, std::string(1200, 'x')));
    }
    EXPECT_TRUE(cache->cachedResponse("https://1/"));
    cache->storeCachedResponse(cached("https://4/", std::string(1200, 'x')));
    cache->storeCachedResponse(cached("https://3/", std::string(4001, 'x')));
    std::string left;
    for (const char* url : {"https://1/", "https://2/", "https://3/", "https://4/"}) {
        left += cache->cachedResponse(url) ? url[8] : '-';
    }
    EXPECT_EQ(left, "1--4");
}

REGISTER_TYPED_TEST_SUITE_P(URLCacheContract, keepsTheLastResponseOfEachURLUntilItIsRemoved,
                            givesUpWhatWasNotAskedForTheLongest);

}  // namespace nimbuscope::testing

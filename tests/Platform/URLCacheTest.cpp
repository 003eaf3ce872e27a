#include <gtest/gtest.h>
#include <sys/stat.h>

#include "Platform/Linux/SQLite.hpp"
#include "Platform/Linux/URLCache_sqlite.hpp"
#include "tests/support/InMemoryURLCache.hpp"
#include "tests/support/TemporaryDirectory.hpp"
#include "tests/support/URLCacheContract.hpp"

namespace nimbuscope::testing {
namespace {

struct InMemoryFixture {
    std::shared_ptr<platform::URLCache> cache;
    auto open(std::size_t capacity) {
        return cache = cache ? cache : std::make_shared<InMemoryURLCache>(capacity);
    }
};

struct SQLiteFixture {
    TemporaryDirectory directory;
    auto open(std::size_t capacity) {
        return platform::makeSQLiteURLCache(directory.path("new/cache"), capacity);
    }
};

using Caches = ::testing::Types<InMemoryFixture, SQLiteFixture>;
INSTANTIATE_TYPED_TEST_SUITE_P(Caches, URLCacheContract, Caches);

TEST(SQLiteURLCache, remembersAcrossProcessesWhatWasAskedFor) {
    SQLiteFixture fixture;
    for (const char* url : {"https://1/", "https://2/"}) {
        fixture.open(3000)->storeCachedResponse(cached(url, std::string(1200, 'x')));
    }
    EXPECT_TRUE(fixture.open(3000)->cachedResponse("https://1/"));
    fixture.open(3000)->storeCachedResponse(cached("https://3/", std::string(1200, 'x')));
    EXPECT_TRUE(fixture.open(3000)->cachedResponse("https://1/"));
    EXPECT_FALSE(fixture.open(3000)->cachedResponse("https://2/"));
}

TEST(SQLiteURLCache, isMadeAnewWhereItIsDamaged) {
    const auto execute = [](const char* sql) {
        return [sql](const std::string& file) {
            ASSERT_TRUE(platform::SQLiteConnection::open(file, 0)->execute(sql));
        };
    };
    const std::function<void(const std::string&)> damages[] = {
        [](auto& file) { writeFile(file, std::string(9000, '.')); },
        [](auto& file) { writeFile(file, ""); },
        [](auto& file) { writeFile(file, readFile(file).substr(0, 5000)); },
        [](auto& file) {
            std::string bytes = readFile(file);
            const std::size_t body = bytes.find("xxxxxxxx");
            ASSERT_NE(body, std::string::npos);
            bytes[body] = 'y';
            writeFile(file, bytes);
        },
        execute("PRAGMA user_version = 2"),
        execute("PRAGMA application_id = 7"),
        execute("DROP TABLE responses"),
        execute("UPDATE responses SET headers = 'A: 3\n'"),
        execute("UPDATE responses SET status = 404"),
    };
    for (const auto& damage : damages) {
        SQLiteFixture fixture;
        const std::string file = fixture.directory.path("new/cache/responses.sqlite");
        fixture.open(1U << 20U)->storeCachedResponse(cached("https://a/", std::string(9000, 'x')));
        struct stat information{};
        ASSERT_EQ(::stat(file.c_str(), &information), 0);
        EXPECT_EQ(information.st_mode & 0777U, 0600U);
        damage(file);
        const auto cache = fixture.open(1U << 20U);
        EXPECT_EQ(cache->cachedResponse("https://a/"), std::nullopt) << &damage - damages;
        cache->storeCachedResponse(cached("https://a/", "new"));
        EXPECT_EQ(fixture.open(1U << 20U)->cachedResponse("https://a/"), cached("https://a/", "new"))
            << &damage - damages;
    }
}

TEST(SQLiteURLCache, keepsNothingWhereItHasNoPlace) {
    const TemporaryDirectory directory;
    writeFile(directory.path("file"), "");
    for (const std::string& place : {std::string(), directory.path("file"), directory.path("file/below")}) {
        const auto cache = platform::makeSQLiteURLCache(place);
        cache->storeCachedResponse(cached("https://a/", "a"));
        EXPECT_EQ(cache->cachedResponse("https://a/"), std::nullopt);
        cache->removeAllCachedResponses();
    }
}

}  // namespace
}  // namespace nimbuscope::testing

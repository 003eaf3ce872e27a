#include <gtest/gtest.h>

#include <filesystem>
#include <thread>

#include "Platform/Linux/NSUserDefaults_sqlite.hpp"
#include "Platform/Linux/SQLite.hpp"
#include "tests/support/InMemoryUserDefaults.hpp"
#include "tests/support/Process.hpp"
#include "tests/support/TemporaryDirectory.hpp"
#include "tests/support/UserDefaultsContract.hpp"

namespace nimbuscope::testing {
namespace {

using platform::DefaultsError;
using platform::SQLiteUserDefaultsSuites;

struct InMemoryFixture {
    InMemorySuites suites;
    auto open() { return suites.suite("group").value(); }
    auto reopen() { return suites.suite("group").value(); }
};

struct SQLiteFixture {
    TemporaryDirectory directory;
    auto open() { return SQLiteUserDefaultsSuites(directory.path("new/store")).suite("group").value(); }
    auto reopen() { return open(); }
};

using Stores = ::testing::Types<InMemoryFixture, SQLiteFixture>;
INSTANTIATE_TYPED_TEST_SUITE_P(Stores, UserDefaultsContract, Stores);

struct SQLiteUserDefaults : ::testing::Test {
    TemporaryDirectory directory;
    std::string file = directory.path("standard.sqlite");
    auto open(int patience = 60000) {
        return SQLiteUserDefaultsSuites(directory.path(), patience).standard().value();
    }
    void execute(const std::string& sql) {
        ASSERT_TRUE(platform::SQLiteConnection::open(file, 0)->execute(sql));
    }
};

TEST_F(SQLiteUserDefaults, filesAreTheOwnersAlone) {
    using std::filesystem::perms;
    const auto modeOf = [](auto& path) { return std::filesystem::status(path).permissions(); };
    const auto store = SQLiteUserDefaultsSuites(directory.path("a/b")).standard().value();
    EXPECT_EQ(store->object("k").value(), std::nullopt);
    EXPECT_TRUE(std::filesystem::is_empty(directory.path("a/b"))) << "reading made a file";
    ASSERT_TRUE(store->set("k", true));
    for (const auto& made : std::filesystem::recursive_directory_iterator(directory.path())) {
        EXPECT_EQ(modeOf(made.path()), made.is_directory() ? perms(0700) : perms(0600)) << made;
    }
}

TEST_F(SQLiteUserDefaults, namesThatAreNoFileNamesAndDirectoriesThatCannotBeAreRefused) {
    for (const std::string& name : {std::string(), std::string("../x"), std::string("a/b"),
                                    std::string(".hidden"), std::string(201, 'x'), std::string("a\0b", 3)}) {
        EXPECT_FALSE(SQLiteUserDefaultsSuites(directory.path()).suite(name)) << name;
    }
    writeFile(file, "");
    for (const std::string& place : {file, file + "/below"}) {
        EXPECT_EQ(SQLiteUserDefaultsSuites(place).standard().error().code, DefaultsError::Code::cannotOpen);
    }
}

TEST_F(SQLiteUserDefaults, whatIsNoWholeStoreOrNewerIsRefusedAndLeftAlone) {
    using Code = DefaultsError::Code;
    ASSERT_TRUE(open()->set("k", std::string(20000, 'x')));
    const std::string whole = readFile(file);
    const auto expectRefused = [&](Code code) {
        const std::string damaged = readFile(file);
        const auto store = open();
        EXPECT_EQ(store->object("k").error().code, code);
        EXPECT_FALSE(store->set("k", true));
        EXPECT_FALSE(store->removeObject("k"));
        EXPECT_FALSE(store->dictionaryRepresentation());
        EXPECT_FALSE(store->transaction([] { return platform::DefaultsResult<void>{}; }));
        EXPECT_EQ(readFile(file), damaged);
    };
    for (const std::string& bytes : {std::string(2000, '.'), std::string(), whole.substr(0, 9000)}) {
        writeFile(file, bytes);
        expectRefused(Code::damaged);
    }
    for (const auto& [pragma, code] :
         {std::pair("application_id = 7", Code::damaged), std::pair("user_version = 2", Code::newerFormat)}) {
        writeFile(file, whole);
        execute(std::string("PRAGMA ") + pragma);
        expectRefused(code);
    }
}

TEST_F(SQLiteUserDefaults, aStoreWithDamagedPagesIsNotWritten) {
    for (int i = 0; i < 60; ++i) {
        ASSERT_TRUE(open()->set("k" + std::to_string(i), std::string(100, 'x')));
    }
    const std::string cut = readFile(file).substr(0, readFile(file).size() - 200);
    writeFile(file, cut);
    EXPECT_TRUE(open()->object("k0"));
    EXPECT_EQ(open()->set("k0", true).error().code, DefaultsError::Code::damaged);
    EXPECT_EQ(open()->removeObject("k0").error().code, DefaultsError::Code::damaged);
    EXPECT_EQ(readFile(file), cut);
}

TEST_F(SQLiteUserDefaults, aTransactionWhoseBodyThrowsLeavesNothing) {
    const auto store = open();
    const auto body = [&]() -> platform::DefaultsResult<void> {
        EXPECT_TRUE(store->set("k", true));
        throw std::bad_alloc();
    };
    EXPECT_THROW(static_cast<void>(store->transaction(body)), std::bad_alloc);
    EXPECT_EQ(store->object("k").value(), std::nullopt);
    EXPECT_TRUE(open(0)->set("k", false));
}

TEST_F(SQLiteUserDefaults, aValueThatIsNotOfItsTypeIsDamage) {
    ASSERT_TRUE(open()->set("k", std::int64_t{1}));
    for (const char* column :
         {"type = 3", "type = 5", "type = 9", "type = 6, value = '[1'", "type = 6, value = '[null]'"}) {
        execute(std::string("UPDATE defaults SET ") + column);
        EXPECT_EQ(open()->object("k").error().code, DefaultsError::Code::damaged) << column;
    }
}

TEST_F(SQLiteUserDefaults, readersDoNotWaitForAWriterAndWritersSayThatTheStoreIsBusy) {
    const auto store = open();
    const auto other = open(10);
    ASSERT_TRUE(store->set("k", std::int64_t{1}));
    ASSERT_TRUE(store->transaction([&] {
        auto done = store->set("k", std::int64_t{2});
        EXPECT_EQ(other->object("k").value(), std::int64_t{1});
        EXPECT_EQ(other->set("k", std::int64_t{3}).error().code, DefaultsError::Code::busy);
        return done;
    }));
    EXPECT_EQ(other->object("k").value(), std::int64_t{2});
}

TEST_F(SQLiteUserDefaults, aWriterKilledAtAnyMomentLosesNothingAcknowledgedAndTearsNothing) {
    std::minstd_rand random(20240229);
    std::int64_t stored = -1;
    for (int i = 0; i < 200; ++i) {
        const std::int64_t acknowledged = killed(random, [&](const auto& tell) {
            const auto store = open();
            const auto setBoth = [&] {
                const auto a = store->set("a", stored);
                return a ? store->set("b", stored) : a;
            };
            while (++stored, store->transaction(setBoth)) {
                tell(stored);
            }
        });
        const auto values = open()->dictionaryRepresentation().value();
        ASSERT_EQ(values.contains("a"), values.contains("b"));
        const std::int64_t before = std::max(stored, acknowledged);
        stored = values.empty() ? -1 : *values.at("a").as<std::int64_t>();
        ASSERT_GE(stored, before) << "kill " << i;
        ASSERT_TRUE(values.empty() || values.at("a") == values.at("b")) << "kill " << i;
    }
    EXPECT_GT(stored, 100);
}

TEST_F(SQLiteUserDefaults, twoProcessesWriteAThousandKeysEachAndNoneIsLost) {
    inTwoProcesses([&](int process) {
        const auto store = open();
        bool isWritten = true;
        for (int i = 0; i < 1000; ++i) {
            isWritten = isWritten && store->set(std::to_string(2 * i + process), std::int64_t{i});
        }
        return isWritten;
    });
    EXPECT_EQ(open()->dictionaryRepresentation()->size(), 2000U);
}

TEST_F(SQLiteUserDefaults, threadsShareOneObjectAndTransactionsDoNotMix) {
    const auto store = open();
    ASSERT_TRUE(store->set("n", std::int64_t{0}));
    const auto countUp = [&] {
        for (int i = 0; i < 50; ++i) {
            EXPECT_TRUE(store->transaction(
                [&] { return store->set("n", *store->object("n").value()->as<std::int64_t>() + 1); }));
        }
    };
    std::thread other(countUp);
    countUp();
    other.join();
    EXPECT_EQ(store->object("n").value(), std::int64_t{100});
}

}  // namespace
}  // namespace nimbuscope::testing

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "Platform/Linux/NSUserDefaults_sqlite.hpp"
#include "Platform/Linux/SQLite.hpp"
#include "tests/support/InMemoryUserDefaults.hpp"
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

mode_t modeOf(const std::string& path) {
    struct stat information{};
    return ::stat(path.c_str(), &information) == 0 ? information.st_mode & 0777 : 0;
}

TEST(SQLiteUserDefaults, filesAreTheOwnersAlone) {
    const TemporaryDirectory directory;
    const auto store = SQLiteUserDefaultsSuites(directory.path("a/b")).standard().value();
    EXPECT_EQ(store->object("k").value(), std::nullopt);
    EXPECT_TRUE(std::filesystem::is_empty(directory.path("a/b"))) << "reading made a file";
    ASSERT_TRUE(store->set("k", true));
    EXPECT_EQ(modeOf(directory.path("a")), 0700U);
    EXPECT_EQ(modeOf(directory.path("a/b")), 0700U);
    for (const auto& file : std::filesystem::directory_iterator(directory.path("a/b"))) {
        EXPECT_EQ(modeOf(file.path()), 0600U) << file.path();
    }
}

TEST(SQLiteUserDefaults, namesThatAreNoFileNamesAndDirectoriesThatCannotBeAreRefused) {
    const TemporaryDirectory directory;
    writeFile(directory.path("file"), "");
    for (const std::string& name : {std::string(), std::string("../x"), std::string("a/b"),
                                    std::string(".hidden"), std::string(201, 'x'), std::string("a\0b", 3)}) {
        EXPECT_FALSE(SQLiteUserDefaultsSuites(directory.path()).suite(name)) << name;
    }
    for (const std::string place : {"file", "file/below"}) {
        const auto store = SQLiteUserDefaultsSuites(directory.path(place)).standard();
        ASSERT_FALSE(store);
        EXPECT_EQ(store.error().code, DefaultsError::Code::cannotOpen);
    }
}

/// Damages the file of a store and expects that reads and writes say so and leave every byte alone.
void expectRefused(const std::function<void(const std::string&)>& damage, DefaultsError::Code code) {
    const TemporaryDirectory directory;
    SQLiteUserDefaultsSuites suites(directory.path(), 10);
    ASSERT_TRUE(suites.standard().value()->set("k", std::string(20000, 'x')));
    const std::string file = directory.path("standard.sqlite");
    damage(file);
    const std::string before = readFile(file);
    const auto store = suites.standard().value();
    const auto read = store->object("k");
    ASSERT_FALSE(read);
    EXPECT_EQ(read.error().code, code) << read.error().message();
    EXPECT_FALSE(store->set("k", true));
    EXPECT_FALSE(store->removeObject("k"));
    EXPECT_FALSE(store->dictionaryRepresentation());
    EXPECT_FALSE(store->transaction([] { return platform::DefaultsResult<void>{}; }));
    EXPECT_EQ(readFile(file), before);
}

void execute(const std::string& file, const std::string& sql) {
    ASSERT_TRUE(platform::SQLiteConnection::open(file, 0)->execute(sql));
}

TEST(SQLiteUserDefaults, whatIsNoWholeStoreOrNewerIsRefusedAndLeftAlone) {
    using Code = DefaultsError::Code;
    expectRefused(
        [](auto& file) { writeFile(file, "this is a text, not a store; " + std::string(2000, '.')); },
        Code::damaged);
    expectRefused([](auto& file) { writeFile(file, ""); }, Code::damaged);
    expectRefused([](auto& file) { writeFile(file, readFile(file).substr(0, 9000)); }, Code::damaged);
    expectRefused([](auto& file) { execute(file, "PRAGMA application_id = 7"); }, Code::damaged);
    expectRefused([](auto& file) { execute(file, "PRAGMA user_version = 2"); }, Code::newerFormat);
}

TEST(SQLiteUserDefaults, aValueThatIsNotOfItsTypeIsDamage) {
    const TemporaryDirectory directory;
    SQLiteUserDefaultsSuites suites(directory.path());
    ASSERT_TRUE(suites.standard().value()->set("k", std::int64_t{1}));
    for (const char* column :
         {"type = 3", "type = 5", "type = 9", "type = 6, value = '[1'", "type = 6, value = '[null]'"}) {
        execute(directory.path("standard.sqlite"), std::string("UPDATE defaults SET ") + column);
        const auto read = suites.standard().value()->object("k");
        ASSERT_FALSE(read) << column;
        EXPECT_EQ(read.error().code, DefaultsError::Code::damaged);
    }
}

TEST(SQLiteUserDefaults, readersDoNotWaitForAWriterAndWritersSayThatTheStoreIsBusy) {
    const TemporaryDirectory directory;
    SQLiteUserDefaultsSuites suites(directory.path(), 10);
    const auto store = suites.standard().value();
    const auto other = suites.standard().value();
    ASSERT_TRUE(store->set("k", std::int64_t{1}));
    ASSERT_TRUE(store->transaction([&]() -> platform::DefaultsResult<void> {
        EXPECT_TRUE(store->set("k", std::int64_t{2}));
        EXPECT_EQ(other->object("k").value(), std::int64_t{1});
        const auto refused = other->set("k", std::int64_t{3});
        EXPECT_EQ(refused.error().code, DefaultsError::Code::busy);
        return {};
    }));
    EXPECT_EQ(other->object("k").value(), std::int64_t{2});
}

}  // namespace
}  // namespace nimbuscope::testing

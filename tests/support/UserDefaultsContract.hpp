#pragma once

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "Platform/Defaults/NSUserDefaults.hpp"

/// What every key-value store does, real or fake. `Fixture::open()` gives an empty store, `reopen()` another
/// object over the same store.
namespace nimbuscope::testing {

template <class Fixture>
class UserDefaultsContract : public ::testing::Test {
  protected:
    Fixture fixture_;
};

TYPED_TEST_SUITE_P(UserDefaultsContract);

TYPED_TEST_P(UserDefaultsContract, valuesKeepTheirType) {
    using namespace platform;
    const DefaultsDictionary values{
        {"true", true},
        {"one", std::int64_t{1}},
        {"least", std::numeric_limits<std::int64_t>::min()},
        {"real", 1.0},
        {"minusZero", -0.0},
        {"text", std::string("1\0é", 4)},
        {"data", Data{'1', 0, 0xFF}},
        {"emptyData", Data{}},
        {"array", DefaultsArray{true, std::int64_t{1}, 1.0, std::string("$data"), Data{0}, DefaultsArray{}}},
        {"dictionary",
         DefaultsDictionary{{"$data", std::string("AA==")}, {"$", 0.1}, {"", DefaultsDictionary{}}}},
    };
    auto store = this->fixture_.open();
    for (const auto& [key, value] : values) {
        ASSERT_TRUE(store->set(key, value)) << key;
    }
    const auto again = this->fixture_.reopen();
    for (const auto& [key, value] : values) {
        EXPECT_EQ(again->object(key).value(), value) << key;
    }
    EXPECT_EQ(again->dictionaryRepresentation().value(), values);
}

TYPED_TEST_P(UserDefaultsContract, anotherValueReplacesAndRemovalRemoves) {
    auto store = this->fixture_.open();
    EXPECT_EQ(store->object("k").value(), std::nullopt);
    ASSERT_TRUE(store->set("k", std::int64_t{1}));
    ASSERT_TRUE(store->set("k", std::string("two")));
    EXPECT_EQ(store->object("k").value(), std::string("two"));
    ASSERT_TRUE(store->removeObject("k"));
    ASSERT_TRUE(store->removeObject("k"));
    EXPECT_EQ(this->fixture_.reopen()->object("k").value(), std::nullopt);
    EXPECT_TRUE(store->synchronize());
}

TYPED_TEST_P(UserDefaultsContract, whatCannotBeStoredIsRefusedAndChangesNothing) {
    auto store = this->fixture_.open();
    ASSERT_TRUE(store->set("k", true));
    const std::pair<std::string, platform::DefaultsValue> cases[] = {
        {"", true},
        {std::string("k\0k", 3), true},
        {"\xFF", true},
        {"k", std::numeric_limits<double>::quiet_NaN()},
        {"k", std::string("\xC3")},
        {"k", platform::DefaultsArray{platform::DefaultsValue(std::numeric_limits<double>::infinity())}},
    };
    for (const auto& [key, value] : cases) {
        EXPECT_EQ(store->set(key, value).error().code, platform::DefaultsError::Code::invalidValue);
    }
    EXPECT_EQ(store->dictionaryRepresentation().value(), (platform::DefaultsDictionary{{"k", true}}));
}

TYPED_TEST_P(UserDefaultsContract, aTransactionIsKeptOrDroppedAsAWhole) {
    using Done = platform::DefaultsResult<void>;
    auto store = this->fixture_.open();
    ASSERT_TRUE(store->set("a", std::int64_t{1}));
    for (const bool succeed : {false, true}) {
        const Done done = store->transaction([&]() -> Done {
            EXPECT_TRUE(store->set("a", std::int64_t{2}));
            EXPECT_TRUE(store->removeObject("b"));
            EXPECT_EQ(store->object("a").value(), std::int64_t{2});
            return succeed ? Done{} : std::unexpected(platform::DefaultsError{.reason = "no"});
        });
        EXPECT_TRUE(done ? succeed : !succeed && done.error().reason == "no");
        EXPECT_EQ(this->fixture_.reopen()->object("a").value(), std::int64_t{succeed ? 2 : 1});
    }
}

REGISTER_TYPED_TEST_SUITE_P(UserDefaultsContract, valuesKeepTheirType, anotherValueReplacesAndRemovalRemoves,
                            whatCannotBeStoredIsRefusedAndChangesNothing,
                            aTransactionIsKeptOrDroppedAsAWhole);

}  // namespace nimbuscope::testing

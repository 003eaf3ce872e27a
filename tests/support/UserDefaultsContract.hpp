#pragma once

#include <gtest/gtest.h>

#include <limits>
#include <memory>
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
    const std::pair<const char*, DefaultsValue> values[] = {
        {"false", false},
        {"true", true},
        {"one", std::int64_t{1}},
        {"least", std::numeric_limits<std::int64_t>::min()},
        {"real", 1.0},
        {"minusZero", -0.0},
        {"text", std::string("1\0é", 4)},
        {"emptyText", std::string()},
        {"data", Data{'1', 0, 0xFF}},
        {"emptyData", Data{}},
        {"array", DefaultsArray{true, std::int64_t{1}, 1.0, std::string("$data"), Data{0}, DefaultsArray{}}},
        {"dictionary",
         DefaultsDictionary{{"$data", std::string("AA==")}, {"$", 0.1}, {"", DefaultsDictionary{}}}},
    };
    auto store = this->fixture_.open();
    DefaultsDictionary expected;
    for (const auto& [key, value] : values) {
        ASSERT_TRUE(store->set(key, value)) << key;
        expected.emplace(key, value);
    }
    const auto again = this->fixture_.reopen();
    for (const auto& [key, value] : values) {
        const auto read = again->object(key);
        ASSERT_TRUE(read) << read.error().message();
        EXPECT_EQ(*read, value) << key;
    }
    EXPECT_EQ(again->dictionaryRepresentation().value(), expected);
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
    using platform::DefaultsArray;
    using platform::DefaultsValue;
    auto store = this->fixture_.open();
    ASSERT_TRUE(store->set("k", true));
    const std::pair<std::string, DefaultsValue> cases[] = {
        {"", true},
        {std::string("k\0k", 3), true},
        {"\xFF", true},
        {"k", std::numeric_limits<double>::quiet_NaN()},
        {"k", std::string("\xC3")},
        {"k", DefaultsArray{DefaultsValue(std::numeric_limits<double>::infinity())}},
    };
    for (const auto& [key, value] : cases) {
        const auto stored = store->set(key, value);
        ASSERT_FALSE(stored);
        EXPECT_EQ(stored.error().code, platform::DefaultsError::Code::invalidValue);
    }
    EXPECT_EQ(store->dictionaryRepresentation().value().size(), 1U);
}

TYPED_TEST_P(UserDefaultsContract, aTransactionIsKeptOrDroppedAsAWhole) {
    using platform::DefaultsError;
    using platform::DefaultsResult;
    auto store = this->fixture_.open();
    ASSERT_TRUE(store->set("a", std::int64_t{1}));
    const auto change = [&](bool succeed) {
        return store->transaction([&]() -> DefaultsResult<void> {
            EXPECT_TRUE(store->set("a", std::int64_t{2}));
            EXPECT_TRUE(store->removeObject("b"));
            EXPECT_EQ(store->object("a").value(), std::int64_t{2});
            return succeed ? DefaultsResult<void>{} : std::unexpected(DefaultsError{.reason = "no"});
        });
    };
    EXPECT_EQ(change(false).error().reason, "no");
    EXPECT_EQ(this->fixture_.reopen()->object("a").value(), std::int64_t{1});
    EXPECT_TRUE(change(true));
    EXPECT_EQ(this->fixture_.reopen()->object("a").value(), std::int64_t{2});
}

REGISTER_TYPED_TEST_SUITE_P(UserDefaultsContract, valuesKeepTheirType, anotherValueReplacesAndRemovalRemoves,
                            whatCannotBeStoredIsRefusedAndChangesNothing,
                            aTransactionIsKeptOrDroppedAsAWhole);

}  // namespace nimbuscope::testing

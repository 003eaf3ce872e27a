#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <set>

#include "NimbuscopeKit/Preferences/PreferenceKey.hpp"
#include "Platform/Coding/JSONDecoder.hpp"
#include "Platform/Coding/JSONEncoder.hpp"
#include "tests/support/FixedLocale.hpp"
#include "tests/support/InMemoryUserDefaults.hpp"
#include "tests/support/TemporaryDirectory.hpp"

namespace nimbuscope::testing {
namespace {

using nlohmann::json;

json asJSON(const AppPreferences& preferences) {
    return json::parse(platform::JSONEncoder().encode(preferences).value());
}

/// A table of cases, one array each.
json cases(const char* table) {
    return json::parse(readFile(NIMBUSCOPE_SOURCE_DIRECTORY "/tests/data/preferences/settings.json"))
        .at(table);
}

/// Expects that `changed` differs from a new installation where and as a case says, if it says so.
void expectChange(const AppPreferences& changed, const json& row) {
    json expected = asJSON({});
    if (row.size() > 2) {
        expected[json::json_pointer(row[2])] = row[3];
    }
    EXPECT_EQ(asJSON(changed), expected) << row;
    EXPECT_EQ(changed == AppPreferences(), row.size() == 2) << row;
}

TEST(AppPreferences, decodesOnlyWithEveryKeyThatIsNotOptional) {
    const json whole = asJSON({});
    const json settings = whole.flatten();
    platform::JSONDecoder decoder;
    for (const auto& [path, value] : settings.items()) {
        const json::json_pointer missing(path);
        json part = whole;
        part[missing.parent_pointer()].erase(missing.back());
        const auto decoded = decoder.decode<AppPreferences>(part.dump());
        ASSERT_FALSE(decoded) << path;
        EXPECT_TRUE(decoded.error().path.ends_with(missing.back())) << path;
    }
}

TEST(AppPreferencesImport, takesValuesOfTheirTypeUnderTheOldKeys) {
    platform::JSONDocument document;
    for (const json& row : cases("oldKeys")) {
        InMemoryUserDefaults store;
        const auto value = platform::defaultsValue(document.parse(row[1].dump()).value());
        ASSERT_TRUE(store.set(row[0].get<std::string>(), value.value()));
        expectChange(AppPreferences::fromUserDefaults(store, FixedLocale(true)), row);
    }
    const auto imperial = AppPreferences::fromUserDefaults(InMemoryUserDefaults(), FixedLocale(false));
    expectChange(imperial, {{}, {}, "/map/units", 0});
}

TEST(PreferenceKey, setsOneSettingEachOrSaysWhyNot) {
    std::set<std::string_view> names;
    const json rows = cases("keys");
    for (const json& row : rows) {
        const auto& name = row[0].get_ref<const std::string&>();
        const auto key = preferenceKey(name, row[1].get<std::string>());
        if (row.size() == 3) {
            EXPECT_EQ(key ? "" : key.error().message(), row[2].get<std::string>());
            continue;
        }
        ASSERT_TRUE(key) << key.error().message();
        AppPreferences changed;
        std::visit([&](const auto& preference) { preference.applyTo(changed); }, *key);
        expectChange(changed, row);
        names.insert(name);
    }
    EXPECT_EQ(preferenceKeyNames().size(), names.size());
    EXPECT_EQ(preferenceKey("pushToken", "\xFF").error().message(), "pushToken: the text is not valid UTF-8");
}

}  // namespace
}  // namespace nimbuscope::testing

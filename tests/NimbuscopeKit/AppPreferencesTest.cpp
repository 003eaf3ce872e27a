#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <set>

#include "NimbuscopeKit/Preferences/ColorSchemePreference.hpp"
#include "NimbuscopeKit/Preferences/Migration.hpp"
#include "NimbuscopeKit/Preferences/OverlayTypePreference.hpp"
#include "NimbuscopeKit/Preferences/PreferenceKey.hpp"
#include "NimbuscopeKit/Preferences/UnitsPreference.hpp"
#include "Platform/Coding/JSONDecoder.hpp"
#include "Platform/Coding/JSONEncoder.hpp"
#include "Platform/Linux/Bundle_gettext.hpp"
#include "tests/support/FixedLocale.hpp"
#include "tests/support/InMemoryUserDefaults.hpp"
#include "tests/support/TemporaryDirectory.hpp"

namespace nimbuscope::testing {
namespace {

using nlohmann::json;
using platform::dataOf;

json asJSON(const AppPreferences& preferences) {
    return json::parse(platform::JSONEncoder().encode(preferences).value());
}

std::string fixture(const std::string& name) {
    return readFile(NIMBUSCOPE_SOURCE_DIRECTORY "/tests/data/preferences/" + name + ".json");
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
    for (const auto& [path, value] : settings.items()) {
        const json::json_pointer missing(path);
        json part = whole;
        part[missing.parent_pointer()].erase(missing.back());
        const auto decoded = platform::JSONDecoder().decode<AppPreferences>(part.dump());
        EXPECT_TRUE(decoded.error().path.ends_with(missing.back())) << path;
    }
}

TEST(AppPreferencesImport, takesValuesOfTheirTypeUnderTheOldKeys) {
    platform::JSONDocument document;
    const json rows = json::parse(fixture("settings")).at("oldKeys");
    for (const json& row : rows) {
        InMemoryUserDefaults store;
        const auto value = platform::defaultsValue(document.parse(row[1].dump()).value());
        ASSERT_TRUE(store.set(row[0].get<std::string>(), value.value()));
        expectChange(AppPreferences::fromUserDefaults(store, FixedLocale(true)), row);
    }
    expectChange(AppPreferences::fromUserDefaults(InMemoryUserDefaults(), FixedLocale(false)),
                 {{}, {}, "/map/units", 0});
}

TEST(PreferenceKey, setsOneSettingEachOrSaysWhyNot) {
    std::set<std::string_view> names;
    const json rows = json::parse(fixture("settings")).at("keys");
    for (const json& row : rows) {
        const auto& name = row[0].get_ref<const std::string&>();
        const auto key = preferenceKey(name, row[1].get<std::string>());
        if (row.size() == 3) {
            EXPECT_EQ(key.error().message(), row[2].get<std::string>());
            continue;
        }
        AppPreferences changed;
        std::visit([&](const auto& preference) { preference.applyTo(changed); }, key.value());
        expectChange(changed, row);
        names.insert(name);
    }
    EXPECT_EQ(preferenceKeyNames().size(), names.size());
    EXPECT_EQ(preferenceKey("pushToken", "\xFF").error().message(), "pushToken: the text is not valid UTF-8");
}

/// Key order and kinds of numbers count, so that texts are compared.
TEST(Migration, bringsRecordsOfEveryOldVersionToTheNewest) {
    for (int version = 1; version < 12; ++version) {
        const std::string name = "v" + std::to_string(version);
        EXPECT_EQ(platform::textOf(migratedPreferences(dataOf(fixture(name))).value().value()),
                  nlohmann::ordered_json::parse(fixture(name + "-migrated")).dump());
    }
}

TEST(Migration, leavesTheNewestVersionAsItIs) {
    for (const char* stored :
         {" { \"a\" : 1,\"a\":2, \"version\" :12.0 }\n", R"({"version":1,"layer":0,"version":12})"}) {
        EXPECT_EQ(migratedPreferences(dataOf(stored)).value(), std::nullopt) << stored;
    }
}

TEST(Migration, tellsAVersionThatCannotBeReadFromBytesThatAreNoRecord) {
    for (const char* version : {"0", "13", "12.5", "true", "\"12\"", "null", "[12]", "1e300"}) {
        const auto migrated = migratedPreferences(dataOf(R"({"version":)" + std::string(version) + "}"));
        EXPECT_EQ(migrated.error().serviceError, PreferencesServiceError::unableToReadPreferencesVersion);
        EXPECT_EQ(migrated.error().cause.path, "version");
    }
    for (const char* stored : {"", "12", "[{\"version\":3}]", R"({"version":3,"a":1e999})"}) {
        const auto migrated = migratedPreferences(dataOf(stored));
        EXPECT_TRUE(!migrated && !migrated.error().serviceError) << stored;
    }
}

TEST(ColorSchemePreference, everyTitleGoesThroughTheCatalogue) {
    // The test's catalogue was made from the collected texts, each in brackets.
    ::setenv("LANGUAGE", "pseudo", 1);
    ::setenv("LC_ALL", "xx_XX.UTF-8", 1);
    platform::GettextBundle::useLanguageOfUser();
    const platform::GettextBundle bundle(NIMBUSCOPE_BINARY_DIRECTORY "/po/pseudo-locale");
    for (const ColorSchemePreference scheme : platform::allCases<ColorSchemePreference>()) {
        const std::string text = title(scheme, bundle);
        EXPECT_TRUE(text.starts_with('[') && text.ends_with(']')) << text;
    }
    EXPECT_EQ(bundle.localizedString("never collected"), "never collected");
}

TEST(PlayerInterval, keepsWhatIsListedAndReplacesTheRest) {
    using enum OverlayTypePreference;
    using Interval = PlayerInterval;
    EXPECT_EQ((Interval{7200, 3600}.withValuesListed(radar)), (Interval{3600, 3600}));
    EXPECT_EQ((Interval{0, 7200.0000001}.withValuesListed(radar)), (Interval{0, 7200}));
    EXPECT_EQ((Interval{3600, 259200}.withValuesListed(temperature)), (Interval{0, 259200}));
    EXPECT_EQ((Interval{3600, 7200}.restricted({43200, 0})), (Interval{3600, 0}));
    constexpr std::array past{0.0, 3600.0, 21600.0};
    EXPECT_EQ((OverlayPlayerIntervals{past, {}}.range()), (Interval{21600, 0}));
    for (const OverlayTypePreference overlay : platform::allCases<OverlayTypePreference>()) {
        EXPECT_EQ(defaultInterval(overlay).withValuesListed(overlay), defaultInterval(overlay));
    }
}

TEST(UnitsPreference, convertsFromMetricUnits) {
    using enum UnitsPreference;
    EXPECT_EQ(temperature(Imperial, 0), 32);
    EXPECT_DOUBLE_EQ(distance(Hybrid, 10), 6.21371192);
    EXPECT_DOUBLE_EQ(mmToInch(Imperial, 100), 3.93700787);
    EXPECT_NEAR(reflectivityToRainrate(Metric, 23), 1.0, 0.002);
    EXPECT_NEAR(reflectivityToRainrate(Imperial, 55), 99.85 * 0.0393700787, 0.01);
}

}  // namespace
}  // namespace nimbuscope::testing

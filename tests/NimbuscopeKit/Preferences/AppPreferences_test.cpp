#include "NimbuscopeKit/Preferences/AppPreferences.hpp"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "NimbuscopeKit/Preferences/PreferenceKey.hpp"
#include "Platform/Coding/JSONDecoder.hpp"
#include "Platform/Coding/JSONEncoder.hpp"
#include "tests/support/FixedLocale.hpp"
#include "tests/support/InMemoryUserDefaults.hpp"

namespace nimbuscope {
namespace {

using nlohmann::json;
using platform::Data;
using platform::DefaultsArray;
using platform::DefaultsValue;

/// The record with every optional setting present.
AppPreferences wholeRecord() {
    AppPreferences record;
    record.main.ratingVersion = "5.2";
    record.notifications.pushToken = "0f";
    record.map.currentLocation = {50.25, -0.5};
    record.map.currentRect = {1, 2, 3, 4};
    return record;
}

TEST(AppPreferences, DecodesOnlyWithEveryKeyThatIsNotOptional) {
    const json whole = json::parse(platform::JSONEncoder().encode(wholeRecord()).value());
    const std::set<std::string> optional{"main.ratingVersion", "notifications.pushToken",
                                         "map.currentLocation", "map.currentRect"};
    platform::JSONDecoder decoder;
    EXPECT_EQ(decoder.decode<AppPreferences>(whole.dump()), wholeRecord());
    for (const auto& [section, settings] : whole.items()) {
        json without = whole;
        without.erase(section);
        const auto decoded = decoder.decode<AppPreferences>(without.dump());
        EXPECT_EQ(decoded ? "" : decoded.error().message(), section + ": missing key");
        for (const auto& [key, value] : settings.items()) {
            if (settings.is_object()) {
                json less = whole;
                less[section].erase(key);
                const std::string path = section + '.' + key;
                const auto read = decoder.decode<AppPreferences>(less.dump());
                EXPECT_EQ(read ? "" : read.error().message(),
                          optional.contains(path) ? "" : path + ": missing key");
            }
        }
    }
}

TEST(AppPreferencesImport, TakesTheValueUnderEachOldKey) {
    const struct {
        const char* key;
        DefaultsValue value;
        PreferenceKey setting;
    } cases[]{
        {"rrR", false, preference::isRatingEnabled{false}},
        {"nbcNB", "4.7", preference::ratingVersion{"4.7"}},
        {"nbcLaunches", std::int64_t{0}, preference::launchesCount{0}},
        {"nbcAutoplay", true, preference::isAutoplayEnabled{true}},
        {"nbcPushToken", "ab12", preference::pushToken{"ab12"}},
        {"colorScheme", std::int64_t{22}, preference::colorScheme{ColorSchemePreference::rainbow}},
        {"precipitationArrows", false, preference::isPrecipitationDirectionEnabled{false}},
        {"currentLocation", DefaultsArray{50.5, -1.25}, preference::currentLocation{{50.5, -1.25}}},
        {"currentMapRect", DefaultsArray{1.5, 2.5, std::int64_t{3}, 4.5},
         preference::currentMapRect{{1.5, 2.5, 3, 4.5}}},
        {"userMapType", std::int64_t{2}, preference::mapType{MapTypePreference::Hybrid}},
        {"nbcUnits", std::int64_t{2}, preference::units{UnitsPreference::Hybrid}},
        {"enhancedColors", false, preference::isEnhancedColorEnabled{false}},
        {"nbcSmoothRadar", false, preference::isSmoothRadarEnabled{false}},
        {"coverage", true, preference::isCovarageEnabled{true}},
        {"nbcDynOpacity", false, preference::isDynamicOpacityEnabled{false}},
        {"nbcOpacity", std::int64_t{-1}, preference::overlayOpacity{-1}},
        {"nbcOverlayMinimalIntencity", std::int64_t{-32},
         preference::minimalIntensity{IntensityPreference::None}},
    };
    for (const auto& [key, value, setting] : cases) {
        test::InMemoryUserDefaults store;
        ASSERT_TRUE(store.set(key, value));
        AppPreferences expected;
        std::visit([&](const auto& preference) { preference.applyTo(expected); }, setting);
        EXPECT_EQ(AppPreferences::fromUserDefaults(store, test::FixedLocale(true)), expected) << key;
    }
}

TEST(AppPreferencesImport, PassesOverWhatIsOfAnotherTypeOrNotAllowed) {
    const struct {
        const char* key;
        DefaultsValue value;
    } cases[]{
        {"rrR", std::int64_t{0}},
        {"nbcNB", std::int64_t{4}},
        {"nbcLaunches", 22.0},
        {"nbcAutoplay", "true"},
        {"nbcPushToken", Data{0x61}},
        {"colorScheme", std::int64_t{9}},
        {"colorScheme", true},
        {"currentLocation", DefaultsArray{50.5}},
        {"currentLocation", DefaultsArray{50.5, "14.5"}},
        {"currentLocation", DefaultsArray{true, 14.5}},
        {"currentMapRect", DefaultsArray{1.0, 2.0, 3.0}},
        {"userMapType", std::int64_t{3}},
        {"nbcUnits", std::int64_t{5}},
        {"nbcUnits", 0.0},
        {"nbcOpacity", 22.5},
        {"nbcOverlayMinimalIntencity", std::int64_t{0}},
    };
    for (const bool isMetric : {true, false}) {
        AppPreferences expected;
        expected.map.units = isMetric ? UnitsPreference::Metric : UnitsPreference::Imperial;
        for (const auto& [key, value] : cases) {
            test::InMemoryUserDefaults store;
            ASSERT_TRUE(store.set(key, value));
            EXPECT_EQ(AppPreferences::fromUserDefaults(store, test::FixedLocale(isMetric)), expected) << key;
        }
    }
}

}  // namespace
}  // namespace nimbuscope

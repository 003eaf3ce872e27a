#include "NimbuscopeKit/Preferences/PreferenceKey.hpp"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "Platform/Coding/JSONEncoder.hpp"

namespace nimbuscope {
namespace {

using nlohmann::json;

json asJSON(const AppPreferences& preferences) {
    return json::parse(platform::JSONEncoder().encode(preferences).value());
}

/// Every setting of a new installation changed through its key: where the change shows, and as what.
TEST(PreferenceKey, SetsOneSettingEach) {
    const struct {
        const char* name;
        const char* text;
        const char* path;
        json value;
    } cases[]{
        {"isRatingEnabled", "false", "/main/isRatingEnabled", false},
        {"ratingVersion", "true", "/main/ratingVersion", "true"},
        {"launchesCount", "9007199254740993", "/main/launchesCount", 9007199254740993},
        {"isAutoplayEnabled", "true", "/main/isAutoplayEnabled", true},
        {"pushToken", "", "/notifications/pushToken", ""},
        {"colorScheme", "32", "/layer/colorScheme", 32},
        {"overlayType", "6", "/layer/overlayType", 6},
        {"isPrecipitationDirectionEnabled", "false", "/layer/isPrecipitationDirectionEnabled", false},
        {"isStormsEnabled", "true", "/layer/isStormsEnabled", true},
        {"isAlertsEnabled", "true", "/layer/isAlertsEnabled", true},
        {"isRecentLayersEnabled", "true", "/layer/isRecentLayersEnabled", true},
        {"isOpenMapOnLaunchEnabled", "false", "/main/isOpenMapOnLaunchEnabled", false},
        {"isSendStartupPushEnabled", "false", "/main/isNeedSendStartupPush", false},
        {"isShowAIInsightsEnabled", "false", "/main/isShowAIInsights", false},
        {"isHapticEnabled", "false", "/main/isHapticEnabled", false},
        {"currentLocation",
         R"({"lon":-0.5,"lat":51.25})",
         "/map/currentLocation",
         {{"lat", 51.25}, {"lon", -0.5}}},
        {"currentMapRect",
         R"({"x":1,"y":2,"width":3,"height":4.5})",
         "/map/currentRect",
         {{"x", 1}, {"y", 2}, {"width", 3}, {"height", 4.5}}},
        {"mapType", "2", "/map/type", 2},
        {"units", "0", "/map/units", 0},
        {"legend", R"({"isLegendEnabled":true,"tooltipType":2})", "/map/legend/tooltipType", 2},
        {"isEnhancedColorEnabled", "false", "/radar/isEnhancedColorsEnabled", false},
        {"isSmoothRadarEnabled", "false", "/radar/isSmoothRadarEnabled", false},
        {"isCovarageEnabled", "true", "/radar/isCoverageEnabled", true},
        {"isDynamicOpacityEnabled", "false", "/radar/isDynamicOpacityEnabled", false},
        {"overlayOpacity", "-5", "/radar/overlayOpacity", -5},
        {"minimalIntensity", "-32", "/radar/minimalIntensity", -32},
    };
    std::vector<std::string_view> names;
    for (const auto& [name, text, path, value] : cases) {
        names.emplace_back(name);
        const auto key = preferenceKey(name, text);
        ASSERT_TRUE(key) << key.error().message();
        AppPreferences changed;
        std::visit([&](const auto& preference) { preference.applyTo(changed); }, *key);
        const json differences = json::diff(asJSON({}), asJSON(changed));
        ASSERT_EQ(differences.size(), 1U) << name;
        EXPECT_EQ(differences[0]["path"], path);
        EXPECT_EQ(differences[0]["value"], value) << name;
    }
    EXPECT_EQ(preferenceKeyNames(), names);
}

TEST(PreferenceKey, RefusesWhatTheCaseCannotCarry) {
    const struct {
        const char* name;
        const char* text;
        const char* error;
    } cases[]{
        {"isCoverageEnabled", "true", "isCoverageEnabled: no preference has this name"},
        {"isHapticEnabled", "1", "isHapticEnabled: expected a boolean, found a number"},
        {"isHapticEnabled", "yes", "isHapticEnabled: expected a boolean, found a text"},
        {"overlayOpacity", "22.5", "overlayOpacity: expected an integer, found a fraction"},
        {"minimalIntensity", "0", "minimalIntensity: the value is none of the allowed ones"},
        {"colorScheme", "9", "colorScheme: the value is none of the allowed ones"},
        {"currentLocation", R"({"lat":1})", "currentLocation.lon: missing key"},
        {"legend", "[true,0]", "legend: expected an object, found an array"},
        {"pushToken", "\xFF", "pushToken: the text is not valid UTF-8"},
    };
    for (const auto& [name, text, error] : cases) {
        const auto key = preferenceKey(name, text);
        ASSERT_FALSE(key) << name << ' ' << text;
        EXPECT_EQ(key.error().message(), error);
    }
}

}  // namespace
}  // namespace nimbuscope

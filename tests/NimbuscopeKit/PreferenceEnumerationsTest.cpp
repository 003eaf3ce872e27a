#include <gtest/gtest.h>

#include "NimbuscopeKit/Preferences/ColorSchemePreference.hpp"
#include "NimbuscopeKit/Preferences/MapPreferenceTypes.hpp"
#include "NimbuscopeKit/Preferences/OverlayTypePreference.hpp"
#include "NimbuscopeKit/Preferences/UnitsPreference.hpp"
#include "Platform/Coding/JSONDecoder.hpp"
#include "Platform/Linux/Bundle_gettext.hpp"

namespace nimbuscope {
namespace {

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
    EXPECT_EQ(title(ColorSchemePreference::nexred, bundle), "[NEXRAD]");
    EXPECT_EQ(bundle.localizedString("never collected"), "never collected");
}

TEST(ColorSchemePreference, onlyAssignedNumbersDecode) {
    platform::JSONDecoder decoder;
    for (const char* unassigned : {"0", "-1", "9", "10", "18", "19", "20", "24", "30", "33"}) {
        EXPECT_FALSE(decoder.decode<ColorSchemePreference>(unassigned)) << unassigned;
    }
    EXPECT_EQ(decoder.decode<ColorSchemePreference>("32").value(), ColorSchemePreference::ncmae);
    EXPECT_EQ(decoder.decode<ColorSchemePreference>("31").value(), ColorSchemePreference::titan);
}

TEST(OverlayTypePreference, eachOverlayOffersItsDefaultInterval) {
    for (const OverlayTypePreference overlay : platform::allCases<OverlayTypePreference>()) {
        const auto [past, forecast] = intervals(overlay);
        const auto usual = defaultInterval(overlay);
        EXPECT_TRUE(std::ranges::is_sorted(past) && std::ranges::is_sorted(forecast));
        EXPECT_NE(std::ranges::find(past, usual.past), past.end());
        EXPECT_NE(std::ranges::find(forecast, usual.forecast), forecast.end());
    }
    EXPECT_EQ(path(OverlayTypePreference::singleRadar), "radar");
    EXPECT_EQ(identifier(OverlayTypePreference::radarExtendedForecast), HostIdentifier::extendedRadar);
    EXPECT_EQ(defaultInterval(OverlayTypePreference::singleRadar), (PlayerInterval{3600, 0}));
    EXPECT_EQ(defaultInterval(OverlayTypePreference::temperature), (PlayerInterval{0, 259200}));
}

TEST(UnitsPreference, convertsFromMetricUnits) {
    using enum UnitsPreference;
    EXPECT_EQ(temperature(Imperial, 0), 32);
    EXPECT_EQ(temperature(Hybrid, 21), 21);
    EXPECT_DOUBLE_EQ(distance(Hybrid, 10), 6.21371192);
    EXPECT_EQ(distance(Metric, 10), 10);
    EXPECT_DOUBLE_EQ(mmToInch(Imperial, 100), 3.93700787);
    EXPECT_DOUBLE_EQ(milesToMeters(2), 3218.688);
    EXPECT_NEAR(reflectivityToRainrate(Metric, 23), 1.0, 0.002);
    EXPECT_NEAR(reflectivityToRainrate(Imperial, 55), 99.85 * 0.0393700787, 0.01);
    EXPECT_EQ(title(LegendTooltipTypePreference::speed, Hybrid), "inch/hr");
    EXPECT_EQ(title(LegendTooltipTypePreference::intensity, Metric), "Intensity");
}

}  // namespace
}  // namespace nimbuscope

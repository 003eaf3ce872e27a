#include <gtest/gtest.h>

#include "NimbuscopeKit/Forecast/ApiForecastIcon.hpp"
#include "NimbuscopeKit/Forecast/ApiForecastNowcast.hpp"

namespace nimbuscope::testing {
namespace {

/// Puts every text in brackets.
struct BracketBundle final : platform::Bundle {
    [[nodiscard]] std::string localizedString(std::string_view key) const override {
        return std::string("[").append(key).append("]");
    }
};

TEST(ApiForecastIcon, codesMeanWhatTheTablesAndRulesSay) {
    struct Case {
        std::string_view code, symbol, description, word;
        double level;
        bool isBlue, isGray;
        std::string_view asset;
    };
    const Case cases[] = {
        {"light_rain", "cloud.rain", "[Light Rain]", "[Light]", 0.3, true, false, "DrizzleIcon"},
        {"medium_rain", "cloud", "[Rain]", "[Medium]", 0, true, false, "RainIcon"},
        {"heavy_rain", "cloud.heavyrain", "[Heavy Rain]", "[Medium]", 0.6, true, false, "HeavyRainIcon"},
        {"clouds_moon_bolts", "cloud", "[Rain]", "[Medium]", 0, true, false, "CloudsMoonBoltsIcon"},
        {"clouds_sun", "cloud.sun", "[Partly cloudy]", "[Medium]", 0, false, false, "CloudsSunIcon"},
        {"sun_min", "cloud", "[Sunny]", "[Medium]", 0, false, false, "SunMinIcon"},
        {"fog", "cloud.fog", "[Fog]", "[Medium]", 0, false, true, "FogIcon"},
        {"brain", "cloud", "[Rain]", "[Medium]", 0, true, false, "BrainIcon"},
        {"Light_Rain", "cloud", "[Rain]", "[Medium]", 0, false, true, "LightRainIcon"},
        {"_aB__9c_\xC3\x89t_", "cloud", "[Rain]", "[Medium]", 0, false, true, "Ab9c\xC3\x89tIcon"},
        {"", "cloud", "[Rain]", "[Medium]", 0, false, true, "Icon"},
    };
    const BracketBundle bundle;
    using Icon = ApiForecastIcon;
    for (const Case& c : cases) {
        EXPECT_EQ(Icon::toImageSystemName(c.code), c.symbol) << c.code;
        EXPECT_EQ(Icon::toDescriptionText(c.code, bundle), c.description) << c.code;
        EXPECT_EQ(Icon::toLevelDescriptionText(c.code, bundle), c.word) << c.code;
        EXPECT_EQ(Icon::toLevel(c.code), c.level) << c.code;
        EXPECT_EQ(Icon::isBlueLine(c.code), c.isBlue) << c.code;
        EXPECT_EQ(Icon::isGrayLine(c.code), c.isGray) << c.code;
        EXPECT_EQ(Icon::isPrecipitation(c.code), c.code != "sun_min") << c.code;
        EXPECT_EQ(Icon::isNoPrecipitation(c.code), c.code == "sun_min") << c.code;
        EXPECT_EQ(Icon::getAssetName(c.code), c.asset);
    }
    EXPECT_EQ(Icon::getAssetName("light_rain", "Small"), "DrizzleIconSmall");
}

TEST(ApiForecastNowcast, saysInASentenceWhatComes) {
    struct Case {
        std::string minutes;  ///< 1 for a wet one
        double asked;         ///< seconds from the first
        std::string sentence;
    };
    const Case cases[] = {
        {"00000", 0, ""},
        {"00111", 0, "[in] 2 [m]"},
        {"00100", 61, "[in] 0 [m]"},
        {"00100", -3600, "[in] 62 [m]"},
        {"11100", 119.5, "[Ends in] 1 [m]"},
        {"11001", 0, "[Ends in] 2 [m], [again in] 4 [m]"},
        {"11100", 180, ""},
        {"00111", 120, "[lasts more than 1 hour]"},
        {"00001", 241, ""},
        {"1", -1e300, "[in] 76861433640456465 [m]"},
    };
    for (const auto& [minutes, asked, sentence] : cases) {
        constexpr std::int64_t start = 1'700'000'000;
        ApiForecastNowcast nowcast;
        for (const char minute : minutes) {
            const auto index = static_cast<std::int64_t>(nowcast.data.size());
            nowcast.data.push_back({start + 60 * index, minute == '1' ? 0.1 : 0.0});
        }
        EXPECT_EQ(nowcast.longTimeToNextPercipitationString(start + asked, BracketBundle()), sentence)
            << minutes << " at " << asked;
    }
}

}  // namespace
}  // namespace nimbuscope::testing

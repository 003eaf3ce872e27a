#include <gtest/gtest.h>

#include "Platform/Linux/Locale_icu.hpp"
#include "Platform/Linux/TimeZone_icu.hpp"

namespace nimbuscope::testing {
namespace {

TEST(ICULocale, knowsByNameWhereMilesAreUsed) {
    for (const char* name : {"en_US", "en_US.UTF-8", "es_US.ISO-8859-1@euro"}) {
        EXPECT_FALSE(platform::ICULocale(name).usesMetricSystem()) << name;
    }
    for (const char* name : {"de_DE.UTF-8", "fr_CH", "pl_PL@euro", "en_GB.UTF-8", "en_CA", "de", "C",
                             "C.UTF-8", "POSIX", "", ".UTF-8", "no such locale"}) {
        EXPECT_TRUE(platform::ICULocale(name).usesMetricSystem()) << name;
    }
}

TEST(ICULocale, tellsItsNameAndItsClock) {
    EXPECT_EQ(platform::ICULocale("de_CH.UTF-8@euro").identifier(), "de_CH");
    EXPECT_EQ(platform::ICULocale("C.UTF-8").identifier(), "en_US_POSIX");
    for (const char* name : {"en_US.UTF-8", "en_AU", "hi_IN"}) {
        EXPECT_TRUE(platform::ICULocale(name).uses12HourClock()) << name;
    }
    for (const char* name : {"de_DE.UTF-8", "pt_PT", "en_GB", "ja_JP", "C", ""}) {
        EXPECT_FALSE(platform::ICULocale(name).uses12HourClock()) << name;
    }
}

TEST(ICULocale, namesCountriesInItsLanguage) {
    const auto name = [](const char* locale, std::string_view code) {
        return platform::ICULocale(locale).displayNameOfCountry(code);
    };
    EXPECT_EQ(name("de_CH.UTF-8", "US"), "Vereinigte Staaten");
    EXPECT_EQ(name("fr", "de"), "Allemagne");
    EXPECT_EQ(name("ja_JP", "AUT"), "オーストリア");
    for (const char* english : {"C", "", "en_US.UTF-8", "no such locale"}) {
        EXPECT_EQ(name(english, "CH"), "Switzerland") << english;
        for (const char* code : {"QQ", "ZZ", "zz", "999", "", "U", "USAX", "U1", "\xC3\x9F", "US_POSIX"}) {
            EXPECT_EQ(name(english, code), std::nullopt) << code;
        }
    }
}

TEST(ICUTimeZone, knowsByNameHowFarClocksAreAhead) {
    constexpr std::int64_t winter = 1'768'478'400;  // January 2026
    constexpr std::int64_t summer = 1'784'116'800;
    const auto chicago = platform::ICUTimeZone::named("America/Chicago");
    ASSERT_TRUE(chicago);
    EXPECT_EQ(chicago->secondsFromGMT(winter), -6 * 3600);
    EXPECT_EQ(chicago->secondsFromGMT(summer), -5 * 3600);
    EXPECT_EQ(platform::ICUTimeZone::named("Asia/Kathmandu")->secondsFromGMT(summer), 20700);
    EXPECT_EQ(platform::ICUTimeZone::named("UTC")->secondsFromGMT(INT64_MIN), 0);
    for (const std::string name : {"", "Nowhere", "\xFF", "America/Chicag"}) {
        EXPECT_FALSE(platform::ICUTimeZone::named(name)) << name;
    }
    EXPECT_FALSE(platform::ICUTimeZone::named(std::string(1000, 'A')));
}

}  // namespace
}  // namespace nimbuscope::testing

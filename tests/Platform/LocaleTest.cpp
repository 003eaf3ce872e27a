#include <gtest/gtest.h>

#include "Platform/Linux/Locale_icu.hpp"
#include "Platform/Linux/TimeZone_icu.hpp"

namespace nimbuscope::testing {
namespace {

TEST(ICULocale, knowsByNameWhereMilesAreUsed) {
    for (const char* name : {"en_US", "en_US.UTF-8", "es_US.ISO-8859-1@euro"}) {
        EXPECT_FALSE(platform::ICULocale(name).usesMetricSystem()) << name;
    }
    for (const char* name : {"pl_PL@euro", "en_GB.UTF-8", "de", "C", "POSIX", "", ".UTF-8", "no locale"}) {
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
    using platform::ICULocale;
    EXPECT_EQ(ICULocale("de_CH.UTF-8").displayNameOfCountry("us"), "Vereinigte Staaten");
    EXPECT_EQ(ICULocale("ja_JP").displayNameOfCountry("AUT"), "オーストリア");
    for (const char* english : {"C", "", "en_US.UTF-8", "no such locale"}) {
        EXPECT_EQ(ICULocale(english).displayNameOfCountry("CH"), "Switzerland") << english;
        for (const char* code : {"QQ", "ZZ", "zz", "999", "", "U", "USAX", "U1", "\xC3\x9F", "US_POSIX"}) {
            EXPECT_EQ(ICULocale(english).displayNameOfCountry(code), std::nullopt) << code;
        }
    }
}

TEST(ICUTimeZone, knowsByNameHowFarClocksAreAhead) {
    constexpr std::int64_t winter = 1'768'478'400;  // January 2026
    constexpr std::int64_t summer = 1'784'116'800;
    using platform::ICUTimeZone;
    EXPECT_EQ(ICUTimeZone::named("America/Chicago")->secondsFromGMT(winter), -6 * 3600);
    EXPECT_EQ(ICUTimeZone::named("America/Chicago")->secondsFromGMT(summer), -5 * 3600);
    EXPECT_EQ(ICUTimeZone::named("UTC")->secondsFromGMT(INT64_MIN), 0);
    for (const std::string& name :
         {std::string(), std::string("\xFF"), std::string("America/Chicag"), std::string(1000, 'A')}) {
        EXPECT_FALSE(ICUTimeZone::named(name)) << name;
    }
}

}  // namespace
}  // namespace nimbuscope::testing

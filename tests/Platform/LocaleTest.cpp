#include <gtest/gtest.h>

#include "Platform/Linux/Locale_icu.hpp"

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

}  // namespace
}  // namespace nimbuscope::testing

#include "Platform/Linux/Locale_icu.hpp"

#include <gtest/gtest.h>

namespace nimbuscope::platform {
namespace {

TEST(ICULocale, KnowsByNameWhereMilesAreUsed) {
    const struct {
        const char* name;
        bool isMetric;
    } cases[]{
        {"en_US", false},
        {"en_US.UTF-8", false},
        {"es_US.ISO-8859-1@euro", false},
        {"de_DE.UTF-8", true},
        {"fr_CH", true},
        {"pl_PL@euro", true},
        {"en_GB.UTF-8", true},
        {"en_CA", true},
        {"de", true},
        {"C", true},
        {"C.UTF-8", true},
        {"POSIX", true},
        {"", true},
        {".UTF-8", true},
        {"no such locale", true},
    };
    for (const auto& [name, isMetric] : cases) {
        EXPECT_EQ(ICULocale(name).usesMetricSystem(), isMetric) << name;
    }
}

}  // namespace
}  // namespace nimbuscope::platform

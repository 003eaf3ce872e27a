#include "NimbuscopeKit/Preferences/PlayerInterval.hpp"

#include <gtest/gtest.h>

#include "NimbuscopeKit/Preferences/OverlayTypePreference.hpp"

namespace nimbuscope::testing {
namespace {

using enum OverlayTypePreference;

TEST(PlayerInterval, keepsWhatIsListedAndReplacesTheRest) {
    using Interval = PlayerInterval;
    EXPECT_EQ((Interval{7200, 3600}.withValuesListed(radar)), (Interval{3600, 3600}));
    EXPECT_EQ((Interval{0, 7200.0000001}.withValuesListed(radar)), (Interval{0, 7200}));
    EXPECT_EQ((Interval{21600, 7200}.withValuesListed(satellite)), (Interval{21600, 0}));
    EXPECT_EQ((Interval{3600, 259200}.withValuesListed(temperature)), (Interval{0, 259200}));
    EXPECT_EQ((Interval{3600, 7200}.restricted({43200, 0})), (Interval{3600, 0}));
}

TEST(OverlayPlayerIntervals, rangeIsTheLongestOfEachList) {
    constexpr std::array past{0.0, 3600.0, 21600.0};
    EXPECT_EQ((OverlayPlayerIntervals{past, {}}.range()), (PlayerInterval{21600, 0}));
    EXPECT_EQ(OverlayPlayerIntervals::zero.range(), PlayerInterval::zero);
}

}  // namespace
}  // namespace nimbuscope::testing

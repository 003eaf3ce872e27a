#include "NimbuscopeKit/Preferences/PlayerInterval.hpp"

#include <gtest/gtest.h>

#include "NimbuscopeKit/Preferences/OverlayTypePreference.hpp"

namespace nimbuscope {
namespace {

using enum OverlayTypePreference;

TEST(PlayerInterval, KeepsWhatIsListedAndReplacesTheRest) {
    const struct {
        OverlayTypePreference overlay;
        PlayerInterval wanted;
        PlayerInterval listed;
    } cases[]{
        {radar, {7200, 3600}, {3600, 3600}},
        {radar, {0, 0}, {0, 0}},
        {radar, {172800, 7200.0000001}, {172800, 7200}},
        {satellite, {21600, 7200}, {21600, 0}},
        {globalRainAndSnow, {-3600, 259200}, {3600, 7200}},
        {temperature, {3600, 259200}, {0, 259200}},
        {radarExtendedForecast, {21600, 0}, {0, 259200}},
    };
    for (const auto& [overlay, wanted, listed] : cases) {
        EXPECT_EQ(wanted.withValuesListed(overlay), listed) << path(overlay) << ' ' << wanted.past;
    }
}

TEST(PlayerInterval, RestrictsEachHalfByItself) {
    EXPECT_EQ((PlayerInterval{3600, 7200}.restricted({43200, 0})), (PlayerInterval{3600, 0}));
}

TEST(OverlayPlayerIntervals, RangeIsTheLongestOfEachList) {
    constexpr std::array past{0.0, 3600.0, 21600.0};
    EXPECT_EQ((OverlayPlayerIntervals{past, {}}.range()), (PlayerInterval{21600, 0}));
    EXPECT_EQ(OverlayPlayerIntervals::zero.range(), PlayerInterval::zero);
}

TEST(TimeIntervalUnit, CountsItsUnitInSeconds) {
    EXPECT_EQ(TimeIntervalUnit::seconds(-1).interval(), -1);
    EXPECT_EQ(TimeIntervalUnit::minutes(90).interval(), 5400);
    EXPECT_EQ(TimeIntervalUnit::days(3).interval(), threeDays);
}

}  // namespace
}  // namespace nimbuscope

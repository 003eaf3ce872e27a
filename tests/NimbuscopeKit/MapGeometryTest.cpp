#include "NimbuscopeKit/RadarImagery/MapGeometry.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace nimbuscope::testing {
namespace {

using platform::CGSize;
using platform::CLLocationCoordinate2D;

constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
constexpr double degreesPerPixel = 360.0 / (1 << 29);  // of longitude, at zoom level 20

struct Case {
    CGSize size;
    CLLocationCoordinate2D center;
    std::int64_t zoom;
    double latitudeDelta, longitudeDelta, tolerance;
};

TEST(MKCoordinateSpan, followsTheMercatorGrid) {
    const Case cases[] = {
        {{256, 256}, {0, 0}, 20, 256 * degreesPerPixel, 256 * degreesPerPixel, 1e-11},
        {{512, 512}, {0, 90}, 0, 170.1022575596, 360, 1e-9},  // the whole world
        // A pixel of latitude is shorter away from the equator, by the cosine.
        {{100, 100}, {-60, 179}, 20, 100 * degreesPerPixel * 0.5, 100 * degreesPerPixel, 1e-9},
        // Halves are rounded away from zero, so that an odd size spans whole pixels.
        {{3, 3}, {0, 0}, 20, 3 * degreesPerPixel, 3 * degreesPerPixel, 1e-13},
        {{1, 1}, {0, 0}, 21, 0, 0, 1e-15},  // half a pixel: from 0.25 below to 0.25 above
        {{2, 2}, {0, -180}, 21, degreesPerPixel, 2 * degreesPerPixel, 1e-13},  // around pixel 0
        {{256, 256}, {45, 45}, most, 0, 0, 1e-15},
    };
    for (const Case& c : cases) {
        const auto span = MKCoordinateSpan::make(c.size, c.center, c.zoom);
        ASSERT_TRUE(span) << span.error().reason;
        EXPECT_NEAR(span->latitudeDelta, c.latitudeDelta, c.tolerance) << c.zoom << ' ' << c.size.width;
        EXPECT_NEAR(span->longitudeDelta, c.longitudeDelta, c.tolerance) << c.zoom << ' ' << c.size.width;
        EXPECT_EQ(MKCoordinateSpan(c.size, c.center, c.zoom), *span);
    }
}

TEST(MKCoordinateSpan, whatHasNoSpanIsAnError) {
    const Case cases[] = {
        {{1, 1}, {90, 0}, 5},    {{1, 1}, {0, HUGE_VAL}, 5},
        {{1, 1}, {0, 0}, least}, {{1, 1}, {0, 0}, 20 - most - 1},
        {{1, 1}, {0, 0}, -2000}, {{1, std::nan("")}, {0, 0}, 5},
    };
    for (const Case& c : cases) {
        EXPECT_FALSE(MKCoordinateSpan::make(c.size, c.center, c.zoom)) << c.zoom << ' ' << c.center.latitude;
    }
    EXPECT_DEATH(static_cast<void>(MKCoordinateSpan({1, 1}, {0, 0}, least)), "zoom level is out of range");
    EXPECT_TRUE(std::isnan(MKCoordinateSpan({1, 1}, {0, 0}, -2000).longitudeDelta));
}

}  // namespace
}  // namespace nimbuscope::testing

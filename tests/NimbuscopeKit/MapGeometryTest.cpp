#include "NimbuscopeKit/RadarImagery/MapGeometry.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <type_traits>

#include "tests/support/FixedLocale.hpp"

namespace nimbuscope::testing {
namespace {

using platform::CGSize;
using platform::CLLocationCoordinate2D;

static_assert(std::is_empty_v<SphericalMercator>);

constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
constexpr double degreesPerPixel = 360.0 / (1 << 29);  // of longitude, at zoom level 20

struct Case {
    CGSize size;
    CLLocationCoordinate2D center;
    std::int64_t zoom;
    double latitudeDelta;
    double longitudeDelta;
    double tolerance;
};

TEST(MKCoordinateSpan, followsTheMercatorGrid) {
    const Case cases[] = {
        {{256, 256}, {0, 0}, 20, 256 * degreesPerPixel, 256 * degreesPerPixel, 1e-11},
        {{256, 256}, {0, 0}, 0, 133.03, 180, 0.01},
        {{512, 512}, {0, 0}, 0, 170.1022575596, 360, 1e-9},  // the whole world
        {{512, 512}, {0, 90}, 0, 170.1022575596, 360, 1e-9},
        // A pixel of latitude is shorter away from the equator, by the cosine.
        {{100, 100}, {60, -75}, 20, 100 * degreesPerPixel * 0.5, 100 * degreesPerPixel, 1e-9},
        {{100, 100}, {-60, 179}, 20, 100 * degreesPerPixel * 0.5, 100 * degreesPerPixel, 1e-9},
        // Halves are rounded away from zero, so that an odd size spans whole pixels.
        {{3, 3}, {0, 0}, 20, 3 * degreesPerPixel, 3 * degreesPerPixel, 1e-13},
        {{1, 1}, {0, 0}, 21, 0, 0, 1e-15},  // half a pixel: from 0.25 below to 0.25 above
        {{2, 2}, {0, 0}, 21, degreesPerPixel, degreesPerPixel, 1e-13},
        {{2, 2}, {0, -180}, 21, degreesPerPixel, 2 * degreesPerPixel, 1e-13},  // around pixel 0
        {{0, 0}, {10, 10}, 5, 0, 0, 1e-15},
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
    const double infinity = std::numeric_limits<double>::infinity();
    const Case cases[] = {
        {{1, 1}, {90, 0}, 5},       {{1, 1}, {-90, 0}, 5},           {{1, 1}, {0, infinity}, 5},
        {{1, 1}, {0, 0}, least},    {{1, 1}, {0, 0}, 20 - most - 1}, {{1, 1}, {0, 0}, -2000},
        {{infinity, 1}, {0, 0}, 5}, {{1, std::nan("")}, {0, 0}, 5},
    };
    for (const Case& c : cases) {
        EXPECT_FALSE(MKCoordinateSpan::make(c.size, c.center, c.zoom)) << c.zoom << ' ' << c.center.latitude;
    }
    EXPECT_DEATH(static_cast<void>(MKCoordinateSpan({1, 1}, {0, 0}, least)), "zoom level is out of range");
    EXPECT_TRUE(std::isnan(MKCoordinateSpan({1, 1}, {0, 0}, -2000).longitudeDelta));
}

TEST(Country, namesComeFromTheLocale) {
    const FixedLocale locale(true);
    EXPECT_EQ(Country::countryName("XA", locale), "Testland");
    for (const char* code : {"XB", "", "no code"}) {
        EXPECT_EQ(Country::countryName(code, locale), code);
    }
}

}  // namespace
}  // namespace nimbuscope::testing

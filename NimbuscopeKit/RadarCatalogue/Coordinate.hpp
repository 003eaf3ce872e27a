#pragma once

#include <tuple>

#include "Platform/Coding/Fields.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/CoreLocation/CLLocation.hpp"

namespace nimbuscope {

/// A geographic position in degrees; north and east are positive. Equality is exact.
struct NIMBUSCOPE_EXPORT Coordinate {
    double latitude = 0;
    double longitude = 0;

    [[nodiscard]] platform::CLLocationCoordinate2D clLocationCoordinate2D() const {
        return {latitude, longitude};
    }
    [[nodiscard]] platform::CLLocation clLocation() const { return {clLocationCoordinate2D()}; }
    [[nodiscard]] static Coordinate fromCLLocation(const platform::CLLocation& location) {
        return {location.coordinate.latitude, location.coordinate.longitude};
    }

    /// The position moved along its meridian as a slider moves: the latitude of the great-circle destination
    /// formula for `distance` × 0.0004 × `by` metres on a sphere of the Earth's equatorial radius, against
    /// the direction `bearing` (radians) when `by` is positive. The longitude stays.
    [[nodiscard]] Coordinate sliderShifted(double by, double distance, double bearing) const;

    static constexpr auto fields = std::tuple{platform::key("latitude", &Coordinate::latitude),
                                              platform::key("longitude", &Coordinate::longitude)};
    bool operator==(const Coordinate&) const = default;
};

}  // namespace nimbuscope

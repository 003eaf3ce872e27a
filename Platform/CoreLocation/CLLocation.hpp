#pragma once

#include <optional>

namespace nimbuscope::platform {

/// A position on the WGS 84 ellipsoid, in degrees; north and east are positive.
struct CLLocationCoordinate2D {
    double latitude = 0;
    double longitude = 0;

    bool operator==(const CLLocationCoordinate2D&) const = default;
};

/// A position as the location service reports it. What the service does not know is absent.
struct CLLocation {
    CLLocationCoordinate2D coordinate;
    std::optional<double> horizontalAccuracy;  ///< radius of uncertainty, in metres
    std::optional<double> altitude;            ///< metres above sea level
    std::optional<double> speed;               ///< metres a second
    std::optional<double> course;              ///< degrees clockwise from north

    bool operator==(const CLLocation&) const = default;
};

}  // namespace nimbuscope::platform

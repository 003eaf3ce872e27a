#pragma once

namespace nimbuscope::platform {

/// A position on the WGS 84 ellipsoid, in degrees; north and east are positive.
struct CLLocationCoordinate2D {
    double latitude = 0;
    double longitude = 0;

    bool operator==(const CLLocationCoordinate2D&) const = default;
};

/// A position as the location service reports it.
struct CLLocation {
    CLLocationCoordinate2D coordinate;

    bool operator==(const CLLocation&) const = default;
};

}  // namespace nimbuscope::platform

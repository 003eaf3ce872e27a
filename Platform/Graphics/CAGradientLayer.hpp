#pragma once

#include <vector>

#include "Platform/Graphics/CGGeometry.hpp"

namespace nimbuscope::platform {

/// A colour of the device; components from 0 to 1, alpha not premultiplied.
struct CGColor {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 0;

    bool operator==(const CGColor&) const = default;
};

/// A gradient: colours[i] at the fraction locations[i] of the way from the start to the end point. It runs
/// from top to bottom unless the points are set.
struct CAGradientLayer {
    std::vector<CGColor> colors;
    std::vector<double> locations;
    CGPoint startPoint{.x = 0.5, .y = 0};
    CGPoint endPoint{.x = 0.5, .y = 1};

    bool operator==(const CAGradientLayer&) const = default;
};

}  // namespace nimbuscope::platform

#pragma once

namespace nimbuscope::platform {

/// A point; in layers, fractions of the width and of the height from the top left corner.
struct CGPoint {
    double x = 0;
    double y = 0;

    bool operator==(const CGPoint&) const = default;
};

/// A size in pixels.
struct CGSize {
    double width = 0;
    double height = 0;

    bool operator==(const CGSize&) const = default;
};

}  // namespace nimbuscope::platform

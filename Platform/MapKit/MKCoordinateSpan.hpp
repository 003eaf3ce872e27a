#pragma once

namespace nimbuscope::platform {

/// How much of the Earth a map shows, in degrees from its southern to its northern and from its western to
/// its eastern edge.
struct MKCoordinateSpan {
    double latitudeDelta = 0;
    double longitudeDelta = 0;

    bool operator==(const MKCoordinateSpan&) const = default;
};

}  // namespace nimbuscope::platform

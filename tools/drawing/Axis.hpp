#pragma once

#include <string>
#include <vector>

namespace nimbuscope::drawing {

/// Values along the side of a strip: `from` at its beginning, `to` at its end, a label at multiples of
/// `step`.
struct Axis {
    double from = 0;
    double to = 1;
    double step = 1;
    std::string unit;
};

struct Tick {
    int offset;  ///< pixels from the beginning of the strip
    std::string label;
};

/// Pixels from the beginning of a strip of `length` pixels to a value.
[[nodiscard]] int offsetOf(double value, const Axis& axis, int length);

/// The labels along a strip of `length` pixels; none where the axis has no length or step.
[[nodiscard]] std::vector<Tick> ticksOf(const Axis& axis, int length);

/// A distance of labels, 1, 2 or 5 times a power of ten, that gives at most `count` of them on the way.
[[nodiscard]] double labelStep(double from, double to, int count);

/// An axis from a label at or below `least` to one at or above `most`, with about `count` labels.
[[nodiscard]] Axis roundAxis(double least, double most, int count, std::string unit);

}  // namespace nimbuscope::drawing

#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <utility>

#include "colorschemes/colorschemes.h"

namespace nimbuscope {

/// The colours of a smooth table, entry by entry in ascending order. `NextStop` is called as
/// `bool next(ColorPaletteEntry& stop)`: it fills in the next stop, or answers false and leaves it alone when
/// there is none. There must be at least one stop.
template <class NextStop>
class SmoothTable {
  public:
    /// A table whose entry `start` lies at position `from` and whose last entry, `count` - 1, lies at `to`.
    SmoothTable(double from, double to, std::uint32_t start, std::uint32_t count, NextStop next)
        : from_(from), to_(to), start_(start), next_(std::move(next)) {
        const std::uint32_t steps = count - start - 1;
        step_ = steps == 0 ? 0.0 : (to - from) / steps;
        previous_.position = from;
        next_(current_);
    }

    /// Writes the four bytes of entry `index`; called once for each of `start` ..< `count`, in order.
    void colorOf(std::uint32_t index, std::uint8_t* out) {
        const double x = positionOf(index);
        const bool hasAdvanced = advance(x);
        const double end = isExhausted_ ? to_ : current_.position;
        const double length = end - previous_.position;
        if (hasAdvanced || previous_.hold || length == 0) {
            std::memcpy(out, previous_.color, sizeof previous_.color);
            return;
        }
        const bool isLastOfSegment = previous_.has_end_color && positionOf(std::uint64_t{index} + 1) > end;
        const double t = isLastOfSegment ? 1.0 : (x - previous_.position) / length;
        cs_interpolate_color(previous_.color, previous_.has_end_color ? previous_.end_color : current_.color,
                             out, t);
    }

  private:
    [[nodiscard]] double positionOf(std::uint64_t index) const {
        return std::fma(static_cast<double>(index - start_), step_, from_);
    }

    /// Moves on to the segment that holds x, and answers whether that was a move.
    bool advance(double x) {
        if (isExhausted_ || !(x >= current_.position)) {
            return false;
        }
        do {
            previous_ = current_;
            isExhausted_ = !next_(current_);
        } while (!isExhausted_ && x >= current_.position);
        return true;
    }

    double from_;
    double to_;
    double step_;
    std::uint32_t start_;
    NextStop next_;
    ColorPaletteEntry previous_{};  ///< begins as transparent black at `from`
    ColorPaletteEntry current_{};
    bool isExhausted_ = false;
};

}  // namespace nimbuscope

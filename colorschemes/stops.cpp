#include <algorithm>
#include <cmath>
#include <cstdio>
#include <span>

#include "colorschemes/SmoothTable.hpp"
#include "colorschemes/colorschemes.h"

namespace {

constexpr std::size_t markSize = 8;  // of the header and of the terminator

bool isMark(const std::uint8_t* bytes) {
    return std::all_of(bytes, bytes + markSize, [](std::uint8_t byte) { return byte == 0; });
}

/// The value truncated towards zero, of which the low eight bits remain. Doubles from 2^61 on are multiples
/// of 256; what is not a number has no digits to keep.
std::uint8_t lowByte(double value) {
    constexpr double limit = 0x1p61;
    if (!(std::fabs(value) < limit)) {
        return 0;
    }
    return static_cast<std::uint8_t>(static_cast<std::uint64_t>(static_cast<std::int64_t>(value)) & 0xFFU);
}

std::size_t colorSize(std::uint8_t flags) {
    return (flags & CS_STOP_ALPHA) != 0 ? 4 : 3;
}

std::size_t stopSize(std::uint8_t flags) {
    const std::size_t colors = (flags & CS_STOP_END_COLOR) != 0 ? 2 : 1;
    return 2 + colors * colorSize(flags);
}

void copyColor(const std::uint8_t* bytes, std::size_t size, std::uint8_t* color) {
    std::copy_n(bytes, size, color);
    if (size == 3) {
        color[3] = 255;
    }
}

/// Walks the stops of a terminated list.
class StopWalk {
  public:
    explicit StopWalk(const std::uint8_t* stops) : next_(stops) {}

    bool operator()(ColorPaletteEntry& stop) {
        if (isMark(next_)) {
            return false;
        }
        next_ += cs_get_palette_entry(next_, &stop);
        return true;
    }

  private:
    const std::uint8_t* next_;
};

}  // namespace

void cs_interpolate_color(const uint8_t* from, const uint8_t* to, uint8_t* out, double t) {
    if (from == nullptr || to == nullptr || out == nullptr) {
        return;
    }
    for (int channel = 0; channel < 4; ++channel) {
        const int distance = to[channel] - from[channel];
        out[channel] =
            lowByte(std::fma(static_cast<double>(distance), t, static_cast<double>(from[channel])));
    }
}

size_t cs_get_palette_entry(const uint8_t* bytes, ColorPaletteEntry* entry) {
    if (bytes == nullptr || entry == nullptr) {
        return 0;
    }
    const std::uint8_t flags = bytes[0];
    const std::size_t size = colorSize(flags);
    *entry = {};
    entry->position = bytes[1];
    entry->hold = (flags & CS_STOP_HOLD) != 0;
    entry->has_end_color = (flags & CS_STOP_END_COLOR) != 0;
    copyColor(bytes + 2, size, entry->color);
    if (entry->has_end_color) {
        copyColor(bytes + 2 + size, size, entry->end_color);
    }
    return stopSize(flags);
}

ColorStopListFault cs_check_stop_list(const uint8_t* stopList, size_t size, size_t* offset) {
    std::size_t position = 0;
    std::size_t& place = offset != nullptr ? *offset : position;
    place = 0;
    if (stopList == nullptr) {
        return CS_STOP_LIST_MISSING;
    }
    while (place < markSize) {
        if (place == size || stopList[place] != 0) {
            return CS_STOP_LIST_HEADER;
        }
        ++place;
    }
    while (size - place >= markSize) {
        if (isMark(stopList + place)) {
            if (place == markSize) {
                return CS_STOP_LIST_EMPTY;
            }
            place += markSize;
            return CS_STOP_LIST_SOUND;
        }
        const std::size_t stop = stopSize(stopList[place]);
        if (stop > size - place) {
            break;
        }
        place += stop;
    }
    return CS_STOP_LIST_UNTERMINATED;
}

int cs_render_pal_colors(uint8_t* out, const uint8_t* stopList, double from, double to, uint32_t start,
                         uint32_t count) {
    if (stopList == nullptr || !isMark(stopList)) {
        std::fputs("Invalid color palette header\n", stderr);
        return 0;
    }
    if (out == nullptr || isMark(stopList + markSize)) {
        return 0;
    }
    if (start >= count) {
        return 1;
    }
    nimbuscope::SmoothTable table(from, to, start, count, StopWalk(stopList + markSize));
    for (std::uint32_t index = start; index < count; ++index) {
        table.colorOf(index, out + std::size_t{index} * 4);
    }
    return 1;
}

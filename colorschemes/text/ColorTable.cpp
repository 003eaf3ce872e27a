#include "colorschemes/text/ColorTable.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "colorschemes/SmoothTable.hpp"

namespace nimbuscope {
namespace {

using platform::Result;

constexpr double positionOfZeroDBZ = 32;
constexpr std::size_t markSize = 8;

std::string shortest(double number) {
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
    return {text.data(), end};
}

void appendColor(std::string& text, const RGBA& color, bool hasAlpha) {
    for (std::size_t i = 0; i < (hasAlpha ? 4U : 3U); ++i) {
        const std::string number = std::to_string(color[i]);
        text += std::string(4 - number.size(), ' ') + number;
    }
}

std::string lineOf(const ColorTableStop& stop) {
    std::string text = std::string(stop.isHeld ? "SolidColor" : "Color") + (stop.hasAlpha ? "4:" : ":");
    text.resize(14, ' ');
    const std::string value = shortest(stop.value);
    text += std::string(value.size() < 4 ? 4 - value.size() : 0, ' ') + value + "  ";
    appendColor(text, stop.color, stop.hasAlpha);
    if (stop.endColor) {
        text += "  ";
        appendColor(text, *stop.endColor, stop.hasAlpha);
    }
    return text + '\n';
}

void appendStop(std::vector<std::uint8_t>& list, const ColorTableStop& stop, std::uint8_t position) {
    const int flags = CS_STOP_STORED | (stop.isHeld ? CS_STOP_HOLD : 0) |
                      (stop.hasAlpha ? CS_STOP_ALPHA : 0) | (stop.endColor ? CS_STOP_END_COLOR : 0);
    const std::ptrdiff_t channels = stop.hasAlpha ? 4 : 3;
    list.push_back(static_cast<std::uint8_t>(flags));
    list.push_back(position);
    list.insert(list.end(), stop.color.begin(), stop.color.begin() + channels);
    if (stop.endColor) {
        list.insert(list.end(), stop.endColor->begin(), stop.endColor->begin() + channels);
    }
}

ColorPaletteEntry entryOf(const ColorTableStop& stop) {
    ColorPaletteEntry entry{};
    entry.position = stop.value;
    entry.hold = stop.isHeld;
    entry.has_end_color = stop.endColor.has_value();
    std::ranges::copy(stop.color, entry.color);
    std::ranges::copy(stop.endColor.value_or(RGBA{}), entry.end_color);
    return entry;
}

}  // namespace

std::string colorTableText(const ColorTable& table) {
    std::string text = "; " + table.name + "\n\nName: " + table.name + "\nUnits: " + table.units + '\n';
    if (table.step != 0) {
        text += "Step: " + shortest(table.step) + '\n';
    }
    text += '\n';
    for (const ColorTableStop& stop : table.stops) {
        text += lineOf(stop);
    }
    return text;
}

Result<std::vector<std::uint8_t>, ColorTableError> stopListOf(const ColorTable& table) {
    std::vector<std::uint8_t> list(markSize);
    double last = 0;
    for (const ColorTableStop& stop : table.stops) {
        const double position = stop.value + (table.isReflectivity() ? positionOfZeroDBZ : 0);
        if (!(position >= 0 && position <= 255) || position != std::floor(position)) {
            return std::unexpected(ColorTableError{
                stop.line, "expected a whole palette position from 0 to 255, found " + shortest(position)});
        }
        if (position < last) {
            return std::unexpected(ColorTableError{stop.line, "positions must not fall"});
        }
        last = position;
        appendStop(list, stop, static_cast<std::uint8_t>(position));
    }
    if (table.stops.empty()) {
        return std::unexpected(ColorTableError{0, "no colour in the whole table"});
    }
    list.resize(list.size() + markSize);
    return list;
}

std::vector<ColorTableStop> stopsOfList(const std::uint8_t* stopList, bool isReflectivity) {
    std::vector<ColorTableStop> stops;
    const std::uint8_t* next = stopList + markSize;
    while (std::any_of(next, next + markSize, [](std::uint8_t byte) { return byte != 0; })) {
        const bool hasAlpha = (*next & CS_STOP_ALPHA) != 0;
        ColorPaletteEntry entry{};
        next += cs_get_palette_entry(next, &entry);
        ColorTableStop stop{.value = entry.position - (isReflectivity ? positionOfZeroDBZ : 0),
                            .isHeld = entry.hold,
                            .hasAlpha = hasAlpha};
        std::ranges::copy(entry.color, stop.color.begin());
        if (entry.has_end_color) {
            std::ranges::copy(entry.end_color, stop.endColor.emplace().begin());
        }
        stops.push_back(stop);
    }
    return stops;
}

std::vector<RGBA> renderColorTable(const ColorTable& table, double from, double to, std::uint32_t count) {
    std::vector<RGBA> colors(count);
    if (count == 0 || table.stops.empty()) {
        return colors;
    }
    auto next = [stop = table.stops.begin(), end = table.stops.end()](ColorPaletteEntry& entry) mutable {
        if (stop == end) {
            return false;
        }
        entry = entryOf(*stop++);
        return true;
    };
    SmoothTable smooth(from, to, 0, count, next);
    for (std::uint32_t i = 0; i < count; ++i) {
        smooth.colorOf(i, colors[i].data());
    }
    return colors;
}

}  // namespace nimbuscope

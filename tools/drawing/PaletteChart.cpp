#include "tools/drawing/PaletteChart.hpp"

#include <algorithm>
#include <cmath>

#include "tools/drawing/Style.hpp"

namespace nimbuscope::drawing {
namespace {

constexpr int stripLength = 768;
constexpr std::size_t sectionEntries = 128;

void drawTicksBelow(Canvas& canvas, int x, int y, const Axis& axis, int length) {
    for (const Tick& tick : ticksOf(axis, length)) {
        canvas.fill(x + tick.offset, y, 1, tickLength, paleInk);
        canvas.text(x + tick.offset - textWidth(tick.label) / 2, y + tickLength + 4, textScale, tick.label,
                    ink);
    }
}

void drawTicksBeside(Canvas& canvas, int x, int y, const Axis& axis, int length) {
    for (const Tick& tick : ticksOf(axis, length)) {
        canvas.fill(x, y + tick.offset, tickLength, 1, paleInk);
        canvas.text(x + tickLength + 4, y + tick.offset - textHeight / 2, textScale, tick.label, ink);
    }
}

int widestLabel(const Axis& axis) {
    int widest = 0;
    for (const Tick& tick : ticksOf(axis, stripLength)) {
        widest = std::max(widest, textWidth(tick.label));
    }
    return widest;
}

std::uint8_t mix(double a, double b, double t) {
    return static_cast<std::uint8_t>(std::lround((a + (b - a) * t) * 255.0));
}

/// The colour of a layer at a fraction of the way from its start to its end.
RGBA colorAt(const platform::CAGradientLayer& layer, double fraction) {
    const auto after = std::ranges::upper_bound(layer.locations, fraction);
    const auto next = static_cast<std::size_t>(after - layer.locations.begin());
    const std::size_t here = next == 0 ? 0 : next - 1;
    const std::size_t there = std::min(next, layer.colors.size() - 1);
    const double way = layer.locations[there] - layer.locations[here];
    const double t = way > 0 ? (fraction - layer.locations[here]) / way : 0;
    const platform::CGColor& a = layer.colors[here];
    const platform::CGColor& b = layer.colors[there];
    return {mix(a.red, b.red, t), mix(a.green, b.green, t), mix(a.blue, b.blue, t), mix(a.alpha, b.alpha, t)};
}

std::vector<RGBA> entriesOf(std::span<const std::uint8_t> colors, std::size_t first, std::size_t count) {
    std::vector<RGBA> entries(count);
    for (std::size_t i = 0; i < count; ++i) {
        std::copy_n(&colors[(first + i) * 4], 4, entries[i].begin());
    }
    return entries;
}

}  // namespace

platform::RGBAImage drawChart(const Chart& chart) {
    constexpr int stripHeight = 34;
    constexpr int rowHeight = stripHeight + 12;
    int labelWidth = 0;
    for (const ChartRow& row : chart.rows) {
        labelWidth = std::max(labelWidth, textWidth(row.label));
    }
    const int left = margin + labelWidth + (labelWidth > 0 ? 14 : 0);
    const int top = margin + Glyph::capHeight * titleScale + 10 + textHeight + 18;
    const int bottom = top + static_cast<int>(chart.rows.size()) * rowHeight - (rowHeight - stripHeight);
    const int right = std::max(margin, 10 + textWidth(chart.axis.unit) + margin);
    const int width = std::max(left + stripLength + right, 2 * margin + widthOf(chart.title) * titleScale);
    Canvas canvas(width, bottom + tickLength + 4 + textHeight + margin);

    canvas.text(margin, margin, titleScale, chart.title, ink);
    canvas.text(margin, margin + Glyph::capHeight * titleScale + 10, textScale, chart.subtitle, paleInk);
    int y = top;
    for (const ChartRow& row : chart.rows) {
        canvas.text(margin, y + (stripHeight - textHeight) / 2, textScale, row.label, ink);
        canvas.checker(left, y, stripLength, stripHeight);
        for (int x = 0; x < stripLength; ++x) {
            const auto entry = static_cast<std::size_t>(x) * row.colors.size() / std::size_t{stripLength};
            canvas.fill(left + x, y, 1, stripHeight, row.colors[entry]);
        }
        canvas.frame(left, y, stripLength, stripHeight, frameInk);
        y += rowHeight;
    }
    drawTicksBelow(canvas, left, bottom + 1, chart.axis, stripLength);
    canvas.text(left + stripLength + 10, bottom + 1 + tickLength + 4, textScale, chart.axis.unit, paleInk);
    return canvas.image();
}

platform::RGBAImage drawLegend(const platform::CAGradientLayer& layer, GradientDirection direction,
                               const std::string& title, const Axis& axis) {
    const bool isHorizontal = direction == GradientDirection::horizontal;
    constexpr int thickness = 26;
    constexpr int inset = 14;
    const int length = isHorizontal ? 440 : 300;
    const int top = inset + textHeight + (isHorizontal ? 10 : 18);
    const int textSpace = textWidth(title) + 24 + textWidth(axis.unit);
    const int width = isHorizontal
                          ? length + 2 * margin
                          : std::max(thickness + tickLength + 4 + widestLabel(axis), textSpace) + 2 * margin;
    Canvas canvas(width, isHorizontal ? top + thickness + 1 + tickLength + 4 + textHeight + inset
                                      : top + length + margin);
    canvas.text(margin, inset, textScale, title, ink);
    canvas.text(width - margin - textWidth(axis.unit), inset, textScale, axis.unit, paleInk);
    for (int i = 0; i < length; ++i) {
        const RGBA color = colorAt(layer, (i + 0.5) / length);
        if (isHorizontal) {
            canvas.fill(margin + i, top, 1, thickness, color);
        } else {
            canvas.fill(margin, top + i, thickness, 1, color);
        }
    }
    if (isHorizontal) {
        canvas.frame(margin, top, length, thickness, frameInk);
        drawTicksBelow(canvas, margin, top + thickness + 1, axis, length);
    } else {
        canvas.frame(margin, top, thickness, length, frameInk);
        drawTicksBeside(canvas, margin + thickness + 1, top, axis, length);
    }
    return canvas.image();
}

Chart schemeChart(const ColorScheme& scheme, std::string title, std::string subtitle) {
    constexpr std::size_t radarEntries = 4 * sectionEntries;
    const std::span<const std::uint8_t> colors = scheme.colors();
    const std::size_t entries = colors.size() / 4;
    Chart chart{.title = std::move(title), .subtitle = std::move(subtitle), .rows = {}, .axis = {}};
    if (entries != radarEntries) {
        chart.rows.push_back({"", entriesOf(colors, 0, entries)});
        chart.axis = {.from = 0, .to = static_cast<double>(entries), .step = 20, .unit = "value"};
        return chart;
    }
    std::size_t first = 0;
    for (const char* label : {"Rain", "Snow", "Freezing rain", "Ice pellets"}) {
        chart.rows.push_back({label, entriesOf(colors, first, sectionEntries)});
        first += sectionEntries;
    }
    chart.axis = {.from = -32, .to = 96, .step = 10, .unit = "dBZ"};
    return chart;
}

Axis legendAxis(ColorSchemeType type) {
    const auto [first, end] = legendRange(type);
    const bool isClouds = type == ColorSchemeType::Clouds;
    const std::size_t section = first / sectionEntries * sectionEntries;
    const double zero = isClouds ? 0.0 : static_cast<double>(section) + 32.0;
    const double from = static_cast<double>(first) - zero;
    const double to = static_cast<double>(end) - zero;
    return {.from = from, .to = to, .step = labelStep(from, to, 8), .unit = isClouds ? "value" : "dBZ"};
}

}  // namespace nimbuscope::drawing

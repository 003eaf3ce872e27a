#include "tools/drawing/HourlyChart.hpp"

#include <algorithm>
#include <array>
#include <functional>
#include <numeric>
#include <span>

#include "tools/drawing/Axis.hpp"
#include "tools/drawing/Canvas.hpp"
#include "tools/drawing/Style.hpp"

namespace nimbuscope::drawing {
namespace {

constexpr RGBA blue{28, 110, 214, 255};
constexpr RGBA gray{120, 128, 138, 255};
constexpr RGBA amber{232, 158, 20, 255};
constexpr RGBA barColor{172, 208, 246, 255};
constexpr RGBA gridColor{228, 231, 235, 255};
constexpr RGBA dayColor{150, 156, 164, 255};
constexpr RGBA white{255, 255, 255, 255};

constexpr int plotHeight = 300;
constexpr int bandHeight = 26;
constexpr int axisWidth = 56;
constexpr int top = margin + Glyph::capHeight * titleScale + 10 + textHeight + 48;
constexpr int headTop = top - textHeight - 16;  // of days and units
constexpr int bandTop = top + plotHeight + 8;
constexpr int labelTop = bandTop + bandHeight + tickLength + 4;
constexpr double mostValue = 1000;

const RGBA& colorOf(const ChartHour& hour) {
    return hour.isBlue ? blue : hour.isGray ? gray : amber;
}

/// Where things are: hours side by side, values upwards.
class Plot {
  public:
    explicit Plot(const HourlyChart& chart)
        : hours_(std::span(chart.hours).first(std::min(chart.hours.size(), mostChartHours))) {
        constexpr int usualWidth = 960;
        constexpr int widestHour = 40;
        constexpr int narrowestHour = 6;
        hourWidth_ = std::clamp(usualWidth / static_cast<int>(hours_.size()), narrowestHour, widestHour);
        const auto [coldest, warmest] = std::ranges::minmax(hours_, {}, &ChartHour::temperature);
        const double wettest = std::ranges::max(hours_, {}, &ChartHour::rate).rate;
        const auto limited = [](double value) { return std::clamp(value, -mostValue, mostValue); };
        temperatures_ =
            roundAxis(limited(coldest.temperature), limited(warmest.temperature), 6, chart.temperatureUnit);
        rates_ = roundAxis(0, std::max(limited(wettest), chart.leastRate), 5, chart.rateUnit);
    }

    [[nodiscard]] std::span<const ChartHour> hours() const { return hours_; }
    [[nodiscard]] const Axis& temperatures() const { return temperatures_; }
    [[nodiscard]] const Axis& rates() const { return rates_; }
    [[nodiscard]] int hourWidth() const { return hourWidth_; }
    [[nodiscard]] int width() const { return hourWidth_ * static_cast<int>(hours_.size()); }
    [[nodiscard]] static int left() { return margin + axisWidth; }
    [[nodiscard]] int right() const { return left() + width(); }
    /// The room that the axis of rates needs on the right.
    [[nodiscard]] int rateWidth() const {
        int widest = textWidth(rates_.unit);
        for (const Tick& tick : ticksOf(rates_, plotHeight)) {
            widest = std::max(widest, textWidth(tick.label));
        }
        return widest + 10;
    }
    [[nodiscard]] int x(std::size_t hour) const { return left() + hourWidth_ * static_cast<int>(hour); }
    [[nodiscard]] static int y(double value, const Axis& axis) {
        return top + plotHeight - offsetOf(std::clamp(value, axis.from, axis.to), axis, plotHeight);
    }
    /// Where the temperature line passes an hour.
    [[nodiscard]] Point point(std::size_t hour) const {
        return {x(hour) + hourWidth_ / 2.0, y(hours_[hour].temperature, temperatures_) + 0.5};
    }

  private:
    std::span<const ChartHour> hours_;
    int hourWidth_ = 0;
    Axis temperatures_;
    Axis rates_;
};

void drawAxes(Canvas& canvas, const Plot& plot) {
    canvas.text(Plot::left() - 10 - textWidth(plot.temperatures().unit), headTop, textScale,
                plot.temperatures().unit, paleInk);
    canvas.text(plot.right() + 10, headTop, textScale, plot.rates().unit, paleInk);
    for (const Tick& tick : ticksOf(plot.temperatures(), plotHeight)) {
        const int y = top + plotHeight - tick.offset;
        canvas.fill(Plot::left(), y, plot.width(), 1, gridColor);
        canvas.text(Plot::left() - 10 - textWidth(tick.label), y - textHeight / 2, textScale, tick.label,
                    ink);
    }
    for (const Tick& tick : ticksOf(plot.rates(), plotHeight)) {
        const int y = top + plotHeight - tick.offset;
        canvas.fill(plot.right() + 1, y, tickLength - 2, 1, paleInk);
        canvas.text(plot.right() + 10, y - textHeight / 2, textScale, tick.label, blue);
    }
}

/// The name of the day that begins at an hour, where there is room before the next.
void drawDay(Canvas& canvas, const Plot& plot, std::size_t hour) {
    const std::string& day = plot.hours()[hour].day;
    canvas.fill(plot.x(hour), headTop, 1, bandTop - headTop, dayColor);
    std::size_t next = hour + 1;
    while (next < plot.hours().size() && plot.hours()[next].day.empty()) {
        ++next;
    }
    if (textWidth(day) + 12 <= plot.x(next) - plot.x(hour)) {
        canvas.text(plot.x(hour) + 6, headTop, textScale, day, paleInk);
    }
}

void drawHours(Canvas& canvas, const Plot& plot) {
    for (std::size_t i = 0; i < plot.hours().size(); ++i) {
        const ChartHour& hour = plot.hours()[i];
        const int barTop = Plot::y(hour.rate, plot.rates());
        canvas.fill(plot.x(i) + 1, barTop, plot.hourWidth() - 2, top + plotHeight - barTop, barColor);
        if (!hour.day.empty()) {
            drawDay(canvas, plot, i);
        }
    }
}

/// The labels of hours, as many as there is room for.
void drawLabels(Canvas& canvas, const Plot& plot) {
    constexpr int gap = 14;
    int free = 0;
    for (std::size_t i = 0; i < plot.hours().size(); ++i) {
        const std::string& label = plot.hours()[i].label;
        const int x = plot.x(i) - textWidth(label) / 2;
        if (!label.empty() && x >= free) {
            canvas.fill(plot.x(i), bandTop + bandHeight, 1, tickLength, paleInk);
            canvas.text(x, labelTop, textScale, label, ink);
            free = x + textWidth(label) + gap;
        }
    }
}

void drawTemperatures(Canvas& canvas, const Plot& plot) {
    constexpr double thickness = 4;
    for (std::size_t i = 0; i < plot.hours().size(); ++i) {
        const std::size_t next = std::min(i + 1, plot.hours().size() - 1);
        canvas.line(plot.point(i), plot.point(next), thickness, colorOf(plot.hours()[i]));
    }
}

/// The weather below the plot; hours of the same weather are one piece, named where there is room.
void drawBand(Canvas& canvas, const Plot& plot) {
    const std::span<const ChartHour> hours = plot.hours();
    for (std::size_t first = 0, end = 0; first < hours.size(); first = end) {
        const std::string& weather = hours[first].weather;
        while (end < hours.size() && hours[end].weather == weather) {
            canvas.fill(plot.x(end), bandTop, plot.hourWidth(), bandHeight, colorOf(hours[end]));
            ++end;
        }
        const int width = plot.x(end) - plot.x(first);
        canvas.fill(plot.x(end) - 1, bandTop, 1, bandHeight, white);
        if (textWidth(weather) + 8 <= width) {
            canvas.text(plot.x(first) + (width - textWidth(weather)) / 2,
                        bandTop + (bandHeight - textHeight) / 2, textScale, weather, white);
        }
    }
}

struct KeyEntry {
    RGBA color;
    const char* text;

    [[nodiscard]] int width() const { return textHeight + 8 + textWidth(text) + 18; }
};
constexpr std::array key{KeyEntry{amber, "sun"}, KeyEntry{gray, "no sun"}, KeyEntry{blue, "precipitation"},
                         KeyEntry{barColor, "its rate"}};

int keyWidth() {
    return std::transform_reduce(key.begin(), key.end(), 0, std::plus(), std::mem_fn(&KeyEntry::width));
}

void drawKey(Canvas& canvas, int x) {
    for (const KeyEntry& entry : key) {
        canvas.fill(x, margin + 4, textHeight, textHeight, entry.color);
        canvas.text(x + textHeight + 8, margin + 4, textScale, entry.text, paleInk);
        x += entry.width();
    }
}

}  // namespace

platform::RGBAImage drawHourlyChart(const HourlyChart& chart) {
    const Plot plot(chart);
    const int titleWidth = widthOf(chart.title) * titleScale + margin + keyWidth();
    const int width =
        std::max({plot.right() - margin + plot.rateWidth(), titleWidth, textWidth(chart.subtitle)}) +
        2 * margin;
    Canvas canvas(width, labelTop + textHeight + margin);
    canvas.text(margin, margin, titleScale, chart.title, ink);
    canvas.text(margin, margin + Glyph::capHeight * titleScale + 10, textScale, chart.subtitle, paleInk);
    drawKey(canvas, width - margin - keyWidth());
    drawAxes(canvas, plot);
    drawHours(canvas, plot);
    drawLabels(canvas, plot);
    drawTemperatures(canvas, plot);
    drawBand(canvas, plot);
    canvas.frame(Plot::left(), top, plot.width(), plotHeight, frameInk);
    return canvas.image();
}

}  // namespace nimbuscope::drawing

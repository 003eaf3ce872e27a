#include "ForecastText.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "EnglishBundle.hpp"
#include "LocalClock.hpp"
#include "NimbuscopeKit/Forecast/ApiForecastIcon.hpp"
#include "NimbuscopeKit/Preferences/MapPreferenceTypes.hpp"
#include "ReadableJSON.hpp"
#include "tools/drawing/BitmapFont.hpp"

namespace nimbuscope::tool {
namespace {

using platform::Bundle;

constexpr const char* dayForm = "%a %e %b";
constexpr const char* hourForm = "%H:%M";
constexpr const char* momentForm = "%a %e %b, %H:%M";

/// One of sixteen points of the compass.
std::string_view compassPoint(double degrees) {
    constexpr std::array<std::string_view, 16> points{"N", "NNE", "NE", "ENE", "E", "ESE", "SE", "SSE",
                                                      "S", "SSW", "SW", "WSW", "W", "WNW", "NW", "NNW"};
    constexpr double circle = 360;
    constexpr double step = circle / points.size();
    const double turned = std::fmod(std::fmod(degrees, circle) + circle + step / 2, circle);
    return points[static_cast<std::size_t>(turned / step)];
}

/// A number with some places after the point; short where it is absurdly large.
std::string number(double value, int places = 0) {
    constexpr double most = 1e6;
    const std::string text =
        std::abs(value) < most ? fmt::format("{:.{}f}", value, places) : fmt::format("{:g}", value);
    return text == "-0" ? "0" : text;
}

/// Numbers with their units.
class Quantities {
  public:
    explicit Quantities(UnitsPreference units) : units_(units) {}

    [[nodiscard]] std::string temperatureUnit() const {
        return units_ == UnitsPreference::Imperial ? "°F" : "°C";
    }
    [[nodiscard]] std::string rateUnit() const {
        return std::string(title(LegendTooltipTypePreference::speed, units_));
    }
    [[nodiscard]] std::string speedUnit() const { return isMiles(units_) ? "mph" : "km/h"; }

    [[nodiscard]] double degrees(double celsius) const { return nimbuscope::temperature(units_, celsius); }
    [[nodiscard]] double rateOf(double millimetres) const { return mmToInch(units_, millimetres); }
    [[nodiscard]] std::string bareTemperature(double celsius) const { return number(degrees(celsius)); }
    /// Nothing for a rate of nothing.
    [[nodiscard]] std::string tableRate(double millimetres) const {
        return millimetres == 0 ? "" : bareRate(millimetres);
    }
    [[nodiscard]] std::string bareRate(double millimetres) const {
        return number(rateOf(millimetres), isMiles(units_) ? 2 : 1);
    }
    [[nodiscard]] std::string bareSpeed(double kilometres) const {
        return number(nimbuscope::distance(units_, kilometres));
    }

    [[nodiscard]] std::string temperature(double celsius) const {
        return bareTemperature(celsius) + ' ' + temperatureUnit();
    }
    [[nodiscard]] std::string rate(double millimetres) const {
        return bareRate(millimetres) + ' ' + rateUnit();
    }
    [[nodiscard]] std::string speed(double kilometres) const {
        return bareSpeed(kilometres) + ' ' + speedUnit();
    }
    [[nodiscard]] std::string distance(double kilometres) const {
        return bareSpeed(kilometres) + (isMiles(units_) ? " mi" : " km");
    }

  private:
    UnitsPreference units_;
};

/// Writes one forecast, section by section.
class ForecastWriter {
  public:
    ForecastWriter(const ApiForecastData& data, UnitsPreference units, const Bundle& bundle)
        : data_(data), in_(units), bundle_(bundle), clock_(data.timezone) {}

    [[nodiscard]] std::string text() {
        writeNow();
        writeNowcast();
        writeNearest();
        writeAlerts();
        writeHours();
        writeDays();
        return std::move(text_);
    }

  private:
    template <class... Arguments>
    void line(fmt::format_string<Arguments...> form, Arguments&&... arguments) {
        fmt::format_to(std::back_inserter(text_), form, std::forward<Arguments>(arguments)...);
        text_.erase(text_.find_last_not_of(' ') + 1);
        text_ += '\n';
    }
    [[nodiscard]] std::string weather(const std::string& icon) const {
        return ApiForecastIcon::toDescriptionText(icon, bundle_);
    }

    void writeNow() {
        const ApiForecastCurrent& now = data_.currently;
        line("{:.4f}, {:.4f}  {}  {}", data_.location.latitude, data_.location.longitude,
             clock_.text(now.time, momentForm), clock_.zone());
        line("");
        line("{:<12}{}, {}, feels like {}", "Now", weather(now.icon), in_.temperature(now.temperature),
             in_.temperature(now.temperatureDetails.feelsLike));
        line("{:<12}{} %, {}", "  rain", now.precipitation.probability, in_.rate(now.precipitation.rate));
        line("{:<12}{} from {}", "  wind", in_.speed(static_cast<double>(now.wind.speed)),
             compassPoint(static_cast<double>(now.wind.direction)));
        line("{:<12}{} % clouds, visibility {}{}", "  sky", now.sky.coverage,
             in_.distance(now.sky.visibility),
             now.sun.ultravioletIndex ? fmt::format(", UV index {}", *now.sun.ultravioletIndex) : "");
        line("{:<12}{} % humidity, dew point {}, {} hPa{}", "  air", now.humidity,
             in_.temperature(now.temperatureDetails.dewPoint), now.pressure,
             data_.airQuality ? fmt::format(", quality index {}", data_.airQuality->airQualityIndex) : "");
        line("{:<12}{} to {}", "  sun", clock_.text(data_.sunrise, hourForm),
             clock_.text(data_.sunset, hourForm));
    }

    void writeNowcast() {
        const ApiForecastNowcast& nowcast = data_.nowcast;
        const std::string sentence =
            nowcast.longTimeToNextPercipitationString(static_cast<double>(data_.currently.time), bundle_);
        line("");
        if (sentence.empty()) {
            line("{:<12}{}", "Next hour", "dry");
            return;
        }
        line("{:<12}{}: {}", "Next hour", weather(nowcast.icon), sentence);
        line("{:<12}{}  up to {}", "", precipitationBars(), in_.rate(nowcast.maxRainrate));
    }

    /// The series as a row of bars, the highest of which is full.
    [[nodiscard]] std::string precipitationBars() const {
        constexpr std::array<const char*, 9> bars{" ", "▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
        constexpr std::size_t most = 60;
        const auto& samples = data_.nowcast.data;
        const double highest =
            std::ranges::max(samples, {}, &ApiForecastNowcastTimeData::precipitation).precipitation;
        std::string row;
        for (std::size_t i = 0; i < std::min(samples.size(), most); ++i) {
            const double part = std::clamp(samples[i].precipitation / highest, 0.0, 1.0);
            row += bars[static_cast<std::size_t>(std::ceil(part * (bars.size() - 1)))];
        }
        return row;
    }

    void writeNearest() {
        std::string_view heading = "Nearby";
        for (const auto& item : data_.nearest.precipitation.data) {
            std::string where;
            if (item.position) {
                where +=
                    fmt::format(", {} to the {}", in_.distance(static_cast<double>(item.position->distance)),
                                compassPoint(item.position->direction));
            }
            if (item.movement) {
                where += fmt::format(", moving {} at {}", compassPoint(item.movement->direction),
                                     in_.speed(item.movement->speed));
            }
            line("{:<12}{} {}{}", heading, clock_.text(item.time, hourForm), in_.rate(item.precipitation),
                 where);
            heading = "";
        }
    }

    void writeAlerts() {
        std::string_view heading = "Alerts";
        const auto moment = [&](std::string_view word, const std::optional<double>& time) {
            return time ? fmt::format(" {} {}", word, clock_.text(*time, momentForm)) : std::string();
        };
        for (const ApiForecastAlert& alert : data_.alerts) {
            line("{:<12}{} ({}, {}){}{}", heading, readableText(alert.type), readableText(alert.category),
                 readableText(alert.severity), moment("from", alert.starts), moment("to", alert.ends));
            heading = "";
        }
    }

    void writeHours() {
        line("");
        line("{:<12}{:<16}{:>5}{:>7}{:>8}{:>9}{:>11}{:>10}{:>8}{:>4}", "Hours", "", in_.temperatureUnit(),
             "feels", "rain", in_.rateUnit(), "wind " + in_.speedUnit(), "humidity", "clouds", "UV");
        std::string day;
        for (const ApiForecastHourlyData& hour : data_.hourly.data) {
            const std::string today = clock_.text(hour.time, dayForm);
            if (today != day) {
                line("{}", today);
                day = today;
            }
            const auto wind = static_cast<double>(hour.wind.direction);
            line("  {:<10}{:<16}{:>5}{:>7}{:>6} %{:>9}{:>6} {:>4}{:>8} %{:>6} %{:>4}",
                 clock_.text(hour.time, hourForm), weather(hour.icon), in_.bareTemperature(hour.temperature),
                 in_.bareTemperature(hour.temperatureDetails.feelsLike), hour.precipitation.probability,
                 in_.tableRate(hour.precipitation.rate), compassPoint(wind),
                 in_.bareSpeed(static_cast<double>(hour.wind.speed)), hour.humidity, hour.sky.coverage,
                 hour.sun.ultravioletIndex ? std::to_string(*hour.sun.ultravioletIndex) : "");
        }
    }

    void writeDays() {
        line("");
        line("{:<12}{:<16}{:>5}{:>8}    {:<16}{:>5}{:>8}", "Days", "day", in_.temperatureUnit(), "rain",
             "night", in_.temperatureUnit(), "rain");
        for (const ApiForecastDailyData& day : data_.daily.data) {
            line("{:<12}{:<16}{:>5}{:>6} %    {:<16}{:>5}{:>6} %", clock_.text(day.time, dayForm),
                 weather(day.day.icon), in_.bareTemperature(day.day.temperature),
                 day.day.precipitation.probability, weather(day.night.icon),
                 in_.bareTemperature(day.night.temperature), day.night.precipitation.probability);
        }
    }

    const ApiForecastData& data_;
    Quantities in_;
    const Bundle& bundle_;
    LocalClock clock_;
    std::string text_;
};

}  // namespace

std::string forecastText(const ApiForecast& forecast, UnitsPreference units, const Bundle& bundle) {
    const std::string notice =
        forecast.code == 0
            ? std::string()
            : fmt::format("The server says: {} ({})\n", readableText(forecast.message), forecast.code);
    return notice + ForecastWriter(forecast.data, units, bundle).text();
}

drawing::HourlyChart hourlyChart(const ApiForecastData& forecast, UnitsPreference units) {
    constexpr int labelEvery = 6;    // hours
    constexpr double leastRate = 2;  // mm/h
    const Quantities in(units);
    const LocalClock clock(forecast.timezone);
    const auto& hours = forecast.hourly.data;
    drawing::HourlyChart chart{
        .title = fmt::format("{:.4f}, {:.4f}", forecast.location.latitude, forecast.location.longitude),
        .subtitle =
            fmt::format("From {} ({})", clock.text(forecast.currently.time, momentForm), clock.zone()),
        .hours = {},
        .temperatureUnit = {drawing::degreeSign, units == UnitsPreference::Imperial ? 'F' : 'C'},
        .rateUnit = in.rateUnit(),
        .leastRate = in.rateOf(leastRate)};
    std::string day;
    for (const ApiForecastHourlyData& hour : hours) {
        const std::string today = clock.text(hour.time, dayForm);
        const bool isLabelled = clock.hour(hour.time) % labelEvery == 0;
        chart.hours.push_back({.day = today != day ? today : "",
                               .label = isLabelled ? clock.text(hour.time, hourForm) : "",
                               .weather = ApiForecastIcon::toDescriptionText(hour.icon, EnglishBundle()),
                               .temperature = in.degrees(hour.temperature),
                               .rate = in.rateOf(hour.precipitation.rate),
                               .isBlue = ApiForecastIcon::isBlueLine(hour.icon),
                               .isGray = ApiForecastIcon::isGrayLine(hour.icon)});
        day = today;
    }
    return chart;
}

}  // namespace nimbuscope::tool

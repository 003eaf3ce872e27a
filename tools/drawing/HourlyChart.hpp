#pragma once

#include <string>
#include <vector>

#include "Platform/Graphics/PNG.hpp"

/// The picture of a forecast of hours.
namespace nimbuscope::drawing {

struct ChartHour {
    std::string day;    ///< set where a day begins
    std::string label;  ///< of the hour, where it has one
    std::string weather;
    double temperature = 0;
    double rate = 0;      ///< of precipitation
    bool isBlue = false;  ///< drawn as precipitation
    bool isGray = false;  ///< drawn as without sun; neither is drawn as sun
};

/// The texts are ASCII, with the degree sign of the font.
struct HourlyChart {
    std::string title;
    std::string subtitle;
    std::vector<ChartHour> hours;  ///< at least one
    std::string temperatureUnit;
    std::string rateUnit;
    double leastRate = 1;  ///< what bars must reach to fill the picture, lest drizzle looks like a storm
};

/// More hours than these are not drawn.
inline constexpr std::size_t mostChartHours = 240;

/// The temperature as a line in the colours of the weather, precipitation as bars behind it, and a band below
/// that names the weather. Values beyond ±1000 are drawn as that.
[[nodiscard]] platform::RGBAImage drawHourlyChart(const HourlyChart& chart);

}  // namespace nimbuscope::drawing

#pragma once

#include <string>

#include "NimbuscopeKit/Forecast/ApiForecast.hpp"
#include "NimbuscopeKit/Preferences/UnitsPreference.hpp"
#include "Platform/Locale/Bundle.hpp"
#include "tools/drawing/HourlyChart.hpp"

/// Forecasts for people. What the server sends is taken for seconds since 1970, degrees Celsius, kilometres,
/// km/h, mm/h, hPa and percent; directions are degrees clockwise from north, of the wind that from which it
/// comes. The clock is that of the forecast's time zone.
namespace nimbuscope::tool {

/// The weather now, the next hour in words, what is near, the alerts, and a table of hours and of days.
[[nodiscard]] std::string forecastText(const ApiForecast& forecast, UnitsPreference units,
                                       const platform::Bundle& bundle);

/// What the chart of the hours shows, in English.
[[nodiscard]] drawing::HourlyChart hourlyChart(const ApiForecastData& forecast, UnitsPreference units);

}  // namespace nimbuscope::tool

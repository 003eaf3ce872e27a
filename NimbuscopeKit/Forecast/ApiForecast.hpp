#pragma once

#include <optional>
#include <string>
#include <vector>

#include "NimbuscopeKit/Forecast/ApiForecastConditions.hpp"
#include "NimbuscopeKit/Forecast/ApiForecastNearest.hpp"
#include "NimbuscopeKit/Forecast/ApiForecastNowcast.hpp"
#include "NimbuscopeKit/Forecast/ApiForecastSeries.hpp"
#include "NimbuscopeKit/RadarCatalogue/ApiResponse.hpp"
#include "NimbuscopeKit/RadarCatalogue/Coordinate.hpp"

/// The answer of the forecast endpoint. One bad element of any of its lists spoils the whole answer. Units
/// and time base are those of the server.
namespace nimbuscope {

/// Which sources of data cover the location.
struct ApiForecastSources {
    bool radar = false;
    bool alerts = false;
    bool satprecip = false;
    bool numericalForecast = false;

    static constexpr auto fields = std::tuple{
        platform::key("radar", &ApiForecastSources::radar),
        platform::key("alerts", &ApiForecastSources::alerts),
        platform::key("satprecip", &ApiForecastSources::satprecip),
        platform::key("numerical_forecast", &ApiForecastSources::numericalForecast),
    };
    bool operator==(const ApiForecastSources&) const = default;
};

struct ApiForecastRadars {
    std::int64_t coverage = 0;

    static constexpr auto fields = std::tuple{platform::key("coverage", &ApiForecastRadars::coverage)};
    bool operator==(const ApiForecastRadars&) const = default;
};

struct ApiForecastAirQuality {
    std::int64_t airQualityIndex = 0;

    static constexpr auto fields = std::tuple{platform::key("aqi", &ApiForecastAirQuality::airQualityIndex)};
    bool operator==(const ApiForecastAirQuality&) const = default;
};

struct ApiForecastAlert {
    std::string id;
    std::optional<double> starts;
    std::optional<double> ends;
    std::string type;
    std::string category;
    std::string severity;

    static constexpr auto fields = std::tuple{
        platform::key("id", &ApiForecastAlert::id),
        platform::key("starts", &ApiForecastAlert::starts),
        platform::key("ends", &ApiForecastAlert::ends),
        platform::key("type", &ApiForecastAlert::type),
        platform::key("category", &ApiForecastAlert::category),
        platform::key("severity", &ApiForecastAlert::severity),
    };
    bool operator==(const ApiForecastAlert&) const = default;
};

struct ApiForecastData {
    Coordinate location;
    std::optional<std::string> timezone;
    std::int64_t sunrise = 0;
    std::int64_t sunset = 0;
    ApiForecastCurrent currently;
    ApiForecastSources sources;
    ApiForecastNowcast nowcast;
    ApiForecastHourly hourly;
    ApiForecastDaily daily;
    ApiForecastRadars radars;
    std::optional<ApiForecastAirQuality> airQuality;
    std::vector<ApiForecastAlert> alerts;
    ApiForecastNearest nearest;

    static constexpr auto fields = std::tuple{
        platform::key("location", &ApiForecastData::location),
        platform::key("timezone", &ApiForecastData::timezone),
        platform::key("sunrise", &ApiForecastData::sunrise),
        platform::key("sunset", &ApiForecastData::sunset),
        platform::key("currently", &ApiForecastData::currently),
        platform::key("sources", &ApiForecastData::sources),
        platform::key("nowcast", &ApiForecastData::nowcast),
        platform::key("hourly", &ApiForecastData::hourly),
        platform::key("daily", &ApiForecastData::daily),
        platform::key("radars", &ApiForecastData::radars),
        platform::key("aqi", &ApiForecastData::airQuality),
        platform::key("alerts", &ApiForecastData::alerts),
        platform::key("nearest", &ApiForecastData::nearest),
    };
    bool operator==(const ApiForecastData&) const = default;
};

/// The reply as a whole.
using ApiForecast = ApiResponse<ApiForecastData>;

}  // namespace nimbuscope

#pragma once

#include <vector>

#include "NimbuscopeKit/Forecast/ApiForecastConditions.hpp"

/// The hours and days ahead, in the order of the server.
namespace nimbuscope {

struct ApiForecastHourlyData {
    std::int64_t time = 0;
    std::string icon;  ///< code, see `ApiForecastIcon`
    double temperature = 0;
    ApiForecastPrecipitation precipitation;
    ApiForecastTemperatureDetails temperatureDetails;
    ApiForecastSun sun;
    ApiForecastWind wind;
    std::int64_t humidity = 0;
    ApiForecastSky sky;
    std::int64_t pressure = 0;

    static constexpr auto fields = std::tuple{
        platform::key("time", &ApiForecastHourlyData::time),
        platform::key("icon", &ApiForecastHourlyData::icon),
        platform::key("temperature", &ApiForecastHourlyData::temperature),
        platform::key("precipitation", &ApiForecastHourlyData::precipitation),
        platform::key("temp", &ApiForecastHourlyData::temperatureDetails),
        platform::key("sun", &ApiForecastHourlyData::sun),
        platform::key("wind", &ApiForecastHourlyData::wind),
        platform::key("humidity", &ApiForecastHourlyData::humidity),
        platform::key("sky", &ApiForecastHourlyData::sky),
        platform::key("pressure", &ApiForecastHourlyData::pressure),
    };
    bool operator==(const ApiForecastHourlyData&) const = default;
};

struct ApiForecastHourly {
    std::int64_t interval = 0;
    std::vector<ApiForecastHourlyData> data;

    static constexpr auto fields = std::tuple{platform::key("interval", &ApiForecastHourly::interval),
                                              platform::key("data", &ApiForecastHourly::data)};
    bool operator==(const ApiForecastHourly&) const = default;
};

struct ApiForecastDailyDayNightData {
    std::string icon;  ///< code, see `ApiForecastIcon`
    double temperature = 0;
    ApiForecastPrecipitation precipitation;
    ApiForecastTemperatureDetails temperatureDetails;

    static constexpr auto fields = std::tuple{
        platform::key("icon", &ApiForecastDailyDayNightData::icon),
        platform::key("temperature", &ApiForecastDailyDayNightData::temperature),
        platform::key("precipitation", &ApiForecastDailyDayNightData::precipitation),
        platform::key("temp", &ApiForecastDailyDayNightData::temperatureDetails),
    };
    bool operator==(const ApiForecastDailyDayNightData&) const = default;
};

struct ApiForecastDailyData {
    std::int64_t time = 0;
    ApiForecastDailyDayNightData day;
    ApiForecastDailyDayNightData night;

    static constexpr auto fields = std::tuple{platform::key("time", &ApiForecastDailyData::time),
                                              platform::key("day", &ApiForecastDailyData::day),
                                              platform::key("night", &ApiForecastDailyData::night)};
    bool operator==(const ApiForecastDailyData&) const = default;
};

struct ApiForecastDaily {
    std::int64_t interval = 0;
    std::vector<ApiForecastDailyData> data;

    static constexpr auto fields = std::tuple{platform::key("interval", &ApiForecastDaily::interval),
                                              platform::key("data", &ApiForecastDaily::data)};
    bool operator==(const ApiForecastDaily&) const = default;
};

}  // namespace nimbuscope

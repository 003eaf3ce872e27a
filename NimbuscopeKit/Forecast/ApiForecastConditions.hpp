#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>

#include "Platform/Coding/Fields.hpp"

/// The weather at one moment, and what it is made of. Units and time base are those of the server.
namespace nimbuscope {

struct ApiForecastPrecipitation {
    std::int64_t probability = 0;
    double rate = 0;

    static constexpr auto fields =
        std::tuple{platform::key("probability", &ApiForecastPrecipitation::probability),
                   platform::key("rate", &ApiForecastPrecipitation::rate)};
    bool operator==(const ApiForecastPrecipitation&) const = default;
};

struct ApiForecastTemperatureDetails {
    double temperature = 0;
    double feelsLike = 0;
    double dewPoint = 0;

    static constexpr auto fields = std::tuple{
        platform::key("temperature", &ApiForecastTemperatureDetails::temperature),
        platform::key("feels_like", &ApiForecastTemperatureDetails::feelsLike),
        platform::key("dew_point", &ApiForecastTemperatureDetails::dewPoint),
    };
    bool operator==(const ApiForecastTemperatureDetails&) const = default;
};

struct ApiForecastSun {
    std::optional<std::int64_t> ultravioletIndex;

    static constexpr auto fields = std::tuple{platform::key("uvi", &ApiForecastSun::ultravioletIndex)};
    bool operator==(const ApiForecastSun&) const = default;
};

struct ApiForecastWind {
    std::int64_t direction = 0;
    std::int64_t speed = 0;

    static constexpr auto fields = std::tuple{platform::key("direction", &ApiForecastWind::direction),
                                              platform::key("speed", &ApiForecastWind::speed)};
    bool operator==(const ApiForecastWind&) const = default;
};

struct ApiForecastSky {
    std::int64_t coverage = 0;
    double visibility = 0;

    static constexpr auto fields = std::tuple{platform::key("coverage", &ApiForecastSky::coverage),
                                              platform::key("visibility", &ApiForecastSky::visibility)};
    bool operator==(const ApiForecastSky&) const = default;
};

struct ApiForecastCurrent {
    std::int64_t time = 0;
    std::string icon;  ///< code, see `ApiForecastIcon`
    double temperature = 0;
    ApiForecastPrecipitation precipitation;
    ApiForecastTemperatureDetails temperatureDetails;
    ApiForecastSun sun;
    ApiForecastWind wind;
    ApiForecastSky sky;
    std::int64_t humidity = 0;
    std::int64_t pressure = 0;

    static constexpr auto fields = std::tuple{
        platform::key("time", &ApiForecastCurrent::time),
        platform::key("icon", &ApiForecastCurrent::icon),
        platform::key("temperature", &ApiForecastCurrent::temperature),
        platform::key("precipitation", &ApiForecastCurrent::precipitation),
        platform::key("temp", &ApiForecastCurrent::temperatureDetails),
        platform::key("sun", &ApiForecastCurrent::sun),
        platform::key("wind", &ApiForecastCurrent::wind),
        platform::key("sky", &ApiForecastCurrent::sky),
        platform::key("humidity", &ApiForecastCurrent::humidity),
        platform::key("pressure", &ApiForecastCurrent::pressure),
    };
    bool operator==(const ApiForecastCurrent&) const = default;
};

}  // namespace nimbuscope

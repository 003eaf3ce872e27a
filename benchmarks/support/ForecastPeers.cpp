#include "ForecastPeers.hpp"

#include <cmath>
#include <nlohmann/json.hpp>

namespace nimbuscope {

// get<> for every record; where it may be absent, get<> when it is there.

template <class Value>
void readKey(const nlohmann::json& json, std::string_view key, Value& value) {
    json.at(key).get_to(value);
}
template <class Value>
void readKey(const nlohmann::json& json, std::string_view key, std::optional<Value>& value) {
    const auto found = json.find(key);
    if (found != json.end() && !found->is_null()) {
        found->get_to(value.emplace());
    }
}

template <platform::Record T>
void from_json(const nlohmann::json& json, T& value) {
    std::apply([&](const auto&... field) { (readKey(json, field.key, value.*field.member), ...); },
               T::fields);
}

namespace benchmarks {
namespace {

using simdjson::ondemand::object;

std::string textOf(object& json, std::string_view key) {
    return std::string(std::string_view(json[key]));
}

/// Calls `read` with the value of a key that is there and not null.
template <class Read>
void ifPresent(object& json, std::string_view key, Read read) {
    auto found = json[key];
    if (found.error() != simdjson::NO_SUCH_FIELD && !found.is_null()) {
        read(found);
    }
}

template <class T>
void readList(object& json, std::string_view key, std::vector<T>& values);

void read(object json, ApiForecastPrecipitation& value) {
    value.probability = json["probability"];
    value.rate = json["rate"];
}

void read(object json, ApiForecastTemperatureDetails& value) {
    value.temperature = json["temperature"];
    value.feelsLike = json["feels_like"];
    value.dewPoint = json["dew_point"];
}

void read(object json, ApiForecastSun& value) {
    ifPresent(json, "uvi", [&](auto& found) { value.ultravioletIndex = found.get_int64(); });
}

void read(object json, ApiForecastWind& value) {
    value.direction = json["direction"];
    value.speed = json["speed"];
}

void read(object json, ApiForecastSky& value) {
    value.coverage = json["coverage"];
    value.visibility = json["visibility"];
}

void read(object json, ApiForecastCurrent& value) {
    value.time = json["time"];
    value.icon = textOf(json, "icon");
    value.temperature = json["temperature"];
    read(json["precipitation"].get_object(), value.precipitation);
    read(json["temp"].get_object(), value.temperatureDetails);
    read(json["sun"].get_object(), value.sun);
    read(json["wind"].get_object(), value.wind);
    read(json["sky"].get_object(), value.sky);
    value.humidity = json["humidity"];
    value.pressure = json["pressure"];
}

void read(object json, ApiForecastHourlyData& value) {
    value.time = json["time"];
    value.icon = textOf(json, "icon");
    value.temperature = json["temperature"];
    read(json["precipitation"].get_object(), value.precipitation);
    read(json["temp"].get_object(), value.temperatureDetails);
    read(json["sun"].get_object(), value.sun);
    read(json["wind"].get_object(), value.wind);
    value.humidity = json["humidity"];
    read(json["sky"].get_object(), value.sky);
    value.pressure = json["pressure"];
}

void read(object json, ApiForecastDailyDayNightData& value) {
    value.icon = textOf(json, "icon");
    value.temperature = json["temperature"];
    read(json["precipitation"].get_object(), value.precipitation);
    read(json["temp"].get_object(), value.temperatureDetails);
}

void read(object json, ApiForecastDailyData& value) {
    value.time = json["time"];
    read(json["day"].get_object(), value.day);
    read(json["night"].get_object(), value.night);
}

void read(object json, ApiForecastNowcastTimeData& value) {
    value.time = json["time"];
    value.precipitation = json["precipitation"];
}

void read(object json, ApiForecastNowcast& value) {
    value.interval = json["interval"];
    value.icon = textOf(json, "icon");
    object times = json["precipitation"];
    value.precipitation.starts = times["starts"];
    value.precipitation.ends = times["ends"];
    value.maxRainrate = json["max_rainrate"];
    readList(json, "data", value.data);
}

void read(object json, ApiForecastSources& value) {
    value.radar = json["radar"];
    value.alerts = json["alerts"];
    value.satprecip = json["satprecip"];
    value.numericalForecast = json["numerical_forecast"];
}

void read(object json, ApiForecastAlert& value) {
    value.id = textOf(json, "id");
    ifPresent(json, "starts", [&](auto& found) { value.starts = found.get_double(); });
    ifPresent(json, "ends", [&](auto& found) { value.ends = found.get_double(); });
    value.type = textOf(json, "type");
    value.category = textOf(json, "category");
    value.severity = textOf(json, "severity");
}

void read(object json, ApiForecastNearest::Precipitation::Data& value) {
    value.time = json["time"];
    value.precipitation = json["precipitation"];
    ifPresent(json, "position", [&](auto& found) {
        object position = found.get_object();
        value.position = {.distance = position["distance"], .direction = position["direction"]};
    });
    ifPresent(json, "movement", [&](auto& found) {
        object movement = found.get_object();
        value.movement = {.speed = movement["speed"], .direction = movement["direction"]};
    });
}

template <class T>
void readList(object& json, std::string_view key, std::vector<T>& values) {
    for (auto element : json[key].get_array()) {
        read(element.get_object(), values.emplace_back());
    }
}

void read(object json, ApiForecastData& value) {
    object location = json["location"];
    value.location.latitude = location["latitude"];
    value.location.longitude = location["longitude"];
    ifPresent(json, "timezone", [&](auto& found) { value.timezone = std::string(std::string_view(found)); });
    value.sunrise = json["sunrise"];
    value.sunset = json["sunset"];
    read(json["currently"].get_object(), value.currently);
    read(json["sources"].get_object(), value.sources);
    read(json["nowcast"].get_object(), value.nowcast);
    object hourly = json["hourly"];
    value.hourly.interval = hourly["interval"];
    readList(hourly, "data", value.hourly.data);
    object daily = json["daily"];
    value.daily.interval = daily["interval"];
    readList(daily, "data", value.daily.data);
    value.radars.coverage = json["radars"]["coverage"];
    ifPresent(json, "aqi",
              [&](auto& found) { value.airQuality = {.airQualityIndex = found["aqi"].get_int64()}; });
    readList(json, "alerts", value.alerts);
    object nearest = json["nearest"]["precipitation"];
    value.nearest.precipitation.radius = nearest["radius"];
    readList(nearest, "data", value.nearest.precipitation.data);
}

/// Temperatures and the like: a number with one place after the point.
double wave(std::size_t i, double middle, double height) {
    return std::round((middle + height * std::sin(static_cast<double>(i))) * 10) / 10;
}

template <class Conditions>
Conditions conditions(std::size_t hour) {
    const double degrees = wave(hour, 12, 9);
    Conditions value;
    value.time = 1'776'448'800 + 3600 * static_cast<std::int64_t>(hour);
    value.icon = "clouds_sun_rain";
    value.temperature = degrees;
    value.precipitation = {.probability = 40, .rate = wave(hour, 2, 2)};
    value.temperatureDetails = {.temperature = degrees, .feelsLike = degrees - 1, .dewPoint = degrees - 4};
    value.sun.ultravioletIndex = 5;
    value.wind = {.direction = 225, .speed = 14};
    value.sky = {.coverage = 90, .visibility = wave(hour, 9, 6)};
    value.humidity = 81;
    value.pressure = 1013;
    return value;
}

}  // namespace

ApiForecast wholeForecast() {
    ApiForecast forecast{.message = "OK"};
    ApiForecastData& data = forecast.data;
    data.location = {41.5868, -93.625};
    data.timezone = "America/Chicago";
    data.sunrise = 1'776'425'460;
    data.sunset = 1'776'473'640;
    data.currently = conditions<ApiForecastCurrent>(0);
    data.nowcast.interval = 60;
    data.nowcast.icon = "light_rain";
    for (std::size_t minute = 0; minute < 60; ++minute) {
        data.nowcast.data.push_back({.time = data.currently.time + 60 * static_cast<std::int64_t>(minute),
                                     .precipitation = wave(minute, 1, 1)});
    }
    for (std::size_t hour = 0; hour < 48; ++hour) {
        data.hourly.data.push_back(conditions<ApiForecastHourlyData>(hour));
    }
    for (std::size_t day = 0; day < 10; ++day) {
        const auto noon = conditions<ApiForecastHourlyData>(24 * day);
        const ApiForecastDailyDayNightData half{noon.icon, noon.temperature, noon.precipitation,
                                                noon.temperatureDetails};
        data.daily.data.push_back({.time = noon.time, .day = half, .night = half});
    }
    data.airQuality = ApiForecastAirQuality{.airQualityIndex = 42};
    data.alerts.push_back({.id = "watch-118",
                           .starts = 1'776'459'600,
                           .ends = 1'776'477'600,
                           .type = "Storm Watch",
                           .category = "Met",
                           .severity = "Severe"});
    data.nearest.precipitation = {.radius = 50,
                                  .data = {{.time = 1'776'448'800,
                                            .precipitation = 1.5,
                                            .position = {{.distance = 9, .direction = 240.5}},
                                            .movement = {{.speed = 42.5, .direction = 63}}}}};
    return forecast;
}

ApiForecast decodeForecastWithTree(std::string_view json) {
    return nlohmann::json::parse(json).get<ApiForecast>();
}

ApiForecast decodeForecastOnDemand(const platform::Data& json) {
    simdjson::ondemand::parser parser;
    auto document = parser.iterate(json.data(), json.size(), json.capacity());
    object root = document.get_object();
    ApiForecast forecast;
    forecast.code = root["code"];
    forecast.message = textOf(root, "message");
    read(root["data"].get_object(), forecast.data);
    return forecast;
}

}  // namespace benchmarks
}  // namespace nimbuscope

#include "PlacesPeers.hpp"

#include <nlohmann/json.hpp>

#include "Platform/Coding/JSONEncoder.hpp"

namespace nimbuscope {

template <class E>
E caseOfRaw(platform::RawValue<E> raw) {
    return platform::fromRawValue<E>(raw).value();
}

template <class E>
E enumerationAt(const nlohmann::json& json, const char* key) {
    using Raw =
        std::conditional_t<std::same_as<platform::RawValue<E>, std::int64_t>, std::int64_t, std::string>;
    return caseOfRaw<E>(json.at(key).get<Raw>());
}

void from_json(const nlohmann::json& json, Coordinate& value) {
    json.at("latitude").get_to(value.latitude);
    json.at("longitude").get_to(value.longitude);
}

void from_json(const nlohmann::json& json, LocationNotificationSettings& value) {
    json.at("isCustom").get_to(value.isCustom);
    const auto& rain = json.at("rainDuration");
    rain.at("isEnabled").get_to(value.rainDuration.isEnabled);
    value.rainDuration.accuracy = enumerationAt<NotificationSettingsRainDuration::Accuracy>(rain, "accuracy");
    value.rainDuration.intensity = enumerationAt<Intensity>(rain, "intensity");
    const auto& radius = json.at("inRadius");
    radius.at("isEnabled").get_to(value.inRadius.isEnabled);
    radius.at("showRadiusOnMap").get_to(value.inRadius.showRadiusOnMap);
    value.inRadius.radius = enumerationAt<NotificationSettingsInRadius::Radius>(radius, "radius");
    value.inRadius.intensity = enumerationAt<Intensity>(radius, "intensity");
    const auto& severe = json.at("severeWeather");
    severe.at("isEnabled").get_to(value.severeWeather.isEnabled);
    value.severeWeather.severity =
        enumerationAt<NotificationSettingsSevereWeather::Severity>(severe, "severity");
    const auto& storms = json.at("tropicalStorms");
    storms.at("isEnabled").get_to(value.tropicalStorms.isEnabled);
    value.tropicalStorms.trackingArea =
        enumerationAt<NotificationSettingsTropicalStorms::TrackingArea>(storms, "trackingArea");
    const auto& silence = json.at("silenceTime");
    silence.at("isEnabled").get_to(value.silenceTime.isEnabled);
    silence.at("start").get_to(value.silenceTime.start);
    silence.at("end").get_to(value.silenceTime.end);
}

void optionalText(const nlohmann::json& json, const char* key, std::optional<std::string>& value) {
    const auto found = json.find(key);
    if (found != json.end() && !found->is_null()) {
        value = found->get<std::string>();
    }
}

void from_json(const nlohmann::json& json, Place& value) {
    json.at("id").get_to(value.id);
    json.at("icon").get_to(value.icon);
    json.at("name").get_to(value.name);
    optionalText(json, "address", value.address);
    optionalText(json, "state", value.state);
    optionalText(json, "country", value.country);
    json.at("current").get_to(value.current);
    json.at("geolocated").get_to(value.geolocated);
    json.at("staticCoordinate").get_to(value.staticCoordinate);
    const auto settings = json.find("notificationsSettings");
    if (settings != json.end() && !settings->is_null()) {
        settings->get_to(value.notificationsSettings);
    }
}

namespace benchmarks {
namespace {

using simdjson::ondemand::object;

std::string textOf(object& json, std::string_view key) {
    return std::string(std::string_view(json[key]));
}

void readOptionalText(object& json, std::string_view key, std::optional<std::string>& value) {
    auto found = json[key];
    if (found.error() != simdjson::NO_SUCH_FIELD && !found.is_null()) {
        value = std::string(std::string_view(found));
    }
}

template <class E>
E enumerationOf(object& json, std::string_view key) {
    if constexpr (std::same_as<platform::RawValue<E>, std::int64_t>) {
        return caseOfRaw<E>(json[key].get_int64());
    } else {
        return caseOfRaw<E>(std::string_view(json[key]));
    }
}

void read(object json, LocationNotificationSettings& value) {
    value.isCustom = json["isCustom"];
    object rain = json["rainDuration"];
    value.rainDuration.isEnabled = rain["isEnabled"];
    value.rainDuration.accuracy = enumerationOf<NotificationSettingsRainDuration::Accuracy>(rain, "accuracy");
    value.rainDuration.intensity = enumerationOf<Intensity>(rain, "intensity");
    object radius = json["inRadius"];
    value.inRadius.isEnabled = radius["isEnabled"];
    value.inRadius.showRadiusOnMap = radius["showRadiusOnMap"];
    value.inRadius.radius = enumerationOf<NotificationSettingsInRadius::Radius>(radius, "radius");
    value.inRadius.intensity = enumerationOf<Intensity>(radius, "intensity");
    object severe = json["severeWeather"];
    value.severeWeather.isEnabled = severe["isEnabled"];
    value.severeWeather.severity =
        enumerationOf<NotificationSettingsSevereWeather::Severity>(severe, "severity");
    object storms = json["tropicalStorms"];
    value.tropicalStorms.isEnabled = storms["isEnabled"];
    value.tropicalStorms.trackingArea =
        enumerationOf<NotificationSettingsTropicalStorms::TrackingArea>(storms, "trackingArea");
    object silence = json["silenceTime"];
    value.silenceTime.isEnabled = silence["isEnabled"];
    value.silenceTime.start = silence["start"].get_int64();
    value.silenceTime.end = silence["end"].get_int64();
}

void read(object json, Place& value) {
    value.id = textOf(json, "id");
    value.icon = textOf(json, "icon");
    value.name = textOf(json, "name");
    readOptionalText(json, "address", value.address);
    readOptionalText(json, "state", value.state);
    readOptionalText(json, "country", value.country);
    value.current = json["current"];
    value.geolocated = json["geolocated"];
    auto settings = json["notificationsSettings"];
    if (settings.error() != simdjson::NO_SUCH_FIELD && !settings.is_null()) {
        read(settings.get_object(), value.notificationsSettings);
    }
    object coordinate = json["staticCoordinate"];
    value.staticCoordinate.latitude = coordinate["latitude"].get_double();
    value.staticCoordinate.longitude = coordinate["longitude"].get_double();
}

}  // namespace

std::string placesDocument(std::size_t count) {
    std::vector<Place> places(count);
    for (std::size_t i = 0; i < count; ++i) {
        Place& place = places[i];
        place.id = "2D1C6B0A-53F4-4E0B-9C66-" + std::to_string(100000000000 + i);
        place.name = "Place number " + std::to_string(i);
        place.address = std::to_string(i % 300) + " Nimbus Street";
        place.state = "Some State";
        place.country = "US";
        place.current = i == count / 2;
        place.staticCoordinate = {-80 + 0.0017 * static_cast<double>(i % 90000),
                                  0.00391 * static_cast<double>(i % 40000)};
    }
    return platform::JSONEncoder().encode(places).value();
}

std::vector<Place> decodeWithTree(std::string_view json) {
    return nlohmann::json::parse(json).get<std::vector<Place>>();
}

std::vector<Place> decodeOnDemand(simdjson::ondemand::parser& parser, const platform::Data& json) {
    std::vector<Place> places;
    auto document = parser.iterate(json.data(), json.size(), json.capacity());
    for (auto element : document.get_array()) {
        read(element.get_object(), places.emplace_back());
    }
    return places;
}

}  // namespace benchmarks
}  // namespace nimbuscope

#pragma once

#include <optional>
#include <string>
#include <tuple>

#include "NimbuscopeIntentHandler/Places/NotificationSettings.hpp"
#include "NimbuscopeKit/RadarCatalogue/Coordinate.hpp"

namespace nimbuscope {

/// A location that the user saved, or the entry that stands for the device's current location.
///
/// Two places with the same id are equal, whatever else differs: never compare places to find changes.
struct Place {
    std::string id;  ///< names the place for good; the identifier of the objects made from it
    std::string icon = "point";
    std::string name = "New Favorite";
    std::optional<std::string> address;
    std::optional<std::string> state;
    std::optional<std::string> country;
    bool current = false;    ///< stands for the device's current location; fixed
    bool geolocated = true;  ///< the coordinate comes from geolocation
    LocationNotificationSettings notificationsSettings;
    Coordinate staticCoordinate;

    static constexpr auto fields = std::tuple{
        platform::key("id", &Place::id),
        platform::key("icon", &Place::icon),
        platform::key("name", &Place::name),
        platform::key("address", &Place::address),
        platform::key("state", &Place::state),
        platform::key("country", &Place::country),
        platform::key("current", &Place::current),
        platform::key("geolocated", &Place::geolocated),
        platform::keyWithDefault("notificationsSettings", &Place::notificationsSettings),
        platform::key("staticCoordinate", &Place::staticCoordinate),
    };

    bool operator==(const Place& other) const { return id == other.id; }
};

}  // namespace nimbuscope

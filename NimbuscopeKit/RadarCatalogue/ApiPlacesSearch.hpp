#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "NimbuscopeKit/RadarCatalogue/Coordinate.hpp"

namespace nimbuscope {

/// A place that a search found.
///
/// Equality is by name and exact location alone: never take duplicates out by it.
struct ApiPlacesSearchItem {
    std::string name;
    std::string state;  ///< or region
    std::optional<std::string> country;
    Coordinate location;

    static constexpr auto fields = std::tuple{
        platform::key("name", &ApiPlacesSearchItem::name),
        platform::key("state", &ApiPlacesSearchItem::state),
        platform::key("country", &ApiPlacesSearchItem::country),
        platform::key("location", &ApiPlacesSearchItem::location),
    };
    bool operator==(const ApiPlacesSearchItem& other) const {
        return name == other.name && location == other.location;
    }
};

/// The reply of the search for places, as a whole.
struct ApiPlacesSearch {
    std::int64_t code = 0;  ///< 0 for success
    std::string message;
    std::vector<ApiPlacesSearchItem> data;  ///< in the order of the server

    static constexpr auto fields = std::tuple{platform::key("code", &ApiPlacesSearch::code),
                                              platform::key("message", &ApiPlacesSearch::message),
                                              platform::key("data", &ApiPlacesSearch::data)};
    bool operator==(const ApiPlacesSearch&) const = default;
};

}  // namespace nimbuscope

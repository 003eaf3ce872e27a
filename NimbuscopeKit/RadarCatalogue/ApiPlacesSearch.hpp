#pragma once

#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "NimbuscopeKit/RadarCatalogue/ApiResponse.hpp"
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

/// The reply of the search for places, as a whole, in the order of the server.
using ApiPlacesSearch = ApiResponse<std::vector<ApiPlacesSearchItem>>;

}  // namespace nimbuscope

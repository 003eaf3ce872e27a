#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "NimbuscopeKit/RadarCatalogue/ApiResponse.hpp"
#include "Platform/Coding/Fields.hpp"
#include "Platform/Coding/JSONDictionary.hpp"

/// The map timeline: which frames of each layer the map player animates.
namespace nimbuscope {

/// One picture of a layer.
struct MapFrame {
    std::int64_t time = 0;  ///< the moment it shows, as the server counts
    std::string path;       ///< where its tiles are, appended to a tile host

    static constexpr auto fields =
        std::tuple{platform::key("time", &MapFrame::time), platform::key("path", &MapFrame::path)};
    bool operator==(const MapFrame&) const = default;
};

/// The frames of one layer, in the order received. A list that is absent is not one that is empty.
struct MapTimes {
    std::optional<std::vector<MapFrame>> past;    ///< up to now
    std::optional<std::vector<MapFrame>> future;  ///< nowcast

    static constexpr auto fields =
        std::tuple{platform::key("past", &MapTimes::past), platform::key("future", &MapTimes::future)};
    bool operator==(const MapTimes&) const = default;
};

/// The whole reply to the request for the timeline, by layer.
using ApiMaps = ApiResponse<std::optional<std::map<std::string, MapTimes>>>;

}  // namespace nimbuscope

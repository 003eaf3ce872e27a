#pragma once

#include <array>
#include <cstdint>

#include "Platform/Intents/INIntentResolutionResult.hpp"

namespace nimbuscope {

/// The base map of a radar widget.
enum class MapType : std::int64_t { unknown = 0, standard = 1, satellite = 2, hybrid = 3 };

constexpr auto caseTable(MapType) {
    return std::array{MapType::unknown, MapType::standard, MapType::satellite, MapType::hybrid};
}

/// The weakest precipitation that a radar widget shows.
enum class PercipitationIntensity : std::int64_t {
    unknown = 0,
    light = 1,
    moderate = 2,
    heavy = 3,
    hail = 4
};

constexpr auto caseTable(PercipitationIntensity) {
    using enum PercipitationIntensity;
    return std::array{unknown, light, moderate, heavy, hail};
}

/// What a map widget shows over the ground.
enum class MapLayer : std::int64_t { unknown = 0, radar = 1, satellite = 2 };

constexpr auto caseTable(MapLayer) {
    return std::array{MapLayer::unknown, MapLayer::radar, MapLayer::satellite};
}

using MapTypeResolutionResult = platform::INEnumResolutionResult<MapType>;
using PercipitationIntensityResolutionResult = platform::INEnumResolutionResult<PercipitationIntensity>;
using MapLayerResolutionResult = platform::INEnumResolutionResult<MapLayer>;

}  // namespace nimbuscope

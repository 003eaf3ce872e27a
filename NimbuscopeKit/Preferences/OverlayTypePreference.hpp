#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "NimbuscopeKit/Preferences/HostIdentifier.hpp"
#include "NimbuscopeKit/Preferences/PlayerInterval.hpp"
#include "Platform/Core/Export.hpp"

namespace nimbuscope {

/// What the map shows over the ground.
enum class OverlayTypePreference : std::int64_t {
    radar = 0,
    satellite = 1,
    radarAndSatellite = 2,
    singleRadar = 3,
    globalRainAndSnow = 4,
    radarExtendedForecast = 5,
    temperature = 6,
};

constexpr auto caseTable(OverlayTypePreference) {
    using enum OverlayTypePreference;
    return std::array{radar,       satellite,         radarAndSatellite,
                      singleRadar, globalRainAndSnow, radarExtendedForecast,
                      temperature};
}

/// The path segment of the overlay's data, e.g. "satprecip".
[[nodiscard]] NIMBUSCOPE_EXPORT std::string_view path(OverlayTypePreference overlay);

/// Which host serves the overlay's data.
[[nodiscard]] NIMBUSCOPE_EXPORT HostIdentifier identifier(OverlayTypePreference overlay);

/// The spans that the player offers for the overlay, and the one that it starts with.
[[nodiscard]] NIMBUSCOPE_EXPORT OverlayPlayerIntervals intervals(OverlayTypePreference overlay);
[[nodiscard]] NIMBUSCOPE_EXPORT PlayerInterval defaultInterval(OverlayTypePreference overlay);

}  // namespace nimbuscope

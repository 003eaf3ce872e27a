#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "NimbuscopeKit/Preferences/UnitsPreference.hpp"

namespace nimbuscope {

/// The weakest echo that is drawn; the raw value is its reflectivity in dBZ.
enum class IntensityPreference : std::int64_t {
    None = -32,
    Overcast = 10,
    Drizzle = 15,
    LightRain = 20,
    Rain = 25,
    HeavyRain = 35,
    Storm = 45,
    Hail = 55,
};

constexpr auto caseTable(IntensityPreference) {
    using enum IntensityPreference;
    return std::array{None, Overcast, Drizzle, LightRain, Rain, HeavyRain, Storm, Hail};
}

/// The base map under the overlays.
enum class MapTypePreference : std::int64_t { Standard = 0, Satellite = 1, Hybrid = 2 };

constexpr auto caseTable(MapTypePreference) {
    return std::array{MapTypePreference::Standard, MapTypePreference::Satellite, MapTypePreference::Hybrid};
}

/// What the tooltip of the map's legend shows.
enum class LegendTooltipTypePreference : std::int64_t { intensity = 0, speed = 1, dBZ = 2 };

constexpr auto caseTable(LegendTooltipTypePreference) {
    using enum LegendTooltipTypePreference;
    return std::array{intensity, speed, dBZ};
}

/// The heading of the tooltip: "Intensity", the unit of the rain rate ("mm/h" or "inch/hr"), or "dBZ".
[[nodiscard]] constexpr std::string_view title(LegendTooltipTypePreference tooltip, UnitsPreference units) {
    switch (tooltip) {
        case LegendTooltipTypePreference::intensity:
            return "Intensity";
        case LegendTooltipTypePreference::speed:
            return units == UnitsPreference::Metric ? "mm/h" : "inch/hr";
        case LegendTooltipTypePreference::dBZ:
            break;
    }
    return "dBZ";
}

}  // namespace nimbuscope

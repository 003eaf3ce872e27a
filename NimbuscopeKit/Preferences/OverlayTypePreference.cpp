#include "NimbuscopeKit/Preferences/OverlayTypePreference.hpp"

#include "Platform/Core/Fatal.hpp"

namespace nimbuscope {
namespace {

constexpr std::array fullPast{0.0, oneHour, sixHours, twelveHours, oneDay, twoDays};
constexpr std::array shortForecast{0.0, oneHour, twoHours};
constexpr std::array longForecast{threeDays};
constexpr std::array nothing{0.0};

struct Overlay {
    OverlayTypePreference type;
    std::string_view path;
    HostIdentifier identifier;
    OverlayPlayerIntervals intervals;
    PlayerInterval defaultInterval;
};

// The combined and the single-station radar deliberately share the radar's path and host.
constexpr std::array overlays{
    Overlay{OverlayTypePreference::radar,
            "radar",
            HostIdentifier::radar,
            {fullPast, shortForecast},
            {oneHour, twoHours}},
    Overlay{OverlayTypePreference::satellite,
            "satellite",
            HostIdentifier::satellite,
            {fullPast, nothing},
            {oneHour, 0}},
    Overlay{OverlayTypePreference::radarAndSatellite,
            "radar",
            HostIdentifier::radar,
            {fullPast, shortForecast},
            {oneHour, twoHours}},
    Overlay{OverlayTypePreference::singleRadar,
            "radar",
            HostIdentifier::radar,
            {fullPast, nothing},
            {oneHour, 0}},
    Overlay{OverlayTypePreference::globalRainAndSnow,
            "satprecip",
            HostIdentifier::satprecip,
            {fullPast, shortForecast},
            {oneHour, twoHours}},
    Overlay{OverlayTypePreference::radarExtendedForecast,
            "nwpprecip",
            HostIdentifier::extendedRadar,
            {nothing, longForecast},
            {0, threeDays}},
    Overlay{OverlayTypePreference::temperature,
            "nwptemp",
            HostIdentifier::temperature,
            {nothing, longForecast},
            {0, threeDays}},
};

const Overlay& row(OverlayTypePreference type) {
    const auto index = static_cast<std::size_t>(type);
    platform::precondition(index < overlays.size() && overlays[index].type == type, "no such overlay");
    return overlays[index];
}

}  // namespace

std::string_view path(OverlayTypePreference overlay) {
    return row(overlay).path;
}

HostIdentifier identifier(OverlayTypePreference overlay) {
    return row(overlay).identifier;
}

OverlayPlayerIntervals intervals(OverlayTypePreference overlay) {
    return row(overlay).intervals;
}

PlayerInterval defaultInterval(OverlayTypePreference overlay) {
    return row(overlay).defaultInterval;
}

}  // namespace nimbuscope

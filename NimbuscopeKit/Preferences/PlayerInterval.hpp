#pragma once

#include <array>
#include <span>
#include <tuple>

#include "Platform/Coding/Fields.hpp"

namespace nimbuscope {

/// Spans of time that the player offers, in seconds.
inline constexpr double oneHour = 3600;
inline constexpr double twoHours = 7200;
inline constexpr double sixHours = 21600;
inline constexpr double twelveHours = 43200;
inline constexpr double oneDay = 86400;
inline constexpr double twoDays = 172800;
inline constexpr double threeDays = 259200;

/// How far the player reaches back from now and ahead of it, in seconds.
struct PlayerInterval {
    double past = 0;
    double forecast = 0;

    static constexpr auto fields = std::tuple{platform::key("past", &PlayerInterval::past),
                                              platform::key("forecast", &PlayerInterval::forecast)};
    bool operator==(const PlayerInterval&) const = default;
};

/// The spans that may be chosen for an overlay, in seconds, ascending. The lists are borrowed.
struct OverlayPlayerIntervals {
    std::span<const double> past;
    std::span<const double> forecast;
};

}  // namespace nimbuscope

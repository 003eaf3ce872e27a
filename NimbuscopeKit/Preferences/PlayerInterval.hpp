#pragma once

#include <cstdint>
#include <span>
#include <tuple>

#include "NimbuscopeKit/Preferences/TimeIntervalUnit.hpp"
#include "Platform/Coding/Fields.hpp"
#include "Platform/Core/Export.hpp"

namespace nimbuscope {

enum class OverlayTypePreference : std::int64_t;

/// Spans of time that the player offers, in seconds.
inline constexpr double oneHour = TimeIntervalUnit::hours(1).interval();
inline constexpr double twoHours = TimeIntervalUnit::hours(2).interval();
inline constexpr double sixHours = TimeIntervalUnit::hours(6).interval();
inline constexpr double twelveHours = TimeIntervalUnit::hours(12).interval();
inline constexpr double oneDay = TimeIntervalUnit::days(1).interval();
inline constexpr double twoDays = TimeIntervalUnit::days(2).interval();
inline constexpr double threeDays = TimeIntervalUnit::days(3).interval();

/// How far the player reaches back from now and ahead of it, in seconds.
struct NIMBUSCOPE_EXPORT PlayerInterval {
    double past = 0;
    double forecast = 0;

    static const PlayerInterval zero;

    /// The shorter of both pasts with the shorter of both forecasts.
    [[nodiscard]] PlayerInterval restricted(const PlayerInterval& other) const;

    /// This interval with each half that may not be chosen for `overlay` replaced by the overlay's default.
    /// Values are listed when they are exactly equal.
    [[nodiscard]] PlayerInterval withValuesListed(OverlayTypePreference overlay) const;

    static constexpr auto fields = std::tuple{platform::key("past", &PlayerInterval::past),
                                              platform::key("forecast", &PlayerInterval::forecast)};
    bool operator==(const PlayerInterval&) const = default;
};

inline constexpr PlayerInterval PlayerInterval::zero{};

/// The spans that may be chosen for an overlay, in seconds, ascending. The lists are borrowed.
struct NIMBUSCOPE_EXPORT OverlayPlayerIntervals {
    std::span<const double> past;
    std::span<const double> forecast;

    /// No span but zero in either list.
    static const OverlayPlayerIntervals zero;

    /// The longest of each list; 0 for an empty one.
    [[nodiscard]] PlayerInterval range() const;
};

}  // namespace nimbuscope

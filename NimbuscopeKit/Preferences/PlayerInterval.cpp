#include "NimbuscopeKit/Preferences/PlayerInterval.hpp"

#include <algorithm>
#include <array>

#include "NimbuscopeKit/Preferences/OverlayTypePreference.hpp"

namespace nimbuscope {
namespace {

constexpr std::array onlyZero{0.0};

double longest(std::span<const double> spans) {
    return spans.empty() ? 0 : std::ranges::max(spans);
}

double listed(double span, std::span<const double> spans, double fallback) {
    return std::ranges::find(spans, span) != spans.end() ? span : fallback;
}

}  // namespace

constinit const OverlayPlayerIntervals OverlayPlayerIntervals::zero{onlyZero, onlyZero};

PlayerInterval OverlayPlayerIntervals::range() const {
    return {longest(past), longest(forecast)};
}

PlayerInterval PlayerInterval::restricted(const PlayerInterval& other) const {
    return {std::min(past, other.past), std::min(forecast, other.forecast)};
}

PlayerInterval PlayerInterval::withValuesListed(OverlayTypePreference overlay) const {
    const OverlayPlayerIntervals allowed = intervals(overlay);
    const PlayerInterval fallback = defaultInterval(overlay);
    return {listed(past, allowed.past, fallback.past), listed(forecast, allowed.forecast, fallback.forecast)};
}

}  // namespace nimbuscope

#include "NimbuscopeKit/Forecast/ApiForecastNowcast.hpp"

#include <algorithm>
#include <iterator>

#include "Platform/Locale/TextKey.hpp"

namespace nimbuscope {
namespace {

using Sample = ApiForecastNowcastTimeData;
using platform::textKey;

bool isWet(const Sample& sample) {
    return sample.precipitation > 0;
}

std::int64_t minutesUntil(const Sample& sample, double now) {
    constexpr double most = 0x1p62;  // of seconds: a time may be any number
    return static_cast<std::int64_t>(std::clamp(static_cast<double>(sample.time) - now, 0.0, most)) / 60;
}

}  // namespace

std::string ApiForecastNowcast::longTimeToNextPercipitationString(double timeInterval,
                                                                  const platform::Bundle& bundle) const {
    const auto when = [&](std::string_view words, const Sample& sample) {
        return bundle.localizedString(words) + ' ' + std::to_string(minutesUntil(sample, timeInterval)) +
               ' ' + bundle.localizedString(textKey("m"));
    };
    const auto isLater = [&](const Sample& sample) {
        return static_cast<double>(sample.time) > timeInterval;
    };
    if (data.empty() || static_cast<double>(data.back().time) < timeInterval) {
        return {};
    }
    const auto next = std::ranges::find_if(data, isLater);
    if (next == data.begin() || !isWet(*std::prev(next))) {
        const auto start = std::find_if(next, data.end(), isWet);
        return start != data.end() ? when(textKey("in"), *start) : std::string();
    }
    const auto end = std::find_if_not(next, data.end(), isWet);
    if (end == data.end()) {
        return bundle.localizedString(textKey("lasts more than 1 hour"));
    }
    const auto again = std::find_if(end, data.end(), isWet);
    return when(textKey("Ends in"), *end) +
           (again != data.end() ? ", " + when(textKey("again in"), *again) : std::string());
}

}  // namespace nimbuscope

#include "LocalClock.hpp"

#include <algorithm>
#include <array>

namespace nimbuscope::tool {

LocalClock::LocalClock(const std::optional<std::string>& zone)
    : offset_(zone ? platform::ICUTimeZone::named(*zone) : std::nullopt), zone_(offset_ ? *zone : "UTC") {}

std::optional<std::tm> LocalClock::at(std::int64_t time) const {
    constexpr std::int64_t firstYear = -62'135'596'800;  // 0001-01-01
    constexpr std::int64_t lastYear = 253'370'764'800;   // 9999-01-01
    if (time < firstYear || time > lastYear) {
        return std::nullopt;
    }
    const std::time_t local = time + (offset_ ? offset_->secondsFromGMT(time) : 0);
    std::tm parts{};
    return ::gmtime_r(&local, &parts) != nullptr ? std::optional(parts) : std::nullopt;
}

std::string LocalClock::text(std::int64_t time, const char* form) const {
    const auto parts = at(time);
    if (!parts) {
        return std::to_string(time);
    }
    std::array<char, 64> text;
    return {text.data(), std::strftime(text.data(), text.size(), form, &*parts)};
}

std::string LocalClock::text(double time, const char* form) const {
    constexpr double most = 0x1p53;  // what is beyond has no year of four figures either
    return text(static_cast<std::int64_t>(std::clamp(time, -most, most)), form);
}

int LocalClock::hour(std::int64_t time) const {
    const auto parts = at(time);
    return parts ? parts->tm_hour : 0;
}

}  // namespace nimbuscope::tool

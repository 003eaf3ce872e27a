#include "Platform/Linux/TimeZone_icu.hpp"

#include <unicode/ucal.h>

#include <algorithm>
#include <array>

namespace nimbuscope::platform {
namespace {

constexpr std::int64_t furthest = 3'155'760'000'000;  // seconds in 100,000 years

}  // namespace

ICUTimeZone ICUTimeZone::current() {
    std::array<UChar, 256> name;
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t length = ucal_getHostTimeZone(name.data(), name.size(), &status);
    std::string identifier;
    for (std::int32_t i = 0; U_SUCCESS(status) && i < length; ++i) {
        identifier += static_cast<char>(name[static_cast<std::size_t>(i)]);  // names are ASCII
    }
    auto zone = named(identifier);
    return zone ? std::move(*zone) : *named("Etc/UTC");
}

std::optional<ICUTimeZone> ICUTimeZone::named(std::string_view name) {
    std::array<UChar, 64> identifier;  // the longest name has 32 letters, all of them ASCII
    if (name.size() > identifier.size()) {
        return std::nullopt;
    }
    std::ranges::copy(name, identifier.begin());
    const auto size = static_cast<std::int32_t>(name.size());
    std::array<UChar, 64> canonical;
    UErrorCode status = U_ZERO_ERROR;
    ucal_getCanonicalTimeZoneID(identifier.data(), size, canonical.data(), canonical.size(), nullptr,
                                &status);
    Calendar calendar(ucal_open(identifier.data(), size, "", UCAL_GREGORIAN, &status), ucal_close);
    return U_SUCCESS(status) ? std::optional(ICUTimeZone(name, std::move(calendar))) : std::nullopt;
}

std::int64_t ICUTimeZone::secondsFromGMT(std::int64_t time) const {
    constexpr std::int64_t millisecond = 1000;
    const std::int64_t asked = time < -furthest || time > furthest ? 0 : time;
    UErrorCode status = U_ZERO_ERROR;
    ucal_setMillis(calendar_.get(), static_cast<UDate>(asked * millisecond), &status);
    const std::int64_t offset = ucal_get(calendar_.get(), UCAL_ZONE_OFFSET, &status) +
                                ucal_get(calendar_.get(), UCAL_DST_OFFSET, &status);
    return U_SUCCESS(status) ? offset / millisecond : 0;
}

}  // namespace nimbuscope::platform

#include "Platform/Linux/Locale_icu.hpp"

#include <unicode/udatpg.h>
#include <unicode/uloc.h>
#include <unicode/ulocdata.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <array>
#include <memory>

#include "Platform/Linux/Environment.hpp"

namespace nimbuscope::platform {
namespace {

std::string identifierOf(std::string_view posixName) {
    std::string identifier(posixName.substr(0, posixName.find_first_of(".@")));
    // To the Unicode data these names would be languages that they do not have.
    return identifier == "C" || identifier == "POSIX" ? std::string() : identifier;
}

std::optional<std::string> utf8Of(const UChar* text, std::int32_t length) {
    std::array<char, 1024> bytes;
    std::int32_t size = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8(bytes.data(), bytes.size(), &size, text, length, &status);
    return U_SUCCESS(status) ? std::optional(std::string(bytes.data(), static_cast<std::size_t>(size)))
                             : std::nullopt;
}

/// Whether a code can be a country's; ZZ stands for none, although it has a text.
bool isCountryCode(std::string_view code) {
    const auto isLetter = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); };
    const auto isFigure = [](char c) { return c >= '0' && c <= '9'; };
    const bool isNone = code == "ZZ" || code == "zz";
    return (!isNone && (code.size() == 2 || code.size() == 3) && std::ranges::all_of(code, isLetter)) ||
           (code.size() == 3 && std::ranges::all_of(code, isFigure));
}

}  // namespace

ICULocale::ICULocale(std::string_view posixName)
    : measures_(identifierOf(posixName)), reads_(measures_), tellsTime_(measures_) {}

ICULocale ICULocale::ofUser() {
    ICULocale locale(localeName("LC_MEASUREMENT"));
    locale.reads_ = identifierOf(localeName("LC_MESSAGES"));
    locale.tellsTime_ = identifierOf(localeName("LC_TIME"));
    return locale;
}

std::string ICULocale::identifier() const {
    return reads_.empty() ? "en_US_POSIX" : reads_;
}

bool ICULocale::uses12HourClock() const {
    if (tellsTime_.empty()) {
        return false;
    }
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UDateTimePatternGenerator, decltype(&udatpg_close)> generator(
        udatpg_open(tellsTime_.c_str(), &status), &udatpg_close);
    const UDateFormatHourCycle cycle = udatpg_getDefaultHourCycle(generator.get(), &status);
    return U_SUCCESS(status) && (cycle == UDAT_HOUR_CYCLE_11 || cycle == UDAT_HOUR_CYCLE_12);
}

bool ICULocale::usesMetricSystem() const {
    // An empty identifier would ask for the process's default locale instead.
    if (measures_.empty()) {
        return true;
    }
    UErrorCode status = U_ZERO_ERROR;
    const UMeasurementSystem system = ulocdata_getMeasurementSystem(measures_.c_str(), &status);
    // The British system differs from the metric one on roads only.
    return U_FAILURE(status) || system != UMS_US;
}

std::optional<std::string> ICULocale::displayNameOfCountry(std::string_view code) const {
    if (!isCountryCode(code)) {
        return std::nullopt;
    }
    const std::string locale = "und_" + std::string(code);
    std::array<UChar, 256> name;
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t length = uloc_getDisplayCountry(locale.c_str(), reads_.empty() ? "en" : reads_.c_str(),
                                                       name.data(), name.size(), &status);
    auto text = U_SUCCESS(status) ? utf8Of(name.data(), length) : std::nullopt;
    // Where no language has a name, the code comes back, in capitals.
    std::array<char, 8> capitals{};
    uloc_getCountry(locale.c_str(), capitals.data(), capitals.size(), &status);
    return U_SUCCESS(status) && text == capitals.data() ? std::nullopt : text;
}

}  // namespace nimbuscope::platform

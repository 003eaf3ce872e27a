#pragma once

#include <string>
#include <string_view>

#include "Platform/Core/Export.hpp"
#include "Platform/Locale/Locale.hpp"

namespace nimbuscope::platform {

/// A locale as the Unicode locale data (CLDR) know it, found by name: it need not be installed.
class NIMBUSCOPE_EXPORT ICULocale final : public Locale {
  public:
    /// The locale of a POSIX name ("de_CH.UTF-8@euro"); codeset and modifier do not count. "C", "POSIX", the
    /// empty name and names that nobody knows stand for no region: metric.
    explicit ICULocale(std::string_view posixName);

    /// The locale of the user, who measures by the first of `LC_ALL`, `LC_MEASUREMENT` and `LANG` that is set
    /// and not empty, reads by the first of `LC_ALL`, `LC_MESSAGES` and `LANG`, and tells the time by the
    /// first of `LC_ALL`, `LC_TIME` and `LANG`. Reads the environment, which no other thread may change
    /// meanwhile.
    [[nodiscard]] static ICULocale ofUser();

    /// That which the user reads by; "en_US_POSIX" for no region.
    [[nodiscard]] std::string identifier() const override;

    /// By the preferred hour cycle of the region; 24 hours for no region.
    [[nodiscard]] bool uses12HourClock() const override;

    [[nodiscard]] bool usesMetricSystem() const override;

    /// In English where the locale has no language. Countries are those of ISO 3166 with two or three letters
    /// or three figures.
    [[nodiscard]] std::optional<std::string> displayNameOfCountry(std::string_view code) const override;

  private:
    // Language and region: "de_CH"; empty for no region.
    std::string measures_;
    std::string reads_;
    std::string tellsTime_;
};

}  // namespace nimbuscope::platform

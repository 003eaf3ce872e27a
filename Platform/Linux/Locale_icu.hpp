#pragma once

#include <string>
#include <string_view>

#include "Platform/Locale/Locale.hpp"

namespace nimbuscope::platform {

/// A locale as the Unicode locale data (CLDR) know it, found by name: it need not be installed.
class ICULocale final : public Locale {
  public:
    /// The locale of a POSIX name ("de_CH.UTF-8@euro"); codeset and modifier do not count. "C", "POSIX", the
    /// empty name and names that nobody knows stand for no region: metric.
    explicit ICULocale(std::string_view posixName);

    /// The locale of the user, who measures by the first of `LC_ALL`, `LC_MEASUREMENT` and `LANG` that is set
    /// and not empty, and reads by the first of `LC_ALL`, `LC_MESSAGES` and `LANG`. Reads the environment,
    /// which no other thread may change meanwhile.
    [[nodiscard]] static ICULocale ofUser();

    [[nodiscard]] bool usesMetricSystem() const override;

    /// In English where the locale has no language. Countries are those of ISO 3166 with two or three letters
    /// or three figures.
    [[nodiscard]] std::optional<std::string> displayNameOfCountry(std::string_view code) const override;

  private:
    // Language and region: "de_CH"; empty for no region.
    std::string measures_;
    std::string reads_;
};

}  // namespace nimbuscope::platform

#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Platform/Core/Export.hpp"

namespace nimbuscope::platform {

/// The customs of a language and a region.
class NIMBUSCOPE_EXPORT Locale {
  public:
    virtual ~Locale() = default;

    /// Language and region: "de_CH". Safe from any thread.
    [[nodiscard]] virtual std::string identifier() const = 0;

    /// Whether clocks show 12 hours, not 24. Safe from any thread.
    [[nodiscard]] virtual bool uses12HourClock() const = 0;

    /// True unless the region measures in miles, inches and degrees Fahrenheit. Safe from any thread.
    [[nodiscard]] virtual bool usesMetricSystem() const = 0;

    /// The name of a country (ISO 3166 code, in any case) in the locale's language; absent where it has none.
    /// Safe from any thread.
    [[nodiscard]] virtual std::optional<std::string> displayNameOfCountry(std::string_view code) const = 0;
};

}  // namespace nimbuscope::platform

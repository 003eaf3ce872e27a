#pragma once

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>

#include "Platform/Linux/TimeZone_icu.hpp"

namespace nimbuscope::tool {

/// The clock on a wall in a time zone.
class LocalClock {
  public:
    /// A clock of the zone; of UTC where there is none of that name.
    explicit LocalClock(const std::optional<std::string>& zone);

    /// The zone that the clock shows.
    [[nodiscard]] const std::string& zone() const { return zone_; }

    /// What the clock shows at `time`, in seconds since 1970, in a form of `strftime`; the number itself
    /// where that is in no year of four figures.
    [[nodiscard]] std::string text(std::int64_t time, const char* form) const;
    [[nodiscard]] std::string text(double time, const char* form) const;

    /// The hour from 0 to 23.
    [[nodiscard]] int hour(std::int64_t time) const;

  private:
    [[nodiscard]] std::optional<std::tm> at(std::int64_t time) const;

    std::optional<platform::ICUTimeZone> offset_;
    std::string zone_;
};

}  // namespace nimbuscope::tool

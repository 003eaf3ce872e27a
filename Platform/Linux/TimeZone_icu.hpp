#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "Platform/Core/Export.hpp"
#include "Platform/Locale/TimeZone.hpp"

namespace nimbuscope::platform {

/// The clocks of a region as the IANA time zone database knows them.
class NIMBUSCOPE_EXPORT ICUTimeZone final : public TimeZone {
  public:
    /// The zone that the environment variable `TZ` or the system's settings name; UTC when there is none.
    [[nodiscard]] static ICUTimeZone current();

    /// The zone of a name ("America/Chicago"); none when nobody knows the name.
    [[nodiscard]] static std::optional<ICUTimeZone> named(std::string_view name);

    [[nodiscard]] std::string identifier() const override { return identifier_; }

    /// How many seconds clocks are ahead of GMT at `time`, in seconds since 1970. Times further than
    /// 100,000 years from there are taken for 1970. One thread at a time.
    [[nodiscard]] std::int64_t secondsFromGMT(std::int64_t time) const;

  private:
    using Calendar = std::unique_ptr<void*, void (*)(void**)>;

    ICUTimeZone(std::string_view identifier, Calendar calendar)
        : identifier_(identifier), calendar_(std::move(calendar)) {}

    std::string identifier_;
    Calendar calendar_;
};

}  // namespace nimbuscope::platform

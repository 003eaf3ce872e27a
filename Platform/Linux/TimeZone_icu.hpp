#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

namespace nimbuscope::platform {

/// The clocks of a region as the IANA time zone database knows them. One thread at a time.
class ICUTimeZone {
  public:
    /// The zone of a name ("America/Chicago"); none when nobody knows the name.
    [[nodiscard]] static std::optional<ICUTimeZone> named(std::string_view name);

    /// How many seconds clocks are ahead of GMT at `time`, in seconds since 1970. Times further than
    /// 100,000 years from there are taken for 1970.
    [[nodiscard]] std::int64_t secondsFromGMT(std::int64_t time) const;

  private:
    using Calendar = std::unique_ptr<void*, void (*)(void**)>;

    explicit ICUTimeZone(Calendar calendar) : calendar_(std::move(calendar)) {}

    Calendar calendar_;
};

}  // namespace nimbuscope::platform

#pragma once

#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

#include "Platform/Coding/Fields.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/Locale/Bundle.hpp"

/// Precipitation within the hour, minute by minute.
namespace nimbuscope {

struct ApiForecastNowcastPrecipitationTimes {
    std::int64_t starts = 0;
    std::int64_t ends = 0;

    static constexpr auto fields =
        std::tuple{platform::key("starts", &ApiForecastNowcastPrecipitationTimes::starts),
                   platform::key("ends", &ApiForecastNowcastPrecipitationTimes::ends)};
    bool operator==(const ApiForecastNowcastPrecipitationTimes&) const = default;
};

struct ApiForecastNowcastTimeData {
    std::int64_t time = 0;
    double precipitation = 0;

    static constexpr auto fields =
        std::tuple{platform::key("time", &ApiForecastNowcastTimeData::time),
                   platform::key("precipitation", &ApiForecastNowcastTimeData::precipitation)};
    bool operator==(const ApiForecastNowcastTimeData&) const = default;
};

struct NIMBUSCOPE_EXPORT ApiForecastNowcast {
    std::int64_t interval = 0;
    std::string icon;  ///< code of the precipitation that comes, see `ApiForecastIcon`
    ApiForecastNowcastPrecipitationTimes precipitation;
    double maxRainrate = 0;
    std::vector<ApiForecastNowcastTimeData> data;  ///< ascending in time

    /// What the series says to someone who asks at `timeInterval`, in seconds on the clock of its samples:
    ///
    ///     sentence = ""                                  nothing is coming
    ///              | "in " minutes                       dry now, precipitation comes
    ///              | "Ends in " minutes                  precipitation now, dry later
    ///              | "Ends in " minutes ", again in " minutes    and it comes back
    ///              | "lasts more than 1 hour"            precipitation now, to the end of the series
    ///     minutes  = whole minutes from `timeInterval`, rounded down " m"
    ///
    /// A sample with precipitation above 0 is wet. Each holds from its time on until the next; before the
    /// first it is dry, and behind the last nothing is known to come. The words are looked up in `bundle`,
    /// piece by piece.
    [[nodiscard]] std::string longTimeToNextPercipitationString(double timeInterval,
                                                                const platform::Bundle& bundle) const;

    static constexpr auto fields = std::tuple{
        platform::key("interval", &ApiForecastNowcast::interval),
        platform::key("icon", &ApiForecastNowcast::icon),
        platform::key("precipitation", &ApiForecastNowcast::precipitation),
        platform::key("max_rainrate", &ApiForecastNowcast::maxRainrate),
        platform::key("data", &ApiForecastNowcast::data),
    };
    bool operator==(const ApiForecastNowcast&) const = default;
};

}  // namespace nimbuscope

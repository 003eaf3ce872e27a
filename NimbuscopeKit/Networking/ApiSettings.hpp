#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "NimbuscopeKit/RadarCatalogue/ApiResponse.hpp"
#include "Platform/Coding/Fields.hpp"
#include "Platform/Coding/JSONDictionary.hpp"

/// The settings that the server publishes, as far as this system uses them.
namespace nimbuscope {

/// How long the forecast lists are.
struct ApiSettingsForecast {
    struct Hourly {
        std::int64_t items = 0;  ///< entries to present

        static constexpr auto fields = std::tuple{platform::key("items", &Hourly::items)};
        bool operator==(const Hourly&) const = default;
    };
    struct Daily {
        std::int64_t items = 0;  ///< entries to present

        static constexpr auto fields = std::tuple{platform::key("items", &Daily::items)};
        bool operator==(const Daily&) const = default;
    };

    Hourly hourly;
    Daily daily;

    static constexpr auto fields = std::tuple{platform::key("hourly", &ApiSettingsForecast::hourly),
                                              platform::key("daily", &ApiSettingsForecast::daily)};
    bool operator==(const ApiSettingsForecast&) const = default;
};

struct ApiSettingsItem {
    bool rating = false;                                    ///< of the application; carried through
    std::map<std::string, std::vector<std::string>> hosts;  ///< host names by purpose, also unknown purposes
    ApiSettingsForecast forecast;

    static constexpr auto fields = std::tuple{platform::key("rating", &ApiSettingsItem::rating),
                                              platform::key("hosts", &ApiSettingsItem::hosts),
                                              platform::key("forecast", &ApiSettingsItem::forecast)};
    bool operator==(const ApiSettingsItem&) const = default;
};

/// The whole settings document.
using ApiSettings = ApiResponse<ApiSettingsItem>;

}  // namespace nimbuscope

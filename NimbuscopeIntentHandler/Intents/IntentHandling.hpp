#pragma once

#include <memory>

#include "NimbuscopeIntentHandler/Intents/IntentResponses.hpp"
#include "NimbuscopeIntentHandler/Intents/Intents.hpp"
#include "Platform/Concurrency/Task.hpp"
#include "Platform/Core/Export.hpp"

/// What the handler of each class of intents does when the system calls. Every completion handler is called
/// exactly once, on any thread.
namespace nimbuscope {

/// The operations on a shortcut intent.
template <class IntentType, class ResponseType>
class ShortcutIntentHandling {
  public:
    using Intent = IntentType;
    using Response = ResponseType;

    virtual ~ShortcutIntentHandling() = default;

    /// Carries the intent out.
    virtual void handle(std::shared_ptr<Intent> intent,
                        platform::CompletionHandler<std::shared_ptr<Response>> completion) = 0;

    /// Says whether the intent's location will do.
    virtual void resolveLocation(std::shared_ptr<Intent> intent,
                                 platform::CompletionHandler<LocationResolutionResult> completion) = 0;

    /// Lists the locations that may be chosen.
    virtual void provideLocationOptionsCollection(
        std::shared_ptr<Intent> intent,
        platform::CompletionHandler<std::shared_ptr<LocationCollection>> completion) = 0;
};

using RadarMapIntentHandling = ShortcutIntentHandling<RadarMapIntent, RadarMapIntentResponse>;
using SatelliteMapIntentHandling = ShortcutIntentHandling<SatelliteMapIntent, SatelliteMapIntentResponse>;
using WeatherForecastIntentHandling =
    ShortcutIntentHandling<WeatherForecastIntent, WeatherForecastIntentResponse>;
using CurrentWeatherIntentHandling =
    ShortcutIntentHandling<CurrentWeatherIntent, CurrentWeatherIntentResponse>;

/// The operations on the configuration of a radar widget; completions are called before the return.
class NIMBUSCOPE_EXPORT WeatherRadarMapIntentHandling {
  public:
    virtual ~WeatherRadarMapIntentHandling() = default;

    /// Lists the locations that may be chosen, and names the one to start with, if any.
    virtual void provideLocationOptionsCollection(
        const WeatherRadarMapIntent& intent,
        platform::CompletionHandler<std::shared_ptr<ForecastLocationCollection>> completion) = 0;
    [[nodiscard]] virtual std::shared_ptr<ForecastLocation> defaultLocation(
        const WeatherRadarMapIntent& intent) = 0;

    /// Lists the colour schemes that may be chosen, and names the one to start with.
    virtual void provideMapColorSchemeOptionsCollection(
        const WeatherRadarMapIntent& intent,
        platform::CompletionHandler<std::shared_ptr<MapColorSchemeCollection>> completion) = 0;
    [[nodiscard]] virtual std::shared_ptr<MapColorScheme> defaultMapColorScheme(
        const WeatherRadarMapIntent& intent) = 0;
};

/// Configuring a forecast widget takes no operation of the extension's own.
class NIMBUSCOPE_EXPORT ConfigurationIntentHandling {
  public:
    virtual ~ConfigurationIntentHandling() = default;
};

}  // namespace nimbuscope

#pragma once

#include <memory>
#include <string_view>

#include "NimbuscopeIntentHandler/Handlers/IntentServices.hpp"
#include "NimbuscopeIntentHandler/Intents/IntentHandling.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/Intents/INExtension.hpp"

namespace nimbuscope {

/// The extension's principal object: hands each shortcut intent to a handler of its own, and serves the two
/// configuration intents of the widgets itself. Its own operations run on the calling thread.
class NIMBUSCOPE_EXPORT IntentHandler final : public platform::INExtension,
                                              public ConfigurationIntentHandling,
                                              public WeatherRadarMapIntentHandling {
  public:
    explicit IntentHandler(IntentServices services) : services_(std::move(services)) {}

    [[nodiscard]] std::string_view className() const override { return "IntentHandler"; }

    /// A new handler for a shortcut intent; this object for any other. Must itself be held by a shared
    /// pointer.
    [[nodiscard]] std::shared_ptr<NSObject> handler(const platform::INIntent& intent) override;

    void provideLocationOptionsCollection(
        const WeatherRadarMapIntent& intent,
        platform::CompletionHandler<std::shared_ptr<ForecastLocationCollection>> completion) override;

    /// The place of the current location, else the first place, else none.
    [[nodiscard]] std::shared_ptr<ForecastLocation> defaultLocation(
        const WeatherRadarMapIntent& intent) override;

    /// One option per colour scheme, in the order of the scheme list.
    void provideMapColorSchemeOptionsCollection(
        const WeatherRadarMapIntent& intent,
        platform::CompletionHandler<std::shared_ptr<MapColorSchemeCollection>> completion) override;

    [[nodiscard]] std::shared_ptr<MapColorScheme> defaultMapColorScheme(
        const WeatherRadarMapIntent& intent) override;

  private:
    IntentServices services_;
};

}  // namespace nimbuscope

#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "NimbuscopeIntentHandler/Handlers/IntentServices.hpp"
#include "NimbuscopeIntentHandler/Intents/IntentHandling.hpp"
#include "Platform/Core/Export.hpp"

namespace nimbuscope {

/// The screen that a shortcut opens: what the activity for the application says beside the place.
struct ShortcutScreen {
    std::string_view title;
    std::map<std::string, std::string> userInfo;
};

/// The asynchronous bodies that all shortcut handlers share.
namespace shortcut {

[[nodiscard]] NIMBUSCOPE_EXPORT platform::AsyncBody<std::shared_ptr<LocationCollection>> locationOptions(
    std::function<SharedStorage&()> storage);

/// Success with that very object, or the need of a value when there is none.
[[nodiscard]] NIMBUSCOPE_EXPORT platform::AsyncBody<LocationResolutionResult> resolve(
    std::shared_ptr<Location> location);

/// The activity that opens `screen` for the place that `location` names.
[[nodiscard]] NIMBUSCOPE_EXPORT platform::NSUserActivity activity(const ShortcutScreen& screen,
                                                                  const Location& location);

/// Continue in the application when there is a location, failure otherwise.
template <class Response>
[[nodiscard]] platform::AsyncBody<std::shared_ptr<Response>> handle(std::shared_ptr<Location> location,
                                                                    ShortcutScreen screen) {
    if (!location) {
        co_return std::make_shared<Response>(IntentResponseCode::failure, std::nullopt);
    }
    co_return std::make_shared<Response>(IntentResponseCode::continueInApp, activity(screen, *location));
}

}  // namespace shortcut

/// Serves one class of shortcut intents: each operation starts a task that runs its body.
template <class Handling>
class ShortcutIntentHandler : public platform::NSObject, public Handling {
  public:
    using typename Handling::Intent;
    using typename Handling::Response;

    explicit ShortcutIntentHandler(IntentServices services) : services_(std::move(services)) {}

    void handle(std::shared_ptr<Intent> intent,
                platform::CompletionHandler<std::shared_ptr<Response>> completion) override {
        services_.tasks.start(shortcut::handle<Response>(intent->location(), screen()),
                              std::move(completion));
    }

    void resolveLocation(std::shared_ptr<Intent> intent,
                         platform::CompletionHandler<LocationResolutionResult> completion) override {
        services_.tasks.start(shortcut::resolve(intent->location()), std::move(completion));
    }

    void provideLocationOptionsCollection(
        std::shared_ptr<Intent> /*intent*/,
        platform::CompletionHandler<std::shared_ptr<LocationCollection>> completion) override {
        services_.tasks.start(shortcut::locationOptions(services_.storage), std::move(completion));
    }

  protected:
    [[nodiscard]] virtual ShortcutScreen screen() const = 0;

  private:
    IntentServices services_;
};

class NIMBUSCOPE_EXPORT RadarMapIntentHandler final : public ShortcutIntentHandler<RadarMapIntentHandling> {
  public:
    using ShortcutIntentHandler::ShortcutIntentHandler;
    [[nodiscard]] std::string_view className() const override { return "RadarMapIntentHandler"; }

  protected:
    [[nodiscard]] ShortcutScreen screen() const override { return {"Radar Map", {{"map_layer", "radar"}}}; }
};

class NIMBUSCOPE_EXPORT SatelliteMapIntentHandler final
    : public ShortcutIntentHandler<SatelliteMapIntentHandling> {
  public:
    using ShortcutIntentHandler::ShortcutIntentHandler;
    [[nodiscard]] std::string_view className() const override { return "SatelliteMapIntentHandler"; }

  protected:
    [[nodiscard]] ShortcutScreen screen() const override {
        return {"Satellite Map", {{"map_layer", "satellite"}}};
    }
};

class NIMBUSCOPE_EXPORT WeatherForecastIntentHandler final
    : public ShortcutIntentHandler<WeatherForecastIntentHandling> {
  public:
    using ShortcutIntentHandler::ShortcutIntentHandler;
    [[nodiscard]] std::string_view className() const override { return "WeatherForecastIntentHandler"; }

  protected:
    [[nodiscard]] ShortcutScreen screen() const override { return {"Weather Forecast", {}}; }
};

class NIMBUSCOPE_EXPORT CurrentWeatherIntentHandler final
    : public ShortcutIntentHandler<CurrentWeatherIntentHandling> {
  public:
    using ShortcutIntentHandler::ShortcutIntentHandler;
    [[nodiscard]] std::string_view className() const override { return "CurrentWeatherIntentHandler"; }

  protected:
    [[nodiscard]] ShortcutScreen screen() const override {
        return {"Weather Conditions", {{"forecast_block", "conditions"}}};
    }
};

}  // namespace nimbuscope

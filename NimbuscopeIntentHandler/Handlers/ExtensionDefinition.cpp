#include "NimbuscopeIntentHandler/Handlers/ExtensionDefinition.hpp"

#include <array>

#include "NimbuscopeIntentHandler/Handlers/IntentHandler.hpp"
#include "NimbuscopeIntentHandler/Intents/IntentHandling.hpp"

namespace nimbuscope {
namespace {

using platform::INCallError;
using platform::INCallReply;
using platform::INIntent;
using platform::INReplyHandler;
using platform::NSObject;
using Handler = std::shared_ptr<NSObject>;
using IntentPointer = std::shared_ptr<INIntent>;

template <class T>
INCallReply replyWith(const std::shared_ptr<T>& value) {
    return value ? platform::callReply(*value) : INCallReply("null");
}

INCallReply replyWith(const LocationResolutionResult& value) {
    return platform::callReply(value);
}

/// A completion handler that sends the outcome of an operation as the reply.
auto sendingTo(INReplyHandler reply) {
    return [reply = std::move(reply)](auto outcome) mutable {
        reply(outcome ? replyWith(*outcome)
                      : std::unexpected(
                            INCallError{INCallError::Code::failed, outcome.error().localizedDescription}));
    };
}

template <class Handling>
std::array<platform::INOperation, 3> shortcutOperations() {
    using Intent = typename Handling::Intent;
    return {{
        {"provideLocationOptionsCollection", Intent::name,
         [](const Handler& handler, const IntentPointer& intent, INReplyHandler reply) {
             dynamic_cast<Handling&>(*handler).provideLocationOptionsCollection(
                 std::static_pointer_cast<Intent>(intent), sendingTo(std::move(reply)));
         }},
        {"resolveLocation", Intent::name,
         [](const Handler& handler, const IntentPointer& intent, INReplyHandler reply) {
             dynamic_cast<Handling&>(*handler).resolveLocation(std::static_pointer_cast<Intent>(intent),
                                                               sendingTo(std::move(reply)));
         }},
        {"handle", Intent::name,
         [](const Handler& handler, const IntentPointer& intent, INReplyHandler reply) {
             dynamic_cast<Handling&>(*handler).handle(std::static_pointer_cast<Intent>(intent),
                                                      sendingTo(std::move(reply)));
         }},
    }};
}

WeatherRadarMapIntentHandling& radarWidget(const Handler& handler) {
    return dynamic_cast<WeatherRadarMapIntentHandling&>(*handler);
}

const WeatherRadarMapIntent& radarIntent(const IntentPointer& intent) {
    return static_cast<const WeatherRadarMapIntent&>(*intent);
}

std::array<platform::INOperation, 4> radarWidgetOperations() {
    constexpr auto name = WeatherRadarMapIntent::name;
    return {{
        {"provideLocationOptionsCollection", name,
         [](const Handler& handler, const IntentPointer& intent, INReplyHandler reply) {
             radarWidget(handler).provideLocationOptionsCollection(radarIntent(intent),
                                                                   sendingTo(std::move(reply)));
         }},
        {"defaultLocation", name,
         [](const Handler& handler, const IntentPointer& intent, INReplyHandler reply) {
             reply(replyWith(radarWidget(handler).defaultLocation(radarIntent(intent))));
         }},
        {"provideMapColorSchemeOptionsCollection", name,
         [](const Handler& handler, const IntentPointer& intent, INReplyHandler reply) {
             radarWidget(handler).provideMapColorSchemeOptionsCollection(radarIntent(intent),
                                                                         sendingTo(std::move(reply)));
         }},
        {"defaultMapColorScheme", name,
         [](const Handler& handler, const IntentPointer& intent, INReplyHandler reply) {
             reply(replyWith(radarWidget(handler).defaultMapColorScheme(radarIntent(intent))));
         }},
    }};
}

std::vector<platform::INOperation> allOperations() {
    std::vector<platform::INOperation> all;
    const auto append = [&](const auto& operations) {
        all.insert(all.end(), operations.begin(), operations.end());
    };
    append(radarWidgetOperations());
    append(shortcutOperations<RadarMapIntentHandling>());
    append(shortcutOperations<SatelliteMapIntentHandling>());
    append(shortcutOperations<WeatherForecastIntentHandling>());
    append(shortcutOperations<CurrentWeatherIntentHandling>());
    return all;
}

template <class Intent>
constexpr platform::INIntentDefinition definitionOf{
    Intent::name, []() -> IntentPointer { return std::make_shared<Intent>(); }};

constexpr std::array intents{
    definitionOf<ConfigurationIntent>,   definitionOf<WeatherRadarMapIntent>,
    definitionOf<RadarMapIntent>,        definitionOf<SatelliteMapIntent>,
    definitionOf<WeatherForecastIntent>, definitionOf<CurrentWeatherIntent>,
};

}  // namespace

platform::INExtensionDefinition extensionDefinition(IntentServices services) {
    static const std::vector<platform::INOperation> operations = allOperations();
    return {.makePrincipal = [services =
                                  std::move(services)] { return std::make_shared<IntentHandler>(services); },
            .intents = intents,
            .operations = operations};
}

}  // namespace nimbuscope

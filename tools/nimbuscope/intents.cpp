// The noun `intents`: the extension's operations, carried out in this process.

#include <fmt/format.h>

#include <future>

#include "CommandLine.hpp"
#include "NimbuscopeIntentHandler/Handlers/ExtensionDefinition.hpp"
#include "NimbuscopeIntentHandler/Intents/Intents.hpp"
#include "Platform/Linux/Bundle_gettext.hpp"
#include "Platform/Linux/NSUserDefaults_sqlite.hpp"
#include "ReadableJSON.hpp"

namespace nimbuscope::tool {
namespace {

struct Options {
    std::string method;
    std::string intent;
    std::optional<std::string> locationId;
    std::optional<std::string> locationName;
    bool isJSON = false;
};

/// The parameters of the call, as the protocol has them.
std::string paramsText(const Options& options) {
    platform::JSONWriter writer;
    writer.beginObject();
    writer.key("intent");
    writer.beginObject();
    writer.key("class");
    writer.value(options.intent);
    writer.key("parameters");
    writer.beginObject();
    if (options.locationId || options.locationName) {
        const bool isWidget =
            options.intent == WeatherRadarMapIntent::name || options.intent == ConfigurationIntent::name;
        writer.key("location");
        writer.beginObject();
        writer.key("class");
        writer.value(isWidget ? "ForecastLocation" : "Location");
        writer.key("identifier");
        options.locationId ? writer.value(*options.locationId) : writer.null();
        writer.key("display");
        writer.value(options.locationName ? *options.locationName : *options.locationId);
        writer.endObject();
    }
    writer.endObject();
    writer.endObject();
    writer.endObject();
    return writer.finish().value_or("");
}

/// Carries out the call on an extension over the given stores.
CommandResult<std::string> call(platform::NSUserDefaultsSuites& suites, const Options& options) {
    platform::JSONDocument document;
    const auto params = document.parse(paramsText(options));
    if (!params) {
        return std::unexpected(CommandError{"intents", "the arguments are not valid UTF-8"});
    }
    SharedStorage storage(suites);
    const platform::GettextBundle bundle(NIMBUSCOPE_LOCALE_DIRECTORY);
    platform::TaskPool tasks(1);
    const platform::INExtensionDispatcher dispatcher(
        extensionDefinition({[&]() -> SharedStorage& { return storage; }, bundle, tasks}));
    std::promise<platform::INCallReply> promise;
    dispatcher.call(options.method, &*params,
                    [&](platform::INCallReply reply) { promise.set_value(std::move(reply)); });
    auto reply = promise.get_future().get();
    tasks.join();
    return reply ? CommandResult<std::string>(std::move(*reply))
                 : std::unexpected(CommandError{"intents", reply.error().reason});
}

CommandResult<void> run(const CommandLine& commandLine, const Options& options, std::string& output) {
    const auto directory = commandLine.storeDirectory();
    if (!directory) {
        return std::unexpected(directory.error());
    }
    platform::SQLiteUserDefaultsSuites suites(*directory);
    // The extension answers from an unreadable store as from an empty one; here the user is told.
    const auto group = suites.suite(SharedStorage::appGroupIdentifier);
    const auto stored = group ? (*group)->object(SharedStorage::placesKey) : std::unexpected(group.error());
    if (!stored) {
        return std::unexpected(CommandError{"store", stored.error().message()});
    }
    const auto reply = call(suites, options);
    if (!reply) {
        return std::unexpected(reply.error());
    }
    output = options.isJSON ? *reply + '\n' : readableJSON(*reply);
    return {};
}

}  // namespace

void addIntents(CommandLine& commandLine) {
    const auto options = std::make_shared<Options>();
    auto& noun = commandLine.addCommand(
        "intents", "Asks what the extension would answer",
        "nimbuscope intents resolveLocation RadarMapIntent --location-id lisbon --location-name Lisbon",
        [&commandLine, options](std::string& output) { return run(commandLine, *options, output); });
    noun.add_option("METHOD", options->method, "Method of the extension protocol")
        ->required()
        ->check(CLI::IsMember({"handler", "provideLocationOptionsCollection", "defaultLocation",
                               "provideMapColorSchemeOptionsCollection", "defaultMapColorScheme",
                               "resolveLocation", "handle"}));
    noun.add_option("INTENT", options->intent, "Class of the intent")->required();
    noun.add_option("--location-id", options->locationId, "Identifier of the intent's location");
    noun.add_option("--location-name", options->locationName, "Name of the intent's location");
    noun.add_flag("--json", options->isJSON, "Print the result as JSON");
}

}  // namespace nimbuscope::tool

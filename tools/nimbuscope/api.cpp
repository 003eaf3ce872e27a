// The noun `api`: requests to the mobile API.

#include "ApiClient.hpp"
#include "CommandLine.hpp"
#include "MapsText.hpp"
#include "NimbuscopeKit/Networking/ApiService.hpp"
#include "Platform/Core/Fatal.hpp"

namespace nimbuscope::tool {
namespace {

/// What the verbs share, and what each of them takes.
struct ApiOptions {
    std::string caFile;
    std::int64_t step = 0;
    std::int64_t nowcastInterval = 0;
    std::int64_t interval = 0;
    bool isJSON = false;
    bool isReset = false;
};

CommandResult<void> maps(ApiClient& client, const ApiOptions& options, std::string& output) {
    const std::string what = "api maps";
    const auto reply = client.await<ApiMaps>(what, [&](RequestHandler<ApiMaps> handler) {
        ApiService(client.networking())
            .getMaps(options.step, options.nowcastInterval, options.interval, std::move(handler));
    });
    if (!reply) {
        return std::unexpected(reply.error());
    }
    return reply->code == 0 ? printMaps(what, *reply, options.isJSON, output)
                            : std::unexpected(CommandError{what, description(ApiError{reply->message})});
}

CommandResult<void> sync(ApiClient& client) {
    const auto reply = client.await<ApiValidation>("api sync", [&](RequestHandler<ApiValidation> handler) {
        const bool isSent = client.serverSync().user(std::move(handler));
        platform::precondition(isSent, "a build has a version and a number");
    });
    return reply ? CommandResult<void>{} : std::unexpected(reply.error());
}

CommandResult<void> credentials(ApiClient& client, bool isReset, std::string& output) {
    const std::string what = "api credentials";
    const auto done = client.await<void>(what, [&](RequestHandler<void> handler) {
        isReset ? client.networking()->resetCredentials(std::move(handler))
                : client.networking()->obtainCredentials(std::move(handler));
    });
    if (done && !isReset) {
        output = "credentials are stored\n";
    }
    return done;
}

/// A verb that works with the client.
CLI::App& addClientVerb(CommandLine& commandLine, CLI::App& noun, const std::string& name,
                        const std::string& description, const std::string& example,
                        const std::shared_ptr<ApiOptions>& options, auto work) {
    return commandLine.addVerb(noun, name, description, example,
                               [&commandLine, options, work](std::string& output) -> CommandResult<void> {
                                   const auto client = ApiClient::open(commandLine, options->caFile);
                                   return client ? work(**client, output) : std::unexpected(client.error());
                               });
}

}  // namespace

void addApi(CommandLine& commandLine) {
    auto& noun = commandLine.addNoun("api", "Asks the mobile API, at a host of the table");
    const auto options = std::make_shared<ApiOptions>();
    noun.add_option("--ca-file", options->caFile, "Certificate authorities to trust as well, PEM")
        ->type_name("FILE");

    auto& mapsVerb = addClientVerb(
        commandLine, noun, "maps", "Prints the map timeline",
        "nimbuscope api maps --step 600 --nowcast-interval 600 --interval 7200 --json", options,
        [options](ApiClient& client, std::string& output) { return maps(client, *options, output); });
    mapsVerb.add_option("--step", options->step, "Between two frames")->required();
    mapsVerb.add_option("--nowcast-interval", options->nowcastInterval, "Between two frames to come")
        ->required();
    mapsVerb.add_option("--interval", options->interval, "From the first frame to the last")->required();
    mapsVerb.add_flag("--json", options->isJSON, "Print the timeline as JSON");

    addClientVerb(commandLine, noun, "sync", "Tells the server the user's units, locale and clock",
                  "nimbuscope api sync", options,
                  [](ApiClient& client, std::string& /*output*/) { return sync(client); });

    auto& credentialsVerb = addClientVerb(
        commandLine, noun, "credentials", "Obtains credentials where none are stored",
        "nimbuscope api credentials --reset", options, [options](ApiClient& client, std::string& output) {
            return credentials(client, options->isReset, output);
        });
    credentialsVerb.add_flag("--reset", options->isReset, "Remove those that are stored instead");
}

}  // namespace nimbuscope::tool

// The noun `hosts`: which servers are there for what.

#include <fmt/format.h>

#include "ApiClient.hpp"
#include "CommandLine.hpp"
#include "ReadableJSON.hpp"
#include "Records.hpp"
#include "Results.hpp"

namespace nimbuscope::tool {
namespace {

using platform::rawValue;

constexpr auto identifiers = platform::allCases<HostIdentifier>();

/// The hosts that serve a purpose: those listed, or the built-in one.
std::vector<std::string> hostsFor(const Hosts& hosts, HostIdentifier identifier) {
    const auto listed = hosts.hosts().find(identifier);
    const bool isListed = listed != hosts.hosts().end() && !listed->second.empty();
    return isListed ? listed->second : std::vector{std::string(builtInHost(identifier))};
}

CommandResult<void> list(const CommandLine& commandLine, bool isJSON, std::string& output) {
    const auto hosts = openHosts(commandLine);
    if (!hosts) {
        return std::unexpected(hosts.error());
    }
    platform::JSONWriter writer;
    writer.beginObject();
    for (const HostIdentifier identifier : identifiers) {
        const auto names = hostsFor(**hosts, identifier);
        if (!isJSON) {
            output += fmt::format("{:<13}", rawValue(identifier));
            for (const std::string& name : names) {
                output += ' ' + readableText(name);
            }
            output += '\n';
        }
        writer.key(rawValue(identifier));
        writeJSON(writer, names);
    }
    writer.endObject();
    return isJSON ? printJSON("hosts list", writer, output) : CommandResult<void>{};
}

void addList(CommandLine& commandLine, CLI::App& noun) {
    const auto isJSON = std::make_shared<bool>(false);
    auto& verb = commandLine.addVerb(
        noun, "list", "Prints the hosts of every purpose", "nimbuscope hosts list --json",
        [&commandLine, isJSON](std::string& output) { return list(commandLine, *isJSON, output); });
    verb.add_flag("--json", *isJSON, "Print an object of lists");
}

CommandResult<void> change(const CommandLine& commandLine, const auto& work) {
    const auto hosts = openHosts(commandLine);
    if (!hosts) {
        return std::unexpected(hosts.error());
    }
    const platform::DefaultsResult<void> done = work(**hosts);
    return done ? CommandResult<void>{} : std::unexpected(CommandError{"hosts", done.error().message()});
}

CommandResult<void> update(const CommandLine& commandLine, const std::string& file) {
    const auto settings = readRecord<ApiSettings>(file);
    if (!settings) {
        return std::unexpected(settings.error());
    }
    if (settings->code != 0) {
        return std::unexpected(CommandError{file, description(ApiError{settings->message})});
    }
    return change(commandLine, [&](Hosts& hosts) { return hosts.updateHostsBySettings(settings->data); });
}

void addUpdate(CommandLine& commandLine, CLI::App& noun) {
    const auto file = std::make_shared<std::string>();
    auto& verb = commandLine.addVerb(
        noun, "update", "Takes over the hosts that a settings document lists",
        "nimbuscope hosts update docs/sample/settings.json",
        [&commandLine, file](std::string& /*output*/) { return update(commandLine, *file); });
    verb.add_option("FILE", *file, "Settings as the server publishes them, JSON")->required();
}

void addReset(CommandLine& commandLine, CLI::App& noun) {
    const auto name = std::make_shared<std::string>();
    auto& verb =
        commandLine.addVerb(noun, "reset", "Returns a purpose to its built-in host",
                            "nimbuscope hosts reset radar", [&commandLine, name](std::string& /*output*/) {
                                return change(commandLine, [&](Hosts& hosts) {
                                    return hosts.resetHosts(*platform::fromRawValue<HostIdentifier>(*name));
                                });
                            });
    std::vector<std::string> names;
    names.reserve(identifiers.size());
    for (const HostIdentifier identifier : identifiers) {
        names.emplace_back(rawValue(identifier));
    }
    verb.add_option("IDENTIFIER", *name, "The purpose")->required()->check(CLI::IsMember(names));
}

}  // namespace

void addHosts(CommandLine& commandLine) {
    auto& noun = commandLine.addNoun("hosts", "Lists and changes the servers of each purpose");
    addList(commandLine, noun);
    addUpdate(commandLine, noun);
    addReset(commandLine, noun);
}

}  // namespace nimbuscope::tool

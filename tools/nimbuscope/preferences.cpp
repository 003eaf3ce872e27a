// The noun `preferences`: the user's settings.

#include "CommandLine.hpp"
#include "Files.hpp"
#include "NimbuscopeKit/Preferences/Migration.hpp"
#include "Platform/Coding/JSONEncoder.hpp"
#include "ReadableJSON.hpp"
#include "StoredPreferences.hpp"

namespace nimbuscope::tool {
namespace {

/// Runs `work` on the preferences service, and on what the older settings say.
template <class Work>
CommandResult<void> withPreferences(const CommandLine& commandLine, Work work) {
    const auto opened = StoredPreferences::open(commandLine);
    if (!opened) {
        return std::unexpected(opened.error());
    }
    work(*opened->service(), opened->imported());
    return opened->outcome();
}

CommandResult<void> show(const CommandLine& commandLine, bool isJSON, std::string& output) {
    platform::Result<std::string, platform::EncodingError> text;
    const auto read = withPreferences(commandLine, [&](PreferencesService& service, const AppPreferences&) {
        text = platform::JSONEncoder().encode(service.preferences());
    });
    if (!read) {
        return read;
    }
    if (!text) {
        return std::unexpected(CommandError{"preferences", text.error().message()});
    }
    output = isJSON ? *text + '\n' : readableJSON(*text);
    return {};
}

void addShow(CommandLine& commandLine, CLI::App& noun) {
    const auto isJSON = std::make_shared<bool>(false);
    auto& verb = commandLine.addVerb(
        noun, "show", "Prints the whole record", "nimbuscope preferences show --json",
        [&commandLine, isJSON](std::string& output) { return show(commandLine, *isJSON, output); });
    verb.add_flag("--json", *isJSON, "Print the record as JSON");
}

struct SetOptions {
    std::string key;
    std::string value;
};

CommandResult<void> set(const CommandLine& commandLine, const SetOptions& options) {
    const auto key = preferenceKey(options.key, options.value);
    if (!key) {
        return std::unexpected(CommandError{"preferences set", key.error().message()});
    }
    return withPreferences(commandLine,
                           [&](PreferencesService& service, const AppPreferences&) { service.set(*key); });
}

void addSet(CommandLine& commandLine, CLI::App& noun) {
    const auto options = std::make_shared<SetOptions>();
    auto& verb = commandLine.addVerb(
        noun, "set", "Changes one setting", "nimbuscope preferences set minimalIntensity -32",
        [&commandLine, options](std::string& /*output*/) { return set(commandLine, *options); });
    const auto names = preferenceKeyNames();
    verb.add_option("KEY", options->key, "Name of the setting")
        ->required()
        ->check(CLI::IsMember(std::vector<std::string>(names.begin(), names.end())));
    verb.add_option(
            "VALUE", options->value,
            "A text as it is; true or false, a number, the raw value of a choice, or a record, as JSON; "
            "after -- where it begins with a hyphen and a letter")
        ->required();
}

struct MigrateOptions {
    std::string input;
    std::string output = "-";
    bool isJSON = false;
};

CommandResult<void> migrate(const MigrateOptions& options, std::string& output) {
    const auto stored = readInput(options.input);
    if (!stored) {
        return std::unexpected(stored.error());
    }
    const auto migrated = migratedPreferences(*stored);
    if (!migrated) {
        return std::unexpected(CommandError{options.input, migrated.error().cause.message()});
    }
    return writeResult(options.output, platform::textOf(*migrated ? **migrated : *stored), output);
}

void addMigrate(CommandLine& commandLine, CLI::App& noun) {
    const auto options = std::make_shared<MigrateOptions>();
    auto& verb = commandLine.addVerb(
        noun, "migrate", "Brings a stored record to the newest version",
        "nimbuscope preferences migrate docs/sample/preferences-v3.json -o preferences.json",
        [options](std::string& output) { return migrate(*options, output); });
    verb.add_option("FILE", options->input, "Stored record of any version")->required();
    verb.add_option("-o,--output", options->output, "File to write; standard output by default")
        ->type_name("FILE");
    verb.add_flag("--json", options->isJSON, "No change: the result is JSON as it is");
}

void addReset(CommandLine& commandLine, CLI::App& noun) {
    commandLine.addVerb(noun, "reset", "Replaces the record by what the older settings say, or the defaults",
                        "nimbuscope preferences reset", [&commandLine](std::string& /*output*/) {
                            return withPreferences(
                                commandLine, [](PreferencesService& service, const AppPreferences& imported) {
                                    service.setPreferences(imported);
                                });
                        });
}

}  // namespace

void addPreferences(CommandLine& commandLine) {
    auto& noun = commandLine.addNoun("preferences", "Shows and changes the user's settings");
    addShow(commandLine, noun);
    addSet(commandLine, noun);
    addMigrate(commandLine, noun);
    addReset(commandLine, noun);
}

}  // namespace nimbuscope::tool

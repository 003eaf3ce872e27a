// The noun `defaults`: single values of the key-value stores.

#include <fmt/format.h>

#include "CommandLine.hpp"
#include "Files.hpp"
#include "NimbuscopeIntentHandler/Places/SharedStorage.hpp"
#include "Results.hpp"

namespace nimbuscope::tool {
namespace {

using platform::DefaultsValue;

/// Which store a command works on.
struct StoreChoice {
    std::string suite{SharedStorage::appGroupIdentifier};
    bool isStandard = false;

    void addTo(CLI::App& verb) {
        auto* const name = verb.add_option("--suite", suite, "Suite of the store")->capture_default_str();
        name->check([](const std::string& text) { return text.empty() ? "a suite has a name" : ""; });
        verb.add_flag("--standard", isStandard, "The standard store instead of a suite")->excludes(name);
    }
    [[nodiscard]] auto open(const CommandLine& commandLine) const {
        return commandLine.openStore(isStandard ? "" : suite);
    }
};

CommandError storeError(const platform::DefaultsError& error) {
    return {"store", error.message()};
}

CommandResult<std::string> jsonText(const DefaultsValue& value) {
    platform::JSONWriter writer;
    writeJSON(writer, value);
    auto text = writer.finish();
    return text ? CommandResult<std::string>(std::move(*text))
                : std::unexpected(CommandError{"defaults", text.error().message()});
}

struct ReadOptions {
    StoreChoice store;
    std::optional<std::string> key;
    bool isJSON = false;
};

CommandResult<void> readOne(const platform::NSUserDefaults& store, const ReadOptions& options,
                            std::string& output) {
    const auto value = store.object(*options.key);
    if (!value) {
        return std::unexpected(storeError(value.error()));
    }
    if (!*value) {
        return std::unexpected(CommandError{"defaults read", "no value under \"" + *options.key + '"'});
    }
    const auto* plain = (*value)->as<std::string>();
    const auto text =
        plain != nullptr && !options.isJSON ? CommandResult<std::string>(*plain) : jsonText(**value);
    if (!text) {
        return std::unexpected(text.error());
    }
    output = *text + '\n';
    return {};
}

CommandResult<void> readAll(const platform::NSUserDefaults& store, bool isJSON, std::string& output) {
    auto all = store.dictionaryRepresentation();
    if (!all) {
        return std::unexpected(storeError(all.error()));
    }
    if (isJSON) {
        // Keys of the store stand as they are: only inside values does "$" mark data.
        platform::JSONWriter writer;
        writer.beginObject();
        for (const auto& [key, value] : *all) {
            writer.key(key);
            writeJSON(writer, value);
        }
        writer.endObject();
        return printJSON("defaults read", writer, output);
    }
    for (const auto& [key, value] : *all) {
        const auto text = jsonText(value);
        if (!text) {
            return std::unexpected(text.error());
        }
        output += fmt::format("{} = {}\n", key, *text);
    }
    return {};
}

void addRead(CommandLine& commandLine, CLI::App& noun) {
    const auto options = std::make_shared<ReadOptions>();
    auto& verb =
        commandLine.addVerb(noun, "read", "Prints one value, or all", "nimbuscope defaults read places",
                            [&commandLine, options](std::string& output) -> CommandResult<void> {
                                const auto store = options->store.open(commandLine);
                                if (!store) {
                                    return std::unexpected(store.error());
                                }
                                return options->key ? readOne(**store, *options, output)
                                                    : readAll(**store, options->isJSON, output);
                            });
    verb.add_option("KEY", options->key, "Key of the value");
    verb.add_flag("--json", options->isJSON, R"(Print JSON; data as {"$data": BASE64})");
    options->store.addTo(verb);
}

struct WriteOptions {
    StoreChoice store;
    std::string key;
    std::optional<bool> boolean;
    std::optional<std::int64_t> integer;
    std::optional<double> real;
    std::optional<std::string> string;
    std::optional<std::string> dataFile;
    std::optional<std::string> json;
};

CommandResult<DefaultsValue> valueToWrite(const WriteOptions& options) {
    if (options.boolean) {
        return *options.boolean;
    }
    if (options.integer) {
        return *options.integer;
    }
    if (options.real) {
        return *options.real;
    }
    if (options.string) {
        return *options.string;
    }
    if (options.dataFile) {
        auto bytes = readInput(*options.dataFile);
        return bytes ? CommandResult<DefaultsValue>(std::move(*bytes)) : std::unexpected(bytes.error());
    }
    platform::JSONDocument document;
    const auto json = document.parse(*options.json);
    if (json && !document.isExact()) {
        return std::unexpected(CommandError{"--value-json", "a number is out of range"});
    }
    auto value = json ? platform::defaultsValue(*json) : std::unexpected(json.error());
    return value ? CommandResult<DefaultsValue>(std::move(*value))
                 : std::unexpected(CommandError{"--value-json", value.error().message()});
}

CommandResult<void> write(const CommandLine& commandLine, const WriteOptions& options) {
    const auto value = valueToWrite(options);
    if (!value) {
        return std::unexpected(value.error());
    }
    const auto store = options.store.open(commandLine);
    if (!store) {
        return std::unexpected(store.error());
    }
    const auto stored = (*store)->set(options.key, *value);
    return stored ? CommandResult<void>{} : std::unexpected(storeError(stored.error()));
}

void addWrite(CommandLine& commandLine, CLI::App& noun) {
    const auto options = std::make_shared<WriteOptions>();
    auto& verb = commandLine.addVerb(
        noun, "write", "Stores one value with its type",
        "nimbuscope defaults write nbcUnits --int 1 --standard",
        [&commandLine, options](std::string& /*output*/) { return write(commandLine, *options); });
    verb.add_option("KEY", options->key, "Key of the value")->required();
    auto& value = *verb.add_option_group("value", "Exactly one of");
    value.add_option("--bool", options->boolean, "true or false");
    value.add_option("--int", options->integer, "Integer of 64 bits");
    value.add_option("--double", options->real, "Finite number");
    value.add_option("--string", options->string, "Text");
    value.add_option("--data", options->dataFile, "File whose bytes are stored")->type_name("FILE");
    value.add_option("--value-json", options->json, R"(Any value as JSON; data as {"$data": BASE64})")
        ->type_name("JSON");
    value.require_option(1);
    options->store.addTo(verb);
}

struct DeleteOptions {
    StoreChoice store;
    std::string key;
};

CommandResult<void> remove(const CommandLine& commandLine, const DeleteOptions& options) {
    const auto store = options.store.open(commandLine);
    if (!store) {
        return std::unexpected(store.error());
    }
    const auto existing = (*store)->object(options.key);
    if (!existing) {
        return std::unexpected(storeError(existing.error()));
    }
    if (!*existing) {
        return std::unexpected(CommandError{"defaults delete", "no value under \"" + options.key + '"'});
    }
    const auto removed = (*store)->removeObject(options.key);
    return removed ? CommandResult<void>{} : std::unexpected(storeError(removed.error()));
}

void addDelete(CommandLine& commandLine, CLI::App& noun) {
    const auto options = std::make_shared<DeleteOptions>();
    auto& verb = commandLine.addVerb(
        noun, "delete", "Removes one value", "nimbuscope defaults delete nbcUnits --standard",
        [&commandLine, options](std::string& /*output*/) { return remove(commandLine, *options); });
    verb.add_option("KEY", options->key, "Key of the value")->required();
    options->store.addTo(verb);
}

}  // namespace

void addDefaults(CommandLine& commandLine) {
    auto& noun = commandLine.addNoun("defaults", "Reads and writes values of the key-value stores");
    addRead(commandLine, noun);
    addWrite(commandLine, noun);
    addDelete(commandLine, noun);
}

}  // namespace nimbuscope::tool

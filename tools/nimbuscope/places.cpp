// The noun `places`: the user's saved places, and searches for others.

#include <fmt/format.h>

#include "CommandLine.hpp"
#include "Files.hpp"
#include "NimbuscopeIntentHandler/Places/SavedPlaces.hpp"
#include "NimbuscopeIntentHandler/Places/SharedStorage.hpp"
#include "NimbuscopeKit/RadarCatalogue/ApiPlacesSearch.hpp"
#include "Platform/Core/UUID.hpp"
#include "ReadableJSON.hpp"
#include "Records.hpp"

namespace nimbuscope::tool {
namespace {

/// Runs `work` on the saved places of the store that the command line names.
template <class Work>
CommandResult<void> withPlaces(const CommandLine& commandLine, Work work) {
    const auto group = commandLine.openStore(std::string(SharedStorage::appGroupIdentifier));
    if (!group) {
        return std::unexpected(group.error());
    }
    SavedPlaces places(**group);
    return work(places, **group);
}

CommandResult<void> done(const platform::Result<void, SavedPlacesError>& result) {
    return result ? CommandResult<void>{} : std::unexpected(CommandError{"places", result.error().reason});
}

std::string tableOf(const std::vector<Place>& places) {
    std::string text;
    for (const Place& place : places) {
        text += fmt::format("{} {:<38} {:>9.4f} {:>9.4f}  {}\n", place.current ? '*' : ' ',
                            readableText(place.id), place.staticCoordinate.latitude,
                            place.staticCoordinate.longitude, readableText(place.name));
    }
    return text;
}

CommandResult<void> list(const platform::NSUserDefaults& group, bool isJSON, std::string& output) {
    const auto stored = group.object(SharedStorage::placesKey);
    if (!stored) {
        return std::unexpected(CommandError{"store", stored.error().message()});
    }
    const auto* data = *stored ? (*stored)->as<platform::Data>() : nullptr;
    const auto places = data != nullptr ? decodePlaces(*data) : std::vector<Place>{};
    if (!isJSON) {
        output = tableOf(places);
        return {};
    }
    const auto text = SavedPlaces::encoded(places);
    if (!text) {
        return std::unexpected(CommandError{"places", text.error().reason});
    }
    output = *text + '\n';
    return {};
}

void addList(CommandLine& commandLine, CLI::App& noun) {
    const auto isJSON = std::make_shared<bool>(false);
    auto& verb = commandLine.addVerb(
        noun, "list", "Prints the places as the extension reads them", "nimbuscope places list --json",
        [&commandLine, isJSON](std::string& output) {
            return withPlaces(commandLine,
                              [&](SavedPlaces&, auto& group) { return list(group, *isJSON, output); });
        });
    verb.add_flag("--json", *isJSON, "Print an array of place records");
}

CommandResult<void> importFrom(SavedPlaces& places, const std::string& file) {
    const auto bytes = readInput(file);
    if (!bytes) {
        return std::unexpected(bytes.error());
    }
    const auto read = SavedPlaces::decoded(*bytes);
    if (!read) {
        return std::unexpected(CommandError{file, read.error().reason});
    }
    return done(places.replace(*read));
}

void addImport(CommandLine& commandLine, CLI::App& noun) {
    const auto file = std::make_shared<std::string>();
    auto& verb = commandLine.addVerb(
        noun, "import", "Replaces the list by that of a file",
        "nimbuscope places import docs/sample/places.json", [&commandLine, file](std::string& /*output*/) {
            return withPlaces(commandLine,
                              [&](SavedPlaces& places, auto&) { return importFrom(places, *file); });
        });
    verb.add_option("FILE", *file, "JSON array of place records")->required();
}

struct AddOptions {
    Place place;
    std::optional<std::string> id;
};

CommandResult<void> add(SavedPlaces& places, const AddOptions& options, std::string& output) {
    Place place = options.place;
    place.id = options.id ? *options.id : platform::UUID::random().uuidString();
    const auto added = places.add(place);
    if (added) {
        output = place.id + '\n';
    }
    return done(added);
}

void addAdd(CommandLine& commandLine, CLI::App& noun) {
    const auto options = std::make_shared<AddOptions>();
    auto& verb = commandLine.addVerb(
        noun, "add", "Appends a place and prints its id",
        "nimbuscope places add --name Lisbon --latitude 38.7223 --longitude -9.1393 --country PT",
        [&commandLine, options](std::string& output) {
            return withPlaces(commandLine,
                              [&](SavedPlaces& places, auto&) { return add(places, *options, output); });
        });
    Place& place = options->place;
    verb.add_option("--name", place.name, "Name to show")->required();
    verb.add_option("--latitude", place.staticCoordinate.latitude, "Degrees, north positive")
        ->required()
        ->check(CLI::Range(-90.0, 90.0));
    verb.add_option("--longitude", place.staticCoordinate.longitude, "Degrees, east positive")
        ->required()
        ->check(CLI::Range(-180.0, 180.0));
    verb.add_option("--id", options->id, "Identifier; a fresh UUID when none is given");
    verb.add_flag("--current", place.current, "The entry stands for the device's current location");
    verb.add_option("--address", place.address, "Street address");
    verb.add_option("--state", place.state, "Region or state");
    verb.add_option("--country", place.country, "Country");
}

void addRemove(CommandLine& commandLine, CLI::App& noun) {
    const auto id = std::make_shared<std::string>();
    auto& verb = commandLine.addVerb(
        noun, "remove", "Removes the place with an id", "nimbuscope places remove lisbon",
        [&commandLine, id](std::string& /*output*/) {
            return withPlaces(commandLine,
                              [&](SavedPlaces& places, auto&) { return done(places.remove(*id)); });
        });
    verb.add_option("ID", *id, "Identifier of the place")->required();
}

CommandResult<void> exportTo(const SavedPlaces& places, const std::string& file, std::string& output) {
    const auto all = places.all();
    const auto text = all ? SavedPlaces::encoded(*all) : std::unexpected(all.error());
    if (!text) {
        return std::unexpected(CommandError{"places", text.error().reason});
    }
    return writeResult(file, *text + '\n', output);
}

void addExport(CommandLine& commandLine, CLI::App& noun) {
    const auto file = std::make_shared<std::string>("-");
    auto& verb = commandLine.addVerb(
        noun, "export", "Writes the list as JSON, in its stored order",
        "nimbuscope places export -o places.json", [&commandLine, file](std::string& output) {
            return withPlaces(commandLine,
                              [&](SavedPlaces& places, auto&) { return exportTo(places, *file, output); });
        });
    verb.add_option("-o,--output", *file, "File to write; standard output by default")->type_name("FILE");
}

struct SearchOptions {
    std::string file;
    bool isJSON = false;
};

CommandResult<void> search(const SearchOptions& options, std::string& output) {
    const auto reply = readRecord<ApiPlacesSearch>(options.file);
    if (!reply) {
        return std::unexpected(reply.error());
    }
    if (options.isJSON) {
        return printRecord(options.file, *reply, output);
    }
    if (reply->code != 0) {
        output = fmt::format("The server says: {} ({})\n", readableText(reply->message), reply->code);
    }
    for (const ApiPlacesSearchItem& item : reply->data) {
        output += fmt::format("{:>9.4f} {:>9.4f}  {}, {}{}\n", item.location.latitude,
                              item.location.longitude, readableText(item.name), readableText(item.state),
                              item.country ? ", " + readableText(*item.country) : "");
    }
    return {};
}

void addSearch(CommandLine& commandLine, CLI::App& noun) {
    const auto options = std::make_shared<SearchOptions>();
    auto& verb = commandLine.addVerb(noun, "search", "Prints what a search for places found",
                                     "nimbuscope places search docs/sample/places-search.json",
                                     [options](std::string& output) { return search(*options, output); });
    verb.add_option("FILE", options->file, "Reply of the search endpoint; - for standard input")->required();
    verb.add_flag("--json", options->isJSON, "Print the record as JSON");
}

}  // namespace

void addPlaces(CommandLine& commandLine) {
    auto& noun =
        commandLine.addNoun("places", "Lists and changes the saved places, and shows what a search found");
    addList(commandLine, noun);
    addImport(commandLine, noun);
    addAdd(commandLine, noun);
    addRemove(commandLine, noun);
    addExport(commandLine, noun);
    addSearch(commandLine, noun);
}

}  // namespace nimbuscope::tool

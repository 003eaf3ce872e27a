// The noun `maps`: map timelines in files.

#include <fmt/format.h>

#include "CommandLine.hpp"
#include "MapsText.hpp"
#include "ReadableJSON.hpp"
#include "Records.hpp"

namespace nimbuscope::tool {
namespace {

/// "13, from 1700000000 to 1700007200"
std::string describe(const std::optional<std::vector<MapFrame>>& frames) {
    if (!frames) {
        return "absent";
    }
    return frames->empty()
               ? "none"
               : fmt::format("{}, from {} to {}", frames->size(), frames->front().time, frames->back().time);
}

CommandResult<void> show(const std::string& file, bool isJSON, std::string& output) {
    const auto maps = readRecord<ApiMaps>(file);
    return maps ? printMaps(file, *maps, isJSON, output) : std::unexpected(maps.error());
}

}  // namespace

CommandResult<void> printMaps(const std::string& what, const ApiMaps& maps, bool isJSON,
                              std::string& output) {
    if (isJSON) {
        return printRecord(what, maps, output);
    }
    output += fmt::format("code {}: {}\n", maps.code, readableText(maps.message));
    for (const auto& [layer, times] : maps.data.value_or(decltype(maps.data)::value_type())) {
        output += fmt::format("{}\n  past frames: {}\n  future frames: {}\n", readableText(layer),
                              describe(times.past), describe(times.future));
    }
    return {};
}

void addMaps(CommandLine& commandLine) {
    auto& noun = commandLine.addNoun("maps", "Shows map timelines");
    struct Options {
        std::string file;
        bool isJSON = false;
    };
    const auto options = std::make_shared<Options>();
    auto& verb = commandLine.addVerb(
        noun, "show", "Tells which frames a timeline has", "nimbuscope maps show docs/sample/maps.json",
        [options](std::string& output) { return show(options->file, options->isJSON, output); });
    verb.add_option("FILE", options->file, "Reply to the request for the timeline, JSON")->required();
    verb.add_flag("--json", options->isJSON, "Print the timeline as it was read, as JSON");
}

}  // namespace nimbuscope::tool

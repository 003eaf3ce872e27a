// The verbs `palette import` and `palette export`: colour tables as text.

#include <fmt/format.h>

#include <array>

#include "CommandLine.hpp"
#include "Files.hpp"
#include "Results.hpp"
#include "SchemeTitles.hpp"
#include "colorschemes/colorschemes.h"
#include "colorschemes/text/ColorTable.hpp"
#include "tools/drawing/PaletteChart.hpp"

namespace nimbuscope::tool {
namespace {

// palette import

struct ImportOptions {
    std::string input;
    std::string picture;
    std::string stops;
};

drawing::Chart chartOf(const ColorTable& table, const std::string& file) {
    constexpr std::uint32_t resolution = 768;
    constexpr int labels = 14;
    const double first = table.stops.front().value;
    const double last = table.stops.back().value;
    // What the last colour runs to, or is held for, needs room beyond its value.
    const double room = table.step > 0 ? table.step : (last > first ? (last - first) / 16 : 1);
    const double end = last + room;
    return {
        .title = table.name.empty() ? file : table.name,
        .subtitle = fmt::format("{} colours from {} to {}", table.stops.size(), first, last),
        .rows = {{"", renderColorTable(table, first, end, resolution)}},
        .axis = {
            .from = first, .to = end, .step = drawing::labelStep(first, end, labels), .unit = table.units}};
}

CommandResult<void> import(const ImportOptions& options, std::string& output) {
    const auto bytes = readInput(options.input);
    if (!bytes) {
        return std::unexpected(bytes.error());
    }
    const auto table = parseColorTable(platform::textOf(*bytes));
    if (!table) {
        return std::unexpected(CommandError{options.input, table.error().message()});
    }
    const drawing::Chart chart = chartOf(*table, options.input);
    if (options.picture.empty() && options.stops.empty()) {
        output = fmt::format("{}: {} {}\n", chart.title, chart.subtitle, table->units);
    }
    if (!options.stops.empty()) {
        const auto stops = stopListOf(*table);
        if (!stops) {
            return std::unexpected(CommandError{options.input, stops.error().message()});
        }
        if (auto written = writeResult(options.stops, platform::textOf(*stops), output); !written) {
            return written;
        }
    }
    if (options.picture.empty()) {
        return {};
    }
    return writePNG(options.input, drawing::drawChart(chart), options.picture, output);
}

void addImport(CommandLine& commandLine, CLI::App& parent) {
    const auto options = std::make_shared<ImportOptions>();
    auto& verb = commandLine.addVerb(parent, "import", "Checks a colour-table text file and draws it",
                                     "nimbuscope palette import storms.pal -o storms.png",
                                     [options](std::string& output) { return import(*options, output); });
    verb.add_option("FILE", options->input, "Colour table; - for standard input")->required();
    verb.add_option("-o,--output", options->picture, "Picture to write; - for standard output")
        ->type_name("PNG");
    verb.add_option("--stops", options->stops, "Stop list to write, in the stored binary form")
        ->type_name("FILE");
}

// palette export

constexpr std::array<const char*, 4> sectionNames{"rain", "snow", "freezing-rain", "ice-pellets"};

struct ExportOptions {
    std::int64_t scheme = 0;
    std::string section = sectionNames[0];
    std::string file = "-";
};

CommandResult<void> exportText(const ExportOptions& options, std::string& output) {
    constexpr std::int64_t maximalScheme = 0xFFFFFFFF;
    if (options.scheme < 0 || options.scheme > maximalScheme) {
        return std::unexpected(CommandError{
            "palette export",
            fmt::format("expected a scheme number from 0 to {}, found {}", maximalScheme, options.scheme)});
    }
    ColorPaletteSource source;
    get_color_palette(static_cast<std::uint32_t>(options.scheme), numberingOfChoices, &source);
    const auto index =
        static_cast<std::size_t>(std::ranges::find(sectionNames, options.section) - sectionNames.begin());
    const ColorPaletteSection& section = source.sections[index];
    if (section.count == 0) {
        return std::unexpected(CommandError{"palette export", fmt::format("scheme {} has no section for {}",
                                                                          options.scheme, options.section)});
    }
    const bool isReflectivity = source.sections[1].count != 0;
    ColorTable table{
        .name = titleOfScheme(options.scheme), .units = isReflectivity ? "DBZ" : "POSITION", .stops = {}};
    if (isReflectivity) {
        table.name += ": " + options.section;
        table.step = 5;
    }
    table.stops = stopsOfList(NB_PALETTES + section.offset, isReflectivity);
    return writeResult(options.file, colorTableText(table), output);
}

void addExport(CommandLine& commandLine, CLI::App& parent) {
    const auto options = std::make_shared<ExportOptions>();
    auto& verb =
        commandLine.addVerb(parent, "export", "Writes a section of a scheme as a colour-table text file",
                            "nimbuscope palette export 21 --section rain -o nexrad.pal",
                            [options](std::string& output) { return exportText(*options, output); });
    verb.add_option("SCHEME", options->scheme, "Scheme number, as `palette list` shows them")->required();
    verb.add_option("--section", options->section, "Kind of precipitation")
        ->check(CLI::IsMember(std::vector<std::string>(sectionNames.begin(), sectionNames.end())))
        ->capture_default_str();
    verb.add_option("-o,--output", options->file, "File to write; standard output by default")
        ->type_name("FILE");
}

}  // namespace

void addPaletteText(CommandLine& commandLine, CLI::App& parent) {
    addImport(commandLine, parent);
    addExport(commandLine, parent);
}

}  // namespace nimbuscope::tool

// The noun `palette`: colour schemes as tables, pictures and text.

#include <fmt/format.h>

#include <limits>

#include "CommandLine.hpp"
#include "Files.hpp"
#include "NimbuscopeKit/RadarImagery/RadarColorScheme.hpp"
#include "Results.hpp"
#include "SchemeTitles.hpp"
#include "colorschemes/colorschemes.h"
#include "colorschemes/text/ColorTable.hpp"
#include "tools/drawing/PaletteChart.hpp"

namespace nimbuscope::tool {
namespace {

constexpr const char* noun = "palette";

std::unexpected<CommandError> refused(std::string why) {
    return std::unexpected(CommandError{noun, std::move(why)});
}

/// A 32-bit number of the command line, or an error that names it.
CommandResult<std::uint32_t> narrow(const char* name, std::int64_t number) {
    if (number < 0 || number > std::numeric_limits<std::uint32_t>::max()) {
        return refused(fmt::format("{}: expected 0 to 4294967295, found {}", name, number));
    }
    return static_cast<std::uint32_t>(number);
}

void addScheme(CLI::App& verb, std::int64_t& scheme) {
    verb.add_option("SCHEME", scheme, "Scheme number, as `palette list` shows them")->required();
}

void addOutput(CLI::App& verb, std::string& file, const char* type) {
    verb.add_option("-o,--output", file, "File to write; - for standard output")->type_name(type)->required();
}

// palette list

struct ListedScheme {
    SchemeTitle title;
    std::uint32_t id;
    std::vector<std::size_t> stops;  ///< of each section
};

std::vector<ListedScheme> listedSchemes() {
    std::vector<ListedScheme> listed;
    for (const SchemeTitle& title : schemeTitles()) {
        ColorPaletteSource source;
        get_color_palette(static_cast<std::uint32_t>(title.scheme), numberingOfChoices, &source);
        ListedScheme scheme{.title = title, .id = source.id, .stops = {}};
        for (const ColorPaletteSection& section : source.sections) {
            if (section.count != 0) {
                scheme.stops.push_back(stopsOfList(NB_PALETTES + section.offset, false).size());
            }
        }
        listed.push_back(std::move(scheme));
    }
    return listed;
}

CommandResult<void> list(bool isJSON, std::string& output) {
    if (!isJSON) {
        output = fmt::format("{:>6}  {:>3}  {:<12}  {}\n", "scheme", "id", "stops", "title");
        for (const ListedScheme& scheme : listedSchemes()) {
            output += fmt::format("{:>6}  {:>3}  {:<12}  {}\n", scheme.title.scheme, scheme.id,
                                  fmt::format("{}", fmt::join(scheme.stops, " ")), scheme.title.title);
        }
        return {};
    }
    platform::JSONWriter writer;
    writer.beginArray();
    for (const ListedScheme& scheme : listedSchemes()) {
        writer.beginObject();
        writer.key("scheme");
        writer.value(scheme.title.scheme);
        writer.key("title");
        writer.value(scheme.title.title);
        writer.key("id");
        writer.value(std::int64_t{scheme.id});
        writer.key("stops");
        writer.beginArray();
        for (const std::size_t count : scheme.stops) {
            writer.value(static_cast<std::int64_t>(count));
        }
        writer.endArray();
        writer.endObject();
    }
    writer.endArray();
    return printJSON(noun, writer, output);
}

void addList(CommandLine& commandLine, CLI::App& parent) {
    const auto isJSON = std::make_shared<bool>(false);
    auto& verb = commandLine.addVerb(parent, "list", "Lists the schemes", "nimbuscope palette list --json",
                                     [isJSON](std::string& output) { return list(*isJSON, output); });
    verb.add_flag("--json", *isJSON, "Print an array of {scheme, title, id, stops}");
}

// palette bytes

struct BytesOptions {
    std::int64_t scheme = 0;
    std::int64_t numbering = numberingOfChoices;
    bool isIndexed = false;
    bool isWithoutSnow = false;
    std::int64_t minimalIndex = 0;
    std::string file;
};

CommandResult<void> bytes(const BytesOptions& options, std::string& output) {
    const auto scheme = narrow("SCHEME", options.scheme);
    const auto numbering = narrow("--numbering", options.numbering);
    const auto minimalIndex = narrow("--minimal-index", options.minimalIndex);
    for (const auto* number : {&scheme, &numbering, &minimalIndex}) {
        if (!*number) {
            return std::unexpected(number->error());
        }
    }
    alloc_color_schemes();
    const int isSmooth = options.isIndexed ? 0 : 1;
    StaticColorScheme table;
    const int isFound = get_static_color_scheme(*scheme, *numbering, &table, isSmooth);
    const std::unique_ptr<std::uint8_t, decltype(&std::free)> colors(
        get_color_scheme_bytes(*scheme, *numbering, isSmooth, options.isWithoutSnow ? 0 : 1, *minimalIndex),
        &std::free);
    if (isFound == 0 || !colors) {
        return refused(fmt::format("numbering {} has no scheme {}", *numbering, *scheme));
    }
    return writeResult(options.file, {reinterpret_cast<const char*>(colors.get()), table.size}, output);
}

void addBytes(CommandLine& commandLine, CLI::App& parent) {
    const auto options = std::make_shared<BytesOptions>();
    auto& verb = commandLine.addVerb(parent, "bytes", "Writes a scheme's table as raw RGBA bytes",
                                     "nimbuscope palette bytes 4 --minimal-index 42 -o universal-blue.rgba",
                                     [options](std::string& output) { return bytes(*options, output); });
    addScheme(verb, options->scheme);
    verb.add_option("--numbering", options->numbering,
                    "2: users' choices; 1: an older one; else: palette ids")
        ->capture_default_str();
    verb.add_flag("--indexed", options->isIndexed, "Bands of 5 dBZ instead of gradients");
    verb.add_flag("--no-snow", options->isWithoutSnow, "Draw every kind of precipitation in rain colours");
    verb.add_option("--minimal-index", options->minimalIndex,
                    "Entries to clear at the start of each section");
    addOutput(verb, options->file, "FILE");
}

// palette render-stops

struct RenderStopsOptions {
    std::string input;
    double from = 0;
    double to = 128;
    std::int64_t start = 0;
    std::int64_t count = 128;
    std::string file;
};

const char* faultText(ColorStopListFault fault) {
    switch (fault) {
        case CS_STOP_LIST_HEADER:
            return "expected eight zero bytes, found something else";
        case CS_STOP_LIST_EMPTY:
            return "the list has no stops";
        case CS_STOP_LIST_UNTERMINATED:
            return "the bytes end before the eight zero bytes that end the list";
        default:
            return "the file is empty";
    }
}

CommandResult<void> renderStops(const RenderStopsOptions& options, std::string& output) {
    constexpr std::int64_t maximalCount = std::int64_t{1} << 24U;
    const auto stops = readInput(options.input);
    if (!stops) {
        return std::unexpected(stops.error());
    }
    if (options.count < 0 || options.count > maximalCount) {
        return refused(fmt::format("--count: expected 0 to {}, found {}", maximalCount, options.count));
    }
    const auto start = narrow("--start", options.start);
    if (!start) {
        return std::unexpected(start.error());
    }
    std::size_t offset = 0;
    const ColorStopListFault fault = cs_check_stop_list(stops->data(), stops->size(), &offset);
    const bool isHeaderReadable = stops->size() >= 8;
    const auto count = static_cast<std::uint32_t>(options.count);
    std::vector<std::uint8_t> colors(std::size_t{count} * 4);
    const bool isRenderable =
        fault == CS_STOP_LIST_SOUND || (fault == CS_STOP_LIST_HEADER && isHeaderReadable);
    // The library reports a bad header itself; what else is wrong it must not be given.
    if (isRenderable) {
        cs_render_pal_colors(colors.data(), stops->data(), options.from, options.to, *start, count);
    }
    if (fault != CS_STOP_LIST_SOUND) {
        return std::unexpected(
            CommandError{options.input, fmt::format("byte {}: {}", offset, faultText(fault))});
    }
    return writeResult(options.file, {reinterpret_cast<const char*>(colors.data()), colors.size()}, output);
}

void addRenderStops(CommandLine& commandLine, CLI::App& parent) {
    const auto options = std::make_shared<RenderStopsOptions>();
    auto& verb = commandLine.addVerb(
        parent, "render-stops", "Renders a stop list in its stored binary form as raw RGBA",
        "nimbuscope palette render-stops storms.stops --to 128 --count 128 -o storms.rgba",
        [options](std::string& output) { return renderStops(*options, output); });
    verb.add_option("FILE", options->input, "Stop list; - for standard input")->required();
    verb.add_option("--from", options->from, "Position of entry --start")->capture_default_str();
    verb.add_option("--to", options->to, "Position of the last entry")->capture_default_str();
    verb.add_option("--start", options->start, "First entry; those before it stay zero")
        ->capture_default_str();
    verb.add_option("--count", options->count, "Entries of the table")->capture_default_str();
    addOutput(verb, options->file, "FILE");
}

// palette render

struct RenderOptions {
    std::int64_t scheme = 0;
    bool isIndexed = false;
    bool isWithoutSnow = false;
    std::int64_t minimalDbz = RadarColorScheme::weakestDbz;
    std::string file;
};

CommandResult<void> render(const RenderOptions& options, std::string& output) {
    const auto scheme = RadarColorScheme::make(options.scheme, !options.isWithoutSnow, !options.isIndexed,
                                               options.minimalDbz);
    if (!scheme) {
        return refused(scheme.error().reason);
    }
    std::string subtitle =
        fmt::format("Scheme {}, {}", options.scheme, options.isIndexed ? "bands of 5 dBZ" : "gradients");
    subtitle += options.isWithoutSnow ? ", every kind in rain colours" : "";
    subtitle += options.minimalDbz > RadarColorScheme::weakestDbz
                    ? fmt::format(", from {} dBZ", options.minimalDbz)
                    : "";
    const auto chart = drawing::schemeChart(*scheme, titleOfScheme(options.scheme), subtitle);
    return writePNG(noun, drawing::drawChart(chart), options.file, output);
}

void addRender(CommandLine& commandLine, CLI::App& parent) {
    const auto options = std::make_shared<RenderOptions>();
    auto& verb = commandLine.addVerb(parent, "render", "Draws a labelled chart of a scheme's whole table",
                                     "nimbuscope palette render 4 --minimal-dbz 10 -o universal-blue.png",
                                     [options](std::string& output) { return render(*options, output); });
    addScheme(verb, options->scheme);
    verb.add_flag("--indexed", options->isIndexed, "Bands of 5 dBZ instead of gradients");
    verb.add_flag("--no-snow", options->isWithoutSnow, "Draw every kind of precipitation in rain colours");
    verb.add_option("--minimal-dbz", options->minimalDbz, "Weakest reflectivity that is drawn, -32 to 223")
        ->capture_default_str();
    addOutput(verb, options->file, "PNG");
}

}  // namespace

void addPalette(CommandLine& commandLine) {
    auto& parent = commandLine.addNoun(noun, "Shows the colour schemes, and colour tables of your own");
    addList(commandLine, parent);
    addBytes(commandLine, parent);
    addRenderStops(commandLine, parent);
    addRender(commandLine, parent);
    addPaletteLegend(commandLine, parent);
    addPaletteText(commandLine, parent);
}

}  // namespace nimbuscope::tool

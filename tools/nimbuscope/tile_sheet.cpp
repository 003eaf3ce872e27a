// The verb `tile sheet`.

#include <fmt/format.h>

#include "CommandLine.hpp"
#include "Files.hpp"
#include "Results.hpp"
#include "SchemeTitles.hpp"
#include "TileRendering.hpp"
#include "tools/drawing/ContactSheet.hpp"
#include "tools/drawing/PaletteChart.hpp"

namespace nimbuscope::tool {
namespace {

constexpr const char* verbName = "tile sheet";
constexpr std::uint64_t maximalPixels = std::uint64_t{1} << 24U;  // of a tile; drawing is made for few

struct Options {
    std::vector<std::string> inputs;
    std::vector<std::int64_t> schemes{4, 1, 3, 13};
    std::string file;
};

using Tiles = std::vector<std::pair<std::string, platform::Data>>;

CommandResult<drawing::SheetColumn> columnOf(std::int64_t number, const Tiles& tiles) {
    auto scheme = RadarColorScheme::make(number, true, true, RadarColorScheme::weakestDbz);
    if (!scheme) {
        return std::unexpected(CommandError{verbName, scheme.error().reason});
    }
    const TileRendering rendering{.scheme = std::move(*scheme), .maximalPixels = maximalPixels};
    drawing::SheetColumn column{.title = titleOfScheme(number), .tiles = {}, .legends = {}};
    for (const auto& [name, bytes] : tiles) {
        auto image = rendering.render(name, bytes);
        if (!image) {
            return std::unexpected(image.error());
        }
        column.tiles.push_back(std::move(*image));
    }
    for (const auto& [type, title] :
         {std::pair(ColorSchemeType::Rain, "Rain"), std::pair(ColorSchemeType::Snow, "Snow")}) {
        constexpr auto direction = GradientDirection::horizontal;
        const auto layer = rendering.scheme.checkedGradient(type, direction);
        if (layer) {  // the tables of other maps have none
            column.legends.push_back(
                drawing::drawLegend(*layer, direction, title, drawing::legendAxis(type)));
        }
    }
    return column;
}

CommandResult<void> sheet(const Options& options, std::string& output) {
    Tiles tiles;
    for (const std::string& input : options.inputs) {
        auto bytes = readInput(input);
        if (!bytes) {
            return std::unexpected(bytes.error());
        }
        tiles.emplace_back(input, std::move(*bytes));
    }
    std::vector<drawing::SheetColumn> columns;
    for (const std::int64_t scheme : options.schemes) {
        auto column = columnOf(scheme, tiles);
        if (!column) {
            return std::unexpected(column.error());
        }
        columns.push_back(std::move(*column));
    }
    return writePNG(verbName, drawing::drawSheet(columns), options.file, output);
}

}  // namespace

void addTileSheet(CommandLine& commandLine, CLI::App& parent) {
    const auto options = std::make_shared<Options>();
    auto& verb = commandLine.addVerb(parent, "sheet", "Draws tiles in several colour schemes side by side",
                                     "nimbuscope tile sheet storm.rad2 --scheme 4 13 15 -o sheet.png",
                                     [options](std::string& output) { return sheet(*options, output); });
    verb.add_option("FILE", options->inputs, "Tiles, as for `tile render`")->required()->expected(1, 16);
    verb.add_option("--scheme", options->schemes, "Scheme numbers, as `palette list` shows them")
        ->expected(1, 32)
        ->capture_default_str();
    verb.add_option("-o,--output", options->file, "Picture to write; - for standard output")
        ->type_name("PNG")
        ->required();
}

}  // namespace nimbuscope::tool

// The verb `tile render`.

#include <fmt/format.h>

#include <filesystem>
#include <system_error>
#include <thread>

#include "Batch.hpp"
#include "CommandLine.hpp"
#include "Files.hpp"
#include "Results.hpp"
#include "TileFiles.hpp"
#include "TileRendering.hpp"

namespace nimbuscope::tool {
namespace {

constexpr const char* verbName = "tile render";

struct Options {
    std::vector<std::string> inputs;
    std::string file;
    std::string directory;
    std::int64_t scheme = 4;
    bool isIndexed = false;
    bool isWithoutSnow = false;
    std::int64_t minimalDbz = RadarColorScheme::weakestDbz;
    bool isInversed = false;
    std::string overlay;
    std::size_t jobs = std::max(1U, std::thread::hardware_concurrency());
    bool isRaw = false;
    std::int64_t maximalPixels = 0;
};

CommandResult<TileRendering> renderingOf(const Options& options) {
    auto scheme = RadarColorScheme::make(options.scheme, !options.isWithoutSnow, !options.isIndexed,
                                         options.minimalDbz);
    if (!scheme) {
        return std::unexpected(CommandError{verbName, scheme.error().reason});
    }
    TileRendering rendering{.scheme = std::move(*scheme),
                            .isInversed = options.isInversed,
                            .overlay = std::nullopt,
                            .maximalPixels = static_cast<std::uint64_t>(options.maximalPixels)};
    if (!options.overlay.empty()) {
        const auto bytes = readInput(options.overlay);
        if (!bytes) {
            return std::unexpected(bytes.error());
        }
        auto overlay = readRGBA(options.overlay, *bytes, rendering.maximalPixels);
        if (!overlay) {
            return std::unexpected(overlay.error());
        }
        rendering.overlay = std::move(*overlay);
    }
    return rendering;
}

CommandResult<void> renderFile(const TileRendering& rendering, bool isRaw, const std::string& input,
                               const std::string& file, std::string& output) {
    const auto bytes = readInput(input);
    if (!bytes) {
        return std::unexpected(bytes.error());
    }
    const auto image = rendering.render(input, *bytes);
    if (!image) {
        return std::unexpected(image.error());
    }
    return isRaw ? writeResult(file, platform::textOf(image->pixels), output)
                 : writePNG(input, *image, file, output);
}

CommandResult<void> renderInto(const TileRendering& rendering, const Options& options) {
    const auto tiles = findTiles(options.inputs, options.directory, options.isRaw ? ".rgba" : ".png");
    if (!tiles) {
        return std::unexpected(tiles.error());
    }
    const auto outcome = runBatch(tiles->inputs, options.jobs, [&](std::size_t i) -> CommandResult<void> {
        const std::filesystem::path directory = std::filesystem::path(tiles->outputs[i]).parent_path();
        std::error_code error;
        std::filesystem::create_directories(directory, error);
        if (error) {
            return std::unexpected(CommandError{directory.string(), error.message()});
        }
        std::string unused;
        return renderFile(rendering, options.isRaw, tiles->inputs[i], tiles->outputs[i], unused);
    });
    const std::string counts = fmt::format("{} done, {} failed", outcome.done, outcome.failed);
    if (outcome.failed > 0) {
        return std::unexpected(CommandError{verbName, counts});
    }
    fmt::print(stderr, "{}\n", counts);
    return {};
}

CommandResult<void> render(const Options& options, std::string& output) {
    const auto rendering = renderingOf(options);
    if (!rendering) {
        return std::unexpected(rendering.error());
    }
    return options.directory.empty()
               ? renderFile(*rendering, options.isRaw, options.inputs.front(), options.file, output)
               : renderInto(*rendering, options);
}

void addColors(CLI::App& verb, Options& options) {
    verb.add_option("--scheme", options.scheme, "Scheme number, as `palette list` shows them")
        ->capture_default_str();
    verb.add_flag("--indexed", options.isIndexed, "Bands of 5 dBZ instead of gradients");
    verb.add_flag("--no-snow", options.isWithoutSnow, "Draw every kind of precipitation in rain colours");
    verb.add_option("--minimal-dbz", options.minimalDbz, "Weakest reflectivity that is drawn, -32 to 223")
        ->capture_default_str();
    verb.add_flag("--inversed", options.isInversed, "Turn the tile upside down");
    verb.add_option("--overlay", options.overlay,
                    "RGBA PNG of the tile's size; its pixels replace the tile's unless their alpha is 0")
        ->type_name("FILE");
}

}  // namespace

void addTileRender(CommandLine& commandLine, CLI::App& parent) {
    const auto options = std::make_shared<Options>();
    auto& verb = commandLine.addVerb(
        parent, "render", "Colours tiles: Rad2 files, PNGs of palette indices, and RGBA PNGs",
        "nimbuscope tile render tiles --out-dir pictures --scheme 13 --minimal-dbz 10",
        [options](std::string& output) { return render(*options, output); });
    verb.add_option("FILE", options->inputs,
                    "Tiles; - for standard input. With --out-dir also directories, with all that is below")
        ->required();
    auto& place = *verb.add_option_group("result");
    place.add_option("-o,--output", options->file, "Picture of the one tile; - for standard output")
        ->type_name("FILE");
    place
        .add_option("--out-dir", options->directory,
                    "Directory for the pictures, named as the tiles with .png or .rgba")
        ->type_name("DIR");
    place.require_option(1);
    addColors(verb, *options);
    verb.add_option("--jobs", options->jobs, "Tiles at once; default: one for each processor")
        ->check(CLI::Range(1, 1024));
    verb.add_flag("--raw", options->isRaw, "Write the RGBA bytes alone instead of a PNG");
    addMaximalPixels(verb, options->maximalPixels);
    verb.parse_complete_callback([options] {
        const bool takesStandardInput = std::ranges::find(options->inputs, "-") != options->inputs.end();
        if (options->directory.empty() ? options->inputs.size() > 1 : takesStandardInput) {
            throw CLI::ValidationError(takesStandardInput
                                           ? "-: standard input is taken alone and with --output"
                                           : "--output takes one FILE; --out-dir takes several");
        }
        if (takesStandardInput && options->overlay == "-") {
            throw CLI::ValidationError("-: standard input is taken for FILE or for --overlay, not for both");
        }
    });
}

}  // namespace nimbuscope::tool

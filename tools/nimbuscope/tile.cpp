// The noun `tile`: radar tiles in the Rad2 and PNG formats.

#include <fmt/format.h>

#include "CommandLine.hpp"
#include "Files.hpp"
#include "GrayMap.hpp"
#include "NimbuscopeKit/RadarImagery/Png.hpp"
#include "NimbuscopeKit/RadarImagery/Rad2File.hpp"
#include "NimbuscopeKit/RadarImagery/Rad2Writer.hpp"
#include "ReadableJSON.hpp"
#include "Results.hpp"
#include "TileRendering.hpp"

namespace nimbuscope::tool {
namespace {

std::unexpected<CommandError> fault(const std::string& file, std::string why) {
    return std::unexpected(CommandError{file, std::move(why)});
}

std::unexpected<CommandError> unknownFormat(const std::string& file, const std::string& expected) {
    return fault(file, "byte 0: expected " + expected);
}

// tile info

struct TileInfo {
    const char* format;
    bool isValid = true;
    bool isTransparent = false;
    std::int64_t width = 0;
    std::int64_t height = 0;
    std::int64_t bpp = 0;
    std::int64_t dataHeaderPos = 0;
    std::vector<Rad2Block> blocks{};
};

std::string nameOf(std::uint8_t blockType) {
    switch (static_cast<DataBlockType>(blockType)) {
        case DataBlockType::rad2:
            return "rad2";
        case DataBlockType::arrows:
            return "arrows";
    }
    return fmt::format("{:#04x}", blockType);
}

void writeInfo(platform::JSONWriter& writer, const TileInfo& info) {
    const auto number = [&](const char* key, std::int64_t value) {
        writer.key(key);
        writer.value(value);
    };
    writer.beginObject();
    writer.key("format");
    writer.value(info.format);
    writer.key("valid");
    writer.value(info.isValid);
    writer.key("transparent");
    writer.value(info.isTransparent);
    number("width", info.width);
    number("height", info.height);
    number("size", std::max(info.width, info.height));
    number("bpp", info.bpp);
    number("dataHeaderPos", info.dataHeaderPos);
    writer.key("blocks");
    writer.beginArray();
    for (const Rad2Block& block : info.blocks) {
        const std::string type = nameOf(block.type);
        writer.beginObject();
        writer.key("type");
        writer.value(std::string_view(type));
        number("pos", block.payload.pos);
        number("size", block.payload.size);
        writer.endObject();
    }
    writer.endArray();
    writer.endObject();
}

CommandResult<TileInfo> infoOf(const std::string& name, const platform::Data& bytes,
                               std::int64_t maximalPixels) {
    if (isPNG(bytes)) {
        const auto png = Png::make(bytes, {.pixels = static_cast<std::uint64_t>(maximalPixels)});
        if (!png) {
            return fault(name, png.error().message());
        }
        return TileInfo{.format = "png", .width = png->width(), .height = png->height(), .bpp = png->bpp()};
    }
    if (!Rad2File::hasMagic(bytes)) {
        return unknownFormat(name, "a Rad2 or a PNG file");
    }
    const auto file = Rad2File::parse(bytes);
    if (!file) {
        return fault(name, file.error().message());
    }
    auto blocks = file->blocks();
    if (!blocks) {
        return fault(name, blocks.error().message());
    }
    return TileInfo{.format = "rad2",
                    .isValid = file->rad2Block().has_value(),
                    .isTransparent = !file->rad2Block() || file->rad2Block()->size == 0,
                    .width = file->width(),
                    .height = file->height(),
                    .bpp = file->bpp(),
                    .dataHeaderPos = file->dataHeaderPos(),
                    .blocks = std::move(*blocks)};
}

struct InfoOptions {
    std::string input;
    std::int64_t maximalPixels = 0;
    bool isJSON = false;
};

CommandResult<void> info(const InfoOptions& options, std::string& output) {
    const auto bytes = readInput(options.input);
    if (!bytes) {
        return std::unexpected(bytes.error());
    }
    const auto found = infoOf(options.input, *bytes, options.maximalPixels);
    if (!found) {
        return std::unexpected(found.error());
    }
    platform::JSONWriter writer;
    writeInfo(writer, *found);
    auto printed = printJSON(options.input, writer, output);
    if (printed && !options.isJSON) {
        output = readableJSON(output);
    }
    return printed;
}

void addInfo(CommandLine& commandLine, CLI::App& parent) {
    const auto options = std::make_shared<InfoOptions>();
    auto& verb = commandLine.addVerb(parent, "info", "Tells what a tile is, without drawing it",
                                     "nimbuscope tile info storm.rad2 --json",
                                     [options](std::string& output) { return info(*options, output); });
    verb.add_option("FILE", options->input, "Rad2 or PNG file; - for standard input")->required();
    verb.add_flag("--json", options->isJSON,
                  "Print an object; bpp counts bytes in a Rad2 file and bits in a PNG");
    addMaximalPixels(verb, options->maximalPixels);
}

// tile encode

struct EncodeOptions {
    std::string input;
    std::string file;
    std::string arrows;
    bool isSizeExplicit = false;
    std::int64_t maximalPixels = 0;
};

CommandResult<void> writeRad2(const EncodeOptions& options, Rad2Writer::Contents contents,
                              std::string& output) {
    contents.isSizeExplicit = options.isSizeExplicit;
    platform::Data arrows;
    if (!options.arrows.empty()) {
        auto bytes = readInput(options.arrows);
        if (!bytes) {
            return std::unexpected(bytes.error());
        }
        arrows = std::move(*bytes);
        contents.arrows = arrows;
    }
    const auto file = Rad2Writer::write(contents);
    return file ? writeResult(options.file, platform::textOf(*file), output)
                : fault(options.input, file.error().reason);
}

CommandResult<void> encode(const EncodeOptions& options, std::string& output) {
    const auto bytes = readInput(options.input);
    if (!bytes) {
        return std::unexpected(bytes.error());
    }
    if (isGrayMap(*bytes)) {
        const auto map = parseGrayMap(*bytes);
        return map ? writeRad2(options, {.width = map->width, .height = map->height, .indices = map->samples},
                               output)
                   : fault(options.input, map.error().message());
    }
    if (!isPNG(*bytes)) {
        return unknownFormat(options.input, "a PGM (P5) or a PNG file");
    }
    const auto image =
        platform::decodePNGSamples(*bytes, {.pixels = static_cast<std::uint64_t>(options.maximalPixels)});
    if (!image) {
        return fault(options.input, image.error().message());
    }
    if (image->bitsPerPixel != 8) {
        return fault(options.input,
                     fmt::format("expected a PNG of 8 bits per pixel, found {}", image->bitsPerPixel));
    }
    return writeRad2(options, {.width = image->width, .height = image->height, .indices = image->data},
                     output);
}

void addEncode(CommandLine& commandLine, CLI::App& parent) {
    const auto options = std::make_shared<EncodeOptions>();
    auto& verb = commandLine.addVerb(parent, "encode", "Makes a Rad2 file of palette indices",
                                     "nimbuscope tile encode storm.pgm -o storm.rad2",
                                     [options](std::string& output) { return encode(*options, output); });
    verb.add_option("IN", options->input, "8-bit PGM (P5) or PNG, grey or indexed; - for standard input")
        ->type_name("FILE")
        ->required();
    verb.add_option("-o,--output", options->file, "File to write; - for standard output")
        ->type_name("FILE")
        ->required();
    verb.add_flag("--explicit-size", options->isSizeExplicit,
                  "Write the width and the height even where a size class would do");
    verb.add_option("--arrows", options->arrows, "Payload of an arrows block")->type_name("FILE");
    addMaximalPixels(verb, options->maximalPixels);
    verb.parse_complete_callback([options] {
        if (options->input == "-" && options->arrows == "-") {
            throw CLI::ValidationError("-: standard input is taken for IN or for --arrows, not for both");
        }
    });
}

// tile arrows

struct ArrowsOptions {
    std::string input;
    std::string file;
};

CommandResult<void> arrows(const ArrowsOptions& options, std::string& output) {
    const auto bytes = readInput(options.input);
    if (!bytes) {
        return std::unexpected(bytes.error());
    }
    if (!Rad2File::hasMagic(*bytes)) {
        return unknownFormat(options.input, "a Rad2 file");
    }
    const auto file = Rad2File::parse(*bytes);
    if (!file) {
        return fault(options.input, file.error().message());
    }
    const auto payload = file->payload(DataBlockType::arrows);
    if (!payload) {
        return fault(options.input, payload.error().message());
    }
    if (!*payload) {
        return fault(options.input, "the file has no arrows block");
    }
    return writeResult(options.file, {reinterpret_cast<const char*>((*payload)->data()), (*payload)->size()},
                       output);
}

void addArrows(CommandLine& commandLine, CLI::App& parent) {
    const auto options = std::make_shared<ArrowsOptions>();
    auto& verb = commandLine.addVerb(parent, "arrows", "Writes the payload of a Rad2 file's arrows block",
                                     "nimbuscope tile arrows storm.rad2 -o storm.arrows",
                                     [options](std::string& output) { return arrows(*options, output); });
    verb.add_option("FILE", options->input, "Rad2 file; - for standard input")->required();
    verb.add_option("-o,--output", options->file, "File to write; - for standard output")
        ->type_name("FILE")
        ->required();
}

}  // namespace

void addMaximalPixels(CLI::App& verb, std::int64_t& maximalPixels) {
    const auto fault = [](const std::string& text) {
        return text.starts_with('-') || text == "0" ? "expected a number from 1 on, found " + text : "";
    };
    maximalPixels = std::int64_t{1} << 26U;
    verb.add_option("--max-pixels", maximalPixels, "Refuse larger images")
        ->check(CLI::Validator(fault, "POSITIVE"))
        ->capture_default_str();
}

void addTile(CommandLine& commandLine) {
    auto& parent = commandLine.addNoun("tile", "Reads, draws and makes radar tiles");
    addInfo(commandLine, parent);
    addTileRender(commandLine, parent);
    addTileSheet(commandLine, parent);
    addEncode(commandLine, parent);
    addArrows(commandLine, parent);
}

}  // namespace nimbuscope::tool

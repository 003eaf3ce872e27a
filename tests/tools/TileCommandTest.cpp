#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>

#include "NimbuscopeKit/RadarImagery/RadarColorScheme.hpp"
#include "Platform/Graphics/PNG.hpp"
#include "tests/support/LibPNG.hpp"
#include "tests/support/Process.hpp"
#include "tests/support/TemporaryDirectory.hpp"

namespace nimbuscope::testing {
namespace {

using platform::Data;

constexpr const char* tool = NIMBUSCOPE_BINARY_DIRECTORY "/tools/nimbuscope/nimbuscope ";

struct TileCommand : ::testing::Test {
    TemporaryDirectory directory;

    /// Runs `nimbuscope ARGUMENTS` inside the directory.
    [[nodiscard]] Outcome call(const std::string& arguments, const std::string& locale = "C") const {
        return run({"/bin/sh", "-c", "cd '" + directory.path() + "' && exec " + tool + arguments}, {},
                   {{"LC_ALL", locale}});
    }
    /// What a command that succeeds prints.
    [[nodiscard]] std::string output(const std::string& arguments) const {
        const Outcome done = call(arguments);
        EXPECT_EQ(done.exitCode, 0) << arguments << ": " << done.errors;
        EXPECT_EQ(done.errors, "") << arguments;
        return done.output;
    }
    [[nodiscard]] std::string read(const std::string& name) const { return readFile(directory.path(name)); }
    void write(const std::string& name, const Data& bytes) const {
        std::filesystem::create_directories(std::filesystem::path(directory.path(name)).parent_path());
        writeFile(directory.path(name), platform::textOf(bytes));
    }
    void write(const std::string& name, std::string_view text) const { write(name, platform::dataOf(text)); }
    [[nodiscard]] bool exists(const std::string& name) const {
        return std::filesystem::exists(directory.path(name));
    }
};

Data someIndices(std::size_t count) {
    Data indices(count);
    for (std::size_t i = 0; i < count; ++i) {
        indices[i] = static_cast<std::uint8_t>(i / 3 * 7);
    }
    return indices;
}

std::string grayMap(std::uint32_t width, std::uint32_t height, const Data& indices) {
    return "P5 # a storm\n" + std::to_string(width) + " " + std::to_string(height) + "\n#\n255\n" +
           std::string(platform::textOf(indices));
}

std::string colored(const Data& indices, std::int64_t scheme = 4, bool snow = true, bool smooth = true,
                    std::int64_t minimalDbz = -32) {
    const RadarColorScheme colors(scheme, snow, smooth, minimalDbz);
    std::string pixels;
    for (const std::uint8_t index : indices) {
        pixels += platform::textOf(
            Data(&colors.colors()[index * std::size_t{4}], &colors.colors()[index * std::size_t{4}] + 4));
    }
    return pixels;
}

std::string upsideDown(const std::string& pixels, std::size_t rowSize) {
    std::string turned;
    for (std::size_t end = pixels.size(); end > 0; end -= rowSize) {
        turned += pixels.substr(end - rowSize, rowSize);
    }
    return turned;
}

TEST_F(TileCommand, formatsOfOneStormGiveOnePicture) {
    const Data indices = someIndices(30 * 20);
    write("storm.pgm", grayMap(30, 20, indices));
    write("grey.png", writeIndices(30, 20, indices));
    write("indexed.png", writeIndices(30, 20, indices, 3));
    for (const char* source : {"storm.pgm", "grey.png", "indexed.png"}) {
        EXPECT_EQ(output(std::string("tile encode ") + source + " -o " + source + ".rad2"), "");
        EXPECT_EQ(read(std::string(source) + ".rad2"), read("storm.pgm.rad2")) << source;
    }
    for (const char* tile : {"storm.pgm.rad2", "grey.png", "indexed.png"}) {
        const std::string render = std::string("tile render ") + tile + " -o - --raw ";
        EXPECT_EQ(output(render), colored(indices)) << tile;
        EXPECT_EQ(output(render + "--inversed"), upsideDown(colored(indices), 120)) << tile;
        EXPECT_EQ(output(render + "--scheme 2 --indexed --no-snow --minimal-dbz -5"),
                  colored(indices, 2, false, false, -5))
            << tile;
        EXPECT_EQ(output(std::string("tile render - -o picture.png <") + tile), "");
        const auto picture = platform::decodePNG(platform::dataOf(read("picture.png")), 600);
        ASSERT_TRUE(picture);
        EXPECT_EQ(picture->width, 30U);
        EXPECT_EQ(platform::textOf(picture->pixels), colored(indices)) << tile;
    }
}

TEST_F(TileCommand, infoDescribesTiles) {
    write("map.pgm", grayMap(256, 256, Data(65536, 9)));
    write("arrows", "\1\2\3");
    EXPECT_EQ(output("tile encode map.pgm -o map.rad2 --arrows arrows --explicit-size"), "");
    EXPECT_EQ(
        output("tile info map.rad2 --json"),
        R"({"format":"rad2","valid":true,"transparent":false,"width":256,"height":256,"size":256,"bpp":1,)"
        R"("dataHeaderPos":12,"blocks":[{"type":"arrows","pos":20,"size":3},)"
        R"({"type":"rad2","pos":31,"size":6}]})"
        "\n");
    EXPECT_EQ(output("tile arrows map.rad2 -o -"), "\1\2\3");
    write("rgb.png", writePNGFile({.width = 5, .height = 7, .colorType = 2, .samples = Data(105)}));
    EXPECT_NE(output("tile info rgb.png --json").find(R"("width":5,"height":7,"size":7,"bpp":24,)"),
              std::string::npos);
    // Other blocks, and none of rad2.
    write("other.rad2", std::string_view("RAD2\0\x11\1\x40\x20\0\0\0\0\0\0\0\x51\0\0\0\0\0\0\0", 24));
    const std::string other = output("tile info other.rad2");
    for (const char* line : {"valid: false", "transparent: true", "width: 512",
                             "type: 0x20, pos: 16, size: 0", "type: arrows, pos: 24, size: 0"}) {
        EXPECT_NE(other.find(line), std::string::npos) << other;
    }
    // Sixteen GiB of pixels: told, but not drawn.
    write("huge.rad2",
          std::string_view("RAD2\0\x11\5\xC0\xFF\xFF\xFF\xFF\x31\0\0\0\6\0\0\0\7\xFF\xFF\xFE\0\1", 26));
    EXPECT_NE(output("tile info huge.rad2").find("width: 65535"), std::string::npos);
    EXPECT_NE(call("tile render huge.rad2 -o out").errors.find("pixels"), std::string::npos);
}

TEST_F(TileCommand, rgbaTilesCarryTheirKindOfPrecipitation) {
    const Data samples{40, 1, 0, 9, 50, 2, 255, 9, 60, 3, 191, 9, 70, 4, 223, 9};
    write("tile.png", writePNGFile({.width = 2, .height = 2, .colorType = 6, .samples = samples}));
    const RadarColorScheme scheme(4, true, true, -32);
    const auto expected = scheme.applyColors(samples, platform::CGSize{2, 2});
    const std::string pixels(platform::textOf(*expected));
    EXPECT_EQ(output("tile render tile.png -o - --raw"), pixels);
    EXPECT_EQ(output("tile render tile.png -o - --raw --inversed"), upsideDown(pixels, 8));
}

TEST_F(TileCommand, sheetsShowEveryTileInEveryScheme) {
    write("a.png", writeIndices(9, 9, Data(81, 70)));
    write("b.png", writeIndices(9, 9, Data(81, 90)));
    EXPECT_EQ(output("tile sheet a.png b.png --scheme 2 13 100 -o sheet.png"), "");
    const auto sheet = platform::decodePNG(platform::dataOf(read("sheet.png")), 4'000'000);
    ASSERT_TRUE(sheet);
    for (const std::int64_t scheme : {2, 13}) {
        for (const std::uint8_t index : {std::uint8_t{70}, std::uint8_t{90}}) {
            const std::string row = colored(Data(9, index), scheme);
            EXPECT_NE(platform::textOf(sheet->pixels).find(row), std::string_view::npos) << scheme;
        }
    }
    write("bad.png", "");
    EXPECT_EQ(call("tile sheet a.png bad.png -o out").exitCode, 1);
    EXPECT_FALSE(exists("out"));
}

TEST_F(TileCommand, overlaysReplacePixelsAndMustFit) {
    write("tile.png", writeIndices(2, 1, {60, 70}));
    const auto overlay = [&](std::uint32_t width, std::uint32_t height, const Data& pixels) {
        write("overlay.png", *platform::encodePNG(width, height, pixels));
        return call("tile render tile.png --raw --overlay overlay.png -o -");
    };
    EXPECT_EQ(overlay(2, 1, {9, 9, 9, 0, 1, 2, 3, 1}).output,
              colored({60}) + std::string("\1\2\3\1"));  // nothing is blended
    EXPECT_EQ(overlay(1, 2, Data(8)).errors,
              "nimbuscope: tile.png: the overlay has 1 x 2 pixels, the tile 2 x 1\n");
    const Outcome grey = call("tile render tile.png --overlay tile.png -o out");
    EXPECT_EQ(grey.exitCode, 1);
    EXPECT_EQ(grey.errors.find("nimbuscope: tile.png: expected a PNG of 8-bit RGBA"), 0U) << grey.errors;
    EXPECT_FALSE(exists("out"));
}

TEST_F(TileCommand, faultsAreNamedWithTheirPlace) {
    write("short.pgm", "P5 2 2 255\nabc");
    write("long.pgm", "P5 2 2 255\nabcde");
    write("wide.pgm", "P5 2 2 65535\nabcdefgh");
    write("bright.pgm", "P5 2 2 98\nabcd");
    write("flat.pgm", "P5 2 0 255\n");
    write("endless.pgm", "P5 99999999999999999999 1 255\n");
    write("cut.pgm", "P5 2 2 255");
    write("letter.pgm", "P5 x 2 255\n");
    write("wide.png", writePNGFile({.width = 2, .height = 1, .depth = 16, .samples = Data(4)}));
    write("narrow.png", writePNGFile({.width = 2, .height = 1, .depth = 4, .samples = Data(1)}));
    Data cut = writeIndices(9, 9, Data(81));
    cut.resize(40);
    write("cut.png", cut);
    write("text", "no tile");
    write("empty", "");
    write("none.rad2", std::string_view("RAD2\0\x11\1\0\x51\0\0\0\0\0\0\0", 16));
    write("head.rad2", std::string_view("RAD2\0\x11\1\x40", 8));
    write("void.rad2", std::string_view("RAD2\0\x11\5\xC0\0\0\0\5\x31\0\0\0\0\0\0\0", 20));
    const std::map<std::string, std::string> cases{
        {"encode short.pgm", "byte 14: expected 4 samples, found 3"},
        {"encode long.pgm", "byte 15: expected 4 samples, found 5"},
        {"encode wide.pgm", "byte 7: expected a maximum from 1 to 255"},
        {"encode bright.pgm", "byte 12: expected a sample up to 98, found 99"},
        {"encode flat.pgm", "byte 5: expected a height from 1"},
        {"encode endless.pgm", "byte 3: expected a width from 1"},
        {"encode cut.pgm", "byte 10: expected one white space"},
        {"encode letter.pgm", "byte 3: expected a width"},
        {"encode wide.png", "expected a PNG of 8 bits per pixel, found 16"},
        {"encode text", "byte 0: expected a PGM (P5) or a PNG file"},
        {"render text", "byte 0: expected a Rad2 or a PNG file"},
        {"render empty", "byte 0: expected a Rad2 or a PNG file"},
        {"render missing", "No such file or directory"},
        {"render narrow.png", "expected pixels of at least 8 bits, found 4"},
        {"render cut.png", "byte 40: the file ends too early"},
        {"render wide.png --max-pixels 1", "byte 29: an image of 2 x 1 has more than 1 pixels"},
        {"render none.rad2", "rad2"},
        {"render head.rad2", "byte 8: "},
        {"render void.rad2", "a PNG has from 1 to 2147483647 pixels a side, not 0 x 5"},
        {"arrows text", "byte 0: expected a Rad2 file"},
        {"arrows void.rad2", "the file has no arrows block"},
        {"info head.rad2", "byte 8: "},
    };
    for (const auto& [arguments, expected] : cases) {
        const std::string command = "tile " + arguments + (arguments.starts_with("info") ? "" : " -o out");
        const std::string name = arguments.substr(arguments.find(' ') + 1);
        const Outcome failed = call(command);
        EXPECT_EQ(failed.exitCode, 1) << arguments;
        EXPECT_EQ(failed.errors.find("nimbuscope: " + name.substr(0, name.find(' ')) + ": "), 0U)
            << failed.errors;
        EXPECT_NE(failed.errors.find(expected), std::string::npos) << failed.errors;
        EXPECT_EQ(std::ranges::count(failed.errors, '\n'), 1) << failed.errors;
        EXPECT_FALSE(exists("out")) << arguments;
    }
}

TEST_F(TileCommand, directoriesAreRenderedPastBadFiles) {
    std::map<std::string, std::string> expected;
    for (int i = 0; i < 40; ++i) {
        const std::string name = "tiles/" + std::to_string(i % 4) + "/" + std::to_string(i);
        const Data indices = someIndices(static_cast<std::size_t>(8 + i));
        write(name + ".png", writeIndices(static_cast<std::uint32_t>(indices.size()), 1, indices));
        expected["out" + name.substr(5) + ".rgba"] = colored(indices);
    }
    write("tiles/.hidden", "no tile");
    EXPECT_EQ(call("tile render tiles --out-dir tiles/out --raw --jobs 3").errors, "40 done, 0 failed\n");
    std::filesystem::rename(directory.path("tiles/out"), directory.path("out"));
    for (const auto& [name, pixels] : expected) {
        EXPECT_EQ(read(name), pixels) << name;
    }
    write("tiles/2/bad.rad2", "RAD2");
    write("tiles/worse", "");
    for (const char* jobs : {"1", "8"}) {
        const Outcome failed =
            call(std::string("tile render tiles none.png --out-dir out --raw --jobs ") + jobs);
        EXPECT_EQ(failed.exitCode, 1);
        EXPECT_EQ(failed.output, "");
        EXPECT_NE(failed.errors.find("nimbuscope: tiles/2/bad.rad2: byte "), std::string::npos)
            << failed.errors;
        EXPECT_NE(failed.errors.find("nimbuscope: tiles/worse: byte 0: "), std::string::npos);
        EXPECT_NE(failed.errors.find("nimbuscope: none.png: No such file"), std::string::npos);
        EXPECT_TRUE(failed.errors.ends_with("nimbuscope: tile render: 40 done, 3 failed\n")) << failed.errors;
        EXPECT_FALSE(exists("out/2/bad.rgba"));
    }
}

TEST_F(TileCommand, noPictureTakesThePlaceOfAnotherFile) {
    const Data tile = writeIndices(1, 1, {50});
    write("a.png", tile);
    write("b/a.png", tile);
    write("a.rad2", tile);
    for (const char* arguments : {"a.png --out-dir .", "a.png --out-dir b/..", "a.rad2 a.png --out-dir out",
                                  "a.png b --out-dir out", "b --out-dir b", "a.rad2 a.rad2 --out-dir out"}) {
        const Outcome refused = call(std::string("tile render ") + arguments);
        EXPECT_EQ(refused.exitCode, 1) << arguments;
        EXPECT_NE(refused.errors.find("would take the place of"), std::string::npos) << refused.errors;
        EXPECT_FALSE(exists("out"));
    }
    EXPECT_EQ(read("a.png"), platform::textOf(tile));
    EXPECT_EQ(read("b/a.png"), platform::textOf(tile));
}

TEST_F(TileCommand, progressIsShownOnTerminalsOnly) {
    write("tiles/a.png", writeIndices(1, 1, {50}));
    write("tiles/b.png", writeIndices(1, 1, {50}));
    const Outcome shown = run(
        {"/usr/bin/env", "script", "-qec",
         std::string(tool) + "tile render " + directory.path("tiles") + " --out-dir " + directory.path("out"),
         "/dev/null"});
    EXPECT_EQ(shown.exitCode, 0);
    EXPECT_NE(shown.output.find("[####################--------------------] 1 of 2"), std::string::npos)
        << shown.output;
    EXPECT_NE(shown.output.find("\r2 done, 0 failed"), std::string::npos);
    EXPECT_EQ(call("tile render tiles --out-dir out").errors, "2 done, 0 failed\n");
}

TEST_F(TileCommand, wrongCommandLinesExitWithTwo) {
    for (const char* arguments :
         {"tile", "tile render a", "tile render a b -o c", "tile render - --out-dir c",
          "tile render a -o b --jobs 0", "tile render a -o b --out-dir c",
          "tile render a -o b --max-pixels -1", "tile encode a", "tile arrows a", "tile info",
          "map span --size 1x1 --center 0,0", "map span --size 1 --center 0,0 --zoom 1",
          "map span --size 1x-1 --center 0,0 --zoom 1", "map span --size 1xnan --center 0,0 --zoom 1",
          "map span --size 1x1 --center 90.1,0 --zoom 1", "map span --size 1x1 --center 0 --zoom 1",
          "map span --size 1x1 --center 0,0 --zoom 1.5", "map country"}) {
        const Outcome failed = call(arguments);
        EXPECT_EQ(failed.exitCode, 2) << arguments << failed.errors;
        EXPECT_EQ(failed.output, "") << arguments;
    }
}

TEST_F(TileCommand, mapsAnswer) {
    const std::string span = output("map span --size 512x256 --center 0,-0 --zoom 0 --json");
    EXPECT_EQ(span.find(R"({"latitudeDelta":133.02652088)"), 0U) << span;
    EXPECT_TRUE(span.ends_with(",\"longitudeDelta\":360}\n")) << span;
    EXPECT_EQ(output("map span --size 0x0 --center -90e-1,-180 --zoom -3"),
              "0 degrees of latitude, 0 of longitude\n");
    for (const char* arguments : {"--center 90,0 --zoom 1", "--center 0,0 --zoom -9223372036854775808",
                                  "--center 0,0 --zoom -2000"}) {
        const Outcome failed = call(std::string("map span --json --size 1x1 ") + arguments);
        EXPECT_EQ(failed.exitCode, 1) << arguments;
        EXPECT_EQ(failed.errors.find("nimbuscope: map span: "), 0U) << failed.errors;
        EXPECT_EQ(failed.output, "");
    }
    EXPECT_EQ(output("map country PT"), "Portugal\n");
    EXPECT_EQ(call("map country US", "de_DE.UTF-8").output, "Vereinigte Staaten\n");
    EXPECT_EQ(output("map country Atlantis"), "Atlantis\n");
}

}  // namespace
}  // namespace nimbuscope::testing

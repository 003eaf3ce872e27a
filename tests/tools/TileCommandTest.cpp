#include <map>

#include "NimbuscopeKit/RadarImagery/RadarColorScheme.hpp"
#include "Platform/Graphics/PNG.hpp"
#include "tests/support/LibPNG.hpp"
#include "tests/support/ToolTest.hpp"

namespace nimbuscope::testing {
namespace {

using platform::Data;
using platform::textOf;
using namespace std::string_view_literals;
using TileCommand = ToolTest;

Data someIndices(std::size_t count) {
    Data indices(count);
    for (std::size_t i = 0; i < count; ++i) {
        indices[i] = static_cast<std::uint8_t>(i / 3 * 7);
    }
    return indices;
}

std::string indexFile(std::uint32_t width, std::uint32_t height, const Data& indices, int colorType = 0) {
    return std::string(textOf(writeIndices(width, height, indices, colorType)));
}

std::string colored(const Data& indices, std::int64_t scheme = 4, bool snow = true, bool smooth = true,
                    std::int64_t minimalDbz = -32) {
    const RadarColorScheme colors(scheme, snow, smooth, minimalDbz);
    std::string pixels;
    for (const std::uint8_t index : indices) {
        const auto color = colors.colors().subspan(index * std::size_t{4}, 4);
        pixels.append(color.begin(), color.end());
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
    write("storm.pgm", "P5 # a storm\n30 20\n#\n255\n" + std::string(textOf(indices)));
    write("grey.png", indexFile(30, 20, indices));
    write("indexed.png", indexFile(30, 20, indices, 3));
    for (const std::string source : {"storm.pgm", "grey.png", "indexed.png"}) {
        EXPECT_EQ(output("tile encode " + source + " -o " + source + ".rad2"), "");
        EXPECT_EQ(read(source + ".rad2"), read("storm.pgm.rad2")) << source;
    }
    for (const std::string tile : {"storm.pgm.rad2", "grey.png", "indexed.png"}) {
        const std::string render = "tile render " + tile + " -o - --raw ";
        EXPECT_EQ(output(render + "--inversed"), upsideDown(colored(indices), 120)) << tile;
        EXPECT_EQ(output(render + "--scheme 2 --indexed --no-snow --minimal-dbz -5"),
                  colored(indices, 2, false, false, -5));
        const auto picture =
            platform::decodePNG(platform::dataOf(output("tile render - -o - <" + tile)), 600);
        ASSERT_TRUE(picture);
        EXPECT_EQ(picture->width, 30U);
        EXPECT_EQ(textOf(picture->pixels), colored(indices)) << tile;
    }
}

TEST_F(TileCommand, infoDescribesTiles) {
    write("map.png", indexFile(256, 256, Data(65536, 9)));
    write("arrows", "\1\2\3");
    EXPECT_EQ(output("tile encode map.png -o map.rad2 --arrows arrows --explicit-size"), "");
    EXPECT_EQ(
        output("tile info map.rad2 --json"),
        R"({"format":"rad2","valid":true,"transparent":false,"width":256,"height":256,"size":256,"bpp":1,)"
        R"("dataHeaderPos":12,"blocks":[{"type":"arrows","pos":20,"size":3},)"
        R"({"type":"rad2","pos":31,"size":6}]})"
        "\n");
    EXPECT_EQ(output("tile arrows map.rad2 -o -"), "\1\2\3");
    EXPECT_NE(output("tile info map.png --json").find(R"("width":256,"height":256,"size":256,"bpp":8,)"),
              std::string::npos);
    // Other blocks, and none of rad2.
    write("other", "RAD2\0\x11\1\x40\x20\0\0\0\0\0\0\0\x51\0\0\0\0\0\0\0"sv);
    EXPECT_NE(output("tile info other").find("type: 0x20, pos: 16, size: 0"), std::string::npos);
    // Sixteen GiB of pixels: told, but not drawn.
    write("huge", "RAD2\0\x11\5\xC0\xFF\xFF\xFF\xFF\x31\0\0\0\6\0\0\0\7\xFF\xFF\xFE\0\1"sv);
    EXPECT_NE(output("tile info huge").find("width: 65535"), std::string::npos);
    EXPECT_NE(failure("tile render huge -o out").find("pixels"), std::string::npos);
}

TEST_F(TileCommand, rgbaTilesCarryTheirKindOfPrecipitation) {
    const Data samples{40, 1, 0, 9, 50, 2, 255, 9, 60, 3, 191, 9, 70, 4, 223, 9};
    write("tile.png", textOf(writePNGFile({.width = 2, .height = 2, .colorType = 6, .samples = samples})));
    const auto expected = RadarColorScheme(4, true, true, -32).applyColors(samples, platform::CGSize{2, 2});
    EXPECT_EQ(output("tile render tile.png -o - --raw --inversed"),
              upsideDown(std::string(textOf(*expected)), 8));
}

TEST_F(TileCommand, sheetsShowEveryTileInEveryScheme) {
    write("a.png", indexFile(9, 9, Data(81, 70)));
    write("b.png", indexFile(9, 9, Data(81, 90)));
    const std::string file = output("tile sheet a.png b.png --scheme 2 13 100 -o -");
    const auto sheet = platform::decodePNG(platform::dataOf(file), 4'000'000);
    ASSERT_TRUE(sheet);
    for (const std::int64_t scheme : {2, 13}) {
        for (const std::uint8_t index : Data{70, 90}) {
            const std::string row = colored(Data(9, index), scheme);
            EXPECT_NE(textOf(sheet->pixels).find(row), std::string_view::npos) << scheme;
        }
    }
    write("bad.png", "");
    EXPECT_NE(failure("tile sheet a.png bad.png -o out"), "");
}

TEST_F(TileCommand, overlaysReplacePixelsAndMustFit) {
    write("tile.png", indexFile(2, 1, {60, 70}));
    write("fits.png", textOf(*platform::encodePNG(2, 1, Data{9, 9, 9, 0, 1, 2, 3, 1})));
    write("tall.png", textOf(*platform::encodePNG(1, 2, Data(8))));
    EXPECT_EQ(output("tile render tile.png --raw --overlay fits.png -o -"),
              colored({60}) + "\1\2\3\1");  // nothing is blended
    EXPECT_EQ(failure("tile render tile.png --overlay tall.png -o out"),
              "tile.png: the overlay has 1 x 2 pixels, the tile 2 x 1");
    EXPECT_TRUE(failure("tile render tile.png --overlay tile.png -o out")
                    .starts_with("tile.png: expected a PNG of 8-bit RGBA"));
}

TEST_F(TileCommand, faultsAreNamedWithTheirPlace) {
    const std::string empty("RAD2\0\x11\5\xC0\0\0\0\5\x31\0\0\0\0\0\0\0"sv);  // 0 x 5 pixels
    const auto gray = [](int depth) {
        return std::string(textOf(writePNGFile({.width = 2, .depth = depth, .samples = Data(4)})));
    };
    struct Case {
        std::string file;
        const char *verb, *error;
        const char* options = " -o out";
    };
    const Case cases[] = {
        {"P5 2 2 255\nabc", "encode", "byte 14: expected 4 samples, found 3"},
        {"P5 2 2 65535\nabcdefgh", "encode", "byte 7: expected a maximum from 1 to 255"},
        {"P5 2 2 98\nabcd", "encode", "byte 12: expected a sample up to 98, found 99"},
        {"P5 2 0 255\n", "encode", "byte 5: expected a height from 1"},
        {"P5 99999999999999999999 1 255\n", "encode", "byte 3: expected a width from 1"},
        {"P5 2 2 255", "encode", "byte 10: expected one white space"},
        {gray(16), "encode", "expected a PNG of 8 bits per pixel, found 16"},
        {gray(16), "render", "byte 29: an image of 2 x 1 has more than 1 pixels", " -o out --max-pixels 1"},
        {gray(4), "render", "expected pixels of at least 8 bits, found 4"},
        {"no tile", "encode", "byte 0: expected a PGM (P5) or a PNG file"},
        {"", "render", "byte 0: expected a Rad2 or a PNG file"},
        {std::string("RAD2\0\x11\1\x40"sv), "info", "byte 8: ", ""},
        {empty, "arrows", "the file has no arrows block"},
        {empty, "render", "a PNG has from 1 to 2147483647 pixels a side, not 0 x 5"},
    };
    for (const auto& [file, verb, error, options] : cases) {
        write("file", file);
        EXPECT_TRUE(failure(std::string("tile ") + verb + " file" + options)
                        .starts_with(std::string("file: ") + error))
            << error;
    }
}

TEST_F(TileCommand, directoriesAreRenderedPastBadFiles) {
    std::map<std::string, std::string> expected;
    for (std::uint32_t i = 0; i < 40; ++i) {
        const std::string name = "/" + std::to_string(i % 4) + "/" + std::to_string(i);
        write("tiles" + name + ".png", indexFile(8 + i, 1, someIndices(8 + i)));
        expected["out" + name + ".rgba"] = colored(someIndices(8 + i));
    }
    write("tiles/.hidden", "no tile");
    EXPECT_EQ(call("tile render tiles --out-dir tiles/out --raw --jobs 3").errors, "40 done, 0 failed\n");
    std::filesystem::rename(directory.path("tiles/out"), directory.path("out"));
    for (const auto& [name, pixels] : expected) {
        EXPECT_EQ(read(name), pixels) << name;
    }
    write("tiles/2/bad.rad2", "RAD2");
    write("tiles/worse", "");
    for (const std::string jobs : {"1", "8"}) {
        const Outcome failed = call("tile render tiles none.png --out-dir out --raw --jobs " + jobs);
        EXPECT_EQ(failed.exitCode, 1);
        EXPECT_EQ(failed.output, "");
        for (const char* line : {"nimbuscope: tiles/2/bad.rad2: byte ",
                                 "nimbuscope: tiles/worse: byte 0: ", "nimbuscope: none.png: No such file"}) {
            EXPECT_NE(failed.errors.find(line), std::string::npos) << failed.errors;
        }
        EXPECT_TRUE(failed.errors.ends_with("nimbuscope: tile render: 40 done, 3 failed\n")) << failed.errors;
        EXPECT_EQ(read("out/2/bad.rgba"), "");
    }
}

TEST_F(TileCommand, noPictureTakesThePlaceOfAnotherFile) {
    const std::string tile = indexFile(1, 1, {50});
    for (const char* name : {"a.png", "b/a.png", "a.rad2"}) {
        write(name, tile);
    }
    for (const std::string arguments :
         {"a.png --out-dir .", "a.png --out-dir b/..", "a.rad2 a.png --out-dir out", "a.png b --out-dir out",
          "b --out-dir b", "a.rad2 a.rad2 --out-dir out"}) {
        EXPECT_NE(failure("tile render " + arguments).find("would take the place of"), std::string::npos);
    }
    EXPECT_EQ(read("a.png"), tile);
    EXPECT_EQ(read("b/a.png"), tile);
}

TEST_F(TileCommand, progressIsShownOnTerminalsOnly) {
    write("tiles/a.png", indexFile(1, 1, {50}));
    write("tiles/b.png", indexFile(1, 1, {50}));
    const std::string render = "tile render " + directory.path("tiles --out-dir ") + directory.path("out");
    const Outcome shown = run({"/usr/bin/env", "script", "-qec", tool + render, "/dev/null"});
    EXPECT_NE(shown.output.find("[####################--------------------] 1 of 2"), std::string::npos)
        << shown.output;
    EXPECT_NE(shown.output.find("\r2 done, 0 failed"), std::string::npos);
    EXPECT_EQ(call(render).errors, "2 done, 0 failed\n");
}

TEST_F(TileCommand, wrongCommandLinesExitWithTwo) {
    for (const char* arguments :
         {"tile", "tile render a", "tile render a b -o c", "tile render - --out-dir c",
          "tile render a -o b --jobs 0", "tile render a -o b --out-dir c", "tile encode a",
          "map span --size 1x1 --center 0,0", "map span --size 1xnan --center 0,0 --zoom 1",
          "map span --size 1x1 --center 90.1,0 --zoom 1", "map span --size 1x1 --center 0,0 --zoom 1.5"}) {
        EXPECT_NE(failure(arguments, 2), "");
    }
}

TEST_F(TileCommand, mapsAnswer) {
    const std::string span = output("map span --size 512x256 --center 0,-0 --zoom 0 --json");
    EXPECT_TRUE(span.starts_with(R"({"latitudeDelta":133.02652088)")) << span;
    EXPECT_TRUE(span.ends_with(",\"longitudeDelta\":360}\n")) << span;
    EXPECT_EQ(output("map span --size 0x0 --center -90e-1,-180 --zoom -3"),
              "0 degrees of latitude, 0 of longitude\n");
    EXPECT_TRUE(failure("map span --json --size 1x1 --center 90,0 --zoom 1").starts_with("map span: "));
    EXPECT_EQ(output("map country US", {}, "de_DE.UTF-8"), "Vereinigte Staaten\n");
    EXPECT_EQ(output("map country Atlantis"), "Atlantis\n");
}

}  // namespace
}  // namespace nimbuscope::testing

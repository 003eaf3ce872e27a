#include "colorschemes/text/ColorTable.hpp"

#include <gtest/gtest.h>

#include <map>

#include "colorschemes/colorschemes.h"
#include "colorschemes/compiler/PaletteTable.hpp"

namespace nimbuscope {
namespace {

TEST(ColorTable, readsWhatOtherViewersWrite) {
    const auto table = parseColorTable(
        "\xEF\xBB\xBFMy storm colours, 2019 edition\r\n"
        "; units follow\r\n"
        "UNITS :\tdBZ # reflectivity\r\n"
        "Step: 5\r\nscale: 2\r\noffset: 10\r\nND: 0 0 0 0\r\n"
        "color4: +70 001 2 3 4 5 6 7 8\r\n"
        "SOLIDCOLOR: 30\t9 8 7;note\r\n"
        "Color: 30 1 1 1\r\n"
        "Color: -10.5 255 0 05");
    ASSERT_TRUE(table) << table.error().message();
    EXPECT_TRUE(table->isReflectivity());
    const std::vector<ColorTableStop> expected{
        {.value = -10.25, .color = {255, 0, 5, 255}, .line = 11},
        {.value = 10, .color = {1, 1, 1, 255}, .line = 10},  // descending: the lower comes later in the file
        {.value = 10, .isHeld = true, .color = {9, 8, 7, 255}, .line = 9},
        {.value = 30, .hasAlpha = true, .color = {1, 2, 3, 4}, .endColor = RGBA{5, 6, 7, 8}, .line = 8}};
    EXPECT_EQ(table->stops, expected);
    const auto colors = renderColorTable(*table, -10.25, 50, 242);  // four entries a unit
    EXPECT_EQ(colors[80], (RGBA{4, 0, 1, 255}));
    EXPECT_EQ(colors[81], (RGBA{9, 8, 7, 255}));
    EXPECT_EQ(colors[241], (RGBA{5, 6, 7, 8}));
}

TEST(ColorTable, malformedLinesAreErrorsWithTheirNumber) {
    const std::map<std::string, std::string> cases{
        {"Units: DBZ\nfree text\n", "no colour in the whole table"},
        {"Color: 1 2 3 4\nColor: 10 1 2", "line 2: expected a value and 3 or 6 colour components, found 3"},
        {"SolidColor: 10 1 2 3 4 5 6", "line 1: expected a value and 3 colour components, found 7"},
        {"Color: 10 1 2 256", "line 1: expected a colour component from 0 to 255, found '256'"},
        {"Color: nan 1 2 3", "line 1: expected a value, found 'nan'"},
        {"Color: +-1 1 2 3", "line 1: expected a value, found '+-1'"},
        {"Color 10 1 2 3", "line 1: no colon behind 'Color'"},
        {"\n\n10 1 2 3", "line 3: colour without a key"},
        {"Colr: 10 1 2 3", "line 1: unknown key 'Colr'"},
        {"Scale: 0\nColor: 10 1 2 3", "line 1: scale: 0"},
    };
    for (const auto& [text, expected] : cases) {
        const auto table = parseColorTable(text);
        ASSERT_FALSE(table) << text;
        EXPECT_NE(table.error().message().find(expected), std::string::npos) << table.error().message();
    }
}

TEST(ColorTable, stopListsComeBackByteForByteThroughText) {
    for (std::uint32_t id = 0; id < 256; ++id) {
        ColorPaletteSource source;
        if (get_color_palette(id, 0, &source) == 0) {
            continue;
        }
        const std::uint8_t* list = NB_PALETTES + source.sections[0].offset;
        const bool isReflectivity = source.sections[1].count != 0;
        std::size_t size = 0;
        ASSERT_EQ(cs_check_stop_list(list, nb_palettes_size - source.sections[0].offset, &size),
                  CS_STOP_LIST_SOUND);
        const ColorTable table{"x", isReflectivity ? "DBZ" : "POSITION", 5,
                               stopsOfList(list, isReflectivity)};
        const auto compiled = stopListOf(parseColorTable(colorTableText(table)).value());
        ASSERT_TRUE(compiled) << compiled.error().message();
        EXPECT_EQ(*compiled, std::vector<std::uint8_t>(list, list + size)) << id;
    }
}

TEST(PaletteCompiler, storesSharedListsOnceAndNamesWhatIsWrong) {
    std::map<std::string, std::string> files{{"good.pal", "Units: DBZ\nColor: 10 1 2 3\n"},
                                             {"bad.pal", "Units: DBZ\n\nColor: 10 1 2\n"},
                                             {"high.pal", "Units: DBZ\nColor: 224 1 2 3\n"}};
    const auto read = [&](const std::string& name) -> platform::Result<std::string, PaletteTableError> {
        return files.contains(name) ? platform::Result<std::string, PaletteTableError>(files[name])
                                    : std::unexpected(PaletteTableError{name, 0, "cannot be read"});
    };
    files["t"] = "7 128 good good ; twice\n8 256 good\n";
    const auto bytes = compilePalettes("t", read);
    ASSERT_TRUE(bytes) << bytes.error().message();
    EXPECT_EQ(bytes->size(), 24U + 2 * 72);  // one list of 21 bytes, padded, and two records
    EXPECT_EQ((*bytes)[24 + 72], 8);
    const std::map<std::string, std::string> cases{
        {"7 128 bad", "bad.pal:3: expected a value and 3"},
        {"7 128 high", "high.pal:2: expected a whole palette position from 0 to 255, found 256"},
        {"\n7 128 none", "t:2: none.pal: cannot be read"},
        {"7 128 good\n7 128 good", "t:2: the id 7 comes twice"},
        {"7 257 good good", "t:1: expected at most 4 sections"},
        {"256 128 good", "t:1: expected an id up to 255"},
    };
    for (const auto& [table, expected] : cases) {
        files["t"] = table;
        const auto failed = compilePalettes("t", read);
        ASSERT_FALSE(failed) << table;
        EXPECT_EQ(failed.error().message().find(expected), 0U) << failed.error().message();
    }
}

}  // namespace
}  // namespace nimbuscope

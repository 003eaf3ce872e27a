#include <cstdlib>
#include <memory>

#include "Platform/Coding/JSONDocument.hpp"
#include "Platform/Graphics/PNG.hpp"
#include "colorschemes/colorschemes.h"
#include "tests/support/ToolTest.hpp"

namespace nimbuscope::testing {
namespace {

struct PaletteCommand : ToolTest {
    /// Draws a PNG picture that shows something.
    void draw(const std::string& arguments) const {
        const auto image = platform::decodePNG(platform::dataOf(output(arguments + " -o -")), 4'000'000);
        ASSERT_TRUE(image) << arguments;
        EXPECT_LT(std::ranges::count(image->pixels, 255), std::ssize(image->pixels)) << arguments;
    }
};

TEST_F(PaletteCommand, tablesAreThoseOfTheLibrary) {
    alloc_color_schemes();
    const std::unique_ptr<std::uint8_t, decltype(&std::free)> expected(get_color_scheme_bytes(3, 1, 0, 0, 50),
                                                                       &std::free);
    EXPECT_EQ(output("palette bytes 3 --numbering 1 --indexed --no-snow --minimal-index 50 -o t"), "");
    EXPECT_EQ(read("t"), std::string(reinterpret_cast<const char*>(expected.get()), 2048));
    EXPECT_EQ(output("palette bytes 100 -o -").size(), 1024U);
}

TEST_F(PaletteCommand, stopListsAreRenderedOrRefused) {
    const std::string header(8, '\0');
    const std::string stop = "\x01\x02\x10\x20\x30";
    write("good", header + stop + header);
    EXPECT_EQ(output("palette render-stops good --from 0 --to 4 --start 1 --count 4 -o -"),
              std::string(8, '\0') + "\x10\x20\x30\xFF\x10\x20\x30\xFF");
    EXPECT_EQ(output("palette render-stops good -o -").size(), 512U);
    write("header", "12345678" + stop + header);
    write("none", header + header);
    write("cut", header + stop + std::string(3, '\0'));
    EXPECT_EQ(call("palette render-stops -o out header").errors,  // the library says so too
              "Invalid color palette header\n"
              "nimbuscope: header: byte 0: expected eight zero bytes, found something else\n");
    for (const auto& [arguments, expected] : {std::pair("none", "byte 8: the list has no stops"),
                                              {"cut", "byte 13: the bytes end"},
                                              {"missing", "No such file"},
                                              {"good --count 4294967295", "--count"}}) {
        const std::string error = failure(std::string("palette render-stops -o out ") + arguments);
        EXPECT_NE(error.find(expected), std::string::npos) << error;
    }
}

TEST_F(PaletteCommand, drawsAndListsAndTellsLegends) {
    for (const char* arguments :
         {"palette render 15 --indexed --no-snow --minimal-dbz -5", "palette render 100",
          "palette legend 4 --type Rain", "palette legend 101 --type Clouds --direction vertical"}) {
        draw(arguments);
    }
    platform::JSONDocument document;
    const std::string list = output("palette list --json");
    ASSERT_TRUE(document.parse(list)) << list;
    EXPECT_NE(list.find(R"({"scheme":17,"title":"Meteored","id":19,"stops":[15,16,16,16]})"),
              std::string::npos);
    const std::string legend = output("palette legend 13 --type Hail --json");
    ASSERT_TRUE(document.parse(legend)) << legend;
    EXPECT_NE(legend.find(R"("startPoint":[0,0.5],"endPoint":[1,0.5]})"), std::string::npos) << legend;
    EXPECT_EQ(std::ranges::count(legend, '['), 24);
}

TEST_F(PaletteCommand, exportedTextIsImportedAgain) {
    EXPECT_EQ(output("palette export 4 -o rain.pal"), "");
    draw("palette import rain.pal --stops rain.stops");
    EXPECT_EQ(output("palette render-stops rain.stops -o -"), output("palette bytes 4 -o -").substr(0, 512));
    write("bad.pal", "Color: 10 1 2 3\nColor: 20 1 2 3;note\nColor: 30 1 2 x\n");
    EXPECT_EQ(failure("palette import bad.pal -o out"),
              "bad.pal: line 3: expected a colour component from 0 to 255, found 'x'");
}

TEST_F(PaletteCommand, wrongArgumentsLeaveNothingBehind) {
    for (const auto& [arguments, code] : {std::pair("render -1 -o out", 1),
                                          {"render 4294967296 -o out", 1},
                                          {"render 4 -o out --minimal-dbz 224", 1},
                                          {"bytes 29 --numbering 3 -o out", 1},
                                          {"bytes 4 --minimal-index -1 -o out", 1},
                                          {"legend 100 --type IcePellete -o out", 1},
                                          {"export 100 --section snow -o out", 1},
                                          {"legend 4 --type Fog -o out", 2},
                                          {"legend 4 --type Rain", 2},
                                          {"render x -o out", 2},
                                          {"", 2}}) {
        EXPECT_NE(failure(std::string("palette ") + arguments, code), "");
    }
}

}  // namespace
}  // namespace nimbuscope::testing

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <string>

#include "Platform/Coding/JSONDocument.hpp"
#include "Platform/Graphics/PNG.hpp"
#include "colorschemes/colorschemes.h"
#include "tests/support/Process.hpp"
#include "tests/support/TemporaryDirectory.hpp"

namespace nimbuscope::testing {
namespace {

struct PaletteCommand : ::testing::Test {
    TemporaryDirectory directory;

    /// Runs `nimbuscope palette ARGUMENTS` inside the directory.
    [[nodiscard]] Outcome call(const std::string& arguments) const {
        return run({"/bin/sh", "-c",
                    "cd '" + directory.path() +
                        "' && exec " NIMBUSCOPE_BINARY_DIRECTORY "/tools/nimbuscope/nimbuscope palette " +
                        arguments});
    }
    [[nodiscard]] std::string read(const std::string& name) const { return readFile(directory.path(name)); }
    void write(const std::string& name, const std::string& bytes) const {
        writeFile(directory.path(name), bytes);
    }
    [[nodiscard]] bool exists(const std::string& name) const {
        return std::filesystem::exists(directory.path(name));
    }
    /// Whether a file is a PNG picture that shows something.
    [[nodiscard]] bool isPicture(const std::string& name) const {
        const auto image = platform::decodePNG(platform::dataOf(read(name)), 4'000'000);
        return image && std::ranges::count(image->pixels, 255) < std::ssize(image->pixels);
    }
};

TEST_F(PaletteCommand, tablesAreThoseOfTheLibrary) {
    alloc_color_schemes();
    const std::unique_ptr<std::uint8_t, decltype(&std::free)> expected(get_color_scheme_bytes(3, 1, 0, 0, 50),
                                                                       &std::free);
    EXPECT_EQ(call("bytes 3 --numbering 1 --indexed --no-snow --minimal-index 50 -o t").exitCode, 0);
    EXPECT_EQ(read("t"), std::string(reinterpret_cast<const char*>(expected.get()), 2048));
    EXPECT_EQ(call("bytes 100 -o -").output.size(), 1024U);
}

TEST_F(PaletteCommand, stopListsAreRenderedOrRefused) {
    const std::string header(8, '\0');
    const std::string stop = "\x01\x02\x10\x20\x30";
    write("good", header + stop + header);
    const Outcome done = call("render-stops good --from 0 --to 4 --start 1 --count 4 -o -");
    EXPECT_EQ(done.output, std::string(8, '\0') + "\x10\x20\x30\xFF\x10\x20\x30\xFF");
    EXPECT_EQ(call("render-stops good -o -").output.size(), 512U);
    write("empty", "");
    write("header", "12345678" + stop + header);
    write("none", header + header);
    write("cut", header + stop + std::string(3, '\0'));
    const std::map<std::string, std::string> faults{{"empty", "byte 0"},
                                                    {"header", "byte 0: expected eight zero bytes"},
                                                    {"none", "byte 8: the list has no stops"},
                                                    {"cut", "byte 13: the bytes end"},
                                                    {"missing", "No such file"},
                                                    {"good --count 4294967295", "--count"}};
    for (const auto& [arguments, expected] : faults) {
        const Outcome failed = call("render-stops " + arguments + " -o out");
        EXPECT_EQ(failed.exitCode, 1) << arguments;
        EXPECT_NE(failed.errors.find(expected), std::string::npos) << failed.errors;
        EXPECT_FALSE(exists("out"));
    }
}

TEST_F(PaletteCommand, picturesAreDrawn) {
    for (const char* arguments : {"render 4", "render 15 --indexed --no-snow --minimal-dbz -5", "render 100",
                                  "legend 4 --type Rain", "legend 101 --type Clouds --direction vertical"}) {
        std::filesystem::remove(directory.path("p.png"));
        const Outcome done = call(std::string(arguments) + " -o p.png");
        EXPECT_EQ(done.exitCode, 0) << done.errors;
        EXPECT_TRUE(isPicture("p.png")) << arguments;
    }
}

TEST_F(PaletteCommand, listAndLegendAreJSON) {
    platform::JSONDocument document;
    const Outcome list = call("list --json");
    ASSERT_TRUE(document.parse(list.output)) << list.output;
    EXPECT_NE(list.output.find(R"({"scheme":17,"title":"Meteored","id":19,"stops":[15,16,16,16]})"),
              std::string::npos);
    const Outcome legend = call("legend 13 --type Hail --json");
    ASSERT_TRUE(document.parse(legend.output)) << legend.output;
    EXPECT_NE(legend.output.find(R"("startPoint":[0,0.5],"endPoint":[1,0.5]})"), std::string::npos)
        << legend.output;
    EXPECT_EQ(std::ranges::count(legend.output, '['), 24);
}

TEST_F(PaletteCommand, exportedTextIsImportedAgain) {
    ASSERT_EQ(call("export 4 -o rain.pal").exitCode, 0);
    EXPECT_EQ(call("import rain.pal --stops rain.stops -o p.png").exitCode, 0);
    EXPECT_TRUE(isPicture("p.png"));
    ASSERT_EQ(call("render-stops rain.stops -o rain.rgba").exitCode, 0);
    EXPECT_EQ(read("rain.rgba"), call("bytes 4 -o -").output.substr(0, 512));
    write("bad.pal", "Color: 10 1 2 3\nColor: 20 1 2 3;note\nColor: 30 1 2 x\n");
    const Outcome failed = call("import bad.pal -o out.png");
    EXPECT_EQ(failed.exitCode, 1);
    EXPECT_EQ(failed.errors,
              "nimbuscope: bad.pal: line 3: expected a colour component from 0 to 255, found 'x'\n");
    EXPECT_FALSE(exists("out.png"));
}

TEST_F(PaletteCommand, wrongArgumentsLeaveNothingBehind) {
    const std::map<std::string, int> cases{
        {"render -1 -o out", 1},
        {"render 4294967296 -o out", 1},
        {"render 4 -o out --minimal-dbz 224", 1},
        {"bytes 29 --numbering 3 -o out", 1},
        {"bytes 4 --minimal-index -1 -o out", 1},
        {"legend 100 --type IcePellete -o out", 1},
        {"legend 4 --type Fog -o out", 2},
        {"legend 4 --type Rain", 2},
        {"render x -o out", 2},
        {"render 4", 2},
        {"export 100 --section snow -o out", 1},
        {"", 2},
    };
    for (const auto& [arguments, code] : cases) {
        const Outcome failed = call(arguments);
        EXPECT_EQ(failed.exitCode, code) << arguments;
        EXPECT_EQ(failed.errors.find("nimbuscope: "), 0U) << failed.errors;
        EXPECT_EQ(failed.output, "") << arguments;
        EXPECT_FALSE(exists("out")) << arguments;
    }
}

}  // namespace
}  // namespace nimbuscope::testing

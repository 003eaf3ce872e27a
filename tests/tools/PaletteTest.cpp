// The noun `palette`, from outside: the program is run as users run it.

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <string>

#include "Platform/Coding/JSONDocument.hpp"
#include "Platform/Graphics/PNG.hpp"
#include "colorschemes/colorschemes.h"

namespace nimbuscope {
namespace {

struct Outcome {
    int code;
    std::string out;
    std::string err;
};

class Palette : public testing::Test {
  protected:
    void SetUp() override {
        std::string pattern = testing::TempDir() + "paletteXXXXXX";
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        directory_ = pattern;
    }
    void TearDown() override { std::filesystem::remove_all(directory_); }

    [[nodiscard]] std::string path(const std::string& name) const { return directory_ / name; }

    [[nodiscard]] std::string read(const std::string& name) const {
        std::ifstream stream(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    void write(const std::string& name, const std::string& bytes) const {
        std::ofstream(path(name), std::ios::binary) << bytes;
    }

    /// Runs `nimbuscope palette ARGUMENTS` inside the directory.
    [[nodiscard]] Outcome run(const std::string& arguments) const {
        const std::string command = "cd '" + directory_.string() + "' && '" NIMBUSCOPE_PROGRAM "' palette " +
                                    arguments + " >.out 2>.err </dev/null";
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, read(".out"), read(".err")};
    }

    /// Whether a file is a PNG picture that shows something.
    [[nodiscard]] bool isPicture(const std::string& name) const {
        const auto image = platform::decodePNG(platform::dataOf(read(name)), 4'000'000);
        return image && std::ranges::count(image->pixels, 255) < std::ssize(image->pixels);
    }

    std::filesystem::path directory_;
};

TEST_F(Palette, TablesAreThoseOfTheLibrary) {
    alloc_color_schemes();
    const std::unique_ptr<std::uint8_t, decltype(&std::free)> expected(get_color_scheme_bytes(3, 1, 0, 0, 50),
                                                                       &std::free);
    EXPECT_EQ(run("bytes 3 --numbering 1 --indexed --no-snow --minimal-index 50 -o t").code, 0);
    EXPECT_EQ(read("t"), std::string(reinterpret_cast<const char*>(expected.get()), 2048));
    EXPECT_EQ(run("bytes 100 -o -").out.size(), 1024U);
}

TEST_F(Palette, StopListsAreRenderedOrRefused) {
    const std::string header(8, '\0');
    const std::string stop = "\x01\x02\x10\x20\x30";
    write("good", header + stop + header);
    const Outcome done = run("render-stops good --from 0 --to 4 --start 1 --count 4 -o -");
    EXPECT_EQ(done.out, std::string(8, '\0') + "\x10\x20\x30\xFF\x10\x20\x30\xFF");
    EXPECT_EQ(run("render-stops good -o -").out.size(), 512U);
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
        const Outcome failed = run("render-stops " + arguments + " -o out");
        EXPECT_EQ(failed.code, 1) << arguments;
        EXPECT_NE(failed.err.find(expected), std::string::npos) << failed.err;
        EXPECT_FALSE(std::filesystem::exists(path("out")));
    }
}

TEST_F(Palette, PicturesAreDrawn) {
    for (const char* arguments : {"render 4", "render 15 --indexed --no-snow --minimal-dbz -5", "render 100",
                                  "legend 4 --type Rain", "legend 101 --type Clouds --direction vertical"}) {
        std::filesystem::remove(path("p.png"));
        const Outcome done = run(std::string(arguments) + " -o p.png");
        EXPECT_EQ(done.code, 0) << done.err;
        EXPECT_TRUE(isPicture("p.png")) << arguments;
    }
}

TEST_F(Palette, ListAndLegendAreJSON) {
    platform::JSONDocument document;
    const Outcome list = run("list --json");
    ASSERT_TRUE(document.parse(list.out)) << list.out;
    EXPECT_NE(list.out.find(R"({"scheme":17,"title":"Meteored","id":19,"stops":[15,16,16,16]})"),
              std::string::npos);
    const Outcome legend = run("legend 13 --type Hail --json");
    ASSERT_TRUE(document.parse(legend.out)) << legend.out;
    EXPECT_NE(legend.out.find(R"("startPoint":[0,0.5],"endPoint":[1,0.5]})"), std::string::npos)
        << legend.out;
    EXPECT_EQ(std::ranges::count(legend.out, '['), 24);
}

TEST_F(Palette, ExportedTextIsImportedAgain) {
    ASSERT_EQ(run("export 4 -o rain.pal").code, 0);
    EXPECT_EQ(run("import rain.pal --stops rain.stops -o p.png").code, 0);
    EXPECT_TRUE(isPicture("p.png"));
    ASSERT_EQ(run("render-stops rain.stops -o rain.rgba").code, 0);
    EXPECT_EQ(read("rain.rgba"), run("bytes 4 -o -").out.substr(0, 512));
    write("bad.pal", "Color: 10 1 2 3\nColor: 20 1 2 3;note\nColor: 30 1 2 x\n");
    const Outcome failed = run("import bad.pal -o out.png");
    EXPECT_EQ(failed.code, 1);
    EXPECT_EQ(failed.err,
              "nimbuscope: bad.pal: line 3: expected a colour component from 0 to 255, found 'x'\n");
    EXPECT_FALSE(std::filesystem::exists(path("out.png")));
}

TEST_F(Palette, WrongArgumentsLeaveNothingBehind) {
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
        const Outcome failed = run(arguments);
        EXPECT_EQ(failed.code, code) << arguments;
        EXPECT_EQ(failed.err.find("nimbuscope: "), 0U) << failed.err;
        EXPECT_EQ(failed.out, "") << arguments;
        EXPECT_FALSE(std::filesystem::exists(path("out"))) << arguments;
    }
}

}  // namespace
}  // namespace nimbuscope

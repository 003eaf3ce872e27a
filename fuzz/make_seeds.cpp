// Writes the seeds of the fuzz targets with the project's own writers: make_seeds DIRECTORY

#include <filesystem>
#include <fstream>
#include <string_view>

#include "NimbuscopeKit/RadarImagery/Rad2Writer.hpp"
#include "Target.hpp"
#include "colorschemes/text/ColorTable.hpp"
#include "tests/support/LibPNG.hpp"

using namespace nimbuscope;

namespace {

using Bytes = std::vector<std::uint8_t>;

void save(const std::filesystem::path& path, std::string_view bytes) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
}

void save(const std::filesystem::path& path, const Bytes& bytes) {
    save(path, std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

void saveRad2(const std::filesystem::path& path, const Rad2Writer::Contents& contents) {
    save(path, Rad2Writer::write(contents).value());
}

void saveRad2Files(const std::filesystem::path& directory) {
    Bytes noise(64);
    for (std::size_t i = 0; i < noise.size(); ++i) {
        noise[i] = static_cast<std::uint8_t>(i * 37);
    }
    Bytes runs;
    for (std::size_t length = 1; length < 40; ++length) {
        runs.insert(runs.end(), length, static_cast<std::uint8_t>(length));
    }
    const Bytes one(1);
    const Bytes wide(300, 7);
    const Bytes clear(256U * 256U, 0);
    saveRad2(directory / "noise", {.width = 8, .height = 8, .indices = noise});
    saveRad2(directory / "noise-with-arrows", {.width = 64, .height = 1, .indices = noise, .arrows = runs});
    saveRad2(directory / "runs", {.width = 20, .height = runs.size() / 20, .indices = runs});
    saveRad2(directory / "one-pixel", {.width = 1, .height = 1, .indices = one});
    saveRad2(directory / "no-pixels", {.width = 0, .height = 5});
    saveRad2(directory / "wide-count", {.width = 300, .height = 1, .indices = wide});
    saveRad2(directory / "long-count", {.width = 256, .height = 256, .indices = clear});
    saveRad2(directory / "explicit", {.width = 256, .height = 256, .indices = clear, .isSizeExplicit = true});
}

void savePNGs(const std::filesystem::path& directory) {
    struct Kind {
        const char* name;
        int colorType;
        int depth;
    };
    for (const Kind& kind : {Kind{"grey-1", 0, 1},
                             {"grey-8", 0, 8},
                             {"grey-16", 0, 16},
                             {"rgb-8", 2, 8},
                             {"indexed-4", 3, 4},
                             {"indexed-8", 3, 8},
                             {"grey-alpha-8", 4, 8},
                             {"rgba-8", 6, 8},
                             {"rgba-16", 6, 16}}) {
        testing::PNGFile file{.width = 9, .height = 6, .depth = kind.depth, .colorType = kind.colorType};
        file.isInterlaced = kind.depth == 8;
        file.hasTransparency = true;
        for (std::size_t i = 0; i < file.rowSize() * file.height; ++i) {
            file.samples.push_back(static_cast<std::uint8_t>(i / 5 * 9));
        }
        save(directory / kind.name, testing::writePNGFile(file));
    }
}

void saveGrayMaps(const std::filesystem::path& directory) {
    save(directory / "plain", std::string_view("P5 3 2 255\n\x01\x02\x03\x04\x05\xFF"));
    save(directory / "comments", std::string_view("P5\n# a storm\n2 # wide\n1\r\n9 \x08\x09"));
}

void saveTable(const std::filesystem::path& root, const char* name, const ColorTable& table) {
    save(root / "color_table" / name, std::string_view(colorTableText(table)));
    save(root / "stop_list" / name, stopListOf(table).value());
}

void saveTables(const std::filesystem::path& root) {
    const RGBA green{0, 255, 0, 255};
    const RGBA faint{0, 0, 255, 90};
    saveTable(root, "one-colour", {.name = "One", .units = "DBZ", .stops = {{.value = 10, .color = green}}});
    saveTable(root, "held-and-faint",
              {.name = "Held",
               .units = "DBZ",
               .step = 5,
               .stops = {{.value = -32, .isHeld = true, .color = green},
                         {.value = 20, .hasAlpha = true, .color = faint}}});
    saveTable(root, "end-colours",
              {.name = "Ends",
               .units = "K",
               .stops = {{.value = 0, .color = green, .endColor = RGBA{9, 8, 7, 255}},
                         {.value = 100, .hasAlpha = true, .color = faint, .endColor = faint},
                         {.value = 255, .color = green}}});
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 2) {
        std::fprintf(stderr, "make_seeds DIRECTORY\n");
        return 2;
    }
    saveRad2Files(std::filesystem::path(arguments[1]) / "rad2");
    savePNGs(std::filesystem::path(arguments[1]) / "png_tile");
    saveGrayMaps(std::filesystem::path(arguments[1]) / "gray_map");
    saveTables(arguments[1]);
    return 0;
}

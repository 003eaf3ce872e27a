#include "NimbuscopeKit/RadarImagery/Png.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>

#include "NimbuscopeKit/RadarImagery/Recoloring.hpp"
#include "tests/support/LibPNG.hpp"

namespace nimbuscope::testing {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes randomTable(std::mt19937& random) {
    Bytes table(1024);
    std::ranges::generate(table, [&] { return static_cast<std::uint8_t>(random()); });
    return table;
}

/// Runs of equal indices and noise.
Bytes randomIndices(std::mt19937& random, std::size_t count) {
    Bytes indices;
    while (indices.size() < count) {
        indices.insert(indices.end(), random() % 3 == 0 ? random() % 60 : 1,
                       static_cast<std::uint8_t>(random()));
    }
    indices.resize(count);
    return indices;
}

/// The colours by the rules: the first byte of every `step` names an entry; rows bottom-up when inversed.
Bytes coloredByRules(const Bytes& table, const Bytes& samples, std::size_t step, std::size_t width,
                     bool inversed) {
    const std::size_t height = samples.size() / step / width;
    Bytes out(width * height * 4);
    for (std::size_t i = 0; i < width * height; ++i) {
        const std::size_t row = inversed ? height - 1 - i / width : i / width;
        std::copy_n(&table[samples[i * step] * std::size_t{4}], 4, &out[(row * width + i % width) * 4]);
    }
    return out;
}

TEST(Png, everyVariantColoursIndicesAsTheRulesSay) {
    std::mt19937 random(8);
    const Bytes colors = randomTable(random);
    Recoloring::Table table{};
    std::memcpy(table.data(), colors.data(), colors.size());
    for (std::size_t count = 1; count < 300; ++count) {
        const Bytes indices = randomIndices(random, count);
        for (const Recoloring::Variant& variant : Recoloring::variants()) {
            Bytes out(count * 4 + 1, 0xEE);
            if (variant.isSupported) {
                variant.colorIndices(table, indices.data(), out.data(), count);
                EXPECT_EQ(out.back(), 0xEE) << variant.name;
                out.pop_back();
                EXPECT_EQ(out, coloredByRules(colors, indices, 1, count, false)) << variant.name << count;
            }
        }
    }
}

TEST(Png, pixelsOfEveryWidthAreWalkedByTheirBytes) {
    std::mt19937 random(9);
    const Bytes colors = randomTable(random);
    struct Case {
        int colorType;
        int depth;
        std::size_t step;
    };
    for (const Case c : {Case{0, 8, 1},
                         {3, 8, 1},
                         {0, 16, 2},
                         {4, 8, 2},
                         {2, 8, 3},
                         {6, 8, 4},
                         {4, 16, 4},
                         {2, 16, 6},
                         {6, 16, 8},
                         {0, 4, 0},
                         {0, 1, 0},
                         {3, 2, 0}}) {
        PNGFile file{.width = 37, .height = 11, .depth = c.depth, .colorType = c.colorType};
        file.isInterlaced = c.depth == 8;
        file.hasTransparency = true;
        file.samples = randomIndices(random, file.rowSize() * file.height);
        const Png png(writePNGFile(file));
        ASSERT_TRUE(png.valid());
        EXPECT_EQ(png.width(), 37);
        EXPECT_EQ(png.height(), 11);
        for (const bool inversed : {false, true}) {
            EXPECT_EQ(png.bytes(colors, inversed),
                      c.step == 0 ? std::nullopt
                                  : std::optional(coloredByRules(colors, file.samples, c.step, 37, inversed)))
                << c.colorType << ' ' << c.depth;
        }
        EXPECT_EQ(png.bpp() / 8, static_cast<std::int64_t>(c.step));
    }
}

TEST(Png, buffersThatDoNotFitStopTheProcess) {
    const Bytes colors(1024);
    const Png png(writeIndices(2, 2, {0, 1, 2, 3}));
    Bytes tooSmall(12);
    EXPECT_DEATH(static_cast<void>(png.bytes(colors, false, tooSmall)), "must fit the size");
    EXPECT_DEATH(static_cast<void>(png.bytes(Bytes(1023), false)), "at least 256 entries");
}

TEST(Png, whatIsNoPNGHasNoImage) {
    const Bytes colors(1024);
    const Bytes good = writeIndices(3, 1, {1, 2, 3});
    for (const Bytes& data : {Bytes{}, Bytes{'R', 'A', 'D', '2'}, Bytes(good.begin(), good.end() - 15)}) {
        const Png png(data);
        EXPECT_FALSE(png.valid());
        EXPECT_EQ(png.image(), std::nullopt);
        EXPECT_EQ(png.width() + png.height() + png.bpp(), 0);
        EXPECT_EQ(png.bytes(colors, false), std::nullopt);
        EXPECT_FALSE(Png::make(data, {}));
    }
    EXPECT_FALSE(Png::make(good, {.pixels = 2}));
}

}  // namespace
}  // namespace nimbuscope::testing

#include "NimbuscopeKit/RadarImagery/Png.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

#include "tests/support/LibPNG.hpp"

namespace nimbuscope::testing {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes randomBytes(std::mt19937& random, std::size_t count) {
    Bytes bytes(count);
    std::ranges::generate(bytes, [&] { return static_cast<std::uint8_t>(random()); });
    return bytes;
}

constexpr int width = 37;
constexpr int height = 11;

/// The colours by the rules: the first byte of every `step` names an entry; rows bottom-up when inversed.
std::optional<Bytes> coloredByRules(const Bytes& table, const Bytes& samples, std::size_t step,
                                    bool inversed) {
    Bytes out(std::size_t{4} * width * height);
    for (std::size_t i = 0; i < out.size() / 4; ++i) {
        const std::size_t row = inversed ? height - 1 - i / width : i / width;
        std::copy_n(&table[samples[i * step] * std::size_t{4}], 4, &out[(row * width + i % width) * 4]);
    }
    return step == 0 ? std::nullopt : std::optional(out);
}

TEST(Png, pixelsOfEveryWidthAreWalkedByTheirBytes) {
    std::mt19937 random(9);
    const Bytes colors = randomBytes(random, 1024);
    const std::map<std::pair<int, int>, std::size_t> steps{
        {{0, 8}, 1}, {{3, 8}, 1},  {{0, 16}, 2}, {{4, 8}, 2}, {{2, 8}, 3}, {{4, 16}, 4},
        {{6, 8}, 4}, {{2, 16}, 6}, {{6, 16}, 8}, {{0, 4}, 0}, {{0, 1}, 0}, {{3, 2}, 0}};
    for (const auto& [kind, step] : steps) {
        const auto [colorType, depth] = kind;
        PNGFile file{.width = width, .height = height, .depth = depth, .colorType = colorType};
        file.isInterlaced = depth == 8;
        file.hasTransparency = true;
        file.samples = randomBytes(random, file.rowSize() * file.height);
        const Png png(writePNGFile(file));
        ASSERT_TRUE(png.valid());
        EXPECT_EQ(png.width(), width);
        EXPECT_EQ(png.height(), height);
        for (const bool inversed : {false, true}) {
            EXPECT_EQ(png.bytes(colors, inversed), coloredByRules(colors, file.samples, step, inversed))
                << colorType << ' ' << depth;
        }
        EXPECT_EQ(png.bpp() / 8, static_cast<std::int64_t>(step));
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
        EXPECT_EQ(png.width() + png.height() + png.bpp(), 0);
        EXPECT_EQ(png.bytes(colors, false), std::nullopt);
        EXPECT_FALSE(Png::make(data, {}));
    }
    EXPECT_FALSE(Png::make(good, {.pixels = 2}));
}

}  // namespace
}  // namespace nimbuscope::testing

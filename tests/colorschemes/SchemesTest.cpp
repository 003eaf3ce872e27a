#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <future>
#include <map>
#include <memory>
#include <tuple>
#include <vector>

#include "colorschemes/colorschemes.h"

extern "C" int table_size_in_c(void);

namespace {

using Bytes = std::vector<std::uint8_t>;

/// The table of a scheme as the library copies it out; empty when it refuses.
Bytes table(std::uint32_t scheme, std::uint32_t numbering = 2, bool isSmooth = true, bool withSnow = true,
            std::uint32_t minimalIndex = 0) {
    alloc_color_schemes();
    const std::unique_ptr<std::uint8_t, decltype(&std::free)> bytes(
        get_color_scheme_bytes(scheme, numbering, isSmooth ? 1 : 0, withSnow ? 1 : 0, minimalIndex),
        &std::free);
    StaticColorScheme borrowed;
    get_static_color_scheme(scheme, numbering, &borrowed, isSmooth ? 1 : 0);
    return bytes ? Bytes(bytes.get(), bytes.get() + borrowed.size) : Bytes{};
}

Bytes section(const Bytes& table, std::size_t index) {
    return {&table[index * 512], &table[index * 512] + 512};
}

Bytes entry(const Bytes& table, std::size_t index) {
    return {&table[index * 4], &table[index * 4] + 4};
}

TEST(Schemes, areBuiltOnceForAllThreads) {
    std::vector<std::future<std::size_t>> threads(4);
    std::ranges::generate(threads, [] { return std::async(std::launch::async, alloc_color_schemes); });
    std::size_t allocated = 0;
    for (std::future<std::size_t>& thread : threads) {
        allocated += thread.get();
    }
    EXPECT_TRUE(allocated == 135168 || allocated == 0) << allocated;  // another test may have been first
    EXPECT_EQ(alloc_color_schemes(), 0U);
    EXPECT_EQ(nb_colors_palette_sources_count, 33U);
    EXPECT_EQ(table_size_in_c(), 2048);
}

TEST(Schemes, numberingsFindTheirPalettes) {
    const std::pair<std::uint32_t, std::map<std::uint32_t, std::uint32_t>> numberings[] = {
        {1, {{1, 1}, {2, 4}, {8, 9}, {9, 0}, {15, 9}, {25, 26}, {61, 28}, {100, 0}, {255, 255}, {~0U, 0}}},
        {2, {{7, 7}, {8, 22}, {9, 0}, {11, 8}, {33, 25}, {34, 0}, {101, 101}, {200, 200}, {300, 0}}},
        {3, {{0, 0}, {28, 28}, {101, 101}}}};
    ColorPaletteSource source;
    for (const auto& [numbering, ids] : numberings) {
        for (const auto& [scheme, id] : ids) {
            EXPECT_EQ(get_color_palette(scheme, numbering, &source), 1);
            EXPECT_EQ(source.id, id) << numbering << ' ' << scheme;
        }
    }
    EXPECT_EQ(get_color_palette(255, 2, &source), 1);
    EXPECT_EQ(get_color_palette(29, 3, &source), 0);
    EXPECT_EQ(source.id, 255U);
    EXPECT_EQ(table(29, 3), Bytes{});
}

TEST(Schemes, storedColoursAppearAtTheirPositions) {
    for (const auto& [id, index, color] : {std::tuple(1U, 42U, Bytes{223, 223, 223, 255}),
                                           {1, 128 + 62, {79, 175, 255, 255}},
                                           {1, 256 + 82, {255, 35, 101, 255}},
                                           {1, 384 + 42, {204, 164, 255, 255}},
                                           {0, 128 + 1, {129, 129, 129, 255}},
                                           {4, 42, {206, 192, 135, 150}},
                                           {100, 90, {70, 70, 70, 220}},
                                           {200, 128, {0, 0, 255, 255}}}) {
        EXPECT_EQ(entry(table(id, 3), index), color) << id << " entry " << index;
    }
}

TEST(Schemes, copiesAreBandedClearedAndDrawnAsRain) {
    const Bytes smooth = table(1);
    const Bytes banded = table(1, 2, false);
    for (std::size_t i = 0; i < 512; ++i) {
        const std::size_t inPart = i % 128;  // bands begin anew in each section
        const std::size_t band = inPart < 2 ? inPart : 2 + (inPart - 2) / 5 * 5;
        EXPECT_EQ(entry(banded, i), entry(smooth, i - inPart + band)) << i;
    }
    for (const std::uint32_t minimalIndex : {1U, 42U, 128U, 129U, 1U << 30U, 4294967295U}) {
        const Bytes cleared = table(1, 2, true, false, minimalIndex);
        Bytes expected = section(smooth, 0);
        std::fill_n(expected.begin(), std::min<std::size_t>(std::size_t{minimalIndex} * 4, 512), 0);
        for (std::size_t index = 0; index < 4; ++index) {
            EXPECT_EQ(section(cleared, index), expected) << minimalIndex;
        }
    }
    const Bytes satellite = table(100, 2, true, false, 100);
    ASSERT_EQ(satellite.size(), 1024U);
    EXPECT_EQ(section(satellite, 1), section(satellite, 0));
    EXPECT_EQ(entry(satellite, 128 + 99), Bytes(4));
    EXPECT_EQ(entry(satellite, 128 + 100), entry(table(100), 100));
}

}  // namespace

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <memory>
#include <set>
#include <thread>
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
    const auto begin = table.begin() + static_cast<std::ptrdiff_t>(index * 512);
    return {begin, begin + 512};
}

Bytes entry(const Bytes& table, std::size_t index) {
    return {table.begin() + static_cast<std::ptrdiff_t>(index * 4),
            table.begin() + static_cast<std::ptrdiff_t>(index * 4 + 4)};
}

TEST(Schemes, areBuiltOnceForAllThreads) {
    std::vector<std::size_t> allocated(4);
    std::vector<std::thread> threads;
    for (std::size_t& bytes : allocated) {
        threads.emplace_back([&bytes] { bytes = alloc_color_schemes(); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    std::multiset<std::size_t> answers(allocated.begin(), allocated.end());
    EXPECT_LE(answers.count(135168), 1U);  // another test may have been first
    EXPECT_EQ(answers.count(135168) + answers.count(0), 4U);
    EXPECT_EQ(alloc_color_schemes(), 0U);
    EXPECT_EQ(nb_colors_palette_sources_count, 33U);
    EXPECT_EQ(table_size_in_c(), 2048);
}

TEST(Schemes, numberingsFindTheirPalettes) {
    const std::map<std::uint32_t, std::map<std::uint32_t, std::uint32_t>> numberings{
        {1, {{1, 1},   {2, 4},   {3, 15},  {4, 8},   {5, 17},  {6, 13},    {7, 14},   {8, 9},
             {10, 2},  {11, 3},  {12, 5},  {13, 6},  {14, 7},  {15, 9},    {16, 10},  {17, 11},
             {18, 12}, {19, 16}, {20, 18}, {21, 19}, {22, 20}, {23, 22},   {24, 25},  {25, 26},
             {30, 21}, {38, 23}, {53, 24}, {57, 27}, {61, 28}, {200, 200}, {255, 255}}},
        {2, {{1, 1},   {2, 2},   {3, 3},   {4, 4},   {5, 5},     {6, 6},     {7, 7},     {8, 22},   {11, 8},
             {12, 9},  {13, 10}, {14, 11}, {15, 12}, {16, 18},   {17, 19},   {18, 17},   {21, 13},  {22, 14},
             {23, 20}, {31, 15}, {32, 16}, {33, 25}, {100, 100}, {101, 101}, {200, 200}, {255, 255}}}};
    for (const auto& [numbering, ids] : numberings) {
        for (const std::uint32_t last : {300U, 4294967295U}) {
            for (std::uint32_t scheme = last - 300; scheme != last; ++scheme) {
                ColorPaletteSource source;
                EXPECT_EQ(get_color_palette(scheme, numbering, &source), 1);
                EXPECT_EQ(source.id, ids.contains(scheme) ? ids.at(scheme) : 0) << numbering << ' ' << scheme;
            }
        }
    }
    ColorPaletteSource source;
    EXPECT_EQ(get_color_palette(28, 3, &source), 1);
    EXPECT_EQ(get_color_palette(29, 3, &source), 0);
    EXPECT_EQ(source.id, 255U);
    EXPECT_EQ(get_color_palette(1, 2, nullptr), 0);
    EXPECT_EQ(get_static_color_scheme(1, 2, nullptr, 1), 0);
    EXPECT_EQ(get_color_scheme_bytes(29, 3, 1, 1, 0), nullptr);
}

TEST(Schemes, storedColoursAppearAtTheirPositions) {
    const struct {
        std::uint32_t id;
        std::size_t entry;
        Bytes color;
    } cases[] = {
        {1, 42, {223, 223, 223, 255}},
        {1, 112, {255, 255, 255, 255}},
        {1, 128 + 62, {79, 175, 255, 255}},
        {1, 256 + 82, {255, 35, 101, 255}},
        {1, 384 + 42, {204, 164, 255, 255}},
        {2, 128 + 87, {0, 63, 255, 255}},
        {3, 256 + 47, {159, 223, 255, 255}},
        {0, 128 + 1, {129, 129, 129, 255}},
        {0, 127, {127, 127, 127, 255}},
        {4, 42, {206, 192, 135, 150}},
        {4, 46, {226, 212, 155, 200}},
        {4, 66, {0, 68, 96, 255}},
        {4, 105, {255, 255, 255, 255}},
        {4, 127, {0, 255, 0, 255}},
        {13, 32, {4, 233, 231, 255}},
        {13, 384 + 112, {255, 255, 255, 255}},
        {100, 60, {0, 0, 0, 0}},
        {100, 90, {70, 70, 70, 220}},
        {101, 168, {238, 212, 45, 255}},
        {255, 255, {255, 0, 0, 255}},
        {200, 128, {0, 0, 255, 255}},
    };
    for (const auto& [id, index, color] : cases) {
        EXPECT_EQ(entry(table(id, 3), index), color) << id << " entry " << index;
    }
}

TEST(Schemes, palettesShareTheSectionsThatBelongTogether) {
    const Bytes shared = table(2, 3);
    for (const std::uint32_t id : {4U, 6U, 7U, 8U, 10U, 11U, 12U, 14U, 16U, 28U}) {
        for (const std::size_t index : {1U, 2U, 3U}) {
            EXPECT_EQ(section(table(id, 3), index), section(shared, index)) << id;
        }
    }
    for (const std::uint32_t id : {3U, 9U, 15U, 18U, 19U, 20U, 21U, 25U}) {
        for (const std::size_t index : {1U, 2U, 3U}) {
            EXPECT_EQ(section(table(id, 3), index), section(shared, 1)) << id;
        }
    }
    for (const std::uint32_t id : {5U, 17U, 22U, 23U, 24U, 27U}) {
        const Bytes own = table(id, 3);
        EXPECT_EQ(section(own, 1), section(own, 2));
        EXPECT_EQ(section(own, 1), section(own, 3));
        EXPECT_NE(section(own, 1), section(own, 0));
    }
    EXPECT_EQ(section(table(13, 3), 0), section(table(13, 3), 3));
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

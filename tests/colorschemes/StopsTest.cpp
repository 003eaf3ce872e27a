#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>
#include <tuple>
#include <vector>

#include "colorschemes/colorschemes.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes listOf(Bytes stops) {
    stops.insert(stops.begin(), 8, 0);
    stops.insert(stops.end(), 8, 0);
    return stops;
}

Bytes rendered(const Bytes& stops, double from, double to, std::uint32_t start, std::uint32_t count) {
    Bytes out(std::size_t{count} * 4, 0xEE);
    EXPECT_EQ(cs_render_pal_colors(out.data(), listOf(stops).data(), from, to, start, count), 1);
    return out;
}

Bytes entry(const Bytes& table, std::size_t index) {
    return {&table[index * 4], &table[index * 4] + 4};
}

/// The rules of rendering followed one by one, over stops that are parsed beforehand.
Bytes renderedByRules(const std::vector<ColorPaletteEntry>& stops, double from, double to,
                      std::uint32_t start, std::uint32_t count) {
    Bytes out(std::size_t{count} * 4, 0xEE);
    const double step = (to - from) / (count - start - 1);
    ColorPaletteEntry previous{};
    previous.position = from;
    std::size_t next = 0;  // past the end when exhausted
    for (std::uint32_t i = start; i < count; ++i) {
        const double x = std::fma(i - start, step, from);
        std::uint8_t* color = &out[std::size_t{i} * 4];
        bool hasAdvanced = false;
        while (next < stops.size() && x >= stops[next].position) {
            previous = stops[next++];
            hasAdvanced = true;
        }
        const ColorPaletteEntry& current = next < stops.size() ? stops[next] : stops.back();
        const double end = next < stops.size() ? current.position : to;
        std::copy_n(previous.color, 4, color);
        if (hasAdvanced || previous.hold || end == previous.position) {
            continue;
        }
        double t = (x - previous.position) / (end - previous.position);
        if (previous.has_end_color && std::fma(i - start + 1, step, from) > end) {
            t = 1;
        }
        const std::uint8_t* target = previous.has_end_color ? previous.end_color : current.color;
        for (int c = 0; c < 4; ++c) {
            const double value = std::fma(target[c] - previous.color[c], t, previous.color[c]);
            color[c] = static_cast<std::uint8_t>(static_cast<long>(value));
        }
    }
    return out;
}

TEST(Stops, channelsAreTruncatedAndNeverUndefined) {
    const Bytes from{255, 0, 10, 255};
    const Bytes to{0, 255, 20, 255};
    for (const auto& [t, expected] : {std::pair(0.5, Bytes{127, 127, 15, 255}),
                                      {1, to},
                                      {2, {1, 254, 30, 255}},  // 255 - 510 = -255, 510
                                      {1e300, {0, 0, 0, 255}},
                                      {-1e17, {0, 0, 0, 255}},
                                      {std::nan(""), {0, 0, 0, 0}}}) {
        Bytes out(4);
        cs_interpolate_color(from.data(), to.data(), out.data(), t);
        EXPECT_EQ(out, expected) << t;
    }
}

TEST(Stops, everyFormIsParsed) {
    Bytes stop{0x0F, 62, 1, 2, 3, 4, 5, 6, 7, 8};
    for (const auto& [flags, size, alpha, end] : {std::tuple(0x01, 5U, 255, Bytes{0, 0, 0, 0}),
                                                  {0x05, 6U, 4, {0, 0, 0, 0}},
                                                  {0x09, 8U, 255, {4, 5, 6, 255}},
                                                  {0x0F, 10U, 4, {5, 6, 7, 8}}}) {
        stop[0] = static_cast<std::uint8_t>(flags);
        ColorPaletteEntry entry{};
        EXPECT_EQ(cs_get_palette_entry(stop.data(), &entry), size);
        EXPECT_EQ(entry.position, 62);
        EXPECT_EQ(entry.hold, flags == 0x0F);
        EXPECT_EQ(entry.has_end_color, (flags & 8) != 0);
        EXPECT_EQ(entry.color[3], alpha);
        EXPECT_EQ(Bytes(entry.end_color, entry.end_color + 4), end);
    }
}

TEST(Stops, tablesFollowTheRulesOnAnyList) {
    std::mt19937 random(4);
    for (int round = 0; round < 500; ++round) {
        Bytes stops;
        std::vector<ColorPaletteEntry> parsed(random() % 6 + 1);
        std::uint8_t position = 0;
        for (ColorPaletteEntry& stop : parsed) {
            Bytes bytes(10);
            std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<std::uint8_t>(random()); });
            bytes[0] = static_cast<std::uint8_t>((bytes[0] & 0x0E) | 1);
            bytes[1] = position = static_cast<std::uint8_t>(position + random() % 40);
            bytes.resize(cs_get_palette_entry(bytes.data(), &stop));
            stops.insert(stops.end(), bytes.begin(), bytes.end());
        }
        const double to = random() % 2 == 0 ? 128 : 77.7;
        const std::uint32_t start = random() % 4;
        EXPECT_EQ(rendered(stops, 0, to, start, 128), renderedByRules(parsed, 0, to, start, 128)) << round;
    }
}

TEST(Stops, theStretchedTableReachesBothEnds) {
    const Bytes fade = rendered({1, 42, 200, 100, 50, 1, 82, 0, 0, 0}, 0, 128, 0, 128);
    EXPECT_EQ(entry(fade, 21), (Bytes{100, 50, 25, 128}));  // 21.165 of 42
    const Bytes runOut = rendered({9, 100, 0, 0, 0, 250, 250, 250}, 0, 128, 0, 128);
    EXPECT_EQ(entry(runOut, 127), (Bytes{250, 250, 250, 255}));  // the end colour is reached at the end
    EXPECT_EQ(rendered({1, 5, 9, 9, 9}, 5, 128, 0, 1), (Bytes{9, 9, 9, 255}));  // one entry lies at `from`
    EXPECT_EQ(rendered({1, 0, 9, 9, 9}, 0, 8, 4, 2), Bytes(8, 0xEE));
}

TEST(Stops, unsoundListsAreFoundAndNotRendered) {
    const Bytes sound = listOf({1, 42, 9, 9, 9, 0x0D, 82, 1, 2, 3, 4, 5, 6, 7, 8});
    std::size_t offset = 0;
    for (std::size_t size = 0; size < sound.size(); ++size) {
        const auto cut = std::make_unique<std::uint8_t[]>(size);  // nothing behind it
        std::copy_n(sound.data(), size, cut.get());
        EXPECT_EQ(cs_check_stop_list(cut.get(), size, &offset),
                  size < 8 ? CS_STOP_LIST_HEADER : CS_STOP_LIST_UNTERMINATED)
            << size;
        EXPECT_LE(offset, size);
    }
    EXPECT_EQ(cs_check_stop_list(sound.data(), sound.size(), &offset), CS_STOP_LIST_SOUND);
    EXPECT_EQ(offset, sound.size());
    Bytes out(16, 0xEE);
    Bytes badHeader = sound;
    badHeader[7] = 1;
    for (const auto& [list, fault] :
         {std::pair(Bytes(24), CS_STOP_LIST_EMPTY), std::pair(badHeader, CS_STOP_LIST_HEADER)}) {
        EXPECT_EQ(cs_check_stop_list(list.data(), list.size(), nullptr), fault);
        EXPECT_EQ(cs_render_pal_colors(out.data(), list.data(), 0, 128, 0, 4), 0);
    }
    testing::internal::CaptureStderr();
    EXPECT_EQ(cs_render_pal_colors(out.data(), nullptr, 0, 128, 0, 4), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Invalid color palette header\n");
    EXPECT_EQ(out, Bytes(16, 0xEE));
}

}  // namespace

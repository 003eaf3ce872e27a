#include "NimbuscopeKit/RadarImagery/ColorScheme.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <cstring>
#include <map>
#include <random>
#include <tuple>

#include "NimbuscopeKit/RadarImagery/RadarColorScheme.hpp"
#include "NimbuscopeKit/RadarImagery/Recoloring.hpp"
#include "NimbuscopeKit/RadarImagery/SatelliteColorScheme.hpp"
#include "NimbuscopeKit/RadarImagery/TemperatureColorScheme.hpp"

namespace nimbuscope {
namespace {

using Bytes = std::vector<std::uint8_t>;
using platform::CGSize;

Bytes entry(const ColorScheme& scheme, std::size_t index) {
    const auto bytes = scheme.colors().subspan(index * 4, 4);
    return {bytes.begin(), bytes.end()};
}

/// The colours of a tile, pixel by pixel, as the rules say.
Bytes coloredByRules(std::span<const std::uint8_t> table, const Bytes& pixels) {
    const std::map<std::uint8_t, std::size_t> sections{{255, 128}, {191, 256}, {223, 384}};
    Bytes out(pixels.size());
    for (std::size_t i = 0; i < pixels.size(); i += 4) {
        const auto section = sections.find(pixels[i + 2]);
        const std::size_t index = pixels[i] + (section == sections.end() ? 0 : section->second);
        if (index < 512) {
            std::copy_n(&table[index * 4], 4, &out[i]);
        }
    }
    return out;
}

/// A tile of runs of equal pixels and of noise, all kinds of precipitation among them.
Bytes randomTile(std::mt19937& random, std::size_t count) {
    Bytes pixels;
    while (pixels.size() < count * 4) {
        Bytes pixel(4);
        std::ranges::generate(pixel, [&] { return static_cast<std::uint8_t>(random()); });
        pixel[2] = std::array<std::uint8_t, 5>{0, 191, 223, 255, 254}[random() % 5];
        for (std::size_t run = random() % 3 == 0 ? random() % 60 : 1; run > 0; --run) {
            pixels.insert(pixels.end(), pixel.begin(), pixel.end());
        }
    }
    pixels.resize(count * 4);
    return pixels;
}

TEST(ColorScheme, everyVariantColoursAsTheRulesSay) {
    std::mt19937 random(5);
    const RadarColorScheme scheme(1, true, true, -32);
    const Recoloring recoloring(scheme.colors());
    Recoloring::Table table{};
    std::memcpy(table.data(), scheme.colors().data(), scheme.colors().size());
    for (std::size_t count = 0; count < 300; ++count) {
        const Bytes pixels = randomTile(random, count);
        const Bytes expected = coloredByRules(scheme.colors(), pixels);
        Bytes indices;
        Bytes plain;
        for (std::size_t i = 0; i < pixels.size(); i += 4) {
            indices.push_back(pixels[i]);
            plain.insert(plain.end(), {pixels[i], 0, 0, 0});
        }
        for (const Recoloring::Variant& variant : Recoloring::variants()) {
            if (!variant.isSupported) {
                continue;
            }
            Bytes out(pixels.size(), 0xEE);
            variant.recolor(table, pixels.data(), out.data(), count);
            EXPECT_EQ(out, expected) << variant.name << ' ' << count;
            out.push_back(0xEE);
            variant.colorIndices(table, indices.data(), out.data(), count);
            EXPECT_EQ(out.back(), 0xEE) << variant.name;
            out.pop_back();
            EXPECT_EQ(out, coloredByRules(scheme.colors(), plain)) << variant.name << ' ' << count;
        }
        EXPECT_EQ(scheme.applyColors(pixels, CGSize{static_cast<double>(count), 1}), expected);
    }
    EXPECT_TRUE(Recoloring::variants().back().isSupported);
}

TEST(ColorScheme, sizesAndShortTablesAreChecked) {
    const RadarColorScheme radar(4, true, true, -32);
    const SatelliteColorScheme satellite;
    EXPECT_EQ(radar.applyColors(Bytes(63), {4, 4}), std::nullopt);
    EXPECT_EQ(radar.applyColorsDecodingImage(Bytes(63), {4, 4}), std::nullopt);
    EXPECT_EQ(radar.applyColors(Bytes(100), {0, 1e9})->size(), 0U);
    for (const double side : {-1.0, 1e10, 1e30, std::nan("")}) {
        EXPECT_DEATH(static_cast<void>(radar.applyColors(Bytes(4), CGSize{side, 1e10})),
                     "Fatal error: The size");
    }
    const Bytes reachable{255, 0, 0, 0, 127, 0, 255, 0, 200, 0, 223, 0};
    EXPECT_EQ(*satellite.applyColors(reachable, {3, 1}), coloredByRules(satellite.colors(), reachable));
    Bytes out(4, 0xEE);
    for (const Bytes& beyond : {Bytes{128, 0, 255, 0}, Bytes{0, 0, 191, 0}, Bytes{127, 0, 223, 0}}) {
        EXPECT_FALSE(satellite.applyColors(beyond, std::span(out)));
        EXPECT_EQ(out, Bytes(4, 0xEE));
        EXPECT_DEATH(static_cast<void>(satellite.applyColors(beyond, {1, 1})), "beyond the colour table");
    }
    EXPECT_FALSE(radar.applyColors(Bytes(8), std::span(out)));
}

TEST(ColorScheme, imagesAreDescribedAsPremultiplied) {
    const TemperatureColorScheme scheme;
    const auto image = scheme.applyColorsDecodingImage(Bytes(28, 90), {3, 2});
    EXPECT_EQ(image,
              (platform::CGImage{3, 2, 8, 32, 12, 0x4001, coloredByRules(scheme.colors(), Bytes(24, 90))}));
}

TEST(RadarColorScheme, clearsMergesAndRefuses) {
    const RadarColorScheme scheme(1, false, true, 0);
    const RadarColorScheme whole(1, true, true, -32);
    for (std::size_t index = 0; index < 512; ++index) {
        EXPECT_EQ(entry(scheme, index), index % 128 < 32 ? Bytes(4) : entry(whole, index % 128)) << index;
    }
    EXPECT_NE(entry(RadarColorScheme(1, true, false, -32), 45), entry(whole, 45));
    EXPECT_TRUE(RadarColorScheme::make(4294967295, true, true, 223));
    for (const auto& [radar, minimalDbz] :
         {std::pair(-1L, 0L), {4294967296L, 0L}, {1L, 224L}, {1L, -33L}, {1L, LONG_MAX}}) {
        EXPECT_FALSE(RadarColorScheme::make(radar, true, true, minimalDbz));
        EXPECT_DEATH(RadarColorScheme(radar, true, true, minimalDbz), "Fatal error: expected");
    }
}

TEST(ColorScheme, legendsTakeTheirEntries) {
    const RadarColorScheme radar(1, true, true, -32);
    const auto layer = radar.gradient(ColorSchemeType::Hail, GradientDirection::horizontal);
    ASSERT_EQ(layer.colors.size(), 20U);
    EXPECT_DOUBLE_EQ(layer.locations.back(), 0.95);
    EXPECT_EQ(layer.colors[0], (platform::CGColor{255 / 255.0, 63 / 255.0, 53 / 255.0, 1}));  // 50 dBZ
    EXPECT_EQ(layer.startPoint, (platform::CGPoint{0, 0.5}));
    EXPECT_EQ(radar.gradient(std::nullopt, GradientDirection::vertical).colors.size(), 255U);
    EXPECT_DEATH(std::ignore = SatelliteColorScheme().gradient(ColorSchemeType::IcePellete,
                                                               GradientDirection::vertical),
                 "ends before the legend");
}

}  // namespace
}  // namespace nimbuscope

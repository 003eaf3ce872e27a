#include "NimbuscopeKit/RadarImagery/Recoloring.hpp"

#include <algorithm>
#include <bit>
#include <cstring>

namespace nimbuscope {
namespace {

constexpr std::size_t pixelSize = 4;
constexpr std::size_t blockSize = 16;  // pixels that are handled together
constexpr std::uint32_t transparentEntry = Recoloring::reachableEntries;

constexpr bool isLittleEndian = std::endian::native == std::endian::little;
constexpr unsigned redShift = isLittleEndian ? 0 : 24;
constexpr unsigned blueShift = isLittleEndian ? 16 : 8;

/// The table entry of a pixel: its section by the blue byte, plus the red byte. Only ice pellets, the last
/// section, can run past the table, and those pixels stay transparent.
[[gnu::always_inline]] inline std::uint32_t entryOf(std::uint32_t pixel) {
    const std::uint32_t blue = pixel >> blueShift & 0xFFU;
    const std::uint32_t section =
        (blue == 191 ? 256U : 0U) | (blue == 223 ? 384U : 0U) | (blue == 255 ? 128U : 0U);
    return std::min(section + (pixel >> redShift & 0xFFU), transparentEntry);
}

std::uint32_t pixelAt(const std::uint8_t* bytes) {
    std::uint32_t pixel = 0;
    std::memcpy(&pixel, bytes, pixelSize);
    return pixel;
}

[[gnu::always_inline]] inline void recolorBlock(const Recoloring::Table& table, const std::uint8_t* pixels,
                                                std::uint8_t* out) {
    std::array<std::uint32_t, blockSize> block;
    std::memcpy(block.data(), pixels, sizeof block);
    std::uint32_t difference = 0;
    for (const std::uint32_t pixel : block) {
        difference |= pixel ^ block[0];
    }
    if (difference == 0) {
        block.fill(table[entryOf(block[0])]);
    } else {
        for (std::uint32_t& pixel : block) {
            pixel = entryOf(pixel);
        }
        for (std::uint32_t& pixel : block) {
            pixel = table[pixel];
        }
    }
    std::memcpy(out, block.data(), sizeof block);
}

[[gnu::always_inline]] inline void recolor(const Recoloring::Table& table, const std::uint8_t* pixels,
                                           std::uint8_t* out, std::size_t count) {
    std::size_t i = 0;
    for (; i + blockSize <= count; i += blockSize) {
        recolorBlock(table, pixels + i * pixelSize, out + i * pixelSize);
    }
    for (; i < count; ++i) {
        std::memcpy(out + i * pixelSize, &table[entryOf(pixelAt(pixels + i * pixelSize))], pixelSize);
    }
}

void recolorAnywhere(const Recoloring::Table& table, const std::uint8_t* pixels, std::uint8_t* out,
                     std::size_t count) {
    recolor(table, pixels, out, count);
}

#if defined(__x86_64__)
[[gnu::target("avx2")]] void recolorAVX2(const Recoloring::Table& table, const std::uint8_t* pixels,
                                         std::uint8_t* out, std::size_t count) {
    recolor(table, pixels, out, count);
}
#endif

}  // namespace

std::span<const Recoloring::Variant> Recoloring::variants() {
    static const std::array all{
#if defined(__x86_64__)
        Variant{"avx2", &recolorAVX2, __builtin_cpu_supports("avx2") != 0},
#endif
        Variant{"portable", &recolorAnywhere, true},
    };
    return all;
}

std::size_t Recoloring::highestEntry(std::span<const std::uint8_t> pixels) {
    std::uint32_t highest = 0;
    for (std::size_t i = 0; i < pixels.size(); i += pixelSize) {
        const std::uint32_t entry = entryOf(pixelAt(&pixels[i]));
        highest = std::max(highest, entry == transparentEntry ? 0 : entry);
    }
    return highest;
}

Recoloring::Recoloring(std::span<const std::uint8_t> colors) {
    std::memcpy(table_.data(), colors.data(), std::min(colors.size(), reachableEntries * pixelSize));
}

void Recoloring::apply(std::span<const std::uint8_t> pixels, std::span<std::uint8_t> out) const {
    const auto fastest = std::ranges::find(variants(), true, &Variant::isSupported);
    fastest->function(table_, pixels.data(), out.data(), pixels.size() / pixelSize);
}

}  // namespace nimbuscope

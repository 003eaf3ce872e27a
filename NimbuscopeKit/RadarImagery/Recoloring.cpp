#include "NimbuscopeKit/RadarImagery/Recoloring.hpp"

#include <algorithm>
#include <bit>
#include <cstring>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

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

void recolorOneByOne(const Recoloring::Table& table, const std::uint8_t* pixels, std::uint8_t* out,
                     std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        std::memcpy(out + i * pixelSize, &table[entryOf(pixelAt(pixels + i * pixelSize))], pixelSize);
    }
}

/// Blocks of sixteen, with a short cut for blocks of one colour, which most of a tile without rain consists
/// of.
void recolorPortably(const Recoloring::Table& table, const std::uint8_t* pixels, std::uint8_t* out,
                     std::size_t count) {
    std::array<std::uint32_t, blockSize> block;
    std::size_t i = 0;
    for (; i + blockSize <= count; i += blockSize) {
        std::memcpy(block.data(), pixels + i * pixelSize, sizeof block);
        std::uint32_t difference = 0;
        for (const std::uint32_t pixel : block) {
            difference |= pixel ^ block[0];
        }
        if (difference == 0) {
            block.fill(table[entryOf(block[0])]);
            std::memcpy(out + i * pixelSize, block.data(), sizeof block);
        } else {
            recolorOneByOne(table, pixels + i * pixelSize, out + i * pixelSize, blockSize);
        }
    }
    recolorOneByOne(table, pixels + i * pixelSize, out + i * pixelSize, count - i);
}

#if defined(__x86_64__)
/// Eight table entries, as `entryOf`.
[[gnu::target("avx2")]] inline __m256i entriesOf(__m256i pixels) {
    const __m256i byte = _mm256_set1_epi32(0xFF);
    const __m256i blue = _mm256_and_si256(_mm256_srli_epi32(pixels, blueShift), byte);
    const auto section = [&](int kind, int first) __attribute__((target("avx2"))) {
        return _mm256_and_si256(_mm256_cmpeq_epi32(blue, _mm256_set1_epi32(kind)), _mm256_set1_epi32(first));
    };
    const __m256i sections =
        _mm256_or_si256(_mm256_or_si256(section(191, 256), section(223, 384)), section(255, 128));
    return _mm256_min_epi32(_mm256_add_epi32(sections, _mm256_and_si256(pixels, byte)),
                            _mm256_set1_epi32(static_cast<int>(transparentEntry)));
}

/// Looks up two entries that lie in one word. Loads one by one: gathering them is slower.
[[gnu::target("avx2"), gnu::always_inline]] inline void lookUpPair(const Recoloring::Table& table,
                                                                   long long pair, std::uint8_t* out) {
    const auto entries = static_cast<std::uint64_t>(pair);
    const std::uint64_t first = table[entries & 0xFFFFFFFFU];
    const std::uint64_t second = table[entries >> 32U];
    const std::uint64_t colors = first | second << 32U;
    std::memcpy(out, &colors, sizeof colors);
}

[[gnu::target("avx2"), gnu::always_inline]] inline void lookUpEight(const Recoloring::Table& table,
                                                                    __m256i entries, std::uint8_t* out) {
    const __m128i low = _mm256_castsi256_si128(entries);
    const __m128i high = _mm256_extracti128_si256(entries, 1);
    lookUpPair(table, _mm_cvtsi128_si64(low), out);
    lookUpPair(table, _mm_extract_epi64(low, 1), out + 8);
    lookUpPair(table, _mm_cvtsi128_si64(high), out + 16);
    lookUpPair(table, _mm_extract_epi64(high, 1), out + 24);
}

[[gnu::target("avx2")]] void recolorAVX2(const Recoloring::Table& table, const std::uint8_t* pixels,
                                         std::uint8_t* out, std::size_t count) {
    std::size_t i = 0;
    for (; i + blockSize <= count; i += blockSize) {
        const auto* source = reinterpret_cast<const __m256i*>(pixels + i * pixelSize);
        auto* target = reinterpret_cast<__m256i*>(out + i * pixelSize);
        const __m256i left = _mm256_loadu_si256(source);
        const __m256i right = _mm256_loadu_si256(source + 1);
        const __m256i first = _mm256_broadcastd_epi32(_mm256_castsi256_si128(left));
        const __m256i difference =
            _mm256_or_si256(_mm256_xor_si256(left, first), _mm256_xor_si256(right, first));
        if (_mm256_testz_si256(difference, difference) != 0) {
            const std::uint32_t pixel = static_cast<std::uint32_t>(_mm256_cvtsi256_si32(left));
            const __m256i color = _mm256_set1_epi32(static_cast<int>(table[entryOf(pixel)]));
            _mm256_storeu_si256(target, color);
            _mm256_storeu_si256(target + 1, color);
        } else {
            lookUpEight(table, entriesOf(left), out + i * pixelSize);
            lookUpEight(table, entriesOf(right), out + (i + blockSize / 2) * pixelSize);
        }
    }
    recolorOneByOne(table, pixels + i * pixelSize, out + i * pixelSize, count - i);
}
#endif

}  // namespace

std::span<const Recoloring::Variant> Recoloring::variants() {
    static const std::array all{
#if defined(__x86_64__)
        Variant{"avx2", &recolorAVX2, __builtin_cpu_supports("avx2") != 0},
#endif
        Variant{"portable", &recolorPortably, true},
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

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

/// How pixels lie in memory, and which entry each asks for.
struct RGBAPixels {
    using Unit = std::uint32_t;
    static std::uint32_t entryAt(const std::uint8_t* pixel) { return entryOf(pixelAt(pixel)); }
};

struct Indices {
    using Unit = std::uint8_t;
    static std::uint32_t entryAt(const std::uint8_t* pixel) { return *pixel; }
};

template <class Source>
void colorOneByOne(const Recoloring::Table& table, const std::uint8_t* pixels, std::uint8_t* out,
                   std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        std::memcpy(out + i * pixelSize, &table[Source::entryAt(pixels + i * sizeof(typename Source::Unit))],
                    pixelSize);
    }
}

/// Blocks of sixteen, with a short cut for blocks of one colour, which most of a tile without rain consists
/// of.
template <class Source>
void colorPortably(const Recoloring::Table& table, const std::uint8_t* pixels, std::uint8_t* out,
                   std::size_t count) {
    using Unit = Source::Unit;
    std::array<Unit, blockSize> block;
    std::array<std::uint32_t, blockSize> colors;
    std::size_t i = 0;
    for (; i + blockSize <= count; i += blockSize) {
        const std::uint8_t* source = pixels + i * sizeof(Unit);
        std::memcpy(block.data(), source, sizeof block);
        std::uint32_t difference = 0;
        for (const Unit pixel : block) {
            difference |= pixel ^ block[0];
        }
        if (difference == 0) {
            colors.fill(table[Source::entryAt(source)]);
            std::memcpy(out + i * pixelSize, colors.data(), sizeof colors);
        } else {
            colorOneByOne<Source>(table, source, out + i * pixelSize, blockSize);
        }
    }
    colorOneByOne<Source>(table, pixels + i * sizeof(Unit), out + i * pixelSize, count - i);
}

#if defined(__x86_64__)
/// Looks up four entries. Loads one by one: gathering them is slower.
[[gnu::target("avx2"), gnu::always_inline]] inline void lookUpFour(const Recoloring::Table& table,
                                                                   std::array<std::size_t, 4> entries,
                                                                   std::uint8_t* out) {
    const auto at = [&](std::size_t i) { return static_cast<int>(table[entries[i]]); };
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_setr_epi32(at(0), at(1), at(2), at(3)));
}

struct RGBAPixelsAVX2 : RGBAPixels {
    [[gnu::target("avx2"), gnu::always_inline]] static inline bool isOfOneColor(const std::uint8_t* block) {
        const auto* source = reinterpret_cast<const __m256i*>(block);
        const __m256i left = _mm256_loadu_si256(source);
        const __m256i right = _mm256_loadu_si256(source + 1);
        const __m256i first = _mm256_broadcastd_epi32(_mm256_castsi256_si128(left));
        const __m256i difference =
            _mm256_or_si256(_mm256_xor_si256(left, first), _mm256_xor_si256(right, first));
        return _mm256_testz_si256(difference, difference) != 0;
    }

    /// Eight table entries, as `entryOf`.
    [[gnu::target("avx2"), gnu::always_inline]] static inline __m256i entriesOf(__m256i pixels) {
        const __m256i byte = _mm256_set1_epi32(0xFF);
        const __m256i blue = _mm256_and_si256(_mm256_srli_epi32(pixels, blueShift), byte);
        const auto section = [&](int kind, int first) __attribute__((target("avx2"))) {
            return _mm256_and_si256(_mm256_cmpeq_epi32(blue, _mm256_set1_epi32(kind)),
                                    _mm256_set1_epi32(first));
        };
        const __m256i sections =
            _mm256_or_si256(_mm256_or_si256(section(191, 256), section(223, 384)), section(255, 128));
        return _mm256_min_epi32(_mm256_add_epi32(sections, _mm256_and_si256(pixels, byte)),
                                _mm256_set1_epi32(static_cast<int>(transparentEntry)));
    }

    [[gnu::target("avx2"), gnu::always_inline]] static inline void lookUpHalf(const Recoloring::Table& table,
                                                                              __m128i entries,
                                                                              std::uint8_t* out) {
        const auto low = static_cast<std::uint64_t>(_mm_cvtsi128_si64(entries));
        const auto high = static_cast<std::uint64_t>(_mm_extract_epi64(entries, 1));
        lookUpFour(table, {low & 0xFFFFFFFFU, low >> 32U, high & 0xFFFFFFFFU, high >> 32U}, out);
    }

    [[gnu::target("avx2"), gnu::always_inline]] static inline void lookUpBlock(const Recoloring::Table& table,
                                                                               const std::uint8_t* block,
                                                                               std::uint8_t* out) {
        const auto* source = reinterpret_cast<const __m256i*>(block);
        for (int half = 0; half < 2; ++half, out += blockSize / 2 * pixelSize) {
            const __m256i entries = entriesOf(_mm256_loadu_si256(source + half));
            lookUpHalf(table, _mm256_castsi256_si128(entries), out);
            lookUpHalf(table, _mm256_extracti128_si256(entries, 1), out + blockSize);
        }
    }
};

struct IndicesAVX2 : Indices {
    [[gnu::target("avx2"), gnu::always_inline]] static inline bool isOfOneColor(const std::uint8_t* block) {
        const __m128i indices = _mm_loadu_si128(reinterpret_cast<const __m128i*>(block));
        const __m128i difference = _mm_xor_si128(indices, _mm_broadcastb_epi8(indices));
        return _mm_testz_si128(difference, difference) != 0;
    }

    [[gnu::target("avx2"), gnu::always_inline]] static inline void lookUpBlock(const Recoloring::Table& table,
                                                                               const std::uint8_t* block,
                                                                               std::uint8_t* out) {
        for (std::size_t i = 0; i < blockSize; i += 4) {
            lookUpFour(table, {block[i], block[i + 1], block[i + 2], block[i + 3]}, out + i * pixelSize);
        }
    }
};

template <class Source>
[[gnu::target("avx2")]] void colorAVX2(const Recoloring::Table& table, const std::uint8_t* pixels,
                                       std::uint8_t* out, std::size_t count) {
    std::size_t i = 0;
    for (; i + blockSize <= count; i += blockSize) {
        const std::uint8_t* source = pixels + i * sizeof(typename Source::Unit);
        if (Source::isOfOneColor(source)) {
            auto* target = reinterpret_cast<__m256i*>(out + i * pixelSize);
            const __m256i color = _mm256_set1_epi32(static_cast<int>(table[Source::entryAt(source)]));
            _mm256_storeu_si256(target, color);
            _mm256_storeu_si256(target + 1, color);
        } else {
            Source::lookUpBlock(table, source, out + i * pixelSize);
        }
    }
    colorOneByOne<Source>(table, pixels + i * sizeof(typename Source::Unit), out + i * pixelSize, count - i);
}
#endif

const Recoloring::Variant& fastest() {
    return *std::ranges::find(Recoloring::variants(), true, &Recoloring::Variant::isSupported);
}

}  // namespace

std::span<const Recoloring::Variant> Recoloring::variants() {
    static const std::array all{
#if defined(__x86_64__)
        Variant{"avx2", &colorAVX2<RGBAPixelsAVX2>, &colorAVX2<IndicesAVX2>,
                __builtin_cpu_supports("avx2") != 0},
#endif
        Variant{"portable", &colorPortably<RGBAPixels>, &colorPortably<Indices>, true},
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
    fastest().recolor(table_, pixels.data(), out.data(), pixels.size() / pixelSize);
}

void Recoloring::applyToIndices(std::span<const std::uint8_t> indices, std::span<std::uint8_t> out) const {
    fastest().colorIndices(table_, indices.data(), out.data(), indices.size());
}

}  // namespace nimbuscope

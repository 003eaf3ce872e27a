#include "NimbuscopeKit/RadarImagery/Rad2Runs.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <optional>

#include "Platform/Core/ByteReader.hpp"

namespace nimbuscope {
namespace {

struct Run {
    std::uint8_t index;
    std::uint64_t length;  // in pixels
    std::uint64_t size;    // in bytes
};

/// The run at `offset`; none where its bytes pass the end of the file.
std::optional<Run> runAt(const platform::ByteReader& file, std::uint64_t offset) {
    const auto head = file.integer(offset, 2);
    if (!head) {
        return std::nullopt;
    }
    const auto index = static_cast<std::uint8_t>(*head >> 8U);
    const std::uint32_t count = *head & 0xFFU;
    if (count != 0 && count != 255) {
        return Run{.index = index, .length = count, .size = 2};
    }
    const unsigned width = count == 0 ? 2 : 4;
    const auto length = file.integer(offset + 2, width);
    return length ? std::optional(Run{.index = index, .length = *length, .size = 2U + width}) : std::nullopt;
}

/// Decodes run by run, every byte checked; `pixelOf` makes a pixel of an index.
template <class Pixel, class PixelOf>
Rad2Runs::Outcome decodeChecked(const Rad2Runs::Source& source, Pixel* out, std::size_t count,
                                PixelOf pixelOf) {
    const platform::ByteReader file(source.file);
    std::size_t done = 0;
    for (std::uint64_t offset = source.begin; offset < source.end;) {
        const auto run = runAt(file, offset);
        if (!run) {
            return {.status = Rad2Runs::Status::pastFile, .offset = offset};
        }
        if (run->length > count - done) {
            return {.status = Rad2Runs::Status::pastPixels, .offset = offset};
        }
        std::fill_n(out + done, run->length, pixelOf(run->index));
        done += run->length;
        offset += run->size;
    }
    std::fill(out + done, out + count, Pixel{});
    return {};
}

constexpr std::size_t pixelSize = 4;

using RGBA = std::array<std::uint8_t, pixelSize>;

Rad2Runs::Outcome colorRunByRun(const Rad2Runs::Source& source, const std::uint8_t* colors, std::uint8_t* out,
                                std::size_t count) {
    return decodeChecked(source, reinterpret_cast<RGBA*>(out), count, [&](std::uint8_t index) {
        RGBA pixel;
        std::memcpy(pixel.data(), colors + index * pixelSize, pixelSize);
        return pixel;
    });
}

// The fast way takes runs of up to sixteen pixels in groups, with one look at the ends per group, and writes
// sixteen pixels for each, whatever its length: what was too much is overwritten by the next run. Only the
// last runs and pixels are decoded run by run. The helpers are inlined into one function per kind of
// processor.

constexpr std::size_t groupRuns = 8;
constexpr std::size_t groupSize = groupRuns * 2;  // in bytes
constexpr std::size_t storedPixels = 16;
constexpr std::size_t storedSize = storedPixels * pixelSize;
constexpr std::size_t longestRunSize = 6;  // in bytes
constexpr std::size_t longestByteCount = 254;
constexpr std::size_t sparsePixelsPerByte = 8;

/// Where a decoding stands: the next run and the next pixel, and how far they may go.
struct Cursor {
    const std::uint8_t* run;
    const std::uint8_t* runsEnd;
    std::uint8_t* out;
    std::uint8_t* outEnd;

    [[nodiscard]] std::size_t bytesLeft() const { return static_cast<std::size_t>(runsEnd - run); }
    [[nodiscard]] std::size_t roomLeft() const { return static_cast<std::size_t>(outEnd - out); }
};

/// As many bytes as a register of the processor holds. Wider ones than it has are many times slower.
template <std::size_t size>
struct Register {
    using Pixels [[gnu::vector_size(size), gnu::aligned(1), gnu::may_alias]] = std::uint32_t;
};

[[gnu::always_inline]] inline std::uint32_t colorAt(const std::uint8_t* colors, std::uint8_t index) {
    std::uint32_t color = 0;
    std::memcpy(&color, colors + index * pixelSize, pixelSize);
    return color;
}

/// Writes sixteen pixels, for a run that is as long or shorter.
template <std::size_t registerSize>
[[gnu::always_inline]] inline void storePixels(std::uint8_t* out, std::uint32_t color) {
    using Pixels = typename Register<registerSize>::Pixels;
    const Pixels pixels = color - Pixels{};
    for (std::size_t i = 0; i < storedSize; i += registerSize) {
        *reinterpret_cast<Pixels*>(out + i) = pixels;
    }
}

/// Whether the eight runs at `run` have length 1 each, as in noise.
[[gnu::always_inline]] inline bool areSinglePixels(const std::uint8_t* run) {
    constexpr std::array<std::uint8_t, 8> ones{0, 1, 0, 1, 0, 1, 0, 1};
    constexpr std::array<std::uint8_t, 8> counts{0, 255, 0, 255, 0, 255, 0, 255};
    std::array<std::uint64_t, 2> runs;
    std::memcpy(runs.data(), run, sizeof runs);
    const auto expected = std::bit_cast<std::uint64_t>(ones);
    return (((runs[0] ^ expected) | (runs[1] ^ expected)) & std::bit_cast<std::uint64_t>(counts)) == 0;
}

/// Decodes up to eight runs. False when the next one must be taken alone, because it is longer than sixteen
/// pixels or empty or because the end is near. Where pixels are cleared first, runs of zeros may be longer.
template <std::size_t registerSize, bool isCleared>
[[gnu::always_inline]] inline bool colorGroup(Cursor& cursor, const std::uint8_t* colors) {
    constexpr std::size_t longestZeros = isCleared ? longestByteCount : storedPixels;
    constexpr std::size_t reach = groupRuns * longestZeros * pixelSize + storedSize;
    if (cursor.roomLeft() < reach) {
        return false;
    }
    if (areSinglePixels(cursor.run)) {
        for (std::size_t i = 0; i < groupRuns; ++i) {
            const std::uint32_t color = colorAt(colors, cursor.run[i * 2]);
            std::memcpy(cursor.out + i * pixelSize, &color, pixelSize);
        }
        cursor.run += groupSize;
        cursor.out += groupRuns * pixelSize;
        return true;
    }
#pragma GCC unroll 8
    for (std::size_t i = 0; i < groupRuns; ++i) {
        const std::size_t length = cursor.run[1];
        const std::uint32_t color = colorAt(colors, cursor.run[0]);
        if (length - 1 >= (color == 0 ? longestZeros : storedPixels)) [[unlikely]] {
            return false;
        }
        storePixels<registerSize>(cursor.out, color);
        cursor.run += 2;
        cursor.out += length * pixelSize;
    }
    return true;
}

/// Decodes a run of any form. False when the end is too near for that, or the run is at fault.
template <std::size_t registerSize, bool isCleared>
[[gnu::always_inline]] inline bool colorRun(Cursor& cursor, const std::uint8_t* colors) {
    if (cursor.bytesLeft() < longestRunSize) {
        return false;
    }
    // Which of the first two forms it is cannot be foretold: arithmetic is faster than a branch.
    const std::uint8_t* run = cursor.run;
    const std::size_t isWide = run[1] == 0 ? 1 : 0;
    std::size_t length = run[1] + isWide * (std::size_t{run[2]} << 8U | run[3]);
    std::size_t size = 2 + 2 * isWide;
    if (run[1] == 255) [[unlikely]] {
        length = std::size_t{run[2]} << 24U | std::size_t{run[3]} << 16U | std::size_t{run[4]} << 8U | run[5];
        size = longestRunSize;
    }
    if (length + storedPixels > cursor.roomLeft() / pixelSize) {
        return false;
    }
    const std::uint32_t color = colorAt(colors, run[0]);
    storePixels<registerSize>(cursor.out, color);
    const std::size_t end = isCleared && color == 0 ? 0 : length;
    for (std::size_t done = storedPixels; done < end; done += storedPixels) {
        storePixels<registerSize>(cursor.out + done * pixelSize, color);
    }
    cursor.run += size;
    cursor.out += length * pixelSize;
    return true;
}

template <std::size_t registerSize, bool isCleared>
[[gnu::always_inline]] inline void colorRuns(Cursor& cursor, const std::uint8_t* colors) {
    while (cursor.bytesLeft() >= groupSize) {
        if (!colorGroup<registerSize, isCleared>(cursor, colors) &&
            !colorRun<registerSize, isCleared>(cursor, colors)) {
            break;
        }
    }
}

template <std::size_t registerSize>
[[gnu::always_inline]] inline Rad2Runs::Outcome colorInGroups(const Rad2Runs::Source& source,
                                                              const std::uint8_t* colors, std::uint8_t* out,
                                                              std::size_t count) {
    const std::uint8_t* file = source.file.data();
    const std::uint64_t end = std::min<std::uint64_t>(source.end, source.file.size());
    Cursor cursor{.run = file + std::min(source.begin, end),
                  .runsEnd = file + end,
                  .out = out,
                  .outEnd = out + count * pixelSize};
    // Where most pixels are empty, which runs are long is as good as drawn by lot, and guessed wrong by the
    // processor. Clearing the pixels beforehand makes long runs of zeros as good as short ones.
    if (cursor.bytesLeft() < count / sparsePixelsPerByte) {
        std::memset(out, 0, count * pixelSize);
        colorRuns<registerSize, true>(cursor, colors);
    } else {
        colorRuns<registerSize, false>(cursor, colors);
    }
    const auto done = static_cast<std::uint64_t>(cursor.run - file);
    return colorRunByRun({.file = source.file, .begin = std::max(source.begin, done), .end = source.end},
                         colors, cursor.out, cursor.roomLeft() / pixelSize);
}

Rad2Runs::Outcome colorPortably(const Rad2Runs::Source& source, const std::uint8_t* colors, std::uint8_t* out,
                                std::size_t count) {
    return colorInGroups<16>(source, colors, out, count);
}

#if defined(__x86_64__)
[[gnu::target("avx2")]] Rad2Runs::Outcome colorAVX2(const Rad2Runs::Source& source,
                                                    const std::uint8_t* colors, std::uint8_t* out,
                                                    std::size_t count) {
    return colorInGroups<32>(source, colors, out, count);
}
#endif

}  // namespace

std::span<const Rad2Runs::Variant> Rad2Runs::variants() {
    static const std::array all{
#if defined(__x86_64__)
        Variant{"avx2", &colorAVX2, __builtin_cpu_supports("avx2") != 0},
#endif
        Variant{"portable", &colorPortably, true},
        Variant{"run by run", &colorRunByRun, true},
    };
    return all;
}

Rad2Runs::Outcome Rad2Runs::color(const Source& source, const std::uint8_t* colors, std::uint8_t* out,
                                  std::size_t count) {
    const auto fastest = std::ranges::find(variants(), true, &Variant::isSupported);
    return fastest->function(source, colors, out, count);
}

Rad2Runs::Outcome Rad2Runs::expand(const Source& source, std::span<std::uint8_t> out) {
    return decodeChecked(source, out.data(), out.size(), [](std::uint8_t index) { return index; });
}

}  // namespace nimbuscope

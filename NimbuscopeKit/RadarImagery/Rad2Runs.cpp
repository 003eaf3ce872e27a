#include "NimbuscopeKit/RadarImagery/Rad2Runs.hpp"

#include <algorithm>
#include <array>
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

using RGBA = std::array<std::uint8_t, 4>;

Rad2Runs::Outcome colorChecked(const Rad2Runs::Source& source, const std::uint8_t* colors, std::uint8_t* out,
                               std::size_t count) {
    return decodeChecked(source, reinterpret_cast<RGBA*>(out), count, [&](std::uint8_t index) {
        RGBA pixel;
        std::memcpy(pixel.data(), colors + index * pixel.size(), pixel.size());
        return pixel;
    });
}

}  // namespace

std::span<const Rad2Runs::Variant> Rad2Runs::variants() {
    static const std::array all{
        Variant{"portable", &colorChecked, true},
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

#include "NimbuscopeKit/RadarImagery/ColorScheme.hpp"

#include <array>

#include "NimbuscopeKit/RadarImagery/Recoloring.hpp"
#include "Platform/Core/Fatal.hpp"

namespace nimbuscope {
namespace {

using platform::CAGradientLayer;
using platform::CGImage;
using platform::CGSize;
using platform::precondition;
using platform::Result;

constexpr std::size_t entrySize = 4;

std::int64_t pixelsOf(double side) {
    precondition(side >= 0 && side < 0x1p63, "The size of an image must be finite and not negative");
    return static_cast<std::int64_t>(side);
}

/// The bytes of an RGBA image.
std::size_t bytesOf(CGSize size) {
    std::int64_t bytes = 0;
    const bool isTooLarge = __builtin_mul_overflow(pixelsOf(size.width), pixelsOf(size.height), &bytes) ||
                            __builtin_mul_overflow(bytes, std::int64_t{entrySize}, &bytes);
    precondition(!isTooLarge, "The size of an image must fit the memory");
    return static_cast<std::size_t>(bytes);
}

platform::CGColor colorAt(std::span<const std::uint8_t> colors, std::size_t entry) {
    const auto component = [&](std::size_t i) { return colors[entry * entrySize + i] / 255.0; };
    return {.red = component(0), .green = component(1), .blue = component(2), .alpha = component(3)};
}

}  // namespace

LegendRange legendRange(std::optional<ColorSchemeType> type) {
    constexpr std::array<LegendRange, 6> ranges{
        {{42, 82}, {82, 102}, {170, 210}, {289, 348}, {426, 476}, {112, 252}}};
    return type ? ranges.at(static_cast<std::size_t>(*type)) : LegendRange{0, 255};
}

Result<CAGradientLayer, ColorSchemeError> ColorScheme::checkedGradient(std::optional<ColorSchemeType> type,
                                                                       GradientDirection direction) const {
    const auto [first, end] = legendRange(type);
    const std::span<const std::uint8_t> table = colors();
    if (end * entrySize > table.size()) {
        return std::unexpected(ColorSchemeError{"the legend ends at entry " + std::to_string(end) +
                                                " but the scheme has " +
                                                std::to_string(table.size() / entrySize) + " entries"});
    }
    CAGradientLayer layer;
    double location = 0;
    for (std::size_t entry = first; entry < end; ++entry) {
        layer.colors.push_back(colorAt(table, entry));
        layer.locations.push_back(location);
        location += 1.0 / static_cast<double>(end - first);
    }
    if (direction == GradientDirection::horizontal) {
        layer.startPoint = {.x = 0, .y = 0.5};
        layer.endPoint = {.x = 1, .y = 0.5};
    }
    return layer;
}

CAGradientLayer ColorScheme::gradient(std::optional<ColorSchemeType> type,
                                      GradientDirection direction) const {
    auto layer = checkedGradient(type, direction);
    precondition(layer.has_value(), "The colour table ends before the legend");
    return std::move(*layer);
}

Result<void, ColorSchemeError> ColorScheme::applyColors(std::span<const std::uint8_t> pixels,
                                                        std::span<std::uint8_t> out) const {
    if (pixels.size() % entrySize != 0 || out.size() != pixels.size()) {
        return std::unexpected(ColorSchemeError{"a tile of " + std::to_string(pixels.size()) +
                                                " bytes cannot be coloured into " +
                                                std::to_string(out.size())});
    }
    const std::span<const std::uint8_t> table = colors();
    if (table.size() < Recoloring::reachableEntries * entrySize) {
        const std::size_t highest = Recoloring::highestEntry(pixels);
        if (!pixels.empty() && highest >= table.size() / entrySize) {
            return std::unexpected(ColorSchemeError{"the tile needs entry " + std::to_string(highest) +
                                                    " but the scheme has " +
                                                    std::to_string(table.size() / entrySize) + " entries"});
        }
    }
    Recoloring(table).apply(pixels, out);
    return {};
}

std::optional<std::vector<std::uint8_t>> ColorScheme::applyColors(const platform::Data& data,
                                                                  CGSize size) const {
    const std::size_t bytes = bytesOf(size);
    if (data.size() < bytes) {
        return std::nullopt;
    }
    std::vector<std::uint8_t> colored(bytes);
    const auto applied = applyColors(std::span(data).first(bytes), colored);
    precondition(applied.has_value(), "The tile needs an entry beyond the colour table");
    return colored;
}

std::optional<CGImage> ColorScheme::decodeImage(std::span<const std::uint8_t> bytes, CGSize size) const {
    const std::size_t needed = bytesOf(size);
    if (bytes.size() < needed) {
        return std::nullopt;
    }
    const auto width = static_cast<std::size_t>(size.width);
    const auto pixels = bytes.first(needed);
    return CGImage{.width = width,
                   .height = static_cast<std::size_t>(size.height),
                   .bitsPerComponent = 8,
                   .bitsPerPixel = 32,
                   .bytesPerRow = width * entrySize,
                   .bitmapInfo = CGImage::alphaPremultipliedLast | CGImage::byteOrder32Big,
                   .data = {pixels.begin(), pixels.end()}};
}

std::optional<CGImage> ColorScheme::applyColorsDecodingImage(const platform::Data& data, CGSize size) const {
    const auto colored = applyColors(data, size);
    return colored ? decodeImage(*colored, size) : std::nullopt;
}

}  // namespace nimbuscope

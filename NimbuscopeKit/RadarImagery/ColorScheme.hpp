#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "NimbuscopeKit/RadarImagery/ColorSchemeType.hpp"
#include "NimbuscopeKit/RadarImagery/GradientDirection.hpp"
#include "Platform/Core/Data.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/Core/Result.hpp"
#include "Platform/Graphics/CAGradientLayer.hpp"
#include "Platform/Graphics/CGImage.hpp"

namespace nimbuscope {

/// Why a colour scheme could not be made or used as asked.
struct ColorSchemeError {
    std::string reason;
};

/// The entries of a colour table that a legend shows: first ..< end.
struct LegendRange {
    std::size_t first = 0;
    std::size_t end = 0;

    bool operator==(const LegendRange&) const = default;
};

/// The entries that the legend of a type shows; without a type, 0 ..< 255.
[[nodiscard]] NIMBUSCOPE_EXPORT LegendRange legendRange(std::optional<ColorSchemeType> type);

/// A colour table, and what is drawn with it. Objects do not change once they are made, unless someone writes
/// through `colors()`; as long as nobody does, any thread may use them.
class NIMBUSCOPE_EXPORT ColorScheme {
  public:
    /// The size in bytes of what a one-byte index can reach, whatever the size of the table: not to be used
    /// for the size of a buffer.
    static constexpr std::int64_t colorsLenght = 1024;

    virtual ~ColorScheme() = default;

    /// The table: red, green, blue and alpha (not premultiplied) of each entry. Owned by the scheme. Radar
    /// tables have 512 entries, 128 each for rain, snow, freezing rain and ice pellets, and show a
    /// reflectivity in dBZ at entry dBZ + 32; other tables have 256 entries.
    [[nodiscard]] virtual std::span<std::uint8_t> colors() const = 0;

    /// The legend of a type: one colour for each of its entries, evenly spaced from 0 on.
    /// Stops the process when the table ends before the legend does.
    [[nodiscard]] platform::CAGradientLayer gradient(std::optional<ColorSchemeType> type,
                                                     GradientDirection direction) const;

    /// As `gradient`, with an error for a table that is too short.
    [[nodiscard]] platform::Result<platform::CAGradientLayer, ColorSchemeError> checkedGradient(
        std::optional<ColorSchemeType> type, GradientDirection direction) const;

    /// Colours an RGBA tile whose red is the value and whose blue is the kind of precipitation (191 freezing
    /// rain, 223 ice pellets, 255 snow, anything else rain). Ice pellets with a value of 128 or more stay
    /// transparent. Absent when `data` holds fewer than width × height × 4 bytes. Stops the process when the
    /// size is not that of an image or when the tile needs an entry beyond the table.
    [[nodiscard]] std::optional<std::vector<std::uint8_t>> applyColors(const platform::Data& data,
                                                                       platform::CGSize size) const;

    /// Colours such a tile into `out`, which must have the size of `pixels`, a multiple of four; allocates
    /// nothing. An error, with nothing written, when the sizes do not fit or an entry beyond the table is
    /// needed.
    [[nodiscard]] platform::Result<void, ColorSchemeError> applyColors(std::span<const std::uint8_t> pixels,
                                                                       std::span<std::uint8_t> out) const;

    /// The RGBA bytes as an image; absent when they are fewer than width × height × 4. Stops the process when
    /// the size is not that of an image.
    [[nodiscard]] std::optional<platform::CGImage> decodeImage(std::span<const std::uint8_t> bytes,
                                                               platform::CGSize size) const;

    /// `applyColors`, then `decodeImage`; absent when either is.
    [[nodiscard]] std::optional<platform::CGImage> applyColorsDecodingImage(const platform::Data& data,
                                                                            platform::CGSize size) const;

  protected:
    ColorScheme() = default;
    ColorScheme(const ColorScheme&) = default;
    ColorScheme(ColorScheme&&) = default;
    ColorScheme& operator=(const ColorScheme&) = default;
    ColorScheme& operator=(ColorScheme&&) = default;
};

}  // namespace nimbuscope

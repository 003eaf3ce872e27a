#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Core/Result.hpp"

namespace nimbuscope {

using RGBA = std::array<std::uint8_t, 4>;

/// A colour of a colour table and the value from which on it is drawn.
struct ColorTableStop {
    double value = 0;
    /// The colour is drawn up to the next value, instead of running to the next colour.
    bool isHeld = false;
    bool hasAlpha = false;
    RGBA color{};
    /// The colour that is reached at the next value, instead of the next colour.
    std::optional<RGBA> endColor = std::nullopt;
    std::size_t line = 0;  ///< where it was read, from 1; 0 for a table that was not read

    bool operator==(const ColorTableStop&) const = default;
};

/// Colours for values of one quantity, as the colour-table text files hold them that radar viewers share:
///
///     ; a comment, as is everything behind a "#"
///     Name: Storms
///     Units: DBZ
///     Color: 10 0 0 255              value, red, green, blue
///     Color4: 20 0 255 0 128         … with alpha
///     Color: 30 255 255 0 255 0 0    … with the colour to run to
///     SolidColor: 50 128 0 128       … held up to the next value; SolidColor4 likewise
///
/// Keys may be written in any case and colours in any order; a value that comes twice marks a sharp break.
/// `Scale` and `Offset` say that values in the file are data values × Scale + Offset. `Step` is the distance
/// of labels.
struct ColorTable {
    std::string name;
    std::string units;
    double step = 0;                    ///< 0 when not stated
    std::vector<ColorTableStop> stops;  ///< by ascending data value; never empty when read

    /// Whether values are radar reflectivities in dBZ.
    [[nodiscard]] bool isReflectivity() const;
};

/// Why a text is no colour table.
struct ColorTableError {
    std::size_t line = 0;  ///< from 1; 0 when the fault is in no single line
    std::string reason;    ///< what is wrong, with what was found

    /// "line 12: REASON", or the reason alone.
    [[nodiscard]] std::string message() const;
};

/// Reads a colour table. Text that is no colour and no key of the format is taken for a remark; a line that
/// has the look of a colour and is malformed is an error, never a colour.
[[nodiscard]] platform::Result<ColorTable, ColorTableError> parseColorTable(std::string_view text);

/// The table as such a text, which reads back the same.
[[nodiscard]] std::string colorTableText(const ColorTable& table);

/// The stop list of the palette library: reflectivities lie at position dBZ + 32, other values are positions.
/// Positions are whole numbers from 0 to 255, ascending.
[[nodiscard]] platform::Result<std::vector<std::uint8_t>, ColorTableError> stopListOf(
    const ColorTable& table);

/// The stops of a sound stop list (see cs_check_stop_list), as reflectivities or as positions.
[[nodiscard]] std::vector<ColorTableStop> stopsOfList(const std::uint8_t* stopList, bool isReflectivity);

/// `count` colours of the table for values from `from` to `to`, evenly spaced. Below the first value the
/// colours fade in from transparent black at `from`.
[[nodiscard]] std::vector<RGBA> renderColorTable(const ColorTable& table, double from, double to,
                                                 std::uint32_t count);

}  // namespace nimbuscope

#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace nimbuscope::drawing {

/// A letter as rows of dots from the top; the most significant of the low five bits is the leftmost dot. The
/// baseline lies under the seventh row; two more rows hold descenders.
struct Glyph {
    static constexpr int rows = 9;
    static constexpr int columns = 5;
    static constexpr int capHeight = 7;

    char character;
    std::array<std::uint8_t, rows> dots;

    /// Columns that the letter takes up; a gap of one column follows.
    [[nodiscard]] int width() const;

    [[nodiscard]] bool isSet(int column, int row) const;
};

/// The one sign beyond ASCII that the font has.
inline constexpr char degreeSign = '\xB0';

/// The glyph of an ASCII letter, figure or sign; that of "?" for what the font does not have.
[[nodiscard]] const Glyph& glyphOf(char character);

/// The width of a line of text in dots.
[[nodiscard]] int widthOf(std::string_view text);

}  // namespace nimbuscope::drawing

#pragma once

#include <string_view>

#include "colorschemes/text/ColorTable.hpp"
#include "tools/drawing/BitmapFont.hpp"

/// How all pictures look.
namespace nimbuscope::drawing {

inline constexpr RGBA ink{38, 44, 52, 255};
inline constexpr RGBA paleInk{104, 112, 122, 255};
inline constexpr RGBA frameInk{150, 156, 164, 255};

inline constexpr int textScale = 2;
inline constexpr int titleScale = 3;
inline constexpr int textHeight = Glyph::capHeight * textScale;
inline constexpr int margin = 20;
inline constexpr int tickLength = 6;

/// The width of a line of plain text in pixels.
[[nodiscard]] inline int textWidth(std::string_view text) {
    return widthOf(text) * textScale;
}

}  // namespace nimbuscope::drawing

// Draws the table that the benchmarks print: how much of its limit each ratio takes, as a bar.
//   plot_ratios PICTURE.png <TABLE

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fstream>
#include <iostream>
#include <optional>
#include <sstream>
#include <vector>

#include "tools/drawing/Canvas.hpp"
#include "tools/drawing/Style.hpp"

using namespace nimbuscope;
using namespace nimbuscope::drawing;

namespace {

constexpr int labelWidth = 880;
constexpr int octaveWidth = 80;
constexpr int octavesBelow = 6;  // the least share that a bar shows is 1/64
constexpr int octavesAbove = 1;
constexpr int rowHeight = textHeight + 12;
constexpr int top = margin + Glyph::capHeight * titleScale + 24 + textHeight;
constexpr RGBA kept{28, 110, 214, 255};
constexpr RGBA missed{232, 158, 20, 255};

struct Row {
    std::string label;
    double share = 0;  ///< of the limit
};

std::optional<double> numberIn(std::string text) {
    text.erase(0, std::min(text.find_first_of("0123456789"), text.size()));
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && number > 0 ? std::optional(number) : std::nullopt;
}

/// The font is ASCII.
std::string plain(std::string text) {
    for (const auto& [sign, letters] : {std::pair{"×", "x"}, {"²", " sq"}, {"–", "-"}, {"µ", "u"}}) {
        for (std::size_t at = text.find(sign); at != std::string::npos; at = text.find(sign)) {
            text.replace(at, std::string_view(sign).size(), letters);
        }
    }
    return text;
}

/// "| work | subject | per unit | ratio × peer | ≤ limit | kept |", with numbers in ratio and limit.
std::optional<Row> rowOf(const std::string& line) {
    std::vector<std::string> cells;
    std::istringstream rest(line);
    for (std::string cell; std::getline(rest, cell, '|');) {
        const std::size_t begin = std::min(cell.find_first_not_of(' '), cell.size());
        cells.push_back(cell.substr(begin, cell.find_last_not_of(' ') + 1 - begin));
    }
    const auto ratio = cells.size() > 6 ? numberIn(cells[4]) : std::nullopt;
    const auto limit = ratio ? numberIn(cells[5]) : std::nullopt;
    if (!limit) {
        return std::nullopt;
    }
    const std::size_t peer = cells[4].find("× ");
    return Row{plain(cells[1] + ": " + cells[2] + " / " +
                     (peer == std::string::npos ? "" : cells[4].substr(peer + std::string("× ").size()))),
               *ratio / *limit};
}

int offsetOf(double share) {
    const double octaves = std::clamp(std::log2(share), double{-octavesBelow}, double{octavesAbove});
    return labelWidth + static_cast<int>((octaves + octavesBelow) * octaveWidth);
}

Canvas draw(const std::vector<Row>& rows) {
    const int bottom = top + rowHeight * static_cast<int>(rows.size());
    Canvas canvas(offsetOf(std::exp2(octavesAbove)) + 2 * margin + 20, bottom + margin);
    canvas.text(margin, margin, titleScale, "Shares of their limits", ink);
    for (int octave = -octavesBelow; octave <= octavesAbove; ++octave) {
        const int x = offsetOf(std::exp2(octave));
        const std::string label =
            octave < 0 ? "1/" + std::to_string(1 << -octave) : std::to_string(1 << octave);
        canvas.text(x - textWidth(label) / 2, top - textHeight - 8, textScale, label, paleInk);
        canvas.fill(x, top, octave == 0 ? 3 : 1, bottom - top, octave == 0 ? ink : frameInk);
    }
    int y = top + 6;
    for (const auto& [label, share] : rows) {
        canvas.text(labelWidth - 8 - textWidth(label), y, textScale, label, ink);
        canvas.fill(labelWidth, y, std::max(offsetOf(share) - labelWidth, 2), textHeight,
                    share <= 1 ? kept : missed);
        y += rowHeight;
    }
    return canvas;
}

}  // namespace

int main(int count, char** arguments) {
    std::vector<Row> rows;
    for (std::string line; std::getline(std::cin, line);) {
        if (auto row = rowOf(line)) {
            rows.push_back(std::move(*row));
        }
    }
    if (count != 2 || rows.empty()) {
        std::cerr << "usage: plot_ratios PICTURE.png <TABLE\n";
        return 2;
    }
    const platform::RGBAImage image = draw(rows).image();
    const auto png = platform::encodePNG(image.width, image.height, image.pixels);
    std::ofstream file(arguments[1], std::ios::binary);
    if (png) {
        file << platform::textOf(*png);
    }
    file.close();
    if (!png || !file) {
        std::cerr << arguments[1] << " cannot be written\n";
        return 1;
    }
}

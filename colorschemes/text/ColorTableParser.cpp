#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>

#include "colorschemes/text/ColorTable.hpp"

namespace nimbuscope {
namespace {

using platform::Result;

constexpr std::string_view blanks = " \t\r\f\v";

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(blanks);
    return first == text.npos ? std::string_view{}
                              : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lower;
}

std::vector<std::string_view> words(std::string_view text) {
    std::vector<std::string_view> found;
    while (!(text = trimmed(text)).empty()) {
        found.push_back(text.substr(0, text.find_first_of(blanks)));
        text.remove_prefix(found.back().size());
    }
    return found;
}

/// A finite decimal number; a plus sign and leading zeros are allowed.
std::optional<double> numberOf(std::string_view word) {
    if (word.size() > 1 && word[0] == '+' && word[1] != '-') {
        word.remove_prefix(1);
    }
    double number = 0;
    const auto [end, fault] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (fault != std::errc{} || end != word.data() + word.size() || !std::isfinite(number)) {
        return std::nullopt;
    }
    return number;
}

/// What follows the key of a line that gives colours.
struct ColorKind {
    std::string_view key;
    bool isHeld;
    bool hasAlpha;
};

constexpr std::array<ColorKind, 4> colorKinds{{
    {"color", false, false},
    {"color4", false, true},
    {"solidcolor", true, false},
    {"solidcolor4", true, true},
}};

/// Keys that may have numbers behind them and are no colour of the table.
constexpr std::array<std::string_view, 5> otherKeys{"nd", "rf", "product", "decimals", "title"};

const ColorKind* colorKind(std::string_view key) {
    const auto* kind = std::ranges::find(colorKinds, key, &ColorKind::key);
    return kind == colorKinds.end() ? nullptr : kind;
}

bool looksLikeColor(const std::vector<std::string_view>& values) {
    return values.size() >= 4 &&
           std::ranges::all_of(values, [](auto word) { return numberOf(word).has_value(); });
}

class Parser {
  public:
    Result<ColorTable, ColorTableError> parse(std::string_view text) {
        if (text.starts_with("\xEF\xBB\xBF")) {  // byte order mark
            text.remove_prefix(3);
        }
        while (!text.empty()) {
            ++line_;
            const std::size_t end = text.find('\n');
            if (const auto read = readLine(text.substr(0, end)); !read) {
                return std::unexpected(read.error());
            }
            text.remove_prefix(end == text.npos ? text.size() : end + 1);
        }
        if (table_.stops.empty()) {
            return std::unexpected(ColorTableError{0, "no colour in the whole table"});
        }
        finishStops();
        return std::move(table_);
    }

  private:
    using Read = Result<void, ColorTableError>;

    [[nodiscard]] Read fault(std::string reason) const {
        return std::unexpected(ColorTableError{line_, std::move(reason)});
    }

    Read readLine(std::string_view line) {
        line = trimmed(line.substr(0, line.find_first_of(";#")));
        const std::size_t colon = line.find(':');
        if (colon == line.npos) {
            return readRemark(words(line));
        }
        const std::string_view shownKey = trimmed(line.substr(0, colon));
        const std::string key = lowerCase(shownKey);
        const std::string_view value = trimmed(line.substr(colon + 1));
        if (const ColorKind* kind = colorKind(key)) {
            return readColor(*kind, words(value));
        }
        if (key == "name") {
            table_.name = value;
        } else if (key == "units") {
            table_.units = value;
        } else if (key == "step") {
            return readNumber(key, value, table_.step);
        } else if (key == "scale") {
            return readNumber(key, value, scale_);
        } else if (key == "offset") {
            return readNumber(key, value, offset_);
        } else if (!std::ranges::count(otherKeys, key) && looksLikeColor(words(value))) {
            return fault("unknown key '" + std::string(shownKey) + "' for a colour");
        }
        return {};
    }

    /// A line without a colon: free text, unless it is a colour in which something is missing.
    Read readRemark(const std::vector<std::string_view>& line) {
        if (line.size() > 1 && colorKind(lowerCase(line[0])) != nullptr && numberOf(line[1])) {
            return fault("no colon behind '" + std::string(line[0]) + "'");
        }
        return looksLikeColor(line) ? fault("colour without a key such as 'Color:'") : Read{};
    }

    Read readNumber(const std::string& key, std::string_view text, double& number) {
        const auto read = numberOf(text);
        if (!read) {
            return fault(key + ": expected a number, found '" + std::string(text) + "'");
        }
        if (key == "scale" && *read == 0) {
            return fault("scale: 0 leaves no value");
        }
        number = *read;
        return {};
    }

    Read readColor(const ColorKind& kind, const std::vector<std::string_view>& values) {
        const std::size_t channels = kind.hasAlpha ? 4 : 3;
        const bool hasEndColor = !kind.isHeld && values.size() == 1 + 2 * channels;
        if (values.size() != 1 + channels && !hasEndColor) {
            return fault("expected a value and " + std::to_string(channels) +
                         (kind.isHeld ? "" : " or " + std::to_string(2 * channels)) +
                         " colour components, found " + std::to_string(values.size()) + " numbers or words");
        }
        ColorTableStop stop{.isHeld = kind.isHeld, .hasAlpha = kind.hasAlpha, .line = line_};
        const auto value = numberOf(values[0]);
        if (!value) {
            return fault("expected a value, found '" + std::string(values[0]) + "'");
        }
        stop.value = *value;
        const std::span components(values);
        Read read = readComponents(components.subspan(1, channels), stop.color);
        if (read && hasEndColor) {
            read = readComponents(components.subspan(1 + channels), stop.endColor.emplace());
        }
        table_.stops.push_back(stop);
        return read;
    }

    Read readComponents(std::span<const std::string_view> components, RGBA& color) {
        color[3] = 255;
        for (std::size_t i = 0; i < components.size(); ++i) {
            const auto component = numberOf(components[i]);
            if (!component || *component < 0 || *component > 255 || *component != std::floor(*component)) {
                return fault("expected a colour component from 0 to 255, found '" +
                             std::string(components[i]) + "'");
            }
            color[i] = static_cast<std::uint8_t>(*component);
        }
        return {};
    }

    /// Data values in ascending order; of stops at one value the one that belongs below comes first.
    void finishStops() {
        std::vector<ColorTableStop>& stops = table_.stops;
        for (ColorTableStop& stop : stops) {
            stop.value = (stop.value - offset_) / scale_;
        }
        if (stops.front().value > stops.back().value) {
            std::ranges::reverse(stops);
        }
        std::ranges::stable_sort(stops, {}, &ColorTableStop::value);
    }

    ColorTable table_;
    double scale_ = 1;
    double offset_ = 0;
    std::size_t line_ = 0;
};

}  // namespace

bool ColorTable::isReflectivity() const {
    return lowerCase(units) == "dbz";
}

std::string ColorTableError::message() const {
    return line == 0 ? reason : "line " + std::to_string(line) + ": " + reason;
}

Result<ColorTable, ColorTableError> parseColorTable(std::string_view text) {
    return Parser().parse(text);
}

}  // namespace nimbuscope

#include "Platform/Coding/JSONArrayReader.hpp"

namespace nimbuscope::platform {
namespace {

constexpr std::size_t stretchSize = std::size_t{64} << 10U;
constexpr int mostTries = 8;
constexpr std::string_view whitespace = " \t\r\n";

/// The first comma at or after `from` that stands between a closing and an opening brace. Whether it stands
/// between two elements, or deeper, or in a text, only parsing tells.
std::size_t commaBetweenObjects(std::string_view text, std::size_t from) {
    for (std::size_t comma = text.find(',', from); comma != text.npos; comma = text.find(',', comma + 1)) {
        const std::size_t before = text.find_last_not_of(whitespace, comma - 1);
        const std::size_t after = text.find_first_not_of(whitespace, comma + 1);
        if (before != text.npos && text[before] == '}' && after != text.npos && text[after] == '{') {
            return comma;
        }
    }
    return text.npos;
}

}  // namespace

Result<std::optional<simdjson::dom::array>, DecodingError> JSONArrayReader::next() {
    if (isAtEnd_) {
        return std::nullopt;
    }
    if (text_.size() - taken_ > stretchSize + stretchSize / 2) {
        if (const auto elements = nextStretch()) {
            return elements;
        }
    }
    return rest();
}

/// Tries to parse the text up to a likely end of an element as an array of its own. When that is valid, the
/// end was one: what begins at an element and is a valid list of elements ends with one.
std::optional<simdjson::dom::array> JSONArrayReader::nextStretch() {
    std::size_t comma = taken_ + stretchSize;
    for (int i = 0; i < mostTries; ++i) {
        comma = commaBetweenObjects(text_, comma + 1);
        if (comma == text_.npos) {
            return std::nullopt;
        }
        stretch_.assign(taken_ == 0 ? "" : "[").append(text_.substr(taken_, comma - taken_)) += ']';
        stretch_.reserve(stretch_.size() + JSONDocument::enough);
        const auto root = document_.parse(stretch_, stretch_.capacity() - stretch_.size());
        simdjson::dom::array elements;
        if (root && root->get(elements) == simdjson::SUCCESS) {
            if (taken_ == 0) {
                expectedCount_ = elements.size() * (text_.size() / comma + 1);
            }
            taken_ = comma + 1;
            return elements;
        }
    }
    return std::nullopt;
}

/// All that is left, at once; also the way to say what is wrong with the text.
Result<std::optional<simdjson::dom::array>, DecodingError> JSONArrayReader::rest() {
    isAtEnd_ = true;
    if (taken_ > 0) {
        stretch_.assign("[").append(text_.substr(taken_));
        const auto root = document_.parse(stretch_);
        simdjson::dom::array elements;
        if (root && root->get(elements) == simdjson::SUCCESS) {
            return elements;
        }
    }
    const auto root = document_.parse(text_, slack_);
    if (!root) {
        return std::unexpected(root.error());
    }
    simdjson::dom::array elements;
    if (root->get(elements) != simdjson::SUCCESS) {
        return std::unexpected(std::move(*typeMismatch("an array", *root)));
    }
    expectedCount_ = elements.size();
    return elements;
}

}  // namespace nimbuscope::platform

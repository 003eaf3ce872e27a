#include "Platform/Coding/JSONArrayReader.hpp"

namespace nimbuscope::platform {
namespace {

constexpr std::size_t stretchSize = std::size_t{64} << 10U;
constexpr int mostTries = 8;
constexpr std::string_view whitespace = " \t\r\n";

/// The first comma behind `from` that stands between a closing and an opening brace. Whether it stands
/// between two elements, or deeper, or in a text, only parsing tells.
std::size_t commaBetweenObjects(std::string_view text, std::size_t from) {
    for (std::size_t comma = text.find(',', from + 1); comma != text.npos;
         comma = text.find(',', comma + 1)) {
        const std::size_t before = text.find_last_not_of(whitespace, comma - 1);
        const std::size_t after = text.find_first_not_of(whitespace, comma + 1);
        if (before != text.npos && text[before] == '}' && after != text.npos && text[after] == '{') {
            return comma;
        }
    }
    return text.npos;
}

}  // namespace

JSONArrayReader::Stretch JSONArrayReader::likelyStretch() {
    const bool isLong = text_.size() - taken_ > stretchSize + stretchSize / 2;
    return stretchUpTo(isLong ? commaBetweenObjects(text_, taken_ + stretchSize) : text_.npos);
}

/// The elements before a comma, or all that are left, as an array: copied, unless they are the whole text
/// with room behind it.
JSONArrayReader::Stretch JSONArrayReader::stretchUpTo(std::size_t comma) {
    if (taken_ == 0 && comma == text_.npos && slack_ >= JSONDocument::enough) {
        return {text_, comma};
    }
    const std::string_view elements = text_.substr(taken_, comma - taken_);
    stretch_.reserve(elements.size() + 2 + JSONDocument::enough);
    stretch_.assign(taken_ == 0 ? "" : "[").append(elements).append(comma == text_.npos ? "" : "]");
    return {stretch_, comma};
}

void JSONArrayReader::take(const Stretch& stretch) {
    isAtEnd_ = stretch.end == text_.npos;
    taken_ = isAtEnd_ ? text_.size() : stretch.end + 1;
}

/// Tries to parse the text up to a likely end of an element as an array of its own. When that is valid, the
/// end was one: what begins at an element and is a valid list of elements ends with one. What is valid and
/// ends with a bracket is an array.
Result<simdjson::dom::array, DecodingError> JSONArrayReader::next() {
    Stretch stretch = likelyStretch();
    for (int i = 0; i < mostTries && stretch.end != text_.npos; ++i) {
        const auto root = document_.parse(stretch.json, JSONDocument::enough);
        if (root) {
            take(stretch);
            return root->get_array().value();
        }
        stretch = stretchUpTo(commaBetweenObjects(text_, stretch.end));
    }
    return rest();
}

/// All that is left, at once; also the way to say what is wrong with the text.
Result<simdjson::dom::array, DecodingError> JSONArrayReader::rest() {
    isAtEnd_ = true;
    if (taken_ > 0) {
        const auto root = document_.parse(stretchUpTo(text_.npos).json, JSONDocument::enough);
        if (root) {
            return root->get_array().value();
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
    return elements;
}

}  // namespace nimbuscope::platform

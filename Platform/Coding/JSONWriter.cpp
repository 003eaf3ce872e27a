#include "Platform/Coding/JSONWriter.hpp"

#include <array>
#include <charconv>
#include <cmath>
#include <utility>

#include "Platform/Coding/JSONDocument.hpp"

namespace nimbuscope::platform {
namespace {

constexpr std::string_view hexDigits = "0123456789abcdef";

template <class Number>
void appendNumber(std::string& text, Number number) {
    std::array<char, 32> buffer;  // the longest double has 24 characters
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
    text.append(buffer.data(), result.ptr);
}

void appendEscaped(std::string& text, char character) {
    switch (character) {
        case '"':
            text += "\\\"";
            break;
        case '\\':
            text += "\\\\";
            break;
        case '\n':
            text += "\\n";
            break;
        case '\r':
            text += "\\r";
            break;
        case '\t':
            text += "\\t";
            break;
        default:
            text += "\\u00";
            text += hexDigits[static_cast<unsigned char>(character) >> 4U];
            text += hexDigits[static_cast<unsigned char>(character) & 0x0FU];
    }
}

bool needsEscape(char character) {
    return static_cast<unsigned char>(character) < 0x20 || character == '"' || character == '\\';
}

}  // namespace

void JSONWriter::key(std::string_view name) {
    Level& level = levels_.back();
    if (level.count > 0) {
        text_ += ',';
    }
    level.key = name;
    ++level.count;
    quote(name);
    text_ += ':';
}

void JSONWriter::null() {
    json("null");
}

void JSONWriter::value(bool value) {
    json(value ? "true" : "false");
}

void JSONWriter::value(std::int64_t value) {
    separate();
    appendNumber(text_, value);
}

void JSONWriter::value(double value, Reals reals) {
    separate();
    if (!std::isfinite(value)) {
        fail("a number that is not finite cannot be written");
        return;
    }
    if (value == 0 && std::signbit(value)) {
        text_ += "-0.0";  // "-0" would read back as the integer zero
        return;
    }
    const std::size_t start = text_.size();
    appendNumber(text_, value);
    if (reals == Reals::marked && text_.find_first_of(".e", start) == std::string::npos) {
        text_ += ".0";
    }
}

void JSONWriter::value(std::string_view text) {
    separate();
    quote(text);
}

void JSONWriter::json(std::string_view text) {
    separate();
    text_ += text;
}

Result<std::string, EncodingError> JSONWriter::finish() {
    std::string text = std::exchange(text_, {});
    levels_.clear();
    if (auto error = std::exchange(error_, std::nullopt)) {
        return std::unexpected(std::move(*error));
    }
    return text;
}

void JSONWriter::begin(char bracket, bool isArray) {
    separate();
    text_ += bracket;
    levels_.push_back({.isArray = isArray, .count = 0, .key = {}});
}

void JSONWriter::end(char bracket) {
    levels_.pop_back();
    text_ += bracket;
}

void JSONWriter::separate() {
    if (!levels_.empty() && levels_.back().isArray && levels_.back().count++ > 0) {
        text_ += ',';
    }
}

void JSONWriter::quote(std::string_view text) {
    if (!isValidUTF8(text)) {
        fail("the text is not valid UTF-8");
    }
    text_ += '"';
    std::size_t written = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (needsEscape(text[i])) {
            text_ += text.substr(written, i - written);
            appendEscaped(text_, text[i]);
            written = i + 1;
        }
    }
    text_ += text.substr(written);
    text_ += '"';
}

void JSONWriter::fail(std::string_view reason) {
    if (error_) {
        return;
    }
    error_ = EncodingError{{}, std::string(reason)};
    for (auto level = levels_.rbegin(); level != levels_.rend(); ++level) {
        error_ = level->isArray ? inElement(level->count - 1, std::move(*error_))
                                : inKey(level->key, std::move(*error_));
    }
}

}  // namespace nimbuscope::platform

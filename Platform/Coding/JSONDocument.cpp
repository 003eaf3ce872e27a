#include "Platform/Coding/JSONDocument.hpp"

#include <algorithm>
#include <bit>
#include <charconv>
#include <new>
#include <nlohmann/json.hpp>
#include <string>

namespace nimbuscope::platform {
namespace {

/// Takes parse events and keeps the place of the first error: the slow parser that says where, for texts that
/// the fast one refused.
struct ErrorLocator : nlohmann::json_sax<nlohmann::json> {
    std::size_t offset = 0;

    bool null() override { return true; }
    bool boolean(bool /*value*/) override { return true; }
    bool number_integer(number_integer_t /*value*/) override { return true; }
    bool number_unsigned(number_unsigned_t /*value*/) override { return true; }
    bool number_float(number_float_t /*value*/, const string_t& /*text*/) override { return true; }
    bool string(string_t& /*value*/) override { return true; }
    bool binary(binary_t& /*value*/) override { return true; }
    bool start_object(std::size_t /*count*/) override { return true; }
    bool key(string_t& /*value*/) override { return true; }
    bool end_object() override { return true; }
    bool start_array(std::size_t /*count*/) override { return true; }
    bool end_array() override { return true; }
    bool parse_error(std::size_t position, const std::string& /*token*/,
                     const nlohmann::json::exception& /*error*/) override {
        offset = position;
        return false;
    }
};

DecodingError syntaxError(std::string_view text, simdjson::error_code code) {
    if (code == simdjson::DEPTH_ERROR) {
        return {{}, "nested deeper than " + std::to_string(simdjson::DEFAULT_MAX_DEPTH) + " levels"};
    }
    if (code == simdjson::MEMALLOC) {  // no fault of the text, which must not be thrown away for it
        throw std::bad_alloc();
    }
    if (code == simdjson::CAPACITY) {
        return {{}, "a document of " + std::to_string(text.size()) + " bytes is too large"};
    }
    ErrorLocator locator;
    nlohmann::json::sax_parse(text.begin(), text.end(), &locator);
    // That parser takes a byte order mark, and a null character for the end.
    const std::size_t unseen = text.starts_with("\xEF\xBB\xBF") ? 0 : std::min(text.find('\0'), text.size());
    const std::string what = code == simdjson::UTF8_ERROR ? "invalid UTF-8" : "invalid JSON";
    return {{}, what + " at byte " + std::to_string(locator.offset > 0 ? locator.offset - 1 : unseen)};
}

bool isNumberCharacter(char c) {
    return (c >= '0' && c <= '9') || c == '-' || c == '+' || c == '.' || c == 'e' || c == 'E';
}

/// True for a number as RFC 8259 has it.
bool isNumber(std::string_view token) {
    const auto take = [&token](std::string_view characters) {
        const bool isThere = !token.empty() && characters.contains(token.front());
        token.remove_prefix(isThere ? 1 : 0);
        return isThere;
    };
    const auto takeDigits = [&token] {
        const std::size_t count = std::min(token.find_first_not_of("0123456789"), token.size());
        token.remove_prefix(count);
        return count > 0;
    };
    take("-");
    bool isSound = take("0") || takeDigits();
    isSound = isSound && (!take(".") || takeDigits());
    isSound = isSound && (!take("eE") || (take("+-"), takeDigits()));
    return isSound && token.empty();
}

template <class Number>
bool fits(std::string_view token) {
    Number value{};
    return std::from_chars(token.data(), token.data() + token.size(), value).ec !=
           std::errc::result_out_of_range;
}

/// True for a number below 1.
bool isSmall(std::string_view token) {
    const std::string_view figures = token.substr(0, token.find_first_of("eE"));
    std::string_view power = token.substr(std::min(figures.size() + 1, token.size()));
    power.remove_prefix(power.starts_with('+') ? 1 : 0);
    std::int64_t exponent = 0;
    const auto read = std::from_chars(power.data(), power.data() + power.size(), exponent);
    if (read.ec == std::errc::result_out_of_range) {
        return power.starts_with('-');
    }
    const auto place = [&](std::size_t at) {
        return static_cast<std::int64_t>(std::min(at, figures.size()));
    };
    return exponent < place(figures.find_first_of("123456789")) - place(figures.find('.'));
}

/// The number token as the fast parser takes it: integers that 64 bits do not hold become reals, magnitudes
/// that no double has become zero or a value that fits no field. What is no number stays as it is.
std::string representableNumber(std::string_view token) {
    if (!isNumber(token)) {
        return std::string(token);
    }
    if (!fits<double>(token)) {
        return isSmall(token) ? "0.0" : "[[]]";
    }
    const bool isInteger = token.find_first_of(".eE") == std::string_view::npos;
    return std::string(token) +
           (isInteger && !fits<std::int64_t>(token) && !fits<std::uint64_t>(token) ? "e0" : "");
}

/// `text` with all its number tokens made representable; what is not a number stays as it is.
std::string withRepresentableNumbers(std::string_view text) {
    std::string result;
    result.reserve(text.size() + text.size() / 16);
    bool inString = false;
    for (std::size_t i = 0; i < text.size();) {
        const char c = text[i];
        if (!inString && ((c >= '0' && c <= '9') || c == '-')) {
            const auto* const end = std::find_if_not(text.begin() + i, text.end(), isNumberCharacter);
            const auto length = static_cast<std::size_t>(end - (text.begin() + i));
            result += representableNumber(text.substr(i, length));
            i += length;
            continue;
        }
        if (inString && c == '\\') {
            result += text.substr(i, 2);
            i += 2;
            continue;
        }
        inString = inString != (c == '"');
        result += c;
        ++i;
    }
    return result;
}

std::string_view kindOf(JSONElement element) {
    switch (element.type()) {
        case simdjson::dom::element_type::ARRAY:
            return "an array";
        case simdjson::dom::element_type::OBJECT:
            return "an object";
        case simdjson::dom::element_type::INT64:
        case simdjson::dom::element_type::UINT64:
        case simdjson::dom::element_type::DOUBLE:
            return "a number";
        case simdjson::dom::element_type::STRING:
            return "a text";
        case simdjson::dom::element_type::BOOL:
            return "a boolean";
        case simdjson::dom::element_type::NULL_VALUE:
            break;
    }
    return "null";
}

}  // namespace

Result<JSONElement, DecodingError> JSONDocument::parse(std::string_view text, std::size_t slack) {
    // The parser must not be handed the null pointer that an empty text may have.
    if (text.empty()) {
        return std::unexpected(syntaxError(text, simdjson::EMPTY));
    }
    JSONElement root;
    if (text.size() > parser_.capacity()) {
        // In powers of two, so that texts of slightly growing length do not each take new memory.
        if (const auto code = parser_.allocate(std::bit_ceil(text.size())); code != simdjson::SUCCESS) {
            return std::unexpected(syntaxError(text, code));
        }
    }
    auto code = parser_.parse(text.data(), text.size(), slack < enough).get(root);
    isExact_ = code != simdjson::NUMBER_ERROR;
    if (!isExact_) {
        const std::string widened = withRepresentableNumbers(text);
        code = parser_.parse(widened).get(root);
    }
    if (code != simdjson::SUCCESS) {
        return std::unexpected(syntaxError(text, code));
    }
    return root;
}

DecodingFault fault(std::string_view reason) {
    return std::make_unique<DecodingError>(DecodingError{{}, std::string(reason)});
}

DecodingFault typeMismatch(std::string_view expected, JSONElement found) {
    return fault("expected " + std::string(expected) + ", found " + std::string(kindOf(found)));
}

DecodingFault unknownValue(std::int64_t found) {
    return fault(std::to_string(found) + " is none of the allowed values");
}

DecodingFault unknownValue(std::string_view found) {
    return fault('"' + std::string(found) + "\" is none of the allowed values");
}

DecodingFault inKey(std::string_view key, DecodingFault inner) {
    *inner = inKey(key, std::move(*inner));
    return inner;
}

DecodingFault inElement(std::size_t index, DecodingFault inner) {
    *inner = inElement(index, std::move(*inner));
    return inner;
}

bool isValidUTF8(std::string_view text) {
    return simdjson::validate_utf8(text.data(), text.size());
}

}  // namespace nimbuscope::platform

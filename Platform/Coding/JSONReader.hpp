#pragma once

#include <cmath>
#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Platform/Coding/Enumeration.hpp"
#include "Platform/Coding/Inlining.hpp"
#include "Platform/Coding/JSONDocument.hpp"

/// Decoding of records, and of what they are made of, from JSON.
///
/// Strict: a missing required key, a value of another kind or an unknown raw value of an enumeration fails
/// the whole, and the error carries the JSON path of the first fault in the order of the field tables. Null
/// counts as missing, unknown keys are ignored, of a repeated key the last counts. An integer may be written
/// as a real whose value is integral and in range; booleans, numbers and texts never stand for each other.
namespace nimbuscope::platform {

/// A value that is read while the text is walked: once, in order, all of it. Nothing has looked it over.
using JSONToken = simdjson::ondemand::value;

/// Reads a `T` in two ways, of which the first decides what is sound:
/// - `static DecodingFault read(JSONElement, T&)` from a parsed document;
/// - `static bool readStraight(JSONToken, T&)` straight from the text, several times as fast. It may give up,
///   with false, on anything out of the ordinary, which is then read in the first way; what it reads is the
///   same.
/// Types other than those below take part by a specialisation beside their definition. The T is as it is made
/// by default; after a fault it is unspecified.
template <class T>
struct JSONReader;

template <>
struct JSONReader<bool> {
    static DecodingFault read(JSONElement json, bool& value) {
        if (json.get(value) != simdjson::SUCCESS) {
            return typeMismatch("a boolean", json);
        }
        return {};
    }
    NIMBUSCOPE_INLINED static bool readStraight(JSONToken json, bool& value) {
        return json.get(value) == simdjson::SUCCESS;
    }
};

template <std::floating_point T>
struct JSONReader<T> {
    static DecodingFault read(JSONElement json, T& value) {
        double number = 0;
        if (json.get(number) != simdjson::SUCCESS) {
            return typeMismatch("a number", json);
        }
        value = static_cast<T>(number);
        return {};
    }
    NIMBUSCOPE_INLINED static bool readStraight(JSONToken json, T& value) {
        double number = 0;
        const bool isSound = json.get(number) == simdjson::SUCCESS;
        value = static_cast<T>(number);
        return isSound;
    }
};

template <std::signed_integral T>
struct JSONReader<T> {
    static DecodingFault read(JSONElement json, T& value) {
        std::int64_t number = 0;
        if (json.get(number) != simdjson::SUCCESS) {
            if (DecodingFault real = readReal(json, number)) {
                return real;
            }
        }
        if (!std::in_range<T>(number)) {
            return fault("the number is out of range");
        }
        value = static_cast<T>(number);
        return {};
    }
    NIMBUSCOPE_INLINED static bool readStraight(JSONToken json, T& value) {
        std::int64_t number = 0;
        const bool isSound = json.get(number) == simdjson::SUCCESS && std::in_range<T>(number);
        value = static_cast<T>(number);
        return isSound;
    }

  private:
    static DecodingFault readReal(JSONElement json, std::int64_t& number) {
        double real = 0;
        if (json.get(real) != simdjson::SUCCESS) {
            return typeMismatch("an integer", json);
        }
        constexpr double limit = 0x1p63;
        if (real < -limit || real >= limit) {
            return fault("the number is out of range");
        }
        if (std::trunc(real) != real) {
            return fault("expected an integer, found a fraction");
        }
        number = static_cast<std::int64_t>(real);
        return {};
    }
};

/// The text that a token stands for, valid until the next one is read; none when it is no text.
[[nodiscard]] inline std::optional<std::string_view> straightText(JSONToken json) {
    std::string_view text = json.raw_json_token();
    simdjson::ondemand::raw_json_string taken;
    if (!text.starts_with('"') || text.find('\\') != text.npos) {
        return json.get(text) == simdjson::SUCCESS ? std::optional(text) : std::nullopt;
    }
    if (json.get(taken) != simdjson::SUCCESS) {
        return std::nullopt;
    }
    return text.substr(1, text.rfind('"') - 1);
}

template <>
struct JSONReader<std::string> {
    static DecodingFault read(JSONElement json, std::string& value) {
        std::string_view text;
        if (json.get(text) != simdjson::SUCCESS) {
            return typeMismatch("a text", json);
        }
        value.assign(text);
        return {};
    }
    NIMBUSCOPE_INLINED static bool readStraight(JSONToken json, std::string& value) {
        const std::optional<std::string_view> text = straightText(json);
        if (text) {
            value.assign(*text);
        }
        return text.has_value();
    }
};

template <class T>
struct JSONReader<std::vector<T>> {
    static DecodingFault read(JSONElement json, std::vector<T>& values) {
        simdjson::dom::array array;
        if (json.get(array) != simdjson::SUCCESS) {
            return typeMismatch("an array", json);
        }
        values.clear();
        values.reserve(array.size());
        for (const JSONElement element : array) {
            if (DecodingFault inner = JSONReader<T>::read(element, values.emplace_back())) {
                return inElement(values.size() - 1, std::move(inner));
            }
        }
        return {};
    }
    NIMBUSCOPE_INLINED static bool readStraight(JSONToken json, std::vector<T>& values) {
        simdjson::ondemand::array array;
        if (json.get(array) != simdjson::SUCCESS) {
            return false;
        }
        values.clear();
        for (auto element : array) {
            JSONToken token;
            if (std::move(element).get(token) != simdjson::SUCCESS ||
                !JSONReader<T>::readStraight(token, values.emplace_back())) {
                return false;
            }
        }
        return true;
    }
};

template <Enumeration E>
struct JSONReader<E> {
    static DecodingFault read(JSONElement json, E& value) {
        std::conditional_t<std::same_as<RawValue<E>, std::int64_t>, std::int64_t, std::string> raw{};
        if (DecodingFault mismatch = JSONReader<decltype(raw)>::read(json, raw)) {
            return mismatch;
        }
        const std::optional<E> found = fromRawValue<E>(raw);
        if (!found) {
            return unknownValue(raw);
        }
        value = *found;
        return {};
    }
    NIMBUSCOPE_INLINED static bool readStraight(JSONToken json, E& value) {
        std::optional<E> found;
        if constexpr (std::same_as<RawValue<E>, std::int64_t>) {
            std::int64_t raw = 0;
            found = json.get(raw) == simdjson::SUCCESS ? fromRawValue<E>(raw) : std::nullopt;
        } else {
            const auto raw = straightText(json);
            found = raw ? fromRawValue<E>(*raw) : std::nullopt;
        }
        value = found.value_or(value);
        return found.has_value();
    }
};

}  // namespace nimbuscope::platform

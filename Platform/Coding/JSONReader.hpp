#pragma once

#include <cmath>
#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Platform/Coding/Enumeration.hpp"
#include "Platform/Coding/JSONDocument.hpp"

/// Decoding of records, and of what they are made of, from JSON.
///
/// Strict: a missing required key, a value of another kind or an unknown raw value of an enumeration fails
/// the whole, and the error carries the JSON path of the first fault in the order of the field tables. Null
/// counts as missing, unknown keys are ignored, of a repeated key the last counts. An integer may be written
/// as a real whose value is integral and in range; booleans, numbers and texts never stand for each other.
namespace nimbuscope::platform {

/// Reads a `T` from a JSON value: `static DecodingFault read(JSONElement, T&)`. Types other than those
/// below take part by a specialisation beside their definition. The T is as it is made
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
            return fault("the value is none of the allowed ones");
        }
        value = *found;
        return {};
    }
};

}  // namespace nimbuscope::platform

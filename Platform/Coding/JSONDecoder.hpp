#pragma once

#include <cmath>
#include <concepts>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Platform/Coding/Enumeration.hpp"
#include "Platform/Coding/Fields.hpp"
#include "Platform/Coding/JSONDocument.hpp"
#include "Platform/Coding/KeyIndex.hpp"

/// Decoding of records, and of what they are made of, from JSON.
///
/// Strict: a missing required key, a value of another kind or an unknown raw value of an enumeration fails the
/// whole, and the error carries the JSON path of the first fault in the order of the field tables. Null counts as
/// missing, unknown keys are ignored, of a repeated key the last counts. An integer may be written as a real
/// whose value is integral and in range; booleans, numbers and texts never stand for each other.
namespace nimbuscope::platform {

using DecodingResult = Result<void, DecodingError>;

/// Reads a `T` from a JSON value: `static DecodingResult read(JSONElement, T&)`. Types other than those
/// below take part by a specialisation beside their definition. After an error the value is unspecified.
template <class T>
struct JSONReader;

template <>
struct JSONReader<bool> {
    static DecodingResult read(JSONElement json, bool& value) {
        if (json.get(value) != simdjson::SUCCESS) {
            return std::unexpected(typeMismatch("a boolean", json));
        }
        return {};
    }
};

template <std::floating_point T>
struct JSONReader<T> {
    static DecodingResult read(JSONElement json, T& value) {
        double number = 0;
        if (json.get(number) != simdjson::SUCCESS) {
            return std::unexpected(typeMismatch("a number", json));
        }
        value = static_cast<T>(number);
        return {};
    }
};

template <std::signed_integral T>
struct JSONReader<T> {
    static DecodingResult read(JSONElement json, T& value) {
        std::int64_t number = 0;
        if (json.get(number) != simdjson::SUCCESS) {
            const DecodingResult real = readReal(json, number);
            if (!real) {
                return real;
            }
        }
        if (!std::in_range<T>(number)) {
            return std::unexpected(DecodingError{{}, "the number is out of range"});
        }
        value = static_cast<T>(number);
        return {};
    }

  private:
    static DecodingResult readReal(JSONElement json, std::int64_t& number) {
        double real = 0;
        if (json.get(real) != simdjson::SUCCESS) {
            return std::unexpected(typeMismatch("an integer", json));
        }
        constexpr double limit = 0x1p63;
        if (real < -limit || real >= limit) {
            return std::unexpected(DecodingError{{}, "the number is out of range"});
        }
        if (std::trunc(real) != real) {
            return std::unexpected(DecodingError{{}, "expected an integer, found a fraction"});
        }
        number = static_cast<std::int64_t>(real);
        return {};
    }
};

template <>
struct JSONReader<std::string> {
    static DecodingResult read(JSONElement json, std::string& value) {
        std::string_view text;
        if (json.get(text) != simdjson::SUCCESS) {
            return std::unexpected(typeMismatch("a text", json));
        }
        value.assign(text);
        return {};
    }
};

template <class T>
struct JSONReader<std::vector<T>> {
    static DecodingResult read(JSONElement json, std::vector<T>& values) {
        simdjson::dom::array array;
        if (json.get(array) != simdjson::SUCCESS) {
            return std::unexpected(typeMismatch("an array", json));
        }
        values.clear();
        values.reserve(array.size());
        for (const JSONElement element : array) {
            const DecodingResult read = JSONReader<T>::read(element, values.emplace_back());
            if (!read) {
                return std::unexpected(inElement(values.size() - 1, read.error()));
            }
        }
        return {};
    }
};

template <Enumeration E>
struct JSONReader<E> {
    static DecodingResult read(JSONElement json, E& value) {
        std::conditional_t<std::same_as<RawValue<E>, std::int64_t>, std::int64_t, std::string> raw{};
        const DecodingResult read = JSONReader<decltype(raw)>::read(json, raw);
        if (!read) {
            return read;
        }
        const std::optional<E> found = fromRawValue<E>(raw);
        if (!found) {
            return std::unexpected(DecodingError{{}, "the value is none of the allowed ones"});
        }
        value = *found;
        return {};
    }
};

namespace detail {

template <class T>
inline constexpr bool isOptional = false;
template <class T>
inline constexpr bool isOptional<std::optional<T>> = true;

template <Record T>
inline constexpr auto keyIndex = [] {
    return std::apply([](const auto&... field) { return KeyIndex<sizeof...(field)>({field.key...}); }, T::fields);
}();

/// The values of a record's keys, one place per field; a place without a value holds none.
template <Record T>
class FieldValues {
  public:
    explicit FieldValues(simdjson::dom::object object) {
        std::size_t expected = 0;
        for (const auto [name, value] : object) {
            const std::size_t position = keyIndex<T>.find(name, expected);
            if (position != keyIndex<T>.notFound) {
                isPresent_[position] = !value.is_null();
                values_[position] = value;
                expected = position + 1;
            }
        }
    }

    [[nodiscard]] const JSONElement* at(std::size_t position) const {
        return isPresent_[position] ? &values_[position] : nullptr;
    }

  private:
    std::array<bool, fieldCount<T>> isPresent_{};
    std::array<JSONElement, fieldCount<T>> values_;
};

template <class Value>
DecodingResult readField(const JSONElement* json, bool mayBeMissing, Value& value) {
    if constexpr (isOptional<Value>) {
        value.reset();
        return json != nullptr ? JSONReader<typename Value::value_type>::read(*json, value.emplace())
                               : DecodingResult{};
    } else {
        if (json != nullptr) {
            return JSONReader<Value>::read(*json, value);
        }
        return mayBeMissing ? DecodingResult{} : std::unexpected(DecodingError{{}, "missing key"});
    }
}

/// Reads the fields with a default, or those without, in the order of the table, up to the first error.
template <bool withDefault, Record T, std::size_t... I>
DecodingResult readFields(const FieldValues<T>& values, T& record, std::index_sequence<I...> /*positions*/) {
    DecodingResult result;
    const auto readOne = [&]<std::size_t position>() {
        constexpr auto field = std::get<position>(T::fields);
        if constexpr (field.hasDefault == withDefault) {
            result = readField(values.at(position), withDefault, record.*field.member);
            if (!result) {
                result = std::unexpected(inKey(field.key, std::move(result.error())));
            }
        }
        return result.has_value();
    };
    static_cast<void>((readOne.template operator()<I>() && ...));
    return result;
}

}  // namespace detail

template <Record T>
struct JSONReader<T> {
    static DecodingResult read(JSONElement json, T& record) {
        simdjson::dom::object object;
        if (json.get(object) != simdjson::SUCCESS) {
            return std::unexpected(typeMismatch("an object", json));
        }
        const detail::FieldValues<T> values(object);
        constexpr auto positions = std::make_index_sequence<fieldCount<T>>{};
        DecodingResult result = detail::readFields<false>(values, record, positions);
        return result ? detail::readFields<true>(values, record, positions) : result;
    }
};

/// Decodes JSON texts into values. Keeps its memory between texts. One thread at a time.
class JSONDecoder {
  public:
    /// The value of type T that `json` holds.
    template <class T>
    [[nodiscard]] Result<T, DecodingError> decode(std::string_view json) {
        const auto root = document_.parse(json);
        if (!root) {
            return std::unexpected(root.error());
        }
        Result<T, DecodingError> value;
        const DecodingResult read = JSONReader<T>::read(*root, *value);
        if (!read) {
            return std::unexpected(read.error());
        }
        return value;
    }

    /// Decodes the elements of an array one by one and hands each to `take(T&&)`, in order, so that the list of
    /// them need not exist. Elements before a faulty one have been handed out when the error comes back.
    template <class T, std::invocable<T&&> Take>
    [[nodiscard]] DecodingResult decodeEach(std::string_view json, Take take) {
        const auto root = document_.parse(json);
        if (!root) {
            return std::unexpected(root.error());
        }
        simdjson::dom::array array;
        if (root->get(array) != simdjson::SUCCESS) {
            return std::unexpected(typeMismatch("an array", *root));
        }
        std::size_t index = 0;
        for (const JSONElement element : array) {
            T value{};
            const DecodingResult read = JSONReader<T>::read(element, value);
            if (!read) {
                return std::unexpected(inElement(index, read.error()));
            }
            take(std::move(value));
            ++index;
        }
        return {};
    }

  private:
    JSONDocument document_;
};

}  // namespace nimbuscope::platform

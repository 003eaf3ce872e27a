#pragma once

#include <algorithm>
#include <cmath>
#include <concepts>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Platform/Coding/Enumeration.hpp"
#include "Platform/Coding/Fields.hpp"
#include "Platform/Coding/JSONArrayReader.hpp"
#include "Platform/Coding/JSONDocument.hpp"
#include "Platform/Coding/KeyIndex.hpp"
#include "Platform/Core/Data.hpp"

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

namespace detail {

template <class T>
inline constexpr bool isOptional = false;
template <class T>
inline constexpr bool isOptional<std::optional<T>> = true;

template <Record T>
inline constexpr auto keyIndex = [] {
    return std::apply([](const auto&... field) { return KeyIndex<sizeof...(field)>({field.key...}); },
                      T::fields);
}();

/// The values of a record's keys, one place per field; a place without a value holds none.
template <Record T>
class FieldValues {
  public:
    explicit FieldValues(simdjson::dom::object object) {
        for (const auto [name, value] : object) {
            const std::size_t position = keyIndex<T>.find(name);
            if (position != keyIndex<T>.notFound) {
                isPresent_[position] = !value.is_null();
                values_[position] = value;
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
DecodingFault readField(const JSONElement* json, bool mayBeMissing, Value& value) {
    if constexpr (isOptional<Value>) {
        value.reset();
        return json != nullptr ? JSONReader<typename Value::value_type>::read(*json, value.emplace())
                               : nullptr;
    } else {
        if (json != nullptr) {
            return JSONReader<Value>::read(*json, value);
        }
        return mayBeMissing ? nullptr : fault("missing key");
    }
}

/// Reads the fields with a default, or those without, in the order of the table, up to the first fault.
template <bool withDefault, Record T, std::size_t... I>
DecodingFault readFields(const FieldValues<T>& values, T& record, std::index_sequence<I...> /*positions*/) {
    DecodingFault found;
    const auto readOne = [&]<std::size_t position>() {
        constexpr auto field = std::get<position>(T::fields);
        if constexpr (field.hasDefault == withDefault) {
            if (DecodingFault inner = readField(values.at(position), withDefault, record.*field.member)) {
                found = inKey(field.key, std::move(inner));
                return false;
            }
        }
        return true;
    };
    static_cast<void>((readOne.template operator()<I>() && ...));
    return found;
}

/// Reads a record whose keys come in the order of the table, as the encoder writes them, straight through.
/// False when it is any other, or has a fault; what has been read of it then is to be read again.
template <Record T, std::size_t... I>
bool readInOrder(simdjson::dom::object object, T& record, std::index_sequence<I...> /*positions*/) {
    auto next = object.begin();
    const auto end = object.end();
    const auto readOne = [&]<std::size_t position>() {
        constexpr auto field = std::get<position>(T::fields);
        constexpr bool mayBeMissing = field.hasDefault || isOptional<typename decltype(field)::Value>;
        // The length is a constant, with which the comparison compiles to a few instructions.
        if (!(next != end) || next.key_length() != field.key.size() ||
            std::memcmp(next.key_c_str(), field.key.data(), field.key.size()) != 0) {
            return mayBeMissing;
        }
        const JSONElement value = next.value();
        ++next;
        return value.is_null() ? mayBeMissing : readField(&value, false, record.*field.member) == nullptr;
    };
    return (readOne.template operator()<I>() && ...) && !(next != end);
}

}  // namespace detail

template <Record T>
struct JSONReader<T> {
    static DecodingFault read(JSONElement json, T& record) {
        simdjson::dom::object object;
        if (json.get(object) != simdjson::SUCCESS) {
            return typeMismatch("an object", json);
        }
        constexpr auto positions = std::make_index_sequence<fieldCount<T>>{};
        if (detail::readInOrder(object, record, positions)) {
            return nullptr;
        }
        record = T{};
        const detail::FieldValues<T> values(object);
        if (DecodingFault found = detail::readFields<false>(values, record, positions)) {
            return found;
        }
        return detail::readFields<true>(values, record, positions);
    }
};

/// Decodes JSON texts into values. Keeps its memory between texts. One thread at a time.
class JSONDecoder {
  public:
    /// The value of type T that `json` holds.
    /// `slack` is how many bytes behind the text may be read as well (see `JSONDocument::parse`).
    template <class T>
    [[nodiscard]] Result<T, DecodingError> decode(std::string_view json, std::size_t slack = 0) {
        const auto root = document_.parse(json, slack);
        if (!root) {
            return std::unexpected(root.error());
        }
        Result<T, DecodingError> value;
        if (DecodingFault found = JSONReader<T>::read(*root, *value)) {
            return std::unexpected(std::move(*found));
        }
        return value;
    }

    /// Decodes the elements of an array one by one and hands each to `take(T&&)`, in order. For long lists:
    /// takes little memory beside the text. What stands before a fault has been handed out when the error
    /// comes back.
    template <class T, std::invocable<T&&> Take>
    [[nodiscard]] Result<void, DecodingError> decodeEach(const Data& json, Take take) {
        return visitElements(json, [&](JSONElement element, std::size_t /*expected*/) {
            T value{};
            DecodingFault found = JSONReader<T>::read(element, value);
            if (!found) {
                take(std::move(value));
            }
            return found;
        });
    }

    /// The list that `json` holds; takes little memory beside the text and the list.
    template <class T>
    [[nodiscard]] Result<std::vector<T>, DecodingError> decodeList(const Data& json) {
        std::vector<T> values;
        auto visited = visitElements(json, [&](JSONElement element, std::size_t expected) {
            if (values.empty()) {
                values.reserve(
                    std::min(expected, json.size() / sizeof(T)));  // never more memory than the text has
            }
            return JSONReader<T>::read(element, values.emplace_back());
        });
        if (!visited) {
            return std::unexpected(std::move(visited.error()));
        }
        return values;
    }

  private:
    /// Calls `visit(element, expected)`, where `expected` is about how many elements the whole array has.
    template <class Visit>
    [[nodiscard]] Result<void, DecodingError> visitElements(const Data& json, Visit visit) {
        JSONArrayReader reader(document_, textOf(json), json.capacity() - json.size());
        for (std::size_t index = 0;;) {
            const auto elements = reader.next();
            if (!elements) {
                return std::unexpected(elements.error());
            }
            if (!*elements) {
                return {};
            }
            for (const JSONElement element : **elements) {
                if (DecodingFault inner = visit(element, reader.expectedCount())) {
                    return std::unexpected(std::move(*inElement(index, std::move(inner))));
                }
                ++index;
            }
        }
    }

    JSONDocument document_;
};

}  // namespace nimbuscope::platform

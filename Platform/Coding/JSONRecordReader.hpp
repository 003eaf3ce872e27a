#pragma once

#include <array>
#include <cstring>
#include <optional>
#include <tuple>
#include <utility>

#include "Platform/Coding/Fields.hpp"
#include "Platform/Coding/JSONReader.hpp"
#include "Platform/Coding/KeyIndex.hpp"

/// Decoding of records by their field tables.
namespace nimbuscope::platform {

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

}  // namespace nimbuscope::platform

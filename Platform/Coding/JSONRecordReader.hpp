#pragma once

#include <array>
#include <optional>
#include <tuple>
#include <utility>

#include "Platform/Coding/Fields.hpp"
#include "Platform/Coding/Inlining.hpp"
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

/// The fields of an object as they come, of which the next one can be looked at.
class StraightFields {
  public:
    explicit StraightFields(simdjson::ondemand::object& object) {
        simdjson::error_code error = object.begin().get(next_);
        isSound_ = error == simdjson::SUCCESS && object.end().get(end_) == simdjson::SUCCESS;
        load();
    }

    [[nodiscard]] NIMBUSCOPE_INLINED bool isNext(std::string_view key) {
        return hasField_ && field_.key().unsafe_is_equal(key);
    }
    [[nodiscard]] JSONToken& value() { return field_.value(); }
    NIMBUSCOPE_INLINED void advance() {
        ++next_;
        load();
    }
    [[nodiscard]] bool isAtEnd() const { return isSound_ && !hasField_; }

  private:
    NIMBUSCOPE_INLINED void load() {
        hasField_ = isSound_ && next_ != end_;
        if (hasField_ && (*next_).get(field_) != simdjson::SUCCESS) {
            isSound_ = hasField_ = false;
        }
    }

    simdjson::ondemand::object_iterator next_;
    simdjson::ondemand::object_iterator end_;
    simdjson::ondemand::field field_;
    bool hasField_ = false;
    bool isSound_ = false;
};

template <class Value>
NIMBUSCOPE_INLINED inline bool readStraightField(JSONToken& json, bool mayBeMissing, Value& value) {
    bool isNull = false;
    if constexpr (isOptional<Value>) {
        if (json.is_null().get(isNull) == simdjson::SUCCESS && isNull) {
            return true;
        }
        return JSONReader<typename Value::value_type>::readStraight(json, value.emplace());
    } else {
        if (mayBeMissing && json.is_null().get(isNull) == simdjson::SUCCESS && isNull) {
            return true;
        }
        return JSONReader<Value>::readStraight(json, value);
    }
}

/// Reads a record whose keys come in the order of the table, as the encoder writes them, and gives up on any
/// other.
template <Record T, std::size_t... I>
bool readInOrder(simdjson::ondemand::object& object, T& record, std::index_sequence<I...> /*positions*/) {
    StraightFields fields(object);
    const auto readOne = [&]<std::size_t position>() NIMBUSCOPE_INLINED {
        constexpr auto field = std::get<position>(T::fields);
        if (!fields.isNext(field.key)) {
            return field.hasDefault || isOptional<typename decltype(field)::Value>;
        }
        if (!readStraightField(fields.value(), field.hasDefault, record.*field.member)) {
            return false;
        }
        fields.advance();
        return true;
    };
    return (readOne.template operator()<I>() && ...) && fields.isAtEnd();
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
        const detail::FieldValues<T> values(object);
        if (DecodingFault found = detail::readFields<false>(values, record, positions)) {
            return found;
        }
        return detail::readFields<true>(values, record, positions);
    }
    static bool readStraight(JSONToken json, T& record) {
        simdjson::ondemand::object object;
        return json.get(object) == simdjson::SUCCESS &&
               detail::readInOrder(object, record, std::make_index_sequence<fieldCount<T>>{});
    }
};

}  // namespace nimbuscope::platform

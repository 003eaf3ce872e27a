#pragma once

#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "Platform/Coding/Enumeration.hpp"
#include "Platform/Coding/Fields.hpp"
#include "Platform/Coding/JSONWriter.hpp"

/// Encoding of records, and of what they are made of, to JSON: keys in the order of the field table, absent
/// optional fields left out, enumerations by their raw values.
namespace nimbuscope::platform {

/// A type that this header writes; others bring a `writeJSON` of their own.
template <class T>
concept JSONEncodable = Record<T> || Enumeration<T> || std::signed_integral<T> || std::same_as<T, bool> ||
                        std::same_as<T, double> || std::same_as<T, std::string>;

template <JSONEncodable T>
void writeJSON(JSONWriter& writer, const T& value);

template <class T>
void writeJSON(JSONWriter& writer, const std::vector<T>& values) {
    writer.beginArray();
    for (const T& value : values) {
        writeJSON(writer, value);
    }
    writer.endArray();
}

namespace detail {

template <class Value>
void writeField(JSONWriter& writer, std::string_view key, const Value& value) {
    writer.key(key);
    writeJSON(writer, value);
}

template <class Value>
void writeField(JSONWriter& writer, std::string_view key, const std::optional<Value>& value) {
    if (value) {
        writeField(writer, key, *value);
    }
}

}  // namespace detail

template <JSONEncodable T>
void writeJSON(JSONWriter& writer, const T& value) {
    if constexpr (Record<T>) {
        writer.beginObject();
        std::apply(
            [&](const auto&... field) { (detail::writeField(writer, field.key, value.*field.member), ...); },
            T::fields);
        writer.endObject();
    } else if constexpr (Enumeration<T>) {
        writer.value(rawValue(value));
    } else if constexpr (std::signed_integral<T>) {
        writer.value(static_cast<std::int64_t>(value));
    } else {
        writer.value(value);
    }
}

/// Encodes values as JSON texts.
class JSONEncoder {
  public:
    /// `value` as JSON; fails where it holds what JSON cannot: text that is not UTF-8, numbers not finite.
    template <class T>
    [[nodiscard]] Result<std::string, EncodingError> encode(const T& value) const {
        JSONWriter writer;
        writeJSON(writer, value);
        return writer.finish();
    }
};

}  // namespace nimbuscope::platform

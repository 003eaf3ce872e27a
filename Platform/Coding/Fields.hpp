#pragma once

#include <cstddef>
#include <string_view>
#include <tuple>

/// How a record says which key of its JSON object holds which member.
///
/// A record is an aggregate with one table of its fields, in declaration order:
///
///     struct MapFrame {
///         std::int64_t time = 0;
///         std::optional<std::string> path;
///
///         static constexpr auto fields = std::tuple{key("time", &MapFrame::time), key("path",
///         &MapFrame::path)};
///     };
///
/// The one table serves `JSONDecoder` and `JSONEncoder` alike. A member of type `std::optional` may be
/// missing or null, and is left out when absent; every other member is required.
namespace nimbuscope::platform {

template <class RecordType, class ValueType>
struct Field {
    using Value = ValueType;

    std::string_view key;
    Value RecordType::* member;
    bool hasDefault;  ///< missing or null leaves the member's initial value; always written
};

/// The field under `name`: required, or free to be absent where the member is a `std::optional`.
template <class Record, class Value>
[[nodiscard]] constexpr Field<Record, Value> key(std::string_view name, Value Record::* member) {
    return {name, member, false};
}

/// The field under `name` whose member keeps its initial value when the key is missing or null. What is there
/// must be sound. Such fields are read after all others, so that a record's own faults are named first.
template <class Record, class Value>
[[nodiscard]] constexpr Field<Record, Value> keyWithDefault(std::string_view name, Value Record::* member) {
    return {name, member, true};
}

/// A type with a field table.
template <class T>
concept Record = requires { std::tuple_size<decltype(T::fields)>::value; };

/// Count of the fields of a record.
template <Record T>
inline constexpr std::size_t fieldCount = std::tuple_size_v<decltype(T::fields)>;

}  // namespace nimbuscope::platform

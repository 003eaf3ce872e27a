#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <variant>
#include <vector>

#include "Platform/Coding/CodingError.hpp"
#include "Platform/Coding/JSONDocument.hpp"
#include "Platform/Coding/JSONWriter.hpp"
#include "Platform/Core/Data.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/Core/Result.hpp"

namespace nimbuscope::platform {

struct DefaultsValue;

using DefaultsArray = std::vector<DefaultsValue>;
using DefaultsDictionary = std::map<std::string, DefaultsValue, std::less<>>;

/// A value of the key-value store. It keeps its type: a boolean is not an integer, 1.0 is not 1, text is not
/// data.
struct DefaultsValue
    : std::variant<bool, std::int64_t, double, std::string, Data, DefaultsArray, DefaultsDictionary> {
    using variant::variant;

    /// The value as a T; null when it is of another type. Borrowed.
    template <class T>
    [[nodiscard]] const T* as() const {
        return std::get_if<T>(this);
    }

    bool operator==(const DefaultsValue&) const = default;
};

/// Writes a value as JSON in a form that reads back with every type kept: a double always has a fraction or
/// an exponent, data is `{"$data": BASE64}`, and a dictionary key that itself begins with "$" gets a second
/// one.
NIMBUSCOPE_EXPORT void writeJSON(JSONWriter& writer, const DefaultsValue& value);

/// The value that such JSON stands for. Integers must fit 64 bits with sign; null stands for no value and is
/// an error, as is a dictionary key that begins with a single "$" other than "$data".
[[nodiscard]] NIMBUSCOPE_EXPORT Result<DefaultsValue, DecodingError> defaultsValue(JSONElement json);

}  // namespace nimbuscope::platform

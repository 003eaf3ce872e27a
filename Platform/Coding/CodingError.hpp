#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace nimbuscope::platform {

/// Why a document, or one value in it, could not be read or written.
struct CodingError {
    std::string path;  ///< JSON path of the faulty value ("radars[3].location"); empty for the whole document
    std::string reason;  ///< what is wrong there: expected and found

    /// Path and reason in one line.
    [[nodiscard]] std::string message() const { return path.empty() ? reason : path + ": " + reason; }

    bool operator==(const CodingError&) const = default;
};

using DecodingError = CodingError;
using EncodingError = CodingError;

/// Puts `key` in front of the path, for an error found inside the value of that key.
[[nodiscard]] inline CodingError inKey(std::string_view key, CodingError error) {
    const bool joined = error.path.empty() || error.path.front() == '[';
    error.path.insert(0, joined ? std::string(key) : std::string(key) + '.');
    return error;
}

/// Puts `[index]` in front of the path, for an error found inside that element of an array.
[[nodiscard]] inline CodingError inElement(std::size_t index, CodingError error) {
    return inKey('[' + std::to_string(index) + ']', std::move(error));
}

}  // namespace nimbuscope::platform

#pragma once

#include <string>

#include "CommandLine.hpp"
#include "Files.hpp"
#include "Platform/Coding/JSONDecoder.hpp"
#include "Platform/Coding/JSONEncoder.hpp"

/// Records in files, and on standard output.
namespace nimbuscope::tool {

/// The record that a JSON file holds. An error names the file, and the path in it.
template <class T>
[[nodiscard]] CommandResult<T> readRecord(const std::string& file) {
    const auto bytes = readInput(file);
    if (!bytes) {
        return std::unexpected(bytes.error());
    }
    auto record = platform::JSONDecoder().decode<T>(*bytes);
    if (!record) {
        return std::unexpected(CommandError{file, record.error().message()});
    }
    return std::move(*record);
}

/// Appends the record as JSON and the end of the line to `output`. An error names `what`.
template <class T>
[[nodiscard]] CommandResult<void> printRecord(const std::string& what, const T& record, std::string& output) {
    const auto text = platform::JSONEncoder().encode(record);
    if (!text) {
        return std::unexpected(CommandError{what, text.error().message()});
    }
    output += *text + '\n';
    return {};
}

}  // namespace nimbuscope::tool

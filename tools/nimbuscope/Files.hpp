#pragma once

#include <string>
#include <string_view>

#include "CommandLine.hpp"
#include "Platform/Core/Data.hpp"

/// The files that commands read and write; "-" is standard input or output.
namespace nimbuscope::tool {

/// All bytes of a file.
[[nodiscard]] CommandResult<platform::Data> readInput(const std::string& path);

/// Replaces a file by `bytes`, whole or not at all: they are written beside it, brought to the disk and
/// renamed. What is not a regular file is written as it stands. For "-" the bytes are appended to `output`.
[[nodiscard]] CommandResult<void> writeResult(const std::string& path, std::string_view bytes,
                                              std::string& output);

/// Writes everything to standard output; a full disk or a closed pipe is an error.
[[nodiscard]] CommandResult<void> writeStandardOutput(std::string_view bytes);

}  // namespace nimbuscope::tool

#pragma once

#include <string>

#include "CommandLine.hpp"
#include "Platform/Coding/JSONWriter.hpp"
#include "Platform/Graphics/PNG.hpp"

/// How commands hand out pictures and JSON documents.
namespace nimbuscope::tool {

/// Writes an image to `file` as PNG, or to `output` for "-". An error names `what`, unless the file is at
/// fault.
[[nodiscard]] CommandResult<void> writePNG(const std::string& what, const platform::RGBAImage& image,
                                           const std::string& file, std::string& output);

/// Appends the finished document and the end of the line to `output`. An error names `what`.
[[nodiscard]] CommandResult<void> printJSON(const std::string& what, platform::JSONWriter& writer,
                                            std::string& output);

}  // namespace nimbuscope::tool

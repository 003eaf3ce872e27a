#pragma once

#include <string>
#include <string_view>

#include "CommandLine.hpp"

namespace nimbuscope::tool {

/// A text as it is; as JSON, in quotes, where it has control characters.
[[nodiscard]] std::string readableText(std::string_view text);

/// A JSON text as indented lines of "key: value" for a person; objects without inner structure take one line
/// in a list. Control characters of texts are shown as escapes.
[[nodiscard]] std::string readableJSON(std::string_view json);

}  // namespace nimbuscope::tool

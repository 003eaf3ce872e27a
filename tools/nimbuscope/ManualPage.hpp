#pragma once

#include <string>

#include "CommandTree.hpp"

namespace nimbuscope::tool {

/// The program's page of the manual, in mdoc(7): every command with its options, values and example, and
/// what the command line does not know of itself (ManualText.hpp).
[[nodiscard]] std::string manualPage(const CommandDescription& program);

}  // namespace nimbuscope::tool

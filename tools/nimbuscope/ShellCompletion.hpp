#pragma once

#include <string>

#include "CommandTree.hpp"

/// Scripts that teach a shell to complete the words of a command line: nouns and verbs, options, and their
/// values where all are known or are files. They hold all they need and do not call the program.
namespace nimbuscope::tool {

[[nodiscard]] std::string bashCompletion(const CommandDescription& program);
[[nodiscard]] std::string zshCompletion(const CommandDescription& program);
[[nodiscard]] std::string fishCompletion(const CommandDescription& program);

}  // namespace nimbuscope::tool

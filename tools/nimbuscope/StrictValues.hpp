#pragma once

#include <CLI/CLI.hpp>

namespace nimbuscope::tool {

/// Lets every option of a program and of its commands refuse what its value cannot be: the parser's own
/// conversions take an empty text for zero or for no value at all, a leading zero for the sign of an octal
/// number, and what is too large for the largest there is.
void refuseLooseValues(CLI::App& program);

}  // namespace nimbuscope::tool

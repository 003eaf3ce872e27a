#pragma once

#include <string>

#include "CommandLine.hpp"
#include "NimbuscopeKit/RadarCatalogue/ApiMaps.hpp"

namespace nimbuscope::tool {

/// Appends a map timeline to `output`: as JSON, or a line for each layer for a person. An error names `what`.
[[nodiscard]] CommandResult<void> printMaps(const std::string& what, const ApiMaps& maps, bool isJSON,
                                            std::string& output);

}  // namespace nimbuscope::tool

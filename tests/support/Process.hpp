#pragma once

#include <map>
#include <string>
#include <vector>

/// Running the project's programs as their users do.
namespace nimbuscope::testing {

struct Outcome {
    int exitCode = -1;  ///< or minus the number of the signal that ended the process
    std::string output;
    std::string errors;
};

/// Runs a program to its end with `input` on standard input and the given additions to the environment.
[[nodiscard]] Outcome run(const std::vector<std::string>& command, const std::string& input = {},
                          const std::map<std::string, std::string>& environment = {});

}  // namespace nimbuscope::testing

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

/// A program that runs beside the test and ends with this object, or with the test.
class BackgroundProcess {
  public:
    explicit BackgroundProcess(std::vector<std::string> command);
    ~BackgroundProcess();
    BackgroundProcess(const BackgroundProcess&) = delete;
    BackgroundProcess& operator=(const BackgroundProcess&) = delete;

    /// Waits for a line of its standard output, or for its end.
    [[nodiscard]] std::string readLine() const;

  private:
    int output_ = -1;
    int child_ = -1;
};

}  // namespace nimbuscope::testing

#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <vector>

/// Running the project's programs as their users do, and parts of it in processes of their own.
namespace nimbuscope::testing {

struct Outcome {
    int exitCode = -1;  ///< or minus the number of the signal that ended the process
    std::string output;
    std::string errors;
};

/// Runs a program to its end with `input` on standard input and the given additions to the environment.
[[nodiscard]] Outcome run(const std::vector<std::string>& command, std::string_view input = {},
                          const std::map<std::string, std::string>& environment = {});

/// Runs `work` in two processes at once, and expects that it returns true in both.
void inTwoProcesses(const std::function<bool(int process)>& work);

/// Runs endless `work` in a process that tells numbers; kills it some numbers and a random moment later.
/// Returns the last number that it told, else -1.
[[nodiscard]] std::int64_t killed(std::minstd_rand& random,
                                  const std::function<void(std::function<void(std::int64_t)> tell)>& work);

/// A program that runs beside the test and ends with this object, or with the test.
class BackgroundProcess {
  public:
    explicit BackgroundProcess(std::vector<std::string> command);
    ~BackgroundProcess();
    BackgroundProcess(const BackgroundProcess&) = delete;
    BackgroundProcess& operator=(const BackgroundProcess&) = delete;

    /// Waits for a line of its standard output, or for its end.
    [[nodiscard]] std::string readLine() const;

    [[nodiscard]] int identifier() const { return child_; }

  private:
    int output_ = -1;
    int child_ = -1;
};

}  // namespace nimbuscope::testing

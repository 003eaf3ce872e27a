#pragma once

#include <functional>
#include <string>

namespace nimbuscope::torture {

/// How a process ended, and what it wrote to standard error.
struct Ending {
    int code = 0;  ///< the exit code, or minus the number of the signal
    std::string errors;
};

/// Runs `work` in a process of its own, which inherits all that this one has and exits, with nothing closed,
/// with the code that `work` returns.
[[nodiscard]] Ending inChild(const std::function<int()>& work);

/// Expects that `work` returns in a process of its own, and that no expectation in it fails.
void expectSoundInChild(const std::function<void()>& work);

}  // namespace nimbuscope::torture

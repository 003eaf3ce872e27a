#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "CommandLine.hpp"

namespace nimbuscope::tool {

struct BatchOutcome {
    std::size_t done = 0;
    std::size_t failed = 0;
};

/// Does `work(i)` for every file on up to `threads` threads, in no certain order, and goes on past failures.
/// Each of them is printed to standard error as it happens; on a terminal a bar shows the progress. `work` is
/// called from several threads at once; what it throws counts as a failure of its file.
[[nodiscard]] BatchOutcome runBatch(const std::vector<std::string>& files, std::size_t threads,
                                    const std::function<CommandResult<void>(std::size_t)>& work);

}  // namespace nimbuscope::tool

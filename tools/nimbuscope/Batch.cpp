#include "Batch.hpp"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace nimbuscope::tool {
namespace {

/// Counts outcomes and shows them. Safe from any thread.
class Progress {
  public:
    explicit Progress(std::size_t count) : count_(count), isTerminal_(::isatty(STDERR_FILENO) == 1) {}

    void add(const CommandResult<void>& result) {
        const std::scoped_lock lock(mutex_);
        ++(result ? outcome_.done : outcome_.failed);
        if (!result) {
            clear();
            printError(result.error());
        }
        show();
    }

    [[nodiscard]] BatchOutcome finish() {
        clear();
        return outcome_;
    }

  private:
    static constexpr std::size_t barWidth = 40;

    void show() {
        const std::size_t ended = outcome_.done + outcome_.failed;
        const std::size_t filled = ended * barWidth / count_;
        const std::size_t percent = ended * 100 / count_;
        if (isTerminal_ && percent != percent_) {
            percent_ = percent;
            line_ = fmt::format("[{:-<{}}] {} of {}", std::string(filled, '#'), barWidth, ended, count_);
            fmt::print(stderr, "\r{}", line_);
        }
    }

    void clear() {
        if (!line_.empty()) {
            fmt::print(stderr, "\r{:{}}\r", "", line_.size());
            line_.clear();
            percent_ = 101;
        }
    }

    std::mutex mutex_;
    std::size_t count_;
    bool isTerminal_;
    BatchOutcome outcome_;
    std::size_t percent_ = 101;  // none that can be shown
    std::string line_;
};

}  // namespace

BatchOutcome runBatch(const std::vector<std::string>& files, std::size_t threads,
                      const std::function<CommandResult<void>(std::size_t)>& work) {
    Progress progress(files.size());
    std::atomic<std::size_t> next = 0;
    const auto takeAll = [&] {
        for (std::size_t i = next++; i < files.size(); i = next++) {
            try {
                progress.add(work(i));
            } catch (const std::exception& exception) {
                progress.add(std::unexpected(CommandError{files[i], exception.what()}));
            }
        }
    };
    {
        std::vector<std::jthread> helpers;
        try {
            for (std::size_t i = 1; i < std::min(threads, files.size()); ++i) {
                helpers.emplace_back(takeAll);
            }
        } catch (const std::system_error&) {
            // There are no more threads to be had: those that are there do it all.
        }
        takeAll();
    }
    return progress.finish();
}

}  // namespace nimbuscope::tool

#pragma once

#include <map>
#include <utility>

#include "Platform/Concurrency/Clock.hpp"
#include "Platform/Concurrency/RunLoop.hpp"

namespace nimbuscope::testing {

/// A run loop, and the clock beside it, whose time passes when the test says so. One thread.
class ManualRunLoop final : public platform::RunLoop, public platform::Clock {
  public:
    using Instant = platform::TimerSchedule::Instant;

    /// Civil time at the loop's start.
    std::chrono::system_clock::time_point start = std::chrono::sys_days{std::chrono::year(2024) / 3 / 7};

    void async(Work work) override { work_.emplace(now_, std::move(work)); }
    void asyncAfter(std::chrono::nanoseconds delay, Work work) override {
        work_.emplace(now_ + delay, std::move(work));
    }
    void add(std::shared_ptr<platform::Timer> timer) override { timers_.add(std::move(timer), now_); }

    [[nodiscard]] std::chrono::system_clock::time_point now() const override {
        return start + std::chrono::duration_cast<std::chrono::system_clock::duration>(elapsed());
    }
    [[nodiscard]] std::chrono::nanoseconds elapsed() const { return now_.time_since_epoch(); }

    /// Lets time pass, from one piece of work or wake-up to the next.
    void advance(std::chrono::nanoseconds duration) {
        const Instant end = now_ + duration;
        for (;;) {
            const auto wakeUp = timers_.nextWakeUp();
            const bool isTimer = wakeUp && (work_.empty() || *wakeUp < work_.begin()->first);
            if (!isTimer && work_.empty()) {
                break;
            }
            const Instant next = isTimer ? *wakeUp : work_.begin()->first;
            if (next > end) {
                break;
            }
            now_ = std::max(now_, next);
            if (isTimer) {
                ++wakeUps;
                timers_.fireDue(now_);
            } else {
                auto work = std::move(work_.extract(work_.begin()).mapped());
                work();
            }
        }
        now_ = end;
    }

    /// Runs what is due without letting time pass.
    void runDue() { advance({}); }

    int wakeUps = 0;  ///< how often timers were looked at

  private:
    Instant now_;
    std::multimap<Instant, Work> work_;
    platform::TimerSchedule timers_;
};

}  // namespace nimbuscope::testing

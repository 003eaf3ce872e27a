#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "Platform/Core/Export.hpp"

namespace nimbuscope::platform {

/// Calls a block at an interval, once or again and again, after it was added to a run loop. Held by shared
/// pointer; the run loop holds it too as long as it is valid.
class NIMBUSCOPE_EXPORT Timer {
  public:
    using Block = std::function<void(Timer&)>;

    Timer(std::chrono::nanoseconds timeInterval, bool repeats, Block block,
          std::chrono::nanoseconds tolerance = {})
        : timeInterval_(timeInterval), tolerance_(tolerance), repeats_(repeats), block_(std::move(block)) {}

    [[nodiscard]] std::chrono::nanoseconds timeInterval() const { return timeInterval_; }

    /// How much later than planned the block may be called, so that timers share wake-ups.
    [[nodiscard]] std::chrono::nanoseconds tolerance() const { return tolerance_; }

    /// Calls the block now, on this thread. A timer that repeats keeps its plan; another one is done.
    void fire();

    /// Never calls the block again; one call that runs on another thread may be ending. Any thread.
    void invalidate() { isValid_ = false; }
    [[nodiscard]] bool isValid() const { return isValid_; }

  private:
    std::chrono::nanoseconds timeInterval_;
    std::chrono::nanoseconds tolerance_;
    bool repeats_;
    Block block_;
    std::atomic<bool> isValid_{true};
};

/// The timers of one run loop. One thread at a time.
///
/// The loop sleeps until the first timer that can wait no longer, and then fires every one that is due:
/// timers whose tolerances overlap share one wake-up. A timer that repeats keeps to its first date plus
/// multiples of its interval; those missed are left out.
class NIMBUSCOPE_EXPORT TimerSchedule {
  public:
    using Instant = std::chrono::steady_clock::time_point;

    /// Plans `timer` for one interval after `now`.
    void add(std::shared_ptr<Timer> timer, Instant now);

    /// When to call `fireDue` next; absent without a valid timer.
    [[nodiscard]] std::optional<Instant> nextWakeUp();

    /// Fires the timers whose dates have come, the earliest first. Their blocks may add and invalidate
    /// timers.
    void fireDue(Instant now);

  private:
    struct Plan {
        Instant fireDate;
        std::shared_ptr<Timer> timer;
    };
    std::vector<Plan> plans_;
};

}  // namespace nimbuscope::platform

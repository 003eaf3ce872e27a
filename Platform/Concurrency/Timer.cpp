#include "Platform/Concurrency/Timer.hpp"

#include <algorithm>
#include <utility>

namespace nimbuscope::platform {

void Timer::fire() {
    if (!isValid_) {
        return;
    }
    if (!repeats_) {
        invalidate();
    }
    block_(*this);
}

void TimerSchedule::add(std::shared_ptr<Timer> timer, Instant now) {
    const Instant fireDate = now + timer->timeInterval();
    plans_.push_back({fireDate, std::move(timer)});
}

std::optional<TimerSchedule::Instant> TimerSchedule::nextWakeUp() {
    std::erase_if(plans_, [](const Plan& plan) { return !plan.timer->isValid(); });
    if (plans_.empty()) {
        return std::nullopt;
    }
    const auto latestDate = [](const Plan& plan) { return plan.fireDate + plan.timer->tolerance(); };
    return latestDate(std::ranges::min(plans_, {}, latestDate));
}

void TimerSchedule::fireDue(Instant now) {
    std::vector<Plan> due;
    for (Plan& plan : plans_) {
        if (plan.fireDate <= now) {
            due.push_back(plan);
            // A timer without an interval would otherwise be due for ever.
            const auto interval = std::max(plan.timer->timeInterval(), std::chrono::nanoseconds(1));
            plan.fireDate += interval * ((now - plan.fireDate) / interval + 1);
        }
    }
    std::ranges::stable_sort(due, {}, &Plan::fireDate);
    for (const Plan& plan : due) {
        plan.timer->fire();
    }
}

}  // namespace nimbuscope::platform

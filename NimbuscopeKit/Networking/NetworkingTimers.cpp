// Requests that are repeated, on the main thread.

#include <algorithm>
#include <chrono>
#include <utility>

#include "NimbuscopeKit/Networking/Networking.hpp"
#include "Platform/Core/Fatal.hpp"

namespace nimbuscope {

void Networking::scheduledRequest(const std::string& url, double timeInterval, bool fireImmediately,
                                  RepeatedHandler<platform::Data> callback) {
    auto timer = repeatingTimer(timeInterval, [url, callback = std::move(callback)](Networking& networking) {
        networking.request(url, callback);
    });
    timers_.push_back(timer);
    start(std::move(timer), fireImmediately);
}

void Networking::unscheduleAuthorizedRequest(const std::string& path) {
    const auto found = authorizedTimers_.find(path);
    if (found != authorizedTimers_.end()) {
        found->second->invalidate();
        authorizedTimers_.erase(found);
    }
}

void Networking::unscheduleAllAuthorizedRequests() {
    for (const auto& [path, timer] : std::exchange(authorizedTimers_, {})) {
        timer->invalidate();
    }
}

void Networking::unscheduleAllRequests() {
    for (const auto& timer : std::exchange(timers_, {})) {
        timer->invalidate();
    }
}

Networking::Timer Networking::repeatingTimer(double timeInterval, std::function<void(Networking&)> request) {
    platform::precondition(timeInterval >= 0 && timeInterval <= 1e9,
                           "The interval of a timer is out of range");
    const auto interval =
        std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::duration<double>(timeInterval));
    return std::make_shared<platform::Timer>(
        interval, true,
        [self = weak_from_this(), request = std::move(request)](platform::Timer& timer) {
            if (const auto networking = self.lock()) {
                request(*networking);
            } else {
                timer.invalidate();
            }
        },
        interval / 10);
}

void Networking::start(Timer timer, bool fireImmediately) {
    services_.main.add(timer);
    if (fireImmediately) {
        timer->fire();
    }
}

}  // namespace nimbuscope

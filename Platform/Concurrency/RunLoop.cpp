#include "Platform/Concurrency/RunLoop.hpp"

#include <asio/dispatch.hpp>
#include <asio/post.hpp>
#include <utility>

namespace nimbuscope::platform {

MainRunLoop::MainRunLoop() : guard_(context_.get_executor()), wakeUp_(context_) {}

MainRunLoop& MainRunLoop::main() {
    static MainRunLoop instance;
    return instance;
}

void MainRunLoop::async(Work work) {
    asio::post(context_, std::move(work));
}

void MainRunLoop::asyncAfter(std::chrono::nanoseconds delay, Work work) {
    auto timer = std::make_unique<asio::steady_timer>(context_, delay);
    auto& waiting = *timer;
    waiting.async_wait(
        [timer = std::move(timer), work = std::move(work)](asio::error_code) mutable { work(); });
}

void MainRunLoop::add(std::shared_ptr<Timer> timer) {
    const auto now = std::chrono::steady_clock::now();
    asio::dispatch(context_, [this, now, timer = std::move(timer)]() mutable {
        timers_.add(std::move(timer), now);
        wakeUpForTimers();
    });
}

void MainRunLoop::run() {
    context_.run();
    context_.restart();
}

void MainRunLoop::stop() {
    context_.stop();
}

void MainRunLoop::wakeUpForTimers() {
    const auto next = timers_.nextWakeUp();
    if (!next) {
        return;
    }
    wakeUp_.expires_at(*next);
    wakeUp_.async_wait([this](asio::error_code error) {
        if (!error) {
            timers_.fireDue(std::chrono::steady_clock::now());
            wakeUpForTimers();
        }
    });
}

}  // namespace nimbuscope::platform

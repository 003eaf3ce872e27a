#pragma once

#include <asio/any_io_executor.hpp>
#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <memory>

#include "Platform/Concurrency/DispatchQueue.hpp"
#include "Platform/Concurrency/Timer.hpp"
#include "Platform/Core/Export.hpp"

namespace nimbuscope::platform {

/// A thread's loop: the queue of its work, and its timers.
class NIMBUSCOPE_EXPORT RunLoop : public DispatchQueue {
  public:
    /// Hands `work` over once `delay` has passed.
    virtual void asyncAfter(std::chrono::nanoseconds delay, Work work) = 0;

    /// Lets `timer` fire on the loop's thread from one interval after now. Any thread.
    virtual void add(std::shared_ptr<Timer> timer) = 0;
};

/// The run loop of a program's first thread.
class NIMBUSCOPE_EXPORT MainRunLoop final : public RunLoop {
  public:
    MainRunLoop();

    /// The process's one, made with the first call.
    [[nodiscard]] static MainRunLoop& main();

    /// For what waits on the loop by itself, such as sockets.
    [[nodiscard]] asio::any_io_executor executor() { return context_.get_executor(); }

    void async(Work work) override;
    void asyncAfter(std::chrono::nanoseconds delay, Work work) override;
    void add(std::shared_ptr<Timer> timer) override;

    /// Runs work and timers on the calling thread until `stop`. May be called again.
    void run();

    /// Makes `run` return after the work at hand; the next one at once, if none is under way. Any thread.
    void stop();

  private:
    void wakeUpForTimers();

    asio::io_context context_{1};
    asio::executor_work_guard<asio::io_context::executor_type> guard_;
    asio::steady_timer wakeUp_;
    TimerSchedule timers_;  // on the loop's thread alone
};

}  // namespace nimbuscope::platform

#pragma once

#include <chrono>

namespace nimbuscope::platform {

/// What time it is.
class Clock {
  public:
    virtual ~Clock() = default;

    /// The present instant of civil time. It may jump. Safe from any thread.
    [[nodiscard]] virtual std::chrono::system_clock::time_point now() const = 0;
};

/// The computer's clock.
class SystemClock final : public Clock {
  public:
    [[nodiscard]] std::chrono::system_clock::time_point now() const override {
        return std::chrono::system_clock::now();
    }
};

}  // namespace nimbuscope::platform

#pragma once

#include <chrono>

#include "Platform/Core/Export.hpp"

namespace nimbuscope::platform {

/// What time it is.
class NIMBUSCOPE_EXPORT Clock {
  public:
    virtual ~Clock() = default;

    /// The present instant of civil time. It may jump. Safe from any thread.
    [[nodiscard]] virtual std::chrono::system_clock::time_point now() const = 0;
};

/// The computer's clock.
class NIMBUSCOPE_EXPORT SystemClock final : public Clock {
  public:
    [[nodiscard]] std::chrono::system_clock::time_point now() const override {
        return std::chrono::system_clock::now();
    }
};

}  // namespace nimbuscope::platform

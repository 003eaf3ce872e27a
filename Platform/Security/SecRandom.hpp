#pragma once

#include <cstdint>
#include <span>

#include "Platform/Core/Export.hpp"

namespace nimbuscope::platform {

/// A source of random bytes.
class NIMBUSCOPE_EXPORT SecRandom {
  public:
    virtual ~SecRandom() = default;

    /// Fills `bytes`. Stops the process where the system has no randomness. Safe from any thread.
    virtual void copyBytes(std::span<std::uint8_t> bytes) = 0;
};

}  // namespace nimbuscope::platform

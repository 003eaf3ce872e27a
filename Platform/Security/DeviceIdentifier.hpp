#pragma once

#include <optional>

#include "Platform/Core/Export.hpp"
#include "Platform/Core/UUID.hpp"

namespace nimbuscope::platform {

/// Tells devices apart.
class NIMBUSCOPE_EXPORT DeviceIdentifier {
  public:
    virtual ~DeviceIdentifier() = default;

    /// The same on each call as long as the system is not installed anew, and different from what other
    /// makers' applications get. None where the system cannot tell. Safe from any thread.
    [[nodiscard]] virtual std::optional<UUID> identifierForVendor() const = 0;
};

}  // namespace nimbuscope::platform

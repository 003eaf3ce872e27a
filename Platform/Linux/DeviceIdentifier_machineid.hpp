#pragma once

#include <string>

#include "Platform/Core/Export.hpp"
#include "Platform/Security/DeviceIdentifier.hpp"

namespace nimbuscope::platform {

/// Made from the machine id of the installation (32 hexadecimal digits in a file), by a hash that it keys and
/// that does not give it away.
class NIMBUSCOPE_EXPORT MachineDeviceIdentifier final : public DeviceIdentifier {
  public:
    explicit MachineDeviceIdentifier(std::string file = "/etc/machine-id") : file_(std::move(file)) {}

    /// None where the file is missing or holds anything else.
    [[nodiscard]] std::optional<UUID> identifierForVendor() const override;

  private:
    std::string file_;
};

}  // namespace nimbuscope::platform

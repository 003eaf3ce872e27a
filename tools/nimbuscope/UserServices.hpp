#pragma once

#include <memory>

#include "NimbuscopeKit/Networking/UserServiceImpl.hpp"
#include "Platform/Defaults/NSUserDefaults.hpp"

namespace nimbuscope::tool {

/// Tells of this program, of the system's locale and time zone, and of the units that the group's store has.
[[nodiscard]] std::shared_ptr<UserServiceImpl> userServiceOver(
    std::shared_ptr<platform::NSUserDefaults> group);

}  // namespace nimbuscope::tool

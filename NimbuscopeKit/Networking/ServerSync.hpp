#pragma once

#include <memory>

#include "NimbuscopeKit/Networking/Networking.hpp"
#include "NimbuscopeKit/Networking/UserService.hpp"
#include "Platform/Core/Export.hpp"

namespace nimbuscope {

/// Tells the server the user's units, locale, time zone and clock format.
class NIMBUSCOPE_EXPORT ServerSync {
  public:
    /// `errorTracking` may be null.
    ServerSync(std::shared_ptr<const UserService> userService, std::shared_ptr<Networking> networking,
               std::shared_ptr<ErrorTrackingService> errorTracking)
        : userService_(std::move(userService)),
          networking_(std::move(networking)),
          errorTracking_(std::move(errorTracking)) {}

    /// Sends the record and returns at once; false, with nothing sent, where the application does not tell
    /// its version and build. The outcome is printed on standard error and handed to `completion`, as
    /// Networking calls back, or before this returns where a text is no UTF-8; a reply with a code other than
    /// 0 is an error. Main thread.
    bool user(RequestHandler<ApiValidation> completion);

  private:
    std::shared_ptr<const UserService> userService_;
    std::shared_ptr<Networking> networking_;
    std::shared_ptr<ErrorTrackingService> errorTracking_;
};

}  // namespace nimbuscope

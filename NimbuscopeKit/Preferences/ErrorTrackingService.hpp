#pragma once

#include "Platform/Core/Export.hpp"
#include "Platform/Core/NSError.hpp"

namespace nimbuscope {

/// Learns of errors that a service deals with itself, so that somebody does.
class NIMBUSCOPE_EXPORT ErrorTrackingService {
  public:
    virtual ~ErrorTrackingService() = default;

    /// Called on the thread on which the error occurred, with no store locked.
    virtual void track(const platform::NSError& error) = 0;
};

/// Tells the service, or where there is none, standard error.
NIMBUSCOPE_EXPORT void report(const platform::NSError& error, ErrorTrackingService* service);

}  // namespace nimbuscope

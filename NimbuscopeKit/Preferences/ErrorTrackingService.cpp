#include "NimbuscopeKit/Preferences/ErrorTrackingService.hpp"

#include <cstdio>

namespace nimbuscope {

void report(const platform::NSError& error, ErrorTrackingService* service) {
    if (service != nullptr) {
        service->track(error);
    } else {
        std::fprintf(stderr, "%s: %s\n", error.domain.c_str(), error.localizedDescription.c_str());
    }
}

}  // namespace nimbuscope

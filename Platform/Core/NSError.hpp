#pragma once

#include <string>

namespace nimbuscope::platform {

/// An error as completion handlers receive it when the body they wait for failed.
struct NSError {
    std::string domain;                ///< who numbered the code
    int code = 0;                      ///< meaningful within the domain
    std::string localizedDescription;  ///< one sentence for a person

    bool operator==(const NSError&) const = default;
};

}  // namespace nimbuscope::platform

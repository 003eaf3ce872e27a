#pragma once

#include <map>
#include <string>

namespace nimbuscope::platform {

/// What the application is asked to go on with: which screen, for what.
struct NSUserActivity {
    std::string activityType;                     ///< tells the application's activities apart
    std::string title;                            ///< for a person
    std::map<std::string, std::string> userInfo;  ///< the particulars

    bool operator==(const NSUserActivity&) const = default;
};

}  // namespace nimbuscope::platform

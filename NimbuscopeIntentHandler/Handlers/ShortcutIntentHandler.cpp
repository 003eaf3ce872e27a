#include "NimbuscopeIntentHandler/Handlers/ShortcutIntentHandler.hpp"

#include "NimbuscopeIntentHandler/Handlers/LocationOptions.hpp"

namespace nimbuscope::shortcut {

platform::AsyncBody<std::shared_ptr<LocationCollection>> locationOptions(
    std::function<SharedStorage&()> storage) {
    co_return nimbuscope::locationOptions<Location>(storage().places());
}

platform::AsyncBody<LocationResolutionResult> resolve(std::shared_ptr<Location> location) {
    co_return location ? LocationResolutionResult::success(std::move(location))
                       : LocationResolutionResult::needsValue();
}

platform::NSUserActivity activity(const ShortcutScreen& screen, const Location& location) {
    platform::NSUserActivity activity{
        .activityType = "SiriShortcut", .title = std::string(screen.title), .userInfo = screen.userInfo};
    activity.userInfo["place_id"] = location.identifier().value_or("");
    return activity;
}

}  // namespace nimbuscope::shortcut

#include "StoredPreferences.hpp"

#include "Platform/Linux/Locale_icu.hpp"

namespace nimbuscope::tool {

class StoredPreferences::StoreErrors final : public ErrorTrackingService {
  public:
    void track(const platform::NSError& error) override {
        if (error.domain == PreferencesServiceImpl::storeErrorDomain && !first) {
            first = CommandError{"preferences", error.localizedDescription};
        }
    }
    std::optional<CommandError> first;
};

CommandResult<StoredPreferences> StoredPreferences::open(const CommandLine& commandLine) {
    const auto standard = commandLine.openStore("");
    const auto group = commandLine.openStore(std::string(PreferencesServiceImpl::appGroupIdentifier));
    if (!standard || !group) {
        return std::unexpected(standard ? group.error() : standard.error());
    }
    StoredPreferences opened;
    opened.group_ = *group;
    opened.locale_ = std::make_shared<platform::ICULocale>(platform::ICULocale::ofUser());
    opened.errors_ = std::make_shared<StoreErrors>();
    opened.service_ =
        std::make_shared<PreferencesServiceImpl>(**standard, *group, opened.errors_, opened.locale_);
    const auto started = opened.outcome();
    return started ? CommandResult<StoredPreferences>(std::move(opened)) : std::unexpected(started.error());
}

CommandResult<void> StoredPreferences::outcome() const {
    return errors_->first ? std::unexpected(*errors_->first) : CommandResult<void>{};
}

}  // namespace nimbuscope::tool

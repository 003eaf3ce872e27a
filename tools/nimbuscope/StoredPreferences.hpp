#pragma once

#include <memory>
#include <optional>

#include "CommandLine.hpp"
#include "NimbuscopeKit/Preferences/PreferencesServiceImpl.hpp"

namespace nimbuscope::tool {

/// The preferences service over the stores that the command line names.
class StoredPreferences {
  public:
    [[nodiscard]] static CommandResult<StoredPreferences> open(const CommandLine& commandLine);

    [[nodiscard]] const std::shared_ptr<PreferencesService>& service() const { return service_; }

    /// What the older settings say, or the defaults.
    [[nodiscard]] AppPreferences imported() const {
        return AppPreferences::fromUserDefaults(*group_, *locale_);
    }

    /// The first thing that the store has failed at, if anything. A record that was unreadable is no failure:
    /// the service has replaced it.
    [[nodiscard]] CommandResult<void> outcome() const;

  private:
    class StoreErrors;

    std::shared_ptr<platform::NSUserDefaults> group_;
    std::shared_ptr<const platform::Locale> locale_;
    std::shared_ptr<StoreErrors> errors_;
    std::shared_ptr<PreferencesService> service_;
};

}  // namespace nimbuscope::tool

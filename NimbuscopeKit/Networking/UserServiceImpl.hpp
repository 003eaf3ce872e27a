#pragma once

#include <functional>
#include <memory>

#include "NimbuscopeKit/Networking/UserService.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/Defaults/DefaultsValue.hpp"
#include "Platform/Locale/Locale.hpp"
#include "Platform/Locale/TimeZone.hpp"

namespace nimbuscope {

/// Tells what the application's information dictionary, the system and the preferences say at the time.
class NIMBUSCOPE_EXPORT UserServiceImpl final : public UserService {
  public:
    /// The version is the text under "CFBundleShortVersionString" of `infoDictionary`, the build that under
    /// "CFBundleVersion". `units` asks the preferences.
    UserServiceImpl(platform::DefaultsDictionary infoDictionary,
                    std::shared_ptr<const platform::Locale> locale,
                    std::shared_ptr<const platform::TimeZone> timeZone,
                    std::function<UnitsPreference()> units);

    [[nodiscard]] std::optional<std::string> version() const override;
    [[nodiscard]] std::optional<std::string> build() const override;
    [[nodiscard]] std::string locale() const override { return locale_->identifier(); }
    [[nodiscard]] std::string timeZone() const override { return timeZone_->identifier(); }
    [[nodiscard]] bool isTime12Hours() const override { return locale_->uses12HourClock(); }
    [[nodiscard]] UnitsPreference units() const override { return units_(); }

  private:
    platform::DefaultsDictionary infoDictionary_;
    std::shared_ptr<const platform::Locale> locale_;
    std::shared_ptr<const platform::TimeZone> timeZone_;
    std::function<UnitsPreference()> units_;
};

}  // namespace nimbuscope

#include "UserServices.hpp"

#include <string>
#include <utility>

#include "NimbuscopeKit/Preferences/Migration.hpp"
#include "NimbuscopeKit/Preferences/PreferencesServiceImpl.hpp"
#include "Platform/Linux/Locale_icu.hpp"
#include "Platform/Linux/TimeZone_icu.hpp"

namespace nimbuscope::tool {
namespace {

using platform::ICULocale;
using platform::NSUserDefaults;

platform::DefaultsDictionary infoDictionary() {
    return {{"CFBundleShortVersionString", std::string(NIMBUSCOPE_VERSION)},
            {"CFBundleVersion", std::string(NIMBUSCOPE_BUILD)}};
}

/// The units as they are stored, else as the group's older settings have them; nothing is written, so that
/// settings which no application has yet copied from the standard store do not count.
UnitsPreference storedUnits(const NSUserDefaults& group, const ICULocale& locale) {
    const auto stored = group.object(PreferencesServiceImpl::appPreferencesKey);
    const auto* data = stored && *stored ? (*stored)->as<platform::Data>() : nullptr;
    const auto migrated = data != nullptr ? migratedPreferences(*data) : std::unexpected(MigrationError());
    const auto record = migrated
                            ? platform::JSONDecoder().decode<AppPreferences>(*migrated ? **migrated : *data)
                            : std::unexpected(platform::DecodingError());
    return (record ? *record : AppPreferences::fromUserDefaults(group, locale)).map.units;
}

}  // namespace

std::shared_ptr<UserServiceImpl> userServiceOver(std::shared_ptr<NSUserDefaults> group) {
    const auto locale = std::make_shared<ICULocale>(ICULocale::ofUser());
    return std::make_shared<UserServiceImpl>(
        infoDictionary(), locale, std::make_shared<platform::ICUTimeZone>(platform::ICUTimeZone::current()),
        [group = std::move(group), locale] { return storedUnits(*group, *locale); });
}

}  // namespace nimbuscope::tool

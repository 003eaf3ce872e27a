#include "ApiClient.hpp"

#include "NimbuscopeKit/Preferences/AppGroup.hpp"
#include "NimbuscopeKit/Preferences/Migration.hpp"
#include "NimbuscopeKit/Preferences/PreferencesServiceImpl.hpp"
#include "Platform/Linux/DeviceIdentifier_machineid.hpp"
#include "Platform/Linux/Locale_icu.hpp"
#include "Platform/Linux/NSUserDefaults_sqlite.hpp"
#include "Platform/Linux/Security_openssl.hpp"
#include "Platform/Linux/TimeZone_icu.hpp"

namespace nimbuscope::tool {
namespace {

using platform::ICULocale;
using platform::NSUserDefaults;

platform::DefaultsDictionary infoDictionary() {
    return {{"CFBundleShortVersionString", std::string(NIMBUSCOPE_VERSION)},
            {"CFBundleVersion", std::string(NIMBUSCOPE_BUILD)}};
}

/// The units as they are stored, or would be by the first start of the application; nothing is written.
UnitsPreference storedUnits(const NSUserDefaults& group, const ICULocale& locale) {
    const auto stored = group.object(PreferencesServiceImpl::appPreferencesKey);
    const auto* data = stored && *stored ? (*stored)->as<platform::Data>() : nullptr;
    const auto newest = data != nullptr ? migratedPreferences(*data) : platform::Data();
    const auto record = newest ? platform::JSONDecoder().decode<AppPreferences>(platform::textOf(*newest))
                               : std::unexpected(platform::DecodingError());
    return (record ? *record : AppPreferences::fromUserDefaults(group, locale)).map.units;
}

}  // namespace

CommandResult<std::unique_ptr<Hosts>> openHosts(const CommandLine& commandLine) {
    const auto group = commandLine.openStore(std::string(appGroupIdentifier));
    if (!group) {
        return std::unexpected(group.error());
    }
    auto hosts = Hosts::open(*group, std::make_shared<platform::OpenSSLRandom>());
    return hosts ? CommandResult<std::unique_ptr<Hosts>>(std::move(*hosts))
                 : std::unexpected(CommandError{"hosts", hosts.error().message()});
}

CommandResult<std::unique_ptr<ApiClient>> ApiClient::open(const CommandLine& commandLine,
                                                          const std::string& caFile) {
    const auto directory = commandLine.storeDirectory();
    auto hosts = openHosts(commandLine);
    if (!directory || !hosts) {
        return std::unexpected(directory ? hosts.error() : directory.error());
    }
    platform::SQLiteUserDefaultsSuites suites(*directory);
    const auto storage = Authorization::openStorage(suites);
    if (!storage) {
        return std::unexpected(CommandError{"store", storage.error().message()});
    }
    return std::unique_ptr<ApiClient>(new ApiClient(std::move(*hosts), *storage, caFile));
}

ApiClient::ApiClient(std::unique_ptr<Hosts> hosts, std::shared_ptr<NSUserDefaults> group,
                     const std::string& caFile)
    : hosts_(std::move(hosts)) {
    const auto locale = std::make_shared<ICULocale>(ICULocale::ofUser());
    userService_ = std::make_shared<UserServiceImpl>(
        infoDictionary(), locale, std::make_shared<platform::ICUTimeZone>(platform::ICUTimeZone::current()),
        [group, locale] { return storedUnits(*group, *locale); });
    session_ = platform::makeCurlURLSession({.additionalAuthorities = caFile});
    networking_ =
        Networking::make({*session_, session_->queue(), main_, clock_, *hosts_, *userService_, errors_.get()},
                         {group, deviceKey(platform::MachineDeviceIdentifier())});
}

std::string ApiClient::reasonOf(const RequestError& error) const {
    const auto* kind = std::get_if<APIError>(&error);
    const bool hasCause = kind != nullptr && *kind == APIError::authorizationError && !errors_->last.empty();
    return description(error) + (hasCause ? ": " + errors_->last : "");
}

}  // namespace nimbuscope::tool

// The shared instances that the system's programs work with, composed of the adapters of this operating
// system.

#include "NimbuscopeKit/Location/LocationManager.hpp"
#include "NimbuscopeKit/Preferences/PreferencesServiceImpl.hpp"
#include "Platform/Concurrency/RunLoop.hpp"
#include "Platform/Core/Fatal.hpp"
#include "Platform/Linux/CLLocationManager_geoclue.hpp"
#include "Platform/Linux/Locale_icu.hpp"
#include "Platform/Linux/NSUserDefaults_sqlite.hpp"
#include "Platform/Linux/StoreDirectory.hpp"

namespace nimbuscope {
namespace {

std::shared_ptr<PreferencesService> preferencesOfUser() {
    platform::SQLiteUserDefaultsSuites suites(platform::defaultStoreDirectory());
    const auto standard = suites.standard();
    const auto group = suites.suite(PreferencesServiceImpl::appGroupIdentifier);
    platform::precondition(standard && group, "the user's stores cannot be opened");
    return std::make_shared<PreferencesServiceImpl>(
        **standard, *group, nullptr, std::make_shared<platform::ICULocale>(platform::ICULocale::ofUser()));
}

}  // namespace

LocationManager& LocationManager::main() {
    static LocationManager instance(
        preferencesOfUser(), platform::makeGeoClueLocationManager(platform::MainRunLoop::main().executor()));
    return instance;
}

}  // namespace nimbuscope

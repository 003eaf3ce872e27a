// The client of the mobile API that the system's programs share, composed of the adapters of this operating
// system.

#include "NimbuscopeKit/Networking/ApiService.hpp"
#include "NimbuscopeKit/Preferences/AppGroup.hpp"
#include "Platform/Core/Fatal.hpp"
#include "Platform/Linux/DeviceIdentifier_machineid.hpp"
#include "Platform/Linux/NSUserDefaults_sqlite.hpp"
#include "Platform/Linux/Security_openssl.hpp"
#include "Platform/Linux/StoreDirectory.hpp"
#include "Platform/Linux/URLCache_sqlite.hpp"
#include "Platform/Linux/URLSession_curl.hpp"
#include "Platform/URLLoading/CachingURLSession.hpp"
#include "UserServices.hpp"

namespace nimbuscope {
namespace {

const std::shared_ptr<platform::NSUserDefaults>& groupOfUser() {
    static const auto group = [] {
        auto opened =
            platform::SQLiteUserDefaultsSuites(platform::defaultStoreDirectory()).suite(appGroupIdentifier);
        platform::precondition(opened.has_value(), "the user's store cannot be opened");
        return std::move(*opened);
    }();
    return group;
}

std::shared_ptr<Networking> networkingOfUser() {
    static const auto clock = std::make_shared<platform::SystemClock>();
    static const std::shared_ptr<platform::CurlURLSession> loader = platform::makeCurlURLSession(
        {.urlCache = platform::makeSQLiteURLCache(platform::defaultCacheDirectory())});
    static platform::CachingURLSession session(loader, clock);
    static const auto userService = tool::userServiceOver(groupOfUser());
    return Networking::make(
        {session, loader->queue(), platform::MainRunLoop::main(), *clock, Hosts::main(), *userService},
        {groupOfUser(), deviceKey(platform::MachineDeviceIdentifier())});
}

}  // namespace

Hosts& Hosts::main() {
    static const auto instance = [] {
        auto hosts = open(groupOfUser(), std::make_shared<platform::OpenSSLRandom>());
        platform::precondition(hosts.has_value(), "the user's host table cannot be read");
        return std::move(*hosts);
    }();
    return *instance;
}

const std::shared_ptr<Networking>& Networking::default_() {
    static const std::shared_ptr<Networking> instance = networkingOfUser();
    return instance;
}

ApiService& ApiService::default_() {
    static ApiService instance(Networking::default_());
    return instance;
}

}  // namespace nimbuscope

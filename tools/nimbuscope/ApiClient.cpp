#include "ApiClient.hpp"

#include "Files.hpp"
#include "NimbuscopeKit/Preferences/AppGroup.hpp"
#include "Platform/Linux/DeviceIdentifier_machineid.hpp"
#include "Platform/Linux/NSUserDefaults_sqlite.hpp"
#include "Platform/Linux/Security_openssl.hpp"
#include "UserServices.hpp"

namespace nimbuscope::tool {

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
    const bool isInput = caFile == "-";
    if (!caFile.empty() && !isInput) {
        if (const auto bytes = readInput(caFile); !bytes) {
            return std::unexpected(bytes.error());
        }
    }
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
    return std::unique_ptr<ApiClient>(
        new ApiClient(std::move(*hosts), *storage, isInput ? "/dev/stdin" : caFile));
}

ApiClient::ApiClient(std::unique_ptr<Hosts> hosts, std::shared_ptr<platform::NSUserDefaults> group,
                     const std::string& caFile)
    : hosts_(std::move(hosts)), userService_(userServiceOver(group)) {
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

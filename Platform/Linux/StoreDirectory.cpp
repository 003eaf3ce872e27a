#include "Platform/Linux/StoreDirectory.hpp"

#include <sys/stat.h>

#include <cerrno>
#include <string_view>
#include <system_error>

#include "Platform/Linux/Environment.hpp"

namespace nimbuscope::platform {
namespace {

/// What belongs to this system below the place that `variable` names, or else below `fallback` at home.
std::string placeOf(const char* variable, std::string_view fallback) {
    if (const auto place = environment(variable).value_or(""); place.starts_with('/')) {
        return std::string(place) + "/nimbuscope";
    }
    if (const auto home = environment("HOME").value_or(""); !home.empty()) {
        return std::string(home) + std::string(fallback) + "/nimbuscope";
    }
    return {};
}

}  // namespace

std::string defaultStoreDirectory() {
    const auto store = environment("NIMBUSCOPE_STORE").value_or("");
    return store.empty() ? placeOf("XDG_DATA_HOME", "/.local/share") : std::string(store);
}

std::string defaultCacheDirectory() {
    return placeOf("XDG_CACHE_HOME", "/.cache");
}

std::optional<std::string> makeDirectories(const std::filesystem::path& directory) {
    std::filesystem::path made;
    for (const auto& part : directory) {
        made /= part;
        if (::mkdir(made.c_str(), S_IRWXU) != 0 && errno != EEXIST && errno != EISDIR) {
            return std::generic_category().message(errno);
        }
    }
    struct stat information{};
    if (stat(directory.c_str(), &information) != 0 || !S_ISDIR(information.st_mode)) {
        return std::generic_category().message(ENOTDIR);
    }
    return std::nullopt;
}

}  // namespace nimbuscope::platform

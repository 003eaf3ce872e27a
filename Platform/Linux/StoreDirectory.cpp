#include "Platform/Linux/StoreDirectory.hpp"

#include <cstdlib>
#include <string_view>

namespace nimbuscope::platform {
namespace {

std::string_view environment(const char* name) {
    const char* value =
        std::getenv(name);  // NOLINT(concurrency-mt-unsafe): nothing here sets the environment
    return value != nullptr ? value : "";
}

}  // namespace

std::string defaultStoreDirectory() {
    if (const auto store = environment("NIMBUSCOPE_STORE"); !store.empty()) {
        return std::string(store);
    }
    if (const auto data = environment("XDG_DATA_HOME"); data.starts_with('/')) {
        return std::string(data) + "/nimbuscope";
    }
    if (const auto home = environment("HOME"); !home.empty()) {
        return std::string(home) + "/.local/share/nimbuscope";
    }
    return {};
}

}  // namespace nimbuscope::platform

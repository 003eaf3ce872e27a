#pragma once

#include <cstdint>

namespace nimbuscope {

/// What a server is for.
enum class HostIdentifier : std::int64_t {
    radar,
    satellite,
    satprecip,
    coverage,
    extendedRadar,
    temperature,
    api
};

}  // namespace nimbuscope

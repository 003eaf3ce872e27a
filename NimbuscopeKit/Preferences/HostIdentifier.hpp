#pragma once

#include <array>
#include <cstdint>

#include "Platform/Coding/Enumeration.hpp"

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

constexpr auto caseTable(HostIdentifier) {
    using enum HostIdentifier;
    using Case = platform::TextCase<HostIdentifier>;
    return std::array{Case{radar, "radar"},
                      Case{satellite, "satellite"},
                      Case{satprecip, "satprecip"},
                      Case{coverage, "coverage"},
                      Case{extendedRadar, "extendedRadar"},
                      Case{temperature, "temperature"},
                      Case{api, "api"}};
}

}  // namespace nimbuscope

#pragma once

#include <string>

#include "Platform/Core/Export.hpp"

namespace nimbuscope::platform {

/// A region whose clocks agree.
class NIMBUSCOPE_EXPORT TimeZone {
  public:
    virtual ~TimeZone() = default;

    /// Its name in the time zone database: "Europe/Lisbon". Safe from any thread.
    [[nodiscard]] virtual std::string identifier() const = 0;
};

}  // namespace nimbuscope::platform

#pragma once

#include <string>
#include <string_view>

#include "Platform/Core/Export.hpp"

namespace nimbuscope::platform {

/// Where a program's texts in the user's language come from.
class NIMBUSCOPE_EXPORT Bundle {
  public:
    virtual ~Bundle() = default;

    /// The translation of the English text `key`, or `key` itself where there is none. Safe from any thread.
    [[nodiscard]] virtual std::string localizedString(std::string_view key) const = 0;
};

}  // namespace nimbuscope::platform

#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "NimbuscopeKit/Preferences/UnitsPreference.hpp"
#include "Platform/Core/Export.hpp"

namespace nimbuscope {

/// What servers are told about the user and the application. Used from the main thread.
class NIMBUSCOPE_EXPORT UserService {
  public:
    virtual ~UserService() = default;

    /// The version that the application shows, and the number of its build; absent where it does not say.
    [[nodiscard]] virtual std::optional<std::string> version() const = 0;
    [[nodiscard]] virtual std::optional<std::string> build() const = 0;

    /// Identifier of the locale: "de_CH".
    [[nodiscard]] virtual std::string locale() const = 0;

    /// Identifier of the time zone: "Europe/Zurich".
    [[nodiscard]] virtual std::string timeZone() const = 0;

    /// Whether clocks show 12 hours, not 24.
    [[nodiscard]] virtual bool isTime12Hours() const = 0;

    [[nodiscard]] virtual UnitsPreference units() const = 0;
};

}  // namespace nimbuscope

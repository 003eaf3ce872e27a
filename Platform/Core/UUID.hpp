#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "Platform/Core/Export.hpp"

namespace nimbuscope::platform {

/// A universally unique identifier (RFC 4122).
struct NIMBUSCOPE_EXPORT UUID {
    std::array<std::uint8_t, 16> bytes{};  ///< network byte order

    /// A fresh random identifier (version 4), drawn from the system's entropy source. Safe from any thread.
    [[nodiscard]] static UUID random();

    /// These bytes with the marks of version 4.
    [[nodiscard]] static UUID version4(std::array<std::uint8_t, 16> bytes);

    /// The upper-case form in groups of 8-4-4-4-12 hexadecimal digits.
    [[nodiscard]] std::string uuidString() const;

    bool operator==(const UUID&) const = default;
};

}  // namespace nimbuscope::platform

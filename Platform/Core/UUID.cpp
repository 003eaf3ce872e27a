#include "Platform/Core/UUID.hpp"

#include <random>
#include <string_view>

namespace nimbuscope::platform {

UUID UUID::random() {
    std::array<std::uint8_t, 16> bytes;
    std::random_device entropy;
    for (std::uint8_t& byte : bytes) {
        byte = static_cast<std::uint8_t>(entropy() & 0xFFU);
    }
    return version4(bytes);
}

UUID UUID::version4(std::array<std::uint8_t, 16> bytes) {
    bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0FU) | 0x40U);
    bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3FU) | 0x80U);  // RFC 4122 variant
    return {bytes};
}

std::string UUID::uuidString() const {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    text.reserve(36);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) {
            text += '-';
        }
        text += digits[bytes[i] >> 4U];
        text += digits[bytes[i] & 0x0FU];
    }
    return text;
}

}  // namespace nimbuscope::platform

#include "Platform/Linux/DeviceIdentifier_machineid.hpp"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <string_view>

#include "Platform/Security/CommonCrypto.hpp"

namespace nimbuscope::platform {
namespace {

using MachineId = std::array<std::uint8_t, 16>;

std::optional<MachineId> readMachineId(const std::string& file) {
    std::string digits;
    if (std::ifstream stream(file);
        !std::getline(stream, digits) || digits.size() != 2 * MachineId().size()) {
        return std::nullopt;
    }
    MachineId id{};
    for (std::size_t i = 0; i < id.size(); ++i) {
        const char* pair = digits.data() + 2 * i;
        if (std::from_chars(pair, pair + 2, id[i], 16).ptr != pair + 2) {
            return std::nullopt;
        }
    }
    return id == MachineId() ? std::nullopt : std::optional(id);
}

}  // namespace

std::optional<UUID> MachineDeviceIdentifier::identifierForVendor() const {
    const auto id = readMachineId(file_);
    if (!id) {
        return std::nullopt;
    }
    constexpr std::string_view vendor = "com.brisk-labs.Nimbuscope.identifierForVendor";
    const SHA256Digest code = SHA256().hmac(*id, bytesOf(vendor));
    std::array<std::uint8_t, 16> bytes;
    std::copy_n(code.begin(), bytes.size(), bytes.begin());
    return UUID::version4(bytes);
}

}  // namespace nimbuscope::platform

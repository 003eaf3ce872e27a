#pragma once

#include <array>
#include <string_view>

namespace nimbuscope::platform {

/// A set of ASCII characters, made once, that tells membership by a look into a table.
class CharacterSet {
  public:
    constexpr CharacterSet(const CharacterSet& base, std::string_view more) : contains_(base.contains_) {
        for (const char character : more) {
            contains_[static_cast<unsigned char>(character)] = true;
        }
    }
    constexpr explicit CharacterSet(std::string_view members) : CharacterSet(CharacterSet(), members) {}

    constexpr bool operator()(char character) const {
        return contains_[static_cast<unsigned char>(character)];
    }

  private:
    constexpr CharacterSet() = default;
    std::array<bool, 256> contains_{};
};

/// ASCII letters and digits.
inline constexpr CharacterSet isAlphanumeric(
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789");

}  // namespace nimbuscope::platform

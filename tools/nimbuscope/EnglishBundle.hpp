#pragma once

#include <string>

#include "Platform/Locale/Bundle.hpp"

namespace nimbuscope::tool {

/// The texts as they are, in English, for pictures: their font has no other letters.
class EnglishBundle final : public platform::Bundle {
  public:
    [[nodiscard]] std::string localizedString(std::string_view key) const override {
        return std::string(key);
    }
};

}  // namespace nimbuscope::tool

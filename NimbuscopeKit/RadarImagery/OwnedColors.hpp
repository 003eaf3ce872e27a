#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>

#include "NimbuscopeKit/RadarImagery/ColorScheme.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/Core/Result.hpp"

namespace nimbuscope {

/// A colour table handed out by the palette library, freed with its owner.
class NIMBUSCOPE_EXPORT OwnedColors {
  public:
    /// The table of a scheme number (numbering 2). An error when there is none or when memory is short.
    [[nodiscard]] static platform::Result<OwnedColors, ColorSchemeError> make(std::uint32_t scheme,
                                                                              bool isSmooth, bool withSnow,
                                                                              std::uint32_t minimalIndex);

    /// As `make`; stops the process where that returns an error.
    [[nodiscard]] static OwnedColors makeOrStop(std::uint32_t scheme, bool isSmooth, bool withSnow,
                                                std::uint32_t minimalIndex);

    [[nodiscard]] std::span<std::uint8_t> bytes() const { return {bytes_.get(), size_}; }

  private:
    struct Free {
        void operator()(std::uint8_t* bytes) const { std::free(bytes); }
    };

    OwnedColors(std::uint8_t* bytes, std::size_t size) : bytes_(bytes), size_(size) {}

    std::unique_ptr<std::uint8_t, Free> bytes_;
    std::size_t size_;
};

}  // namespace nimbuscope

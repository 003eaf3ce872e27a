#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Core/Result.hpp"

namespace nimbuscope {

/// Why palette sources could not be compiled: "FILE:LINE: REASON", without what is not known.
struct PaletteTableError {
    std::string file;
    std::size_t line = 0;
    std::string reason;

    [[nodiscard]] std::string message() const;
};

/// The text of a source file, by its name within the directory of sources.
using PaletteSourceReader =
    std::function<platform::Result<std::string, PaletteTableError>(const std::string& name)>;

/// Compiles the palettes that the file `tableName` lists, with the stop lists that it names, into the bytes
/// of NB_PALETTES: each stop list once, in the order of first use, and the records of the palettes.
[[nodiscard]] platform::Result<std::vector<std::uint8_t>, PaletteTableError> compilePalettes(
    const std::string& tableName, const PaletteSourceReader& read);

/// C++ source that defines NB_PALETTES with these bytes.
[[nodiscard]] std::string paletteSourceCode(const std::vector<std::uint8_t>& bytes);

}  // namespace nimbuscope

// Compiles colorschemes/palettes into the source code of NB_PALETTES.
//     nimbuscope-compile-palettes TABLE OUTPUT
// TABLE lists the palettes; the stop lists are beside it.

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "colorschemes/compiler/PaletteTable.hpp"

using nimbuscope::PaletteTableError;

int main(int argumentCount, char** arguments) {
    if (argumentCount != 3) {
        std::fputs("usage: nimbuscope-compile-palettes TABLE OUTPUT\n", stderr);
        return 2;
    }
    const std::filesystem::path table = arguments[1];
    const auto read =
        [&](const std::string& name) -> nimbuscope::platform::Result<std::string, PaletteTableError> {
        std::ifstream stream(table.parent_path() / name, std::ios::binary);
        if (!stream) {
            return std::unexpected(PaletteTableError{name, 0, "cannot be read"});
        }
        return std::string(std::istreambuf_iterator<char>(stream), {});
    };
    const auto bytes = nimbuscope::compilePalettes(table.filename().string(), read);
    if (!bytes) {
        std::fprintf(stderr, "%s/%s\n", table.parent_path().c_str(), bytes.error().message().c_str());
        return 1;
    }
    std::ofstream output(arguments[2], std::ios::binary);
    output << nimbuscope::paletteSourceCode(*bytes);
    if (!output.flush()) {
        std::fprintf(stderr, "%s: cannot be written\n", arguments[2]);
        return 1;
    }
    return 0;
}

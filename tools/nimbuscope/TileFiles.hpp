#pragma once

#include <string>
#include <vector>

#include "CommandLine.hpp"

namespace nimbuscope::tool {

/// Which tiles a command takes and where its pictures of them go; one output for each input.
struct TileFiles {
    std::vector<std::string> inputs;
    std::vector<std::string> outputs;
};

/// The files that are named and, by path, those in and below the directories that are named, apart from
/// hidden ones and from what is in `outDirectory`. A file's picture gets the file's name with `extension` in
/// `outDirectory`; those of a directory stand there as in the directory. An error when a picture would take
/// the place of another one or of an input.
[[nodiscard]] CommandResult<TileFiles> findTiles(const std::vector<std::string>& names,
                                                 const std::string& outDirectory,
                                                 const std::string& extension);

}  // namespace nimbuscope::tool

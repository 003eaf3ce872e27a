#include "TileFiles.hpp"

#include <algorithm>
#include <filesystem>
#include <map>
#include <system_error>

namespace nimbuscope::tool {
namespace {

using std::filesystem::path;

/// One name for a file, however it is written.
path resolved(const path& file) {
    std::error_code error;
    path canonical = std::filesystem::weakly_canonical(std::filesystem::absolute(file, error), error);
    return error ? file.lexically_normal() : canonical;
}

bool isHidden(const path& file) {
    return file.filename().string().starts_with('.');
}

/// The files below a directory, by path.
CommandResult<std::vector<path>> filesBelow(const path& directory, const path& outDirectory) {
    std::error_code error;
    std::vector<path> files;
    const path excluded = resolved(outDirectory);
    const bool isOutside = excluded != resolved(directory);
    std::filesystem::recursive_directory_iterator it(directory, error);
    for (; !error && it != std::filesystem::recursive_directory_iterator(); it.increment(error)) {
        std::error_code unreadable;
        const bool isDirectory = it->is_directory(unreadable);
        if (isHidden(it->path()) || (isDirectory && isOutside && resolved(it->path()) == excluded)) {
            it.disable_recursion_pending();
        } else if (!isDirectory) {
            files.push_back(it->path());
        }
    }
    if (error) {
        return std::unexpected(CommandError{directory.string(), error.message()});
    }
    std::ranges::sort(files);
    return files;
}

CommandResult<void> checkPlaces(const TileFiles& tiles) {
    std::map<path, std::string> taken;
    for (const std::string& input : tiles.inputs) {
        taken.emplace(resolved(input), input);
    }
    for (std::size_t i = 0; i < tiles.outputs.size(); ++i) {
        const auto [there, isFree] = taken.emplace(resolved(tiles.outputs[i]), tiles.inputs[i]);
        if (!isFree) {
            return std::unexpected(CommandError{
                tiles.inputs[i], "its picture " + tiles.outputs[i] + " would take the place of " +
                                     (resolved(there->second) == there->first ? "" : "that of ") +
                                     there->second});
        }
    }
    return {};
}

}  // namespace

CommandResult<TileFiles> findTiles(const std::vector<std::string>& names, const std::string& outDirectory,
                                   const std::string& extension) {
    TileFiles tiles;
    const auto add = [&](const path& input, path place) {
        tiles.inputs.push_back(input.string());
        tiles.outputs.push_back((outDirectory / place.replace_extension(extension)).string());
    };
    for (const std::string& name : names) {
        std::error_code error;
        if (!std::filesystem::is_directory(name, error)) {
            add(name, path(name).filename());
            continue;
        }
        const auto files = filesBelow(name, outDirectory);
        if (!files) {
            return std::unexpected(files.error());
        }
        for (const path& file : *files) {
            add(file, file.lexically_relative(name));
        }
    }
    if (auto free = checkPlaces(tiles); !free) {
        return std::unexpected(free.error());
    }
    return tiles;
}

}  // namespace nimbuscope::tool

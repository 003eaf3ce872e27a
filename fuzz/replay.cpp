// Runs a fuzz target on every file of the directories that are named, for builds without libFuzzer.

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "Target.hpp"

int main(int count, char** directories) {
    std::vector<std::filesystem::path> files;
    for (int i = 1; i < count; ++i) {
        for (const auto& entry : std::filesystem::directory_iterator(directories[i])) {
            files.push_back(entry.path());
        }
    }
    std::ranges::sort(files);
    for (const auto& path : files) {
        std::printf("%s\n", path.filename().c_str());  // the last one is at fault when this stops
        std::fflush(stdout);
        std::ifstream file(path, std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    }
    return files.empty() ? 1 : 0;  // an empty corpus tests nothing
}

#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

/// A fuzz target: decodes arbitrary bytes and stops the process where something that must hold does not.
/// Returns 0. Both libFuzzer and the replay of the corpus call it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace nimbuscope::fuzz {

inline void require(bool condition, const char* what) {
    if (!condition) {
        std::fprintf(stderr, "does not hold: %s\n", what);
        std::abort();
    }
}

}  // namespace nimbuscope::fuzz

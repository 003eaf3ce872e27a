// Colouring the samples of PNG tiles once they are inflated. Times are per pixel.

#include <cstring>
#include <random>

#include "NimbuscopeKit/RadarImagery/Png.hpp"
#include "NimbuscopeKit/RadarImagery/RadarColorScheme.hpp"
#include "support/Ratios.hpp"
#include "tests/support/LibPNG.hpp"

using namespace nimbuscope;
using namespace nimbuscope::benchmarks;

namespace {

/// Indices in runs of a mean length, of which a share is transparent.
platform::Data storm(std::mt19937& random, std::size_t count, double meanRun, double transparentShare) {
    std::geometric_distribution<std::size_t> more(1 / meanRun);
    std::bernoulli_distribution isTransparent(transparentShare);
    platform::Data indices;
    indices.reserve(count);
    while (indices.size() < count) {
        const auto index = static_cast<std::uint8_t>(isTransparent(random) ? 0 : random() % 256);
        const std::size_t run = meanRun > 1 ? 1 + more(random) : 1;
        indices.insert(indices.end(), std::min(run, count - indices.size()), index);
    }
    return indices;
}

/// Colouring against filling, on a ring of tiles so that nothing learns the runs.
bool colorsLikeMemory(const char* name, std::uint32_t side, double meanRun, double transparentShare,
                      double limit) {
    constexpr std::size_t tiles = 64;
    std::mt19937 random(7);
    const std::size_t count = std::size_t{side} * side;
    std::vector<Png> ring;
    for (std::size_t i = 0; i < tiles; ++i) {
        ring.emplace_back(testing::writeIndices(side, side, storm(random, count, meanRun, transparentShare)));
    }
    const RadarColorScheme scheme(4, true, true, -32);
    platform::Data out(count * 4);
    std::size_t next = 0;
    return compare(std::to_string(side) + "² " + name,
                   {{"Png::bytes",
                     [&] {
                         const auto done = ring[next++ % tiles].bytes(scheme.colors(), false, out);
                         benchmark::DoNotOptimize(done.has_value());
                         benchmark::ClobberMemory();
                     },
                     static_cast<double>(count)},
                    {"memset",
                     [&] {
                         std::memset(out.data(), 0, out.size());
                         benchmark::ClobberMemory();
                     },
                     static_cast<double>(count)}},
                   {{1, limit}});
}

}  // namespace

int main() {
    bool isKept = true;
    for (const std::uint32_t side : {256U, 512U, 1024U}) {
        isKept = colorsLikeMemory("PNG sparse", side, 60, 0.95, 2.7) && isKept;
        isKept = colorsLikeMemory("PNG busy", side, 6, 0.3, 9) && isKept;
        isKept = colorsLikeMemory("PNG noise", side, 1, 0, 9) && isKept;
    }
    return isKept ? 0 : 1;
}

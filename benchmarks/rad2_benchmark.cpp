// Decoding Rad2 tiles to RGBA, against PNG readers, a fill per run and the bare writing of memory. Times are
// per pixel. Where the environment variable NIMBUSCOPE_RASTERS names a directory of 8-bit PGM files of
// palette indices, their tiles are measured too.

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <thread>

#include "NimbuscopeKit/RadarImagery/Rad2File.hpp"
#include "NimbuscopeKit/RadarImagery/Rad2Writer.hpp"
#include "NimbuscopeKit/RadarImagery/RadarColorScheme.hpp"
#include "support/PNGPeers.hpp"
#include "support/Ratios.hpp"
#include "tools/demo/Storms.hpp"

using namespace nimbuscope;
using namespace nimbuscope::benchmarks;
using demo::Raster;
using demo::Storm;

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t ringSize = 64;  // on fewer tiles the processor learns the runs

[[noreturn]] void stop(const char* reason) {
    std::fprintf(stderr, "%s\n", reason);
    std::exit(1);
}

/// One tile in the formats that are compared.
struct Tile {
    Bytes rad2;
    Rad2DataBlock runs;
    Bytes png;
};

Tile tileOf(const Raster& raster, bool withPNG) {
    auto rad2 =
        Rad2Writer::write({.width = raster.width, .height = raster.height, .indices = raster.indices});
    const auto side = static_cast<std::uint32_t>(raster.width);
    Tile tile{.rad2 = std::move(rad2.value()), .runs = {}, .png = {}};
    tile.runs = Rad2File::parse(tile.rad2).value().rad2Block().value();
    tile.png = withPNG ? indexedPNG(raster.indices, side) : Bytes();
    return tile;
}

/// Decodes tiles of one size into one buffer that is used over and over.
class Bench {
  public:
    explicit Bench(std::size_t side)
        : side_(static_cast<std::uint32_t>(side)), indices_(side * side), out_(side * side) {
        const RadarColorScheme scheme(4, true, true, -32);
        colors_.assign(scheme.colors().begin(), scheme.colors().end());
        std::memcpy(table_.data(), colors_.data(), sizeof table_);
    }

    [[nodiscard]] double pixels() const { return static_cast<double>(out_.size()); }

    void decode(const Tile& tile) {
        const auto file = Rad2File::parse(tile.rad2);
        const std::span<std::uint8_t> bytes(reinterpret_cast<std::uint8_t*>(out_.data()), out_.size() * 4);
        if (!file || !file->decode(colors_, false, bytes)) {
            stop("a tile does not decode");
        }
        benchmark::ClobberMemory();
    }

    void decodePNG(const Tile& tile, bool (*read)(const Bytes&, std::uint32_t, std::uint8_t*)) {
        if (!read(tile.png, side_, indices_.data())) {
            stop("a PNG does not decode");
        }
        for (std::size_t i = 0; i < out_.size(); ++i) {
            out_[i] = table_[indices_[i]];
        }
        benchmark::ClobberMemory();
    }

    void fillRuns(const Tile& tile) {
        const std::uint8_t* run = tile.rad2.data() + tile.runs.pos;
        const std::uint8_t* end = run + tile.runs.size;
        for (std::uint32_t* out = out_.data(); run < end;) {
            std::size_t length = run[1];
            const std::size_t extra = length == 0 ? 2 : length == 255 ? 4 : 0;
            for (std::size_t i = 0; i < extra; ++i) {
                length = (i == 0 ? 0 : length << 8U) | run[2 + i];
            }
            out = std::fill_n(out, length, table_[run[0]]);
            run += 2 + extra;
        }
        benchmark::ClobberMemory();
    }

    void clear() {
        std::memset(out_.data(), 0, out_.size() * 4);
        benchmark::ClobberMemory();
    }

    [[nodiscard]] const std::vector<std::uint32_t>& out() const { return out_; }

  private:
    std::uint32_t side_;
    Bytes colors_;
    std::array<std::uint32_t, 256> table_;
    Bytes indices_;
    std::vector<std::uint32_t> out_;
};

struct Limits {
    double png;     ///< times as fast as the PNG readers, at least
    double fill;    ///< times as fast as a fill per run, at least
    double memory;  ///< times the time of memset, at most
};

/// Weather that is neither sparse nor noise must keep the weakest of the limits for those.
constexpr Limits weather{.png = 4.5, .fill = 2.2, .memory = 13};

/// All contenders make the same pixels; otherwise their times mean nothing.
void checkAgreement(const Tile& tile, Bench& bench) {
    bench.decode(tile);
    const auto expected = bench.out();
    const std::array<std::function<void()>, 3> peers{
        [&] { bench.decodePNG(tile, &readWithLibpng); },
        [&] { bench.decodePNG(tile, &readWithLibspng); },
        [&] { bench.fillRuns(tile); },
    };
    for (const auto& peer : peers) {
        bench.clear();
        peer();
        if (bench.out() != expected) {
            stop("the contenders disagree");
        }
    }
}

bool keepsUp(const std::string& name, const std::vector<Raster>& rasters, const Limits& limits) {
    std::vector<Tile> ring;
    double runs = 0;
    for (const Raster& raster : rasters) {
        ring.push_back(tileOf(raster, true));
        runs += 1 / demo::meanRun(raster);
    }
    const std::size_t side = rasters[0].width;
    Bench bench(side);
    checkAgreement(ring[0], bench);
    std::array<std::size_t, 5> turns{};
    const auto next = [&](std::size_t contender) -> const Tile& {
        return ring[turns[contender]++ % ring.size()];
    };
    char title[100];
    std::snprintf(title, sizeof title, "%zu² %s, mean run %.1f", side, name.c_str(),
                  static_cast<double>(rasters.size()) / runs);
    const double pixels = bench.pixels();
    return compare(title,
                   {{"Rad2 to RGBA", [&] { bench.decode(next(0)); }, pixels},
                    {"libpng", [&] { bench.decodePNG(next(1), &readWithLibpng); }, pixels},
                    {"libspng", [&] { bench.decodePNG(next(2), &readWithLibspng); }, pixels},
                    {"fill_n per run", [&] { bench.fillRuns(next(3)); }, pixels},
                    {"memset", [&] { bench.clear(); }, pixels}},
                   {{1, 1 / limits.png}, {2, 1 / limits.png}, {3, 1 / limits.fill}, {4, limits.memory}}, 31,
                   0.0015);
}

std::vector<Raster> storms(Storm storm, std::size_t side, std::size_t count) {
    std::vector<Raster> rasters;
    for (std::uint32_t seed = 0; seed < count; ++seed) {
        rasters.push_back(demo::makeStorm(storm, side, side, seed));
    }
    return rasters;
}

/// An 8-bit PGM file; an empty raster when it is none.
Raster readPGM(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::string magic;
    std::getline(file, magic);
    while (file.peek() == '#') {
        file.ignore(4096, '\n');
    }
    Raster raster;
    int maximum = 0;
    file >> raster.width >> raster.height >> maximum;
    file.get();
    if (magic != "P5" || maximum != 255 || !file) {
        return {};
    }
    raster.indices.resize(raster.width * raster.height);
    file.read(reinterpret_cast<char*>(raster.indices.data()),
              static_cast<std::streamsize>(raster.indices.size()));
    return file ? raster : Raster();
}

/// The tiles of a raster, each also mirrored left to right, upside down and both, to fill a ring.
void appendTiles(std::vector<Raster>& tiles, const Raster& raster, std::size_t side) {
    for (std::size_t top = 0; top + side <= raster.height; top += side) {
        for (std::size_t left = 0; left + side <= raster.width; left += side) {
            for (const unsigned mirror : {0U, 1U, 2U, 3U}) {
                Raster tile{.width = side, .height = side, .indices = {}};
                for (std::size_t i = 0; i < side * side; ++i) {
                    const std::size_t x = (mirror & 1U) != 0 ? side - 1 - i % side : i % side;
                    const std::size_t y = (mirror & 2U) != 0 ? side - 1 - i / side : i / side;
                    tile.indices.push_back(raster.indices[(top + y) * raster.width + left + x]);
                }
                tiles.push_back(std::move(tile));
            }
        }
    }
}

bool keepsUpOnRealWeather() {
    const char* directory = std::getenv("NIMBUSCOPE_RASTERS");
    std::vector<Raster> tiles;
    if (directory != nullptr) {
        for (const auto& entry : std::filesystem::directory_iterator(directory)) {
            if (entry.path().extension() == ".pgm") {
                appendTiles(tiles, readPGM(entry.path()), 256);
            }
        }
    }
    return tiles.empty() || keepsUp("real", tiles, weather);
}

bool usesBothProcessors() {
    constexpr std::size_t tileCount = 1000;
    std::vector<Tile> ring;
    for (const Raster& raster : storms(Storm::busy, 256, ringSize)) {
        ring.push_back(tileOf(raster, false));
    }
    std::array benches{Bench(256), Bench(256)};
    const auto decodeSome = [&](Bench& bench, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            bench.decode(ring[i % ring.size()]);
        }
    };
    return compare(
        "1,000 tiles of 256² busy",
        {{"two threads",
          [&] {
              std::jthread other([&] { decodeSome(benches[1], tileCount / 2); });
              decodeSome(benches[0], tileCount / 2);
          },
          tileCount * benches[0].pixels()},
         {"one thread", [&] { decodeSome(benches[0], tileCount); }, tileCount * benches[0].pixels()}},
        {{1, 0.55}});
}

/// Time per pixel of a large tile against small ones. Its output does not fit the processor's caches: how
/// much that costs alone, the comparison with memset shows.
bool growsWithPixelsOnly(const char* name, Storm storm, double memory) {
    constexpr std::size_t smallSide = 256;
    constexpr std::size_t largeSide = 4096;
    std::vector<Tile> small;
    for (const Raster& raster : storms(storm, smallSide, ringSize)) {
        small.push_back(tileOf(raster, false));
    }
    const Tile large = tileOf(storms(storm, largeSide, 1)[0], false);
    Bench smallBench(smallSide);
    Bench largeBench(largeSide);
    std::size_t turn = 0;
    return compare(std::string("4096² ") + name,
                   {{"Rad2 to RGBA", [&] { largeBench.decode(large); }, largeBench.pixels()},
                    {"256²", [&] { smallBench.decode(small[turn++ % small.size()]); }, smallBench.pixels()},
                    {"memset", [&] { largeBench.clear(); }, largeBench.pixels()}},
                   {{1, 1.05}, {2, memory}}, 15);
}

}  // namespace

int main() {
    bool isKept = true;
    for (const std::size_t side : {256U, 512U, 1024U}) {
        isKept = keepsUp("sparse", storms(Storm::sparse, side, ringSize),
                         {.png = 25, .fill = 2.2, .memory = 3.5}) &&
                 isKept;
        isKept =
            keepsUp("busy", storms(Storm::busy, side, ringSize), {.png = 18, .fill = 6.5, .memory = 8}) &&
            isKept;
        isKept =
            keepsUp("worst", storms(Storm::worst, side, ringSize), {.png = 4.5, .fill = 4, .memory = 13}) &&
            isKept;
    }
    isKept = keepsUp("realistic", storms(Storm::realistic, 256, ringSize), weather) && isKept;
    isKept = keepsUpOnRealWeather() && isKept;
    isKept = usesBothProcessors() && isKept;
    isKept = growsWithPixelsOnly("busy", Storm::busy, 8) && isKept;
    isKept = growsWithPixelsOnly("worst", Storm::worst, 13) && isKept;
    return isKept ? 0 : 1;
}

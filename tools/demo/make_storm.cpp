// Prints a made-up squall line as PGM, a palette index for each pixel (dBZ + 32, snow another 128 higher, 0
// where there is no echo):
//   make_storm SIDE SEED

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <vector>

namespace {

/// Smooth noise from 0 to 1 that a seed determines.
class Noise {
  public:
    explicit Noise(std::uint32_t seed) : seed_(seed) {}

    /// Noise of one grain in each unit square, and ever finer and weaker grains in it.
    [[nodiscard]] double at(double x, double y, int octaves) const {
        double sum = 0;
        double weights = 0;
        double weight = 1;
        for (int octave = 0; octave < octaves;
             ++octave, weight *= 0.55, x = 2.03 * x + 17, y = 2.03 * y + 5) {
            sum += weight * smooth(x, y);
            weights += weight;
        }
        return sum / weights;
    }

    /// A value of its own for each lattice point.
    [[nodiscard]] double grain(double x, double y) const {
        std::uint32_t bits = seed_ * 0x9E3779B9U;
        for (const double coordinate : {x, y}) {
            bits ^= static_cast<std::uint32_t>(static_cast<std::int32_t>(coordinate));
            bits *= 0x85EBCA6BU;
            bits ^= bits >> 15U;
            bits *= 0xC2B2AE35U;
            bits ^= bits >> 13U;
        }
        return bits / 4294967296.0;
    }

  private:
    [[nodiscard]] double smooth(double x, double y) const {
        const double left = std::floor(x);
        const double top = std::floor(y);
        const auto ease = [](double t) { return t * t * (3 - 2 * t); };
        const double u = ease(x - left);
        const double upper = std::lerp(grain(left, top), grain(left + 1, top), u);
        const double lower = std::lerp(grain(left, top + 1), grain(left + 1, top + 1), u);
        return std::lerp(upper, lower, ease(y - top));
    }

    std::uint32_t seed_;
};

/// Reflectivity in dBZ at a place from 0 to 1 on both axes; at most 0 where there is no echo.
double reflectivity(const Noise& noise, double x, double y) {
    // Turbulence bends everything.
    const double bentX = x + 0.10 * (noise.at(3 * x, 3 * y + 40, 4) - 0.5);
    const double bentY = y + 0.10 * (noise.at(3 * x + 80, 3 * y, 4) - 0.5);
    // The line bows eastward; cells stand along its front, steady rain trails behind it.
    const double front = 0.66 - 0.9 * std::pow(bentY - 0.52, 2) - 0.15 * (bentY - 0.5);
    const double cells = noise.at(11 * bentX, 11 * bentY, 5);
    const double ahead = bentX - front + 0.09 * (noise.at(15 * x + 60, 15 * y, 4) - 0.5);
    const double line = 44 * std::exp(-std::pow(ahead / 0.035, 2)) * (0.15 + 1.7 * cells);
    const double behind = std::exp(-std::pow((ahead + 0.19) / 0.15, 2));
    const double rain = 58 * behind * (noise.at(5 * bentX, 5 * bentY, 6) - 0.12);
    // Scattered showers in the air that the line runs into.
    const double showers = 150 * (noise.at(9 * bentX + 30, 9 * bentY, 5) - 0.68) * (ahead > 0 ? 1.0 : 0.6);
    return std::max({line, rain, showers});
}

std::vector<std::uint8_t> storm(std::size_t side, std::uint32_t seed) {
    constexpr double snow = 128;
    const Noise noise(seed);
    std::vector<std::uint8_t> indices;
    indices.reserve(side * side);
    for (std::size_t row = 0; row < side; ++row) {
        for (std::size_t column = 0; column < side; ++column) {
            const double x = static_cast<double>(column) / static_cast<double>(side);
            const double y = static_cast<double>(row) / static_cast<double>(side);
            const double grain = noise.grain(x * 8192 + 9000, y * 8192);
            double value = reflectivity(noise, x, y) + 1.2 * (grain - 0.5);
            if (grain > 0.996) {
                value = std::max(value, 12 * noise.grain(x * 8192, y * 8192 + 9000));  // clutter
            }
            const bool isSnow = y < 0.22 + 0.16 * x + 0.14 * (noise.at(6 * x, 6 * y + 90, 5) - 0.5);
            const double index = 32 + std::clamp(std::round(value), 0.0, 74.0) + (isSnow ? snow : 0);
            indices.push_back(static_cast<std::uint8_t>(value < 3 ? 0 : index));
        }
    }
    return indices;
}

std::optional<std::uint32_t> numberOf(std::string_view text) {
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    constexpr std::uint32_t maximalSide = 8192;
    const auto side = argumentCount == 3 ? numberOf(arguments[1]) : std::nullopt;
    const auto seed = side ? numberOf(arguments[2]) : std::nullopt;
    if (!seed || *side == 0 || *side > maximalSide) {
        std::fprintf(stderr, "make_storm: expected a side from 1 to %u and a seed\n", maximalSide);
        return 2;
    }
    const auto indices = storm(*side, *seed);
    std::printf("P5 %u %u 255\n", *side, *side);
    const bool isWritten =
        std::fwrite(indices.data(), 1, indices.size(), stdout) == indices.size() && std::fflush(stdout) == 0;
    return isWritten ? EXIT_SUCCESS : EXIT_FAILURE;
}

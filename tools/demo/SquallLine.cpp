#include "tools/demo/SquallLine.hpp"

#include <algorithm>
#include <cmath>

namespace nimbuscope::demo {
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

}  // namespace

Raster makeSquallLine(std::size_t width, std::size_t height, std::uint32_t seed) {
    constexpr double snow = 128;
    const Noise noise(seed);
    Raster raster{.width = width, .height = height, .indices = {}};
    raster.indices.reserve(width * height);
    for (std::size_t row = 0; row < height; ++row) {
        for (std::size_t column = 0; column < width; ++column) {
            const double x = static_cast<double>(column) / static_cast<double>(width);
            const double y = static_cast<double>(row) / static_cast<double>(height);
            const double grain = noise.grain(x * 8192 + 9000, y * 8192);
            double value = reflectivity(noise, x, y) + 1.2 * (grain - 0.5);
            if (grain > 0.996) {
                value = std::max(value, 12 * noise.grain(x * 8192, y * 8192 + 9000));  // clutter
            }
            const bool isSnow = y < 0.22 + 0.16 * x + 0.14 * (noise.at(6 * x, 6 * y + 90, 5) - 0.5);
            const double index = 32 + std::clamp(std::round(value), 0.0, 74.0) + (isSnow ? snow : 0);
            raster.indices.push_back(static_cast<std::uint8_t>(value < 3 ? 0 : index));
        }
    }
    return raster;
}

}  // namespace nimbuscope::demo

#include "tools/demo/Storms.hpp"

#include <algorithm>
#include <cmath>
#include <random>

#include "tools/demo/SquallLine.hpp"

namespace nimbuscope::demo {
namespace {

/// Random numbers that do not depend on how a library makes its distributions.
class Dice {
  public:
    explicit Dice(std::uint32_t seed) : random_(seed) {}

    /// From 0 to below 1.
    double fraction() { return static_cast<double>(random_()) / 4294967296.0; }
    double between(double low, double high) { return low + fraction() * (high - low); }
    bool isOnceIn(double count) { return fraction() * count < 1; }

  private:
    std::mt19937 random_;
};

constexpr double noEcho = 0;
constexpr double strongest = 75;

/// Reflectivity in dBZ per pixel.
struct Field {
    std::size_t width;
    std::size_t height;
    std::vector<double> values = std::vector<double>(width * height, noEcho);

    [[nodiscard]] double echoShare() const {
        const auto count = std::ranges::count_if(values, [](double value) { return value > noEcho; });
        return static_cast<double>(count) / static_cast<double>(values.size());
    }
};

/// A cell whose reflectivity falls off from the middle; most of it weaker than its core suggests.
void addCell(Field& field, Dice& dice, double largestRadius) {
    const double radius = 3 + (largestRadius - 3) * std::pow(dice.fraction(), 3);
    const double centerX = dice.between(0, static_cast<double>(field.width));
    const double centerY = dice.between(0, static_cast<double>(field.height));
    const double peak = dice.between(15, 62);
    const double stretch = dice.between(0.6, 1);
    const auto first = [](double from) { return static_cast<std::size_t>(std::max(from, 0.0)); };
    const auto last = [](double to, std::size_t end) {
        return std::min(static_cast<std::size_t>(to) + 1, end);
    };
    for (std::size_t y = first(centerY - radius); y < last(centerY + radius, field.height); ++y) {
        for (std::size_t x = first(centerX - radius); x < last(centerX + radius, field.width); ++x) {
            const double distance =
                std::hypot(static_cast<double>(x) - centerX, (static_cast<double>(y) - centerY) / stretch);
            if (distance < radius) {
                double& value = field.values[y * field.width + x];
                value = std::max(value, 4 + (peak - 4) * (1 - std::pow(distance / radius, 2)));
            }
        }
    }
}

void addCells(Field& field, Dice& dice, double share, double largestRadius) {
    // Counting after each cell would take longer than the cells.
    constexpr double pixelsPerCell = 1500;
    for (double echo = field.echoShare(); echo < share; echo = field.echoShare()) {
        const double missing = (share - echo) * static_cast<double>(field.values.size());
        for (auto cells = 1 + static_cast<std::size_t>(missing / pixelsPerCell); cells > 0; --cells) {
            addCell(field, dice, largestRadius);
        }
    }
}

/// Slanting bands of rain over all of the field.
double bandAt(std::size_t x, std::size_t y, double phase) {
    const double along = static_cast<double>(x) * 0.021 + static_cast<double>(y) * 0.034 + phase;
    const double across = static_cast<double>(x) * 0.013 - static_cast<double>(y) * 0.008 + 2 * phase;
    return 26 + 22 * std::sin(along) * std::sin(across + 0.6 * std::sin(along * 0.37));
}

/// Bands whose values are drawn anew every `meanLength` pixels in the mean.
void addBands(Field& field, Dice& dice, double meanLength, double jitter) {
    const double phase = dice.between(0, 10);
    double previous = -1;
    for (std::size_t i = 0; i < field.values.size(); ++i) {
        double& value = field.values[i];
        value = previous;
        if (i == 0 || dice.isOnceIn(meanLength)) {
            while (value == previous) {
                const double drawn =
                    bandAt(i % field.width, i / field.width, phase) + dice.between(-jitter, jitter);
                value = std::floor(std::clamp(drawn, noEcho, strongest));
            }
        }
        previous = value;
    }
}

void addSpeckle(Field& field, Dice& dice, double share) {
    for (auto count = static_cast<std::size_t>(share * static_cast<double>(field.values.size())); count > 0;
         --count) {
        const auto place =
            static_cast<std::size_t>(dice.fraction() * static_cast<double>(field.values.size()));
        field.values[place] = dice.between(1, 25);
    }
}

void roughen(Field& field, Dice& dice, double jitter) {
    for (double& value : field.values) {
        if (value > noEcho) {
            value = std::clamp(value + dice.between(-jitter, jitter), noEcho, strongest);
        }
    }
}

Raster rasterOf(const Field& field, double step, std::size_t snowRows) {
    constexpr std::size_t snow = 128;
    Raster raster{.width = field.width, .height = field.height, .indices = {}};
    raster.indices.reserve(field.values.size());
    for (std::size_t i = 0; i < field.values.size(); ++i) {
        const double value = field.values[i];
        const auto index = static_cast<std::size_t>(32 + std::ceil(value / step) * step);
        const bool isSnow = i / field.width < snowRows;
        raster.indices.push_back(static_cast<std::uint8_t>(value > noEcho ? index + (isSnow ? snow : 0) : 0));
    }
    return raster;
}

}  // namespace

Raster makeStorm(Storm storm, std::size_t width, std::size_t height, std::uint32_t seed) {
    Dice dice(seed);
    Field field{.width = width, .height = height};
    switch (storm) {
        case Storm::sparse:
            addCells(field, dice, 0.05, 30);
            return rasterOf(field, 4, 0);
        case Storm::busy:
            addBands(field, dice, 6, 8);
            return rasterOf(field, 1, 0);
        case Storm::worst:
            addBands(field, dice, 1, 20);
            return rasterOf(field, 1, 0);
        case Storm::realistic:
            addCells(field, dice, 0.17, 60);
            roughen(field, dice, 2);
            addSpeckle(field, dice, 0.006);
            return rasterOf(field, 1, height / 3);
        case Storm::squall:
            break;
    }
    return makeSquallLine(width, height, seed);
}

double meanRun(const Raster& raster) {
    std::size_t runs = 1;
    for (std::size_t i = 1; i < raster.indices.size(); ++i) {
        runs += raster.indices[i] != raster.indices[i - 1] ? 1 : 0;
    }
    return static_cast<double>(raster.indices.size()) / static_cast<double>(runs);
}

}  // namespace nimbuscope::demo

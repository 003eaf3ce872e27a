#include "tools/drawing/Axis.hpp"

#include <array>
#include <cmath>
#include <cstdio>

namespace nimbuscope::drawing {
namespace {

std::string labelOf(double value) {
    std::array<char, 32> text{};
    const int size = std::snprintf(text.data(), text.size(), "%g", value == 0 ? 0.0 : value);
    return {text.data(), static_cast<std::size_t>(size)};
}

}  // namespace

int offsetOf(double value, const Axis& axis, int length) {
    return static_cast<int>(std::lround((value - axis.from) / (axis.to - axis.from) * length));
}

std::vector<Tick> ticksOf(const Axis& axis, int length) {
    std::vector<Tick> ticks;
    const double span = axis.to - axis.from;
    if (!(span > 0) || !(axis.step > 0)) {
        return ticks;
    }
    const double tolerance = span * 1e-9;
    for (double i = std::ceil((axis.from - tolerance) / axis.step); i * axis.step <= axis.to + tolerance;
         ++i) {
        const double value = i * axis.step;
        ticks.push_back({offsetOf(value, axis, length), labelOf(value)});
    }
    return ticks;
}

double labelStep(double from, double to, int count) {
    const double least = (to - from) / count;
    if (!(least > 0) || !std::isfinite(least)) {
        return 1;
    }
    const double power = std::pow(10.0, std::floor(std::log10(least)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (factor * power >= least) {
            return factor * power;
        }
    }
    return 10 * power;
}

Axis roundAxis(double least, double most, int count, std::string unit) {
    const double step = labelStep(least, most, count);
    const double from = std::floor(least / step) * step;
    const double to = std::ceil(most / step) * step;
    return {.from = from, .to = to > from ? to : from + step, .step = step, .unit = std::move(unit)};
}

}  // namespace nimbuscope::drawing

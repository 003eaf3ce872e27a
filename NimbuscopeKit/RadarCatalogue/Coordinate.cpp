#include "NimbuscopeKit/RadarCatalogue/Coordinate.hpp"

#include <cmath>
#include <numbers>

namespace nimbuscope {

Coordinate Coordinate::sliderShifted(double by, double distance, double bearing) const {
    constexpr double degree = std::numbers::pi / 180;
    constexpr double equatorialRadius = 6378137.0;  // metres, WGS 84
    constexpr double metresPerStep = 0.0004;        // of the slider, for each metre of distance
    const double phi = latitude * degree;
    const double delta = distance * metresPerStep * by / -equatorialRadius;
    const double shifted =
        std::asin(std::sin(phi) * std::cos(delta) + std::cos(phi) * std::sin(delta) * std::cos(bearing));
    return {shifted / degree, longitude};
}

}  // namespace nimbuscope

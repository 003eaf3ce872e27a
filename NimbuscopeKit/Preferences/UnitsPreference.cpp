#include "NimbuscopeKit/Preferences/UnitsPreference.hpp"

#include <cmath>

namespace nimbuscope {

std::string_view title(UnitsPreference units) {
    switch (units) {
        case UnitsPreference::Imperial:
            return "imperial";
        case UnitsPreference::Metric:
            return "metric";
        case UnitsPreference::Hybrid:
            break;
    }
    return "mixed";
}

double temperature(UnitsPreference units, double celsius) {
    return units == UnitsPreference::Imperial ? celsius * 1.8 + 32 : celsius;
}

double distance(UnitsPreference units, double kilometres) {
    return isMiles(units) ? kilometres * 0.621371192 : kilometres;
}

double mmToInch(UnitsPreference units, double millimetres) {
    return isMiles(units) ? millimetres * 0.0393700787 : millimetres;
}

double milesToMeters(double miles) {
    return miles * 1609.344;
}

bool isMiles(UnitsPreference units) {
    return units != UnitsPreference::Metric;
}

double reflectivityToRainrate(UnitsPreference units, std::int64_t dBZ) {
    const double reflectivity = std::pow(10, static_cast<double>(dBZ) / 10);
    return mmToInch(units, std::pow(reflectivity / 200, 0.625));
}

}  // namespace nimbuscope

#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "Platform/Core/Export.hpp"

namespace nimbuscope {

/// The units in which values are shown. `Hybrid` is Celsius with miles and inches.
enum class UnitsPreference : std::int64_t { Imperial = 0, Metric = 1, Hybrid = 2 };

constexpr auto caseTable(UnitsPreference) {
    return std::array{UnitsPreference::Imperial, UnitsPreference::Metric, UnitsPreference::Hybrid};
}

/// "imperial", "metric" or "mixed"; not localised.
[[nodiscard]] NIMBUSCOPE_EXPORT std::string_view title(UnitsPreference units);

/// Degrees Celsius as Fahrenheit for `Imperial`, unchanged otherwise.
[[nodiscard]] NIMBUSCOPE_EXPORT double temperature(UnitsPreference units, double celsius);

/// Kilometres as miles unless `Metric`.
[[nodiscard]] NIMBUSCOPE_EXPORT double distance(UnitsPreference units, double kilometres);

/// Millimetres as inches unless `Metric`.
[[nodiscard]] NIMBUSCOPE_EXPORT double mmToInch(UnitsPreference units, double millimetres);

/// International miles as metres, whatever the units.
[[nodiscard]] NIMBUSCOPE_EXPORT double milesToMeters(double miles);

/// True for every case but `Metric`.
[[nodiscard]] NIMBUSCOPE_EXPORT bool isMiles(UnitsPreference units);

/// The rain rate that causes a reflectivity in dBZ, in mm/h for `Metric` and in/h otherwise: Z = 200 R^1.6
/// (Marshall–Palmer) solved for R.
[[nodiscard]] NIMBUSCOPE_EXPORT double reflectivityToRainrate(UnitsPreference units, std::int64_t dBZ);

}  // namespace nimbuscope

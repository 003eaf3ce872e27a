#pragma once

#include <simdjson.h>

#include <string>
#include <string_view>

#include "NimbuscopeKit/Forecast/ApiForecast.hpp"
#include "Platform/Core/Data.hpp"

/// What the decoder of forecasts is measured against, and on.
namespace nimbuscope::benchmarks {

/// A forecast of 48 hours, 10 days and 60 samples of the nowcast, every field present.
[[nodiscard]] ApiForecast wholeForecast();

/// The obvious way: a whole tree of values, then `get<>` of the records.
[[nodiscard]] ApiForecast decodeForecastWithTree(std::string_view json);

/// The fast way, written by hand for these records: no tree, keys in any order, no copy of the text (whose
/// capacity has room for the parser).
[[nodiscard]] ApiForecast decodeForecastOnDemand(const platform::Data& json);

}  // namespace nimbuscope::benchmarks

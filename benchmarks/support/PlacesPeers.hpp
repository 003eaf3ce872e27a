#pragma once

#include <simdjson.h>

#include <string>
#include <string_view>
#include <vector>

#include "NimbuscopeIntentHandler/Places/Place.hpp"
#include "Platform/Core/Data.hpp"

/// What the decoder of places is measured against, and on.
namespace nimbuscope::benchmarks {

/// A list of `count` places as the application stores it, every field present.
[[nodiscard]] std::string placesDocument(std::size_t count);

/// The obvious way: a whole tree of values, then `get<>` of the records.
[[nodiscard]] std::vector<Place> decodeWithTree(std::string_view json);

/// The fast way, written by hand for these records: no tree, keys in any order, no copy of the text (whose
/// capacity has room for the parser).
[[nodiscard]] std::vector<Place> decodeOnDemand(simdjson::ondemand::parser& parser,
                                                const platform::Data& json);

}  // namespace nimbuscope::benchmarks

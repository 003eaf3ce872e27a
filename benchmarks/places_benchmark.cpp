// Decoding a list of saved places: the decoder against a tree with get<> and against a reader written by
// hand, and a long list against a short one. Times are per place.

#include "NimbuscopeIntentHandler/Places/SharedStorage.hpp"
#include "Platform/Coding/JSONDecoder.hpp"
#include "support/PlacesPeers.hpp"
#include "support/Ratios.hpp"

using namespace nimbuscope;
using namespace nimbuscope::benchmarks;

namespace {

/// The list as the store hands it out, with room behind it for the parser.
platform::Data storedList(std::size_t count) {
    platform::Data json = platform::dataOf(placesDocument(count));
    json.reserve(json.size() + platform::JSONDocument::enough);
    return json;
}

Contender decoder(const platform::Data& json, std::size_t count) {
    return {"decoder", [&json] { benchmark::DoNotOptimize(platform::JSONDecoder().decodeList<Place>(json)); },
            static_cast<double>(count)};
}

bool compareAt(std::size_t count, int rounds) {
    const platform::Data json = storedList(count);
    const auto unit = static_cast<double>(count);
    const std::string title = std::to_string(count) + " places";
    return compare(
        title,
        {decoder(json, count),
         {"by hand",
          [&] {
              simdjson::ondemand::parser parser;
              benchmark::DoNotOptimize(decodeOnDemand(parser, json));
          },
          unit},
         {"tree and get<>", [&] { benchmark::DoNotOptimize(decodeWithTree(platform::textOf(json))); }, unit}},
        {{1, 1.3}, {2, 1.0 / 8}}, rounds);
}

}  // namespace

int main() {
    const platform::Data shortList = storedList(1000);
    const platform::Data longList = storedList(100000);
    auto longDecoder = decoder(longList, 100000);
    auto shortDecoder = decoder(shortList, 1000);
    shortDecoder.name = "of 1000";
    const bool isKept[] = {compareAt(1000, 31), compareAt(100000, 5),
                           compare("100000 places", {longDecoder, shortDecoder}, {{1, 1.3}}, 7, 0.2)};
    return std::ranges::all_of(isKept, std::identity()) ? 0 : 1;
}

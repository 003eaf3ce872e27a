// Decoding a whole forecast: the decoder against a tree with get<> and against a reader written by hand.

#include "Platform/Coding/JSONDecoder.hpp"
#include "Platform/Coding/JSONEncoder.hpp"
#include "support/ForecastPeers.hpp"
#include "support/Ratios.hpp"

using namespace nimbuscope;
using namespace nimbuscope::benchmarks;

int main() {
    const ApiForecast forecast = wholeForecast();
    platform::Data json = platform::dataOf(platform::JSONEncoder().encode(forecast).value());
    json.reserve(json.size() + platform::JSONDocument::enough);
    const auto decode = [&] { return platform::JSONDecoder().decode<ApiForecast>(json); };
    if (decode() != forecast || decodeForecastOnDemand(json) != forecast ||
        decodeForecastWithTree(platform::textOf(json)) != forecast) {
        std::puts("the contenders read different things");
        return 1;
    }
    const bool isKept =
        compare("forecast of " + std::to_string(json.size()) + " bytes",
                {{"decoder", [&] { benchmark::DoNotOptimize(decode()); }},
                 {"by hand", [&] { benchmark::DoNotOptimize(decodeForecastOnDemand(json)); }},
                 {"tree and get<>",
                  [&] { benchmark::DoNotOptimize(decodeForecastWithTree(platform::textOf(json))); }}},
                {{1, 1.4}, {2, 1.0 / 8}}, 101);
    return isKept ? 0 : 1;
}

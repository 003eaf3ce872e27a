// The ten paths that everything passes through, for counting their instructions under callgrind: each is run
// once with the same input as ever, and its counts are dumped under its name. scripts/counts compares them.

#include <valgrind/callgrind.h>

#include "NimbuscopeIntentHandler/Places/Place.hpp"
#include "NimbuscopeKit/Networking/RequestSigner.hpp"
#include "NimbuscopeKit/Preferences/Migration.hpp"
#include "NimbuscopeKit/Preferences/PreferencesServiceImpl.hpp"
#include "NimbuscopeKit/RadarImagery/Png.hpp"
#include "NimbuscopeKit/RadarImagery/Rad2File.hpp"
#include "NimbuscopeKit/RadarImagery/Rad2Writer.hpp"
#include "NimbuscopeKit/RadarImagery/RadarColorScheme.hpp"
#include "Platform/Coding/JSONDecoder.hpp"
#include "Platform/Coding/JSONEncoder.hpp"
#include "colorschemes/text/ColorTable.hpp"
#include "support/ForecastPeers.hpp"
#include "support/PlacesPeers.hpp"
#include "tests/support/LibPNG.hpp"
#include "tools/demo/Storms.hpp"

using namespace nimbuscope;
using namespace nimbuscope::benchmarks;
using demo::Storm;

namespace {

constexpr std::size_t side = 256;
constexpr std::size_t tileSize = side * side * 4;

/// Counts what `work` executes beyond the first time, when tables are made and symbols bound. What it returns
/// tells whether it worked.
template <class Work>
void count(const char* name, Work work) {
    const bool isWarm = static_cast<bool>(work());
    CALLGRIND_ZERO_STATS;
    CALLGRIND_TOGGLE_COLLECT;
    const bool isDone = static_cast<bool>(work());
    CALLGRIND_TOGGLE_COLLECT;
    CALLGRIND_DUMP_STATS_AT(name);
    if (!isWarm || !isDone) {
        std::fprintf(stderr, "%s failed\n", name);
        std::exit(1);
    }
}

void countPalette() {
    ColorTable table{.name = "Storms", .units = "DBZ"};
    for (std::uint8_t i = 0; i < 64; ++i) {
        table.stops.push_back({.value = i + 0.5, .color = {i, 128, 255, 255}});
    }
    const std::string text = colorTableText(table);
    count("palette", [&] { return parseColorTable(text); });
}

void countTiles() {
    const RadarColorScheme scheme(4, true, true, -32);
    platform::Data out(tileSize);
    for (const auto& [name, storm] : {std::pair{"rad2-busy", Storm::busy}, {"rad2-worst", Storm::worst}}) {
        const auto raster = demo::makeStorm(storm, side, side, 1);
        const auto rad2 = Rad2Writer::write({.width = side, .height = side, .indices = raster.indices});
        const auto file = Rad2File::parse(rad2.value()).value();
        count(name, [&] { return file.decode(scheme.colors(), false, out); });
    }
    const auto raster = demo::makeStorm(Storm::busy, side, side, 1);
    count("rad2-write",
          [&] { return Rad2Writer::write({.width = side, .height = side, .indices = raster.indices}); });
    const Png png(testing::writeIndices(side, side, raster.indices));
    count("png-colors", [&] { return png.bytes(scheme.colors(), false, out); });
    platform::Data universal(tileSize);
    for (std::size_t i = 0; i < raster.indices.size(); ++i) {
        universal[4 * i] = raster.indices[i] % 128;
        universal[4 * i + 2] = universal[4 * i + 3] = raster.indices[i] > 0 ? 255 : 0;
    }
    count("recoloring", [&] { return scheme.applyColors(universal, std::span(out)); });
}

/// Counts the decoding of a text with the room behind it that the parser asks for.
template <class Decode>
void countDecoding(const char* name, platform::Data json, const Decode& decode) {
    json.reserve(json.size() + platform::JSONDocument::enough);
    platform::JSONDecoder decoder;
    count(name, [&] { return decode(decoder, json).has_value(); });
}

void countRecords() {
    using platform::JSONDecoder;
    const auto dataOf = [](const auto& record) {
        return platform::dataOf(platform::JSONEncoder().encode(record).value());
    };
    countDecoding("places", platform::dataOf(placesDocument(100)),
                  [](JSONDecoder& decoder, const auto& json) { return decoder.decodeList<Place>(json); });
    countDecoding("forecast", dataOf(wholeForecast()), [](JSONDecoder& decoder, const auto& json) {
        return decoder.decode<ApiForecast>(platform::textOf(json), platform::JSONDocument::enough);
    });
    countDecoding("preferences", dataOf(AppPreferences()), [](JSONDecoder& decoder, const auto& json) {
        const auto migrated = migratedPreferences(json).value();
        return decoder.decode<AppPreferences>(migrated ? *migrated : json);
    });
}

void countSignature() {
    RequestSigner signer;
    const platform::URLRequest request{
        .url = "https://api.nimbus.example/mobile/maps/?step=600&nowcast_interval=600&interval=7200"};
    constexpr std::array<std::string_view, 1> host{"host"};
    count("signature", [&, day = 0]() mutable {
        const RequestSigner::Instant now = std::chrono::sys_days(std::chrono::days(++day));
        return signer.sign(request, host, "AKEXAMPLE", "s3cret", now);
    });
}

}  // namespace

int main() {
    countPalette();
    countTiles();
    countRecords();
    countSignature();
}

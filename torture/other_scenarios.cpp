#include <gtest/gtest.h>

#include <algorithm>

#include "NimbuscopeIntentHandler/Places/SharedStorage.hpp"
#include "NimbuscopeKit/Forecast/ApiForecast.hpp"
#include "NimbuscopeKit/Networking/RequestSigner.hpp"
#include "NimbuscopeKit/RadarImagery/Png.hpp"
#include "NimbuscopeKit/RadarImagery/Rad2File.hpp"
#include "NimbuscopeKit/RadarImagery/Rad2Writer.hpp"
#include "Platform/Coding/JSONDecoder.hpp"
#include "Platform/Coding/JSONEncoder.hpp"
#include "Platform/Linux/URLCache_sqlite.hpp"
#include "colorschemes/text/ColorTable.hpp"
#include "tests/support/TemporaryDirectory.hpp"
#include "torture/support/Scenario.hpp"

namespace nimbuscope::torture {
namespace {

using platform::Data;

// The cache.

constexpr std::size_t capacity = 40000;
constexpr int urls = 12;
constexpr int lastNumber = 20;

platform::CachedURLResponse newResponse(int number) {
    const auto instant = std::chrono::sys_seconds(std::chrono::seconds(1'700'000'000 + number));
    return {{"https://radar.example/tiles/" + std::to_string(number), 200, {{"Cache-Control", "max-age=60"}}},
            Data(static_cast<std::size_t>(3000), static_cast<std::uint8_t>(number)),
            {{"Accept", "*/*"}},
            instant,
            instant};
}

/// Made before anything is disturbed, all of them.
const platform::CachedURLResponse& response(int number) {
    static const auto all = [] {
        std::vector<platform::CachedURLResponse> made;
        for (int i = 0; i <= lastNumber; ++i) {
            made.push_back(newResponse(i));
        }
        return made;
    }();
    return all.at(static_cast<std::size_t>(number));
}

std::shared_ptr<platform::URLCache> cacheIn(const std::string& directory) {
    return platform::makeSQLiteURLCache(directory + "/cache", capacity);
}

void fill(const std::string& directory, int count) {
    const auto cache = cacheIn(directory);
    for (int i = 0; i < count; ++i) {
        cache->storeCachedResponse(response(i));
    }
}

/// Which responses there are, none of them wrong; and the cache can be used.
std::string held(const std::string& directory) {
    std::string numbers;
    {
        const auto cache = cacheIn(directory);
        for (int i = 0; i < urls; ++i) {
            const auto found = cache->cachedResponse(response(i).response.url);
            EXPECT_TRUE(!found || *found == response(i)) << i;
            numbers += found ? std::to_string(i) + ' ' : "";
        }
        cache->storeCachedResponse(response(lastNumber));
    }
    EXPECT_TRUE(cacheIn(directory)->cachedResponse(response(lastNumber).response.url) ==
                response(lastNumber));
    return numbers;
}

/// Work on the cache, which never says how it went.
template <class Use>
std::function<bool(const std::string&)> use(Use work) {
    return [work](const std::string& directory) {
        work(*cacheIn(directory));
        return false;
    };
}

// What keeps nothing.

/// Work that the directory has nothing to do with.
template <class Work>
Scenario pure(std::string name, Work work) {
    return {std::move(name), [](const std::string&) {}, [work](const std::string&) { return work(); },
            [](const std::string&) { return std::string(); }};
}

/// Whether there is a value; expects that it is then the right one.
template <class T, class E>
bool gives(const platform::Result<T, E>& result, const T& expected) {
    EXPECT_TRUE(!result || *result == expected) << "a wrong result";
    return result.has_value();
}

ApiForecast someForecast() {
    ApiForecast forecast;
    forecast.data.timezone = "Europe/Lisbon";
    forecast.data.hourly.data.resize(12, {.time = 7, .icon = "a long enough code of an icon"});
    forecast.data.daily.data.resize(5);
    forecast.data.alerts.resize(3, {.id = "identifier of an alert of some length"});
    return forecast;
}

Data readCorpus(const std::string& name) {
    return platform::dataOf(testing::readFile(NIMBUSCOPE_SOURCE_DIRECTORY "/fuzz/corpus/" + name));
}

Data colors() {
    return Data(Rad2File::tableSize, 0x7F);
}

std::vector<Scenario> codingOfJSON() {
    const ApiForecast forecast = someForecast();
    const std::string text = platform::JSONEncoder().encode(forecast).value();
    const std::string place = R"({"id":"a","icon":"i","name":"A name that does not fit","current":false,)"
                              R"("geolocated":true,"staticCoordinate":{"latitude":1,"longitude":2}})";
    const Data list = platform::dataOf('[' + place + ',' + place + ",5," + place + ']');
    return {
        pure("a forecast is decoded",
             [=] { return gives(platform::JSONDecoder().decode<ApiForecast>(text), forecast); }),
        pure("a forecast is encoded", [=] { return gives(platform::JSONEncoder().encode(forecast), text); }),
        pure("a faulty forecast is refused",
             [=] {
                 const auto decoded =
                     platform::JSONDecoder().decode<ApiForecast>(text.substr(0, text.size() - 1));
                 EXPECT_FALSE(decoded);
                 return true;
             }),
        pure("places are decoded",
             [=] {
                 EXPECT_EQ(decodePlaces(list).size(), 3U) << "places were left out";
                 return true;
             }),
    };
}

std::vector<Scenario> codingOfImages() {
    const Data rad2 = readCorpus("rad2/noise-with-arrows");
    const Data indices = Rad2File::parse(rad2)->decodeIndices(1U << 20U).value();
    const Data png = readCorpus("png_tile/indexed-8");
    const Data stops = readCorpus("stop_list/end-colours");
    const std::string table(platform::textOf(readCorpus("color_table/end-colours")));
    const Data pixels(64U * 64U * 4U, 0x33);
    const Data encoded = platform::encodePNG(64, 64, pixels).value();
    const auto colored = Png::make(png, {})->bytes(colors(), false).value();
    const auto list = stopListOf(parseColorTable(table).value()).value();
    return {
        pure("a Rad2 tile is decoded",
             [=] {
                 const auto file = Rad2File::parse(rad2);
                 return file && gives(file->decodeIndices(1U << 20U), indices);
             }),
        pure("a Rad2 tile is written",
             [=] { return Rad2Writer::write({.width = 64, .height = 1, .indices = indices}).has_value(); }),
        pure("a PNG tile is coloured",
             [=] {
                 const auto tile = Png::make(png, {});
                 const auto bytes = tile ? tile->bytes(colors(), false) : std::nullopt;
                 EXPECT_TRUE(!bytes || *bytes == colored) << "wrong colours";
                 return bytes.has_value();
             }),
        pure("a PNG image is written", [=] { return gives(platform::encodePNG(64, 64, pixels), encoded); }),
        pure("a colour table is compiled",
             [=] {
                 const auto parsed = parseColorTable(table);
                 return parsed && gives(stopListOf(*parsed), list);
             }),
        pure("a stop list is read", [=] { return !stopsOfList(stops.data(), true).empty(); }),
    };
}

std::vector<Scenario> security() {
    using namespace std::chrono_literals;
    constexpr auto now = std::chrono::sys_days(2024y / 3 / 7) + 9h;
    const auto sign = [=] {
        constexpr std::array<std::string_view, 1> host{"host"};
        const platform::URLRequest request{
            .url = "https://api.nimbus.example/mobile/maps/?step=600&interval=7200&b=%C3%A9"};
        const auto signature = RequestSigner().sign(request, host, "access key", "the secret", now);
        return signature ? signature->signature : std::string();
    };
    const Data key(platform::aesKeySize, 1);
    const Data plain(1000, 2);
    const auto encrypt = [=] { return platform::crypt(platform::CryptOperation::encrypt, key, key, plain); };
    const std::string signature = sign();
    const Data encrypted = encrypt().value();
    return {
        pure("a request is signed",
             [=] {
                 EXPECT_EQ(sign(), signature);
                 return true;
             }),
        pure("data are encrypted", [=] { return gives(encrypt(), encrypted); }),
    };
}

}  // namespace

std::vector<Scenario> cacheScenarios() {
    const auto some = [](const std::string& directory) { fill(directory, 5); };
    std::vector<Scenario> all{
        {"the cache is made with the first response", [](const std::string&) {},
         use([](auto& cache) { cache.storeCachedResponse(response(0)); }), held},
        {"a response is cached", some, use([](auto& cache) { cache.storeCachedResponse(response(7)); }),
         held},
        {"a cached response is found", some, use([](auto& cache) {
             const auto found = cache.cachedResponse(response(2).response.url);
             EXPECT_TRUE(!found || *found == response(2));
         }),
         held},
        {"older responses make room", [](const std::string& directory) { fill(directory, urls); },
         use([](auto& cache) { cache.storeCachedResponse(response(0)); }), held},
        {"a response is dropped", some,
         use([](auto& cache) { cache.removeCachedResponse(response(2).response.url); }), held},
        {"all responses are dropped", some, use([](auto& cache) { cache.removeAllCachedResponses(); }), held},
        {"a damaged cache is made anew",
         [](const std::string& directory) {
             fill(directory, 1);
             testing::writeFile(directory + "/cache/responses.sqlite", std::string(9000, '.'));
         },
         use([](auto& cache) { cache.storeCachedResponse(response(3)); }), held},
    };
    std::ranges::for_each(all, [](Scenario& scenario) { scenario.tells = false; });
    return all;
}

std::vector<Scenario> codingScenarios() {
    std::vector<Scenario> all;
    for (auto& some : {codingOfJSON(), codingOfImages(), security()}) {
        all.insert(all.end(), some.begin(), some.end());
    }
    return all;
}

}  // namespace nimbuscope::torture

// tile STORE: chooses a colour scheme in the preferences that the directory STORE keeps, each run the other
// of two, and draws a small radar tile in it.

#include <cstdio>
#include <memory>

#include "NimbuscopeKit/Preferences/PreferencesServiceImpl.hpp"
#include "NimbuscopeKit/RadarImagery/Rad2File.hpp"
#include "NimbuscopeKit/RadarImagery/Rad2Writer.hpp"
#include "NimbuscopeKit/RadarImagery/RadarColorScheme.hpp"
#include "Platform/Linux/Locale_icu.hpp"
#include "Platform/Linux/NSUserDefaults_sqlite.hpp"

using namespace nimbuscope;

namespace {

int failed(const std::string& reason) {
    std::fprintf(stderr, "tile: %s\n", reason.c_str());
    return 1;
}

// The index of a pixel is its reflectivity in dBZ + 32.
constexpr std::uint8_t dry = 0;
constexpr std::uint8_t drizzle = 10 + 32;
constexpr std::uint8_t rain = 35 + 32;
constexpr std::uint8_t hail = 60 + 32;
constexpr std::array<std::uint8_t, 12> shower{
    dry, drizzle, rain, drizzle,  //
    dry, rain,    hail, rain,     //
    dry, drizzle, rain, drizzle,
};

}  // namespace

int main(int count, char** arguments) {
    if (count != 2) {
        return failed("say where the store is");
    }
    platform::SQLiteUserDefaultsSuites stores(arguments[1]);
    const auto standard = stores.standard();
    const auto group = stores.suite(PreferencesServiceImpl::appGroupIdentifier);
    if (!standard || !group) {
        return failed((standard ? group : standard).error().reason);
    }
    PreferencesServiceImpl service(**standard, *group, nullptr,
                                   std::make_shared<platform::ICULocale>(platform::ICULocale::ofUser()));
    service.modifyPreferences([](AppPreferences& preferences) {
        auto& scheme = preferences.layer.colorScheme;
        scheme = scheme == ColorSchemePreference::storm ? ColorSchemePreference::orange
                                                        : ColorSchemePreference::storm;
    });
    const auto scheme = platform::rawValue(service.preferences().layer.colorScheme);

    const auto file = Rad2Writer::write({.width = 4, .height = 3, .indices = shower});
    if (!file) {
        return failed(file.error().reason);
    }
    const auto tile = Rad2File::parse(*file);
    if (!tile) {
        return failed(tile.error().message());
    }
    const RadarColorScheme colors(scheme, /*snow=*/false, /*enhanced=*/true, /*minimalDbz=*/0);
    const auto pixels = tile->decode(colors.colors(), /*inversed=*/false, /*maximalPixels=*/1'000'000);
    if (!pixels) {
        return failed(pixels.error().message());
    }
    std::printf("scheme %lld\n", static_cast<long long>(scheme));
    for (std::size_t i = 0; i < pixels->size(); i += 4) {
        const std::uint8_t* pixel = pixels->data() + i;
        std::printf("%02x%02x%02x%02x%c", pixel[0], pixel[1], pixel[2], pixel[3], i % 16 == 12 ? '\n' : ' ');
    }
    return 0;
}

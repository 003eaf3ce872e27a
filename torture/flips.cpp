// Flips bits of stores and cuts them off, uses what is left as programs do, and looks: nothing crashes, what
// can be read stays, a damaged cache serves no wrong answer and works again.

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <random>

#include "NimbuscopeIntentHandler/Places/SavedPlaces.hpp"
#include "NimbuscopeIntentHandler/Places/SharedStorage.hpp"
#include "NimbuscopeKit/Preferences/Migration.hpp"
#include "NimbuscopeKit/Preferences/PreferencesServiceImpl.hpp"
#include "Platform/Coding/JSONDecoder.hpp"
#include "Platform/Linux/NSUserDefaults_sqlite.hpp"
#include "Platform/Linux/URLCache_sqlite.hpp"
#include "tests/support/FixedLocale.hpp"
#include "tests/support/TemporaryDirectory.hpp"
#include "torture/support/Child.hpp"
#include "torture/support/Torture.hpp"

namespace nimbuscope::torture {
namespace {

using namespace nimbuscope::testing;
using platform::Data;
using platform::DefaultsValue;
using platform::SQLiteUserDefaultsSuites;

constexpr int tests = 2;
constexpr auto preferencesKey = PreferencesServiceImpl::appPreferencesKey;

/// Flips one bit of one of the files in a directory, or cuts one off. What was done, in words.
std::string injure(const std::filesystem::path& directory, std::minstd_rand& random) {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(directory)) {
        if (entry.file_size() > 0) {
            files.push_back(entry.path());
        }
    }
    std::ranges::sort(files);
    const auto& file = files[random() % files.size()];
    std::string bytes = readFile(file);
    const std::size_t place = random() % bytes.size();
    if (random() % 4 == 0) {
        std::filesystem::resize_file(file, place);
        return file.filename().string() + " cut at byte " + std::to_string(place);
    }
    const unsigned bit = random() % 8;
    bytes[place] = static_cast<char>(bytes[place] ^ (1U << bit));
    writeFile(file, bytes);
    return file.filename().string() + ", byte " + std::to_string(place) + ", bit " + std::to_string(bit);
}

/// Makes two stores with `fill(directory)`, one that was closed and one that was abandoned with its log
/// beside it; injures copies of them in turn and uses each with `use(directory)`.
template <class Fill, class Use>
void injureAgainAndAgain(Row& row, Fill fill, Use use) {
    std::minstd_rand random(seed());
    const TemporaryDirectory closed;
    fill(closed.path())();
    const TemporaryDirectory abandoned;
    expectSoundInChild([&] { new auto(fill(abandoned.path())); });
    for (int i = 0; i < (count() + tests - 1) / tests && !::testing::Test::HasFailure(); ++i, ++row) {
        const TemporaryDirectory injured;
        const std::string directory = injured.path("copy");
        std::filesystem::copy((i % 2 == 0 ? closed : abandoned).path(), directory);
        const std::string injury = injure(directory, random);
        SCOPED_TRACE("seed " + std::to_string(seed()) + ", number " + std::to_string(i) + ": " + injury);
        expectSoundInChild([&] { use(directory); });
    }
}

// The store of the application group, with values of all types, places and preferences.

std::vector<Place> somePlaces() {
    std::vector<Place> places;
    for (const char* id : {"lisbon", "oslo", "quito"}) {
        places.push_back({.id = id, .name = std::string(300, id[0]), .staticCoordinate = {60.5, 11.25}});
    }
    return places;
}

const std::map<std::string, DefaultsValue>& plainValues() {
    static const auto values = [] {
        std::map<std::string, DefaultsValue> all{
            {"bool", true},
            {"int", std::int64_t{-5}},
            {"double", 2.5},
            {"text", "with a limit"},
            {"data", Data(40000, 0xA5)},
            {"array", platform::DefaultsArray{1.5, "é"}},
            {"isMigrated", true},
            {"dictionary", platform::DefaultsDictionary{{"a", std::int64_t{1}}}}};
        for (int i = 0; i < 60; ++i) {
            all["filler " + std::to_string(i)] = std::string(static_cast<std::size_t>(i) * 7, 'f');
        }
        return all;
    }();
    return values;
}

std::shared_ptr<platform::NSUserDefaults> groupIn(const std::string& directory) {
    return SQLiteUserDefaultsSuites(directory).suite(appGroupIdentifier).value();
}

/// What each known key holds, of those that can be read.
std::map<std::string, DefaultsValue> readableIn(const std::string& directory) {
    std::map<std::string, DefaultsValue> readable;
    const auto store = groupIn(directory);
    const auto look = [&](std::string_view key) {
        if (auto value = store->object(key); value && *value) {
            readable.emplace(key, std::move(**value));
        }
    };
    for (const auto& [key, value] : plainValues()) {
        look(key);
    }
    look(SharedStorage::placesKey);
    look(preferencesKey);
    return readable;
}

std::optional<AppPreferences> record(const DefaultsValue& stored) {
    const auto* data = stored.as<Data>();
    const auto migrated = data != nullptr ? migratedPreferences(*data) : std::unexpected(MigrationError{});
    auto decoded = migrated ? platform::JSONDecoder().decode<AppPreferences>(*migrated ? **migrated : *data)
                            : std::unexpected(platform::DecodingError{});
    return decoded ? std::optional(std::move(*decoded)) : std::nullopt;
}

/// What a key that could be read holds now that programs have used the store.
void expectKept(const std::string& key, const DefaultsValue& before, const DefaultsValue* after) {
    ASSERT_NE(after, nullptr) << key << " is gone";
    if (key == preferencesKey) {
        auto expected = record(before);
        if (expected && record(*after)) {
            expected->main.launchesCount = record(*after)->main.launchesCount;  // what was changed
        }
        EXPECT_TRUE(!expected || expected == record(*after) || before == *after) << "preferences";
        return;
    }
    if (key == SharedStorage::placesKey && before.as<Data>() != nullptr) {
        auto expected = SavedPlaces::decoded(*before.as<Data>());
        if (expected) {
            expected->push_back({.id = "new"});
            const auto grown = platform::dataOf(SavedPlaces::encoded(*expected).value());
            EXPECT_TRUE(before == *after || DefaultsValue(grown) == *after) << "places";
            return;
        }
    }
    EXPECT_TRUE(before == *after) << key;
}

void useStore(const std::string& directory) {
    const auto before = readableIn(directory);
    {
        const auto standard = SQLiteUserDefaultsSuites(directory + "/none").standard().value();
        const auto group = groupIn(directory);
        PreferencesServiceImpl service(*standard, group, nullptr, std::make_shared<FixedLocale>(true));
        service.set(preference::launchesCount{7});
        static_cast<void>(service.preferences());
        static_cast<void>(SavedPlaces(*group).add({.id = "new"}));
        static_cast<void>(group->dictionaryRepresentation());
        if (group->set("written", std::string(6000, 'w'))) {
            EXPECT_TRUE(groupIn(directory)->object("written").value() == std::string(6000, 'w'));
        }
        static_cast<void>(group->removeObject("written"));
    }
    auto after = readableIn(directory);
    for (const auto& [key, value] : before) {
        const auto found = after.find(key);
        expectKept(key, value, found != after.end() ? &found->second : nullptr);
    }
}

TEST(Flips, theKeyValueStore) {
    Row row("bit flips and cuts of the key-value store");
    int stores = 0;
    injureAgainAndAgain(
        row,
        [&](const std::string& directory) {
            // One record is up to date, the other is migrated when a service starts.
            const char* version = stores++ == 0 ? "new-installation" : "v11";
            const auto store = groupIn(directory);
            for (const auto& [key, value] : plainValues()) {
                EXPECT_TRUE(store->set(key, value));
            }
            EXPECT_TRUE(SavedPlaces(*store).replace(somePlaces()));
            EXPECT_TRUE(store->set(
                preferencesKey, platform::dataOf(readFile(std::string(NIMBUSCOPE_SOURCE_DIRECTORY) +
                                                          "/tests/data/preferences/" + version + ".json"))));
            return [store] {};
        },
        useStore);
}

// The cache.

constexpr int urls = 25;

platform::CachedURLResponse response(int number, char letter) {
    const auto instant = std::chrono::sys_seconds(std::chrono::seconds(1'700'000'000 + number));
    return {{"https://radar/" + std::to_string(number), 200, {{"Cache-Control", "max-age=60"}, {"A", "é"}}},
            Data(static_cast<std::size_t>(number) * 331, static_cast<std::uint8_t>(letter)),
            {{"Accept", "*/*"}},
            instant,
            instant};
}

/// Stores responses in place of others and looks for them and for others after the next opening; none may be
/// wrong. Whether all are there.
bool storeAndLookUp(const std::string& directory) {
    for (int i = 0; i < urls; i += 3) {
        platform::makeSQLiteURLCache(directory)->storeCachedResponse(response(i, 'b'));
    }
    const auto reopened = platform::makeSQLiteURLCache(directory);
    int there = 0;
    for (int i = 0; i < urls; ++i) {
        const auto expected = response(i, i % 3 == 0 ? 'b' : 'a');
        const auto found = reopened->cachedResponse(expected.response.url);
        EXPECT_TRUE(!found || *found == expected) << i;
        there += found && i % 3 == 0 ? 1 : 0;
    }
    return there == (urls + 2) / 3;
}

void useCache(const std::string& directory) {
    const auto cache = platform::makeSQLiteURLCache(directory);
    for (int i = 0; i < urls; ++i) {
        const auto found = cache->cachedResponse(response(i, 'a').response.url);
        EXPECT_TRUE(!found || *found == response(i, 'a')) << i;
    }
    // What is damaged may be met as late as when it is looked up; but then it has been made anew.
    EXPECT_TRUE(storeAndLookUp(directory) || storeAndLookUp(directory)) << "the cache stays useless";
}

TEST(Flips, theCache) {
    Row row("bit flips and cuts of the response cache");
    injureAgainAndAgain(
        row,
        [](const std::string& directory) {
            const auto cache = platform::makeSQLiteURLCache(directory);
            for (int i = 0; i < urls; ++i) {
                cache->storeCachedResponse(response(i, 'a'));
            }
            return [cache] {};
        },
        useCache);
}

}  // namespace
}  // namespace nimbuscope::torture

int main(int argumentCount, char** arguments) {
    return nimbuscope::torture::run(argumentCount, arguments, 1000);
}

// Kills processes at random moments of their work, from the first opening on, and looks at what they leave:
// everything that they acknowledged, nothing torn.

#include <gtest/gtest.h>

#include <algorithm>
#include <list>

#include "NimbuscopeKit/Preferences/Migration.hpp"
#include "NimbuscopeKit/Preferences/PreferencesServiceImpl.hpp"
#include "Platform/Linux/NSUserDefaults_sqlite.hpp"
#include "Platform/Linux/URLCache_sqlite.hpp"
#include "tests/support/FixedLocale.hpp"
#include "tests/support/Process.hpp"
#include "tests/support/TemporaryDirectory.hpp"
#include "torture/support/Torture.hpp"

namespace nimbuscope::torture {
namespace {

using namespace nimbuscope::testing;
using platform::Data;
using platform::DefaultsDictionary;
using platform::DefaultsValue;
using platform::SQLiteUserDefaultsSuites;
using Tell = std::function<void(std::int64_t)>;

constexpr int tests = 3;
constexpr int killsOfADirectory = 10;
constexpr int patience = 60000;  // milliseconds: a machine with other work is no failure

/// A size that jumps about, so that rows move between pages.
std::size_t sizeOf(std::int64_t number, std::int64_t most) {
    return static_cast<std::size_t>(number * 7919 % most);
}

/// Kills `work(directory, stored, tell)` again and again, each in a directory where others were killed before
/// or in a new one. `work` carries out steps, numbered from `stored` + 1 on, and tells each when it is done.
/// `stepFound(directory, stored, least)` looks at what is there, expects it to be the state after step
/// `least` or the next, and says which.
template <class Work, class StepFound>
void killAgainAndAgain(Row& row, Work work, StepFound stepFound) {
    std::minstd_rand random(seed());
    const int kills = (count() + tests - 1) / tests;
    std::int64_t farthest = 0;
    std::unique_ptr<TemporaryDirectory> directory;
    std::int64_t stored = -1;
    for (int kill = 0; kill < kills; ++kill, ++row) {
        if (kill % killsOfADirectory == 0) {
            directory = std::make_unique<TemporaryDirectory>();
            stored = -1;
        }
        SCOPED_TRACE("seed " + std::to_string(seed()) + ", kill " + std::to_string(kill));
        const auto told = killed(random, [&](const Tell& tell) { work(*directory, stored, tell); });
        stored = stepFound(*directory, stored, std::max(stored, told));
        if (::testing::Test::HasFatalFailure()) {
            return;
        }
        farthest = std::max(farthest, stored);
    }
    EXPECT_GT(farthest, 10) << "nothing was under way when it was killed";
}

/// One of the two steps that are possible, by the state that was found.
template <class State, class StateAfter>
std::int64_t stepOf(const State& found, std::int64_t least, StateAfter stateAfter) {
    if (found == stateAfter(least)) {
        return least;
    }
    [&] { ASSERT_TRUE(found == stateAfter(least + 1)) << "neither step " << least << " nor the next"; }();
    return least + 1;
}

// The key-value store: eight keys in turn, with values of all types; every third write is a transaction that
// changes one more key.

constexpr std::int64_t keys = 8;
constexpr std::int64_t writesOfAPair = 3;

std::string keyOf(std::int64_t number) {
    return "key " + std::to_string(number % keys);
}

DefaultsValue valueOf(std::int64_t number) {
    const std::string text = std::string(sizeOf(number, 20000), 'x') + std::to_string(number);
    switch (number % 5) {
        case 0:
            return number;
        case 1:
            return static_cast<double>(number) + 0.5;
        case 2:
            return text;
        case 3:
            return platform::dataOf(text);
        default:
            return DefaultsDictionary{{"number", number}, {"texts", platform::DefaultsArray{text, text}}};
    }
}

DefaultsDictionary storeAfter(std::int64_t number) {
    DefaultsDictionary all;
    for (std::int64_t n = std::max<std::int64_t>(0, number - keys + 1); n <= number; ++n) {
        all[keyOf(n)] = valueOf(n);
    }
    if (number >= 0) {
        all["pair"] = number / writesOfAPair * writesOfAPair;
    }
    return all;
}

bool write(platform::NSUserDefaults& store, std::int64_t number) {
    const auto one = [&] { return store.set(keyOf(number), valueOf(number)); };
    const auto pair = [&] {
        const auto done = store.set("pair", number);
        return done ? one() : done;
    };
    return (number % writesOfAPair == 0 ? store.transaction(pair) : one()).has_value();
}

std::shared_ptr<platform::NSUserDefaults> storeIn(const TemporaryDirectory& directory) {
    return SQLiteUserDefaultsSuites(directory.path("new/store"), patience).standard().value();
}

TEST(Kills, aWriterOfTheKeyValueStore) {
    Row row("kills of a writer of the key-value store");
    killAgainAndAgain(
        row,
        [](const TemporaryDirectory& directory, std::int64_t stored, const Tell& tell) {
            const auto store = storeIn(directory);
            while (++stored, write(*store, stored)) {
                tell(stored);
            }
        },
        [](const TemporaryDirectory& directory, std::int64_t /*stored*/, std::int64_t least) {
            const auto found = storeIn(directory)->dictionaryRepresentation();
            EXPECT_TRUE(found) << found.error().message();
            return stepOf(found.value_or(DefaultsDictionary{}), least, storeAfter);
        });
}

// The preferences: the first step copies older settings and makes a record of them; then a record of each
// older version in turn is stored (odd steps) and migrated (even steps).

std::string stored(const std::string& name) {
    return readFile(NIMBUSCOPE_SOURCE_DIRECTORY "/tests/data/preferences/" + name + ".json");
}

PreferencesServiceImpl start(const TemporaryDirectory& directory) {
    SQLiteUserDefaultsSuites suites(directory.path(), patience);
    return {*suites.standard().value(), suites.suite(appGroupIdentifier).value(), nullptr,
            std::make_shared<FixedLocale>(true)};
}

void putOlderSettings(const TemporaryDirectory& directory) {
    SQLiteUserDefaultsSuites suites(directory.path(), patience);
    const auto standard = suites.standard().value();
    ASSERT_TRUE(standard->set("nbcOpacity", std::int64_t{55}));
    ASSERT_TRUE(standard->set("nbcPushToken", std::string(9000, 't')));
}

std::optional<Data> recordAfter(std::int64_t step) {
    static const Data imported = [] {
        const TemporaryDirectory undisturbed;
        putOlderSettings(undisturbed);
        static_cast<void>(start(undisturbed));
        SQLiteUserDefaultsSuites suites(undisturbed.path());
        return *suites.suite(appGroupIdentifier)
                    .value()
                    ->object(PreferencesServiceImpl::appPreferencesKey)
                    .value()
                    ->as<Data>();
    }();
    if (step <= 0) {
        return step < 0 ? std::nullopt : std::optional(imported);
    }
    const std::string version = "v" + std::to_string((step - 1) / 2 % 11 + 1);
    const Data older = platform::dataOf(stored(version));
    return step % 2 == 1 ? older : migratedPreferences(older).value();
}

TEST(Kills, aMigrationOfThePreferences) {
    Row row("kills of migrations of the preferences");
    killAgainAndAgain(
        row,
        [](const TemporaryDirectory& directory, std::int64_t step, const Tell& tell) {
            SQLiteUserDefaultsSuites suites(directory.path(), patience);
            const auto group = suites.suite(appGroupIdentifier).value();
            if (step < 0 && suites.standard().value()->dictionaryRepresentation()->size() < 2) {
                putOlderSettings(directory);
            }
            for (++step;; tell(step++)) {
                if (step % 2 == 0) {
                    static_cast<void>(start(directory));
                } else if (!group->set(PreferencesServiceImpl::appPreferencesKey, *recordAfter(step))) {
                    return;
                }
            }
        },
        [](const TemporaryDirectory& directory, std::int64_t /*stored*/, std::int64_t least) {
            SQLiteUserDefaultsSuites suites(directory.path(), patience);
            auto all = suites.suite(appGroupIdentifier).value()->dictionaryRepresentation().value();
            // The older settings come as a whole, and before the record.
            const bool isCopied = all.contains("isMigrated");
            EXPECT_EQ(isCopied, all.contains("nbcOpacity"));
            EXPECT_EQ(isCopied, all.contains("nbcPushToken"));
            const auto record = all.find(PreferencesServiceImpl::appPreferencesKey);
            EXPECT_TRUE(isCopied || record == all.end());
            return stepOf(record != all.end() ? std::optional(*record->second.as<Data>()) : std::nullopt,
                          least, recordAfter);
        });
}

// The cache: responses of thirty URLs in turn, more than it can hold. A kill costs none of them: what is
// there is what a cache that nobody kills would hold.

constexpr std::int64_t urls = 30;
constexpr std::size_t capacity = std::size_t{1} << 16U;

std::string urlOf(std::int64_t number) {
    return "https://radar/" + std::to_string(number % urls);
}

platform::CachedURLResponse responseOf(std::int64_t number) {
    const auto letter = static_cast<char>('a' + number % 26);
    const auto instant = std::chrono::sys_seconds(std::chrono::seconds(number));
    return {{urlOf(number), 200, {{"A", "1: é"}, {"Number", std::to_string(number)}}},
            platform::dataOf(std::string(sizeOf(number, 6000), letter)),
            {{"Accept", "*/*"}},
            instant,
            instant};
}

/// What counts towards the capacity (docs/formats/response-cache.md).
std::size_t sizeOf(const platform::CachedURLResponse& response) {
    std::size_t size = response.response.url.size() + response.data.size();
    for (const auto* headers : {&response.response.headers, &response.varyingHeaders}) {
        for (const auto& [name, value] : headers->fields()) {
            size += name.size() + value.size() + std::string_view(": \n").size();
        }
    }
    return size;
}

/// The numbers of the responses that an undisturbed cache holds, the last one used first.
class CacheModel {
  public:
    void advanceTo(std::int64_t number) {
        while (stored_ < number) {
            ++stored_;
            std::erase_if(held_, [&](std::int64_t n) { return n % urls == stored_ % urls; });
            held_.push_front(stored_);
            std::size_t size = 0;
            std::erase_if(held_, [&](std::int64_t n) { return (size += sizeOf(responseOf(n))) > capacity; });
        }
    }
    void use(std::int64_t number) {
        held_.remove(number);
        held_.push_front(number);
    }
    [[nodiscard]] std::vector<std::int64_t> held() const {
        std::vector<std::int64_t> sorted(held_.begin(), held_.end());
        std::ranges::sort(sorted);
        return sorted;
    }

  private:
    std::int64_t stored_ = -1;
    std::list<std::int64_t> held_;
};

/// The number of the response under a URL; none where nothing is stored. Expects it to be what was stored.
std::optional<std::int64_t> numberUnder(platform::URLCache& cache, const std::string& url) {
    const auto found = cache.cachedResponse(url);
    if (!found) {
        return std::nullopt;
    }
    const std::int64_t number = std::stoll(found->response.headers.value("Number").value_or("-1"));
    EXPECT_TRUE(*found == responseOf(number)) << url;
    return number;
}

TEST(Kills, aWriterOfTheCache) {
    Row row("kills of a writer of the response cache");
    CacheModel model;
    killAgainAndAgain(
        row,
        [](const TemporaryDirectory& directory, std::int64_t number, const Tell& tell) {
            const auto cache = platform::makeSQLiteURLCache(directory.path("cache"), capacity);
            for (++number;; tell(number++)) {
                cache->storeCachedResponse(responseOf(number));
            }
        },
        [&](const TemporaryDirectory& directory, std::int64_t stored, std::int64_t least) {
            const auto cache = platform::makeSQLiteURLCache(directory.path("cache"), capacity);
            std::vector<std::int64_t> found;
            for (std::int64_t url = 0; url < urls; ++url) {
                if (const auto number = numberUnder(*cache, urlOf(url))) {
                    found.push_back(*number);
                }
            }
            const auto inOrderOfUse = found;
            std::ranges::sort(found);
            const CacheModel before = stored < 0 ? CacheModel() : std::move(model);
            const std::int64_t step = stepOf(found, least, [&](std::int64_t number) {
                model = before;
                model.advanceTo(number);
                return model.held();
            });
            std::ranges::for_each(inOrderOfUse, [&](std::int64_t number) { model.use(number); });
            return step;
        });
}

}  // namespace
}  // namespace nimbuscope::torture

int main(int argumentCount, char** arguments) {
    return nimbuscope::torture::run(argumentCount, arguments, 10000);
}

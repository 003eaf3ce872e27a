#include <gtest/gtest.h>

#include <filesystem>

#include "NimbuscopeIntentHandler/Places/SavedPlaces.hpp"
#include "NimbuscopeIntentHandler/Places/SharedStorage.hpp"
#include "NimbuscopeKit/Preferences/Migration.hpp"
#include "NimbuscopeKit/Preferences/PreferencesServiceImpl.hpp"
#include "Platform/Linux/NSUserDefaults_sqlite.hpp"
#include "tests/support/FixedLocale.hpp"
#include "tests/support/TemporaryDirectory.hpp"
#include "torture/support/Scenario.hpp"

namespace nimbuscope::torture {
namespace {

using nimbuscope::testing::FixedLocale;
using platform::DefaultsDictionary;
using platform::DefaultsError;
using platform::DefaultsResult;
using platform::DefaultsValue;
using platform::NSUserDefaults;
using platform::SQLiteUserDefaultsSuites;

constexpr auto preferencesKey = PreferencesServiceImpl::appPreferencesKey;
constexpr int patience = 0;

std::string fixture(const std::string& name) {
    return testing::readFile(NIMBUSCOPE_SOURCE_DIRECTORY "/tests/data/preferences/" + name + ".json");
}

std::shared_ptr<NSUserDefaults> group(const std::string& directory) {
    // The system takes names as texts of its own; so does this.
    auto store = SQLiteUserDefaultsSuites(directory, patience).suite(appGroupIdentifier);
    return store ? std::move(*store) : nullptr;
}

const DefaultsDictionary& someValues() {
    static const DefaultsDictionary values{
        {"bool", true},
        {"int", std::int64_t{-5}},
        {"double", 2.5},
        {"text", std::string(9000, 't')},
        {"data", platform::Data(30000, 0xA5)},
        {"array", platform::DefaultsArray{1.5, "é", std::int64_t{7}}},
        {"dictionary", DefaultsDictionary{{"a", std::int64_t{1}}, {"b", std::string(50, 'b')}}},
    };
    return values;
}

DefaultsResult<void> put(NSUserDefaults& store, const DefaultsDictionary& values) {
    for (const auto& [key, value] : values) {
        if (auto done = store.set(key, value); !done) {
            return done;
        }
    }
    return {};
}

std::function<void(const std::string&)> with(const DefaultsDictionary& values) {
    return [values](const std::string& directory) { ASSERT_TRUE(put(*group(directory), values)); };
}

/// A record of an older version, or of this one.
DefaultsDictionary withRecord(const std::string& name) {
    return {{"isMigrated", true}, {std::string(preferencesKey), platform::dataOf(fixture(name))}};
}

std::string textOf(const DefaultsDictionary& values) {
    platform::JSONWriter writer;
    writeJSON(writer, values);
    return writer.finish().value();
}

/// Everything in the group's store. Nothing but stores may lie about.
std::string stored(const std::string& directory) {
    for (const auto& entry : std::filesystem::directory_iterator(directory)) {
        EXPECT_EQ(entry.path().string().find(".new-"), std::string::npos) << entry;
    }
    const auto all = group(directory)->dictionaryRepresentation();
    return all ? textOf(*all) : all.error().message();
}

std::string bytes(const std::string& directory) {
    return testing::readFile(directory + '/' + std::string(appGroupIdentifier) + ".sqlite");
}

/// Work on the group's store.
template <class Use>
std::function<bool(const std::string&)> use(Use work) {
    return [work](const std::string& directory) {
        const auto store = group(directory);
        return store != nullptr && work(*store);
    };
}

bool reads(NSUserDefaults& store, const std::string& key, const std::optional<DefaultsValue>& expected) {
    const auto value = store.object(key);
    EXPECT_TRUE(!value || *value == expected) << key;
    return value.has_value();
}

std::vector<Scenario> plainScenarios() {
    const auto nothing = [](const std::string&) {};
    const auto readAll = [](NSUserDefaults& store) {
        bool isRead = true;
        for (const auto& [key, value] : someValues()) {
            isRead = reads(store, key, value) && isRead;
        }
        return isRead;
    };
    const auto writeBatch = [](NSUserDefaults& store) {
        const auto done = store.transaction([&] {
            auto written = put(store, {{"text", "short"}, {"data", true}, {"new", std::string(70000, 'n')}});
            return written ? store.removeObject("array") : written;
        });
        return done && store.synchronize();
    };
    const auto twoSuites = [](const std::string& directory) {
        SQLiteUserDefaultsSuites suites(directory, patience);
        const auto standard = suites.standard();
        const auto shared = suites.suite(appGroupIdentifier);
        return standard && shared && (*standard)->set("other", std::int64_t{1}) &&
               (*shared)->set("int", std::int64_t{6}) && (*shared)->synchronize();
    };
    return {
        {"reading where there is no store", nothing,
         use([](auto& store) { return reads(store, "text", std::nullopt); }), stored},
        {"the first write makes the store", nothing,
         use([](auto& store) { return store.set("text", "first").has_value(); }), stored},
        {"values of each type are read", with(someValues()), use(readAll), stored},
        {"values of each type are written", with({{"old", true}}), use([](auto& store) {
             return store.transaction([&] { return put(store, someValues()); }).has_value();
         }),
         stored},
        {"a value in place of a larger one", with(someValues()),
         use([](auto& store) { return store.set("data", "small").has_value(); }), stored},
        {"a value is removed", with(someValues()),
         use([](auto& store) { return store.removeObject("data").has_value(); }), stored},
        {"a transaction of several writes", with(someValues()), use(writeBatch), stored},
        {"the whole dictionary is read", with(someValues()), use([](auto& store) {
             const auto all = store.dictionaryRepresentation();
             EXPECT_TRUE(!all || *all == someValues());
             return all.has_value();
         }),
         stored},
        {"two suites are written", with(someValues()), twoSuites, stored},
    };
}

/// Stores that are refused and left alone.
std::vector<Scenario> refusals() {
    const auto isRefused = [](DefaultsError::Code code) {
        return use([code](auto& store) {
            const auto read = store.object("text");
            const auto written = store.set("text", "lost");
            EXPECT_FALSE(read);
            EXPECT_FALSE(written);
            return read.error().code == code && written.error().code == code;
        });
    };
    return {
        {"a file that is no store is left alone",
         [](const std::string& directory) {
             testing::writeFile(directory + '/' + std::string(appGroupIdentifier) + ".sqlite",
                                std::string(9000, '.'));
         },
         isRefused(DefaultsError::Code::damaged), bytes},
        {"a damaged store is left alone",
         [](const std::string& directory) {
             with(someValues())(directory);
             const std::string whole = bytes(directory);
             testing::writeFile(directory + '/' + std::string(appGroupIdentifier) + ".sqlite",
                                whole.substr(0, whole.size() - 5000));
         },
         isRefused(DefaultsError::Code::damaged), bytes},
    };
}

bool startService(const std::string& directory, const std::function<bool(PreferencesServiceImpl&)>& work) {
    SQLiteUserDefaultsSuites suites(directory, patience);
    const auto standard = suites.standard();
    const auto shared = suites.suite(appGroupIdentifier);
    if (!standard || !shared) {
        return false;
    }
    struct Reports final : ErrorTrackingService {
        bool isEmpty = true;
        void track(const platform::NSError& /*error*/) override { isEmpty = false; }
    };
    const auto reports = std::make_shared<Reports>();
    PreferencesServiceImpl service(**standard, *shared, reports, std::make_shared<FixedLocale>(true));
    return work(service) && reports->isEmpty;
}

std::vector<Scenario> preferencesScenarios() {
    const auto start = [](const std::string& directory) {
        return startService(directory, [](auto&) { return true; });
    };
    const DefaultsDictionary older{{"nbcOpacity", std::int64_t{55}},
                                   {"nbcPushToken", "token"},
                                   {"currentLocation", platform::DefaultsArray{1.5, 2.5}},
                                   {"nbcUnits", std::int64_t{0}}};
    const auto copyOlder = [older](const std::string& directory) {
        auto copied = older;
        copied["isMigrated"] = true;
        const auto store = group(directory);
        ASSERT_TRUE(store->transaction([&] { return put(*store, copied); }));
    };
    std::vector<Scenario> all{
        {"older settings become a record",
         [older](const std::string& directory) {
             ASSERT_TRUE(put(*SQLiteUserDefaultsSuites(directory).standard().value(), older));
         },
         start, stored, copyOlder},
        {"a record is read", with(withRecord("new-installation")),
         [](const std::string& directory) {
             return startService(directory, [](auto& service) {
                 const AppPreferences record = service.preferences();
                 return record == AppPreferences();
             });
         },
         stored},
        {"one preference is changed", with(withRecord("new-installation")),
         [](const std::string& directory) {
             return startService(directory, [](auto& service) {
                 service.set(preference::overlayOpacity{7});
                 return true;
             });
         },
         stored},
        {"an unreadable record is replaced by older settings",
         [older](const std::string& directory) {
             with(older)(directory);
             with({{"isMigrated", true}, {std::string(preferencesKey), platform::dataOf("[]")}})(directory);
         },
         [](const std::string& directory) {
             static_cast<void>(startService(directory, [](auto& service) {
                 static_cast<void>(service.preferences());
                 return true;
             }));
             return false;  // the service tells of the fault in any case
         },
         stored, nullptr, false},
    };
    for (int version = 1; version <= 11; ++version) {
        const std::string name = "v" + std::to_string(version);
        all.push_back({"a record of version " + std::to_string(version) + " is migrated",
                       with(withRecord(name)), start, stored});
    }
    return all;
}

std::vector<Scenario> placesScenarios() {
    const Place oslo{.id = "oslo", .name = "Oslo", .staticCoordinate = {59.9, 10.7}};
    const Place quito{.id = "quito", .name = std::string(900, 'q')};
    const auto twoPlaces = [oslo, quito](const std::string& directory) {
        const auto store = group(directory);
        ASSERT_TRUE(SavedPlaces(*store).replace({oslo, quito}));
    };
    return {
        {"a place is added", twoPlaces,
         use([](auto& store) { return SavedPlaces(store).add({.id = "new"}).has_value(); }), stored},
        {"a place is removed", twoPlaces,
         use([](auto& store) { return SavedPlaces(store).remove("oslo").has_value(); }), stored},
        {"places are read by the extension", twoPlaces, use([](auto& store) {
             const auto data = store.object(SharedStorage::placesKey);
             const auto* json = data && *data ? (*data)->template as<platform::Data>() : nullptr;
             const auto places = json != nullptr ? decodePlaces(*json) : std::vector<Place>{};
             EXPECT_TRUE(json == nullptr || places.size() == 2) << "places were left out";
             return json != nullptr;
         }),
         stored},
    };
}

}  // namespace

std::vector<Scenario> storeScenarios() {
    std::vector<Scenario> all;
    for (auto& some : {plainScenarios(), refusals(), preferencesScenarios(), placesScenarios()}) {
        all.insert(all.end(), some.begin(), some.end());
    }
    return all;
}

}  // namespace nimbuscope::torture

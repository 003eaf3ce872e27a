#include <gtest/gtest.h>

#include "NimbuscopeIntentHandler/Places/SavedPlaces.hpp"
#include "NimbuscopeIntentHandler/Places/SharedStorage.hpp"
#include "Platform/Linux/NSUserDefaults_sqlite.hpp"
#include "tests/support/InMemoryUserDefaults.hpp"
#include "tests/support/TemporaryDirectory.hpp"

namespace nimbuscope {
namespace {

std::string idsOf(const std::vector<Place>& places) {
    std::string ids;
    for (const Place& place : places) {
        ids += place.id;
    }
    return ids;
}

class SharedStorageTest : public ::testing::Test {
  protected:
    /// Stores places named by letters; capital ones stand for the current location.
    void store(const std::string& letters) {
        std::vector<Place> places;
        for (const char letter : letters) {
            places.push_back({.id = std::string(1, letter), .current = letter < 'a'});
        }
        ASSERT_TRUE(SavedPlaces(storage_.groupStorage()).replace(places));
    }
    void storeText(const std::string& json) {
        ASSERT_TRUE(storage_.groupStorage().set("places", platform::dataOf(json)));
    }

    testing::InMemorySuites suites_;
    SharedStorage storage_{suites_};
};

TEST_F(SharedStorageTest, putsTheCurrentPlaceFirstAndKeepsTheOrderOfTheOthers) {
    const std::pair<std::string, std::string> cases[] = {
        {"", ""}, {"aBc", "Bac"}, {"aBcDa", "BDaca"}, {"Abc", "Abc"}, {"cba", "cba"}};
    for (const auto& [stored, read] : cases) {
        store(stored);
        EXPECT_EQ(idsOf(storage_.places()), read);
        const auto current = storage_.currentPlace();
        const bool hasCurrent = !read.empty() && read[0] < 'a';
        EXPECT_EQ(current ? current->id : "", hasCurrent ? read.substr(0, 1) : "");
    }
}

TEST_F(SharedStorageTest, readsWhatIsNoListOfPlacesAsNone) {
    const std::string good = SavedPlaces::encoded({{.id = "a"}}).value();
    const std::string inner = good.substr(1, good.size() - 2);
    const std::pair<std::string, std::string> cases[] = {
        {good, "a"},
        {good + "x", ""},
        {inner, ""},
        {"", ""},
        {"null", ""},
        {"[" + inner + ",\"\xff\"]", ""},
        {std::string(5000, '['), ""},
        {"[null,5,\"a\",[],{}," + inner + "]", "a"},
        {"[1e999,123456789012345678901," + inner + "]", "a"}};
    for (const auto& [json, ids] : cases) {
        storeText(json);
        EXPECT_EQ(idsOf(storage_.places()), ids) << json.substr(0, 60);
    }
    ASSERT_TRUE(storage_.groupStorage().set("places", good));
    EXPECT_EQ(idsOf(storage_.places()), "") << "text is not data";
}

TEST_F(SharedStorageTest, observersAreKeptInOrderAndNotKeptAlive) {
    auto first = std::make_shared<SharedStorageObserver>();
    const auto second = std::make_shared<SharedStorageObserver>();
    auto third = std::make_shared<SharedStorageObserver>();
    EXPECT_TRUE(storage_.observers().empty());
    for (const auto& observer : {first, second, third, first}) {
        storage_.addObserver(observer);
    }
    storage_.removeObserver(*first);
    third.reset();
    EXPECT_EQ(storage_.observers(), std::vector{second});
}

TEST(SharedStorage, withoutAStoreToOpenStopsTheProcess) {
    const testing::TemporaryDirectory directory;
    testing::writeFile(directory.path("file"), "");
    platform::SQLiteUserDefaultsSuites suites(directory.path("file/store"));
    EXPECT_DEATH(SharedStorage storage(suites),
                 "Fatal error: the application group's store is missing: .*:[0-9]+");
}

TEST(SharedStorage, overAnUnreadableStoreHasNoPlaces) {
    const testing::TemporaryDirectory directory;
    testing::writeFile(directory.path("group.com.brisk-labs.Nimbuscope.sqlite"), "not a store");
    platform::SQLiteUserDefaultsSuites suites(directory.path());
    EXPECT_TRUE(SharedStorage(suites).places().empty());
}

}  // namespace
}  // namespace nimbuscope

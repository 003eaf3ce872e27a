#include <gtest/gtest.h>

#include "NimbuscopeIntentHandler/Places/SavedPlaces.hpp"
#include "NimbuscopeIntentHandler/Places/SharedStorage.hpp"
#include "Platform/Linux/NSUserDefaults_sqlite.hpp"
#include "tests/support/FailingUserDefaults.hpp"
#include "tests/support/InMemoryUserDefaults.hpp"
#include "tests/support/TemporaryDirectory.hpp"

namespace nimbuscope {
namespace {

using testing::FailingUserDefaults;
using testing::InMemoryUserDefaults;

/// A place as it is stored, every key present, in the order in which keys are written.
const std::string storedPlace =
    R"({"id":"a","icon":"home","name":"A","address":"1 Street","state":"S","country":"C","current":false,)"
    R"("geolocated":false,"notificationsSettings":{"isCustom":true,)"
    R"("rainDuration":{"isEnabled":false,"accuracy":2,"intensity":0},)"
    R"("inRadius":{"isEnabled":false,"showRadiusOnMap":false,"radius":5000,"intensity":35},)"
    R"("severeWeather":{"isEnabled":false,"severity":"Severe"},)"
    R"("tropicalStorms":{"isEnabled":false,"trackingArea":"near"},)"
    R"("silenceTime":{"isEnabled":true,"start":1,"end":2}},)"
    R"("staticCoordinate":{"latitude":-33.8688,"longitude":151.2093}})";

platform::Data listOf(const std::string& element) {
    return platform::dataOf('[' + element + ']');
}

TEST(Place, isWrittenBackToTheByteWithTheDefaultsForAbsentSettings) {
    const std::string start = R"({"id":"a","icon":"i","name":"n","current":true,"geolocated":true,)";
    const std::string coordinate = R"("staticCoordinate":{"latitude":1,"longitude":2})";
    const std::string defaults =
        R"("notificationsSettings":{"isCustom":false,)"
        R"("rainDuration":{"isEnabled":true,"accuracy":1,"intensity":25},)"
        R"("inRadius":{"isEnabled":true,"showRadiusOnMap":true,"radius":30000,"intensity":55},)"
        R"("severeWeather":{"isEnabled":true,"severity":"Minor"},)"
        R"("tropicalStorms":{"isEnabled":true,"trackingArea":"global"},)"
        R"("silenceTime":{"isEnabled":false,"start":82800,"end":25200}},)";
    const std::string whole = start + defaults + coordinate + '}';
    const std::pair<std::string, std::string> cases[] = {
        {storedPlace, storedPlace},
        {start + coordinate + '}', whole},
        {start + coordinate + R"(,"notificationsSettings":null,"address":null})", whole},
    };
    for (const auto& [json, written] : cases) {
        EXPECT_EQ(SavedPlaces::encoded(SavedPlaces::decoded(listOf(json)).value()), '[' + written + ']');
    }
}

TEST(Place, withAFaultIsDroppedFromAListAndNamedInAnImport) {
    const struct {
        std::string from, to, path;
    } cases[] = {
        {R"("id":"a",)", "", "id"},
        {R"("name":"A")", R"("name":null)", "name"},
        {R"("address":"1 Street")", R"("address":5)", "address"},
        {R"("accuracy":2)", R"("accuracy":3)", "notificationsSettings.rainDuration.accuracy"},
        {R"("radius":5000)", R"("radius":15000)", "notificationsSettings.inRadius.radius"},
        {R"("Severe")", R"("severe")", "notificationsSettings.severeWeather.severity"},
        {R"("near")", R"("nearMyLocations")", "notificationsSettings.tropicalStorms.trackingArea"},
        {R"("start":1)", R"("start":1.5)", "notificationsSettings.silenceTime.start"},
        {R"("latitude":-33.8688,)", "", "staticCoordinate.latitude"},
    };
    for (const auto& [from, to, path] : cases) {
        std::string two = storedPlace + ',' + storedPlace;
        two.replace(two.rfind(from), from.size(), to);
        EXPECT_TRUE(SavedPlaces::decoded(listOf(two)).error().reason.starts_with("[1]." + path + ": "))
            << path;
        EXPECT_EQ(decodePlaces(listOf(two + ',' + storedPlace)).size(), 2U) << path;
    }
}

TEST(SavedPlaces, changesAreWholeOrNotAtAll) {
    const auto memory = std::make_shared<InMemoryUserDefaults>();
    FailingUserDefaults store(memory);
    SavedPlaces places(store);
    ASSERT_TRUE(places.add({.id = "b", .name = "B"}));
    ASSERT_TRUE(places.add({.id = "a", .name = "A", .current = true}));
    EXPECT_EQ(places.all()->front().id, "b") << "the stored order";
    const auto before = memory->object("places").value();

    EXPECT_FALSE(places.add({.id = "a", .name = "again"}));
    EXPECT_FALSE(places.remove("c"));
    EXPECT_FALSE(places.replace({{.id = "bad", .name = "\xFF"}}));
    store.writeFault = platform::DefaultsError::Code::full;
    EXPECT_EQ(places.add({.id = "c", .name = "C"}).error().reason, "failing: told to fail");
    EXPECT_FALSE(places.remove("a"));
    store.writeFault.reset();
    store.readFault = platform::DefaultsError::Code::damaged;
    EXPECT_FALSE(places.add({.id = "c", .name = "C"}));
    store.readFault.reset();
    EXPECT_EQ(memory->object("places").value(), before);

    EXPECT_TRUE(places.remove("b"));
    EXPECT_EQ(places.all()->size(), 1U);
}

TEST(SavedPlaces, aListThatCannotBeReadWholeIsNotTouched) {
    InMemoryUserDefaults store;
    SavedPlaces places(store);
    for (const platform::DefaultsValue& value :
         {platform::DefaultsValue(listOf(storedPlace + ",5")), platform::DefaultsValue("[]")}) {
        ASSERT_TRUE(store.set("places", value));
        EXPECT_FALSE(places.all());
        EXPECT_FALSE(places.add({.id = "new"}));
        EXPECT_FALSE(places.remove("a"));
        EXPECT_EQ(store.object("places").value(), value);
    }
    EXPECT_TRUE(places.replace({}));
    EXPECT_EQ(store.object("places").value(), platform::dataOf("[]"));
}

std::string idsOf(const std::vector<Place>& places) {
    std::string ids;
    for (const Place& place : places) {
        ids += place.id;
    }
    return ids;
}

struct SharedStorageTest : ::testing::Test {
    testing::InMemorySuites suites;
    SharedStorage storage{suites};
};

TEST_F(SharedStorageTest, putsTheCurrentPlaceFirstAndKeepsTheOrderOfTheOthers) {
    // Letters are places; capital ones stand for the current location.
    const struct {
        std::string stored, current, others;
    } cases[] = {{"", "", ""}, {"aBc", "B", "ac"}, {"aBcDa", "B", "Daca"}, {"cba", "", "cba"}};
    for (const auto& [stored, current, others] : cases) {
        std::vector<Place> places;
        for (const char letter : stored) {
            places.push_back({.id = std::string(1, letter), .current = letter < 'a'});
        }
        ASSERT_TRUE(SavedPlaces(storage.groupStorage()).replace(places));
        EXPECT_EQ(idsOf(storage.places()), current + others);
        EXPECT_EQ(storage.currentPlace().value_or(Place{}).id, current);
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
        {"[" + inner + ",\"\xff\"]", ""},
        {std::string(5000, '['), ""},
        {"[null,5,\"a\",[],{},1e999,123456789012345678901," + inner + "]", "a"}};
    for (const auto& [json, ids] : cases) {
        ASSERT_TRUE(storage.groupStorage().set("places", platform::dataOf(json)));
        EXPECT_EQ(idsOf(storage.places()), ids) << json.substr(0, 60);
    }
    ASSERT_TRUE(storage.groupStorage().set("places", good));
    EXPECT_EQ(idsOf(storage.places()), "") << "text is not data";
}

TEST(SharedStorage, withoutAStoreToOpenStopsTheProcess) {
    const testing::TemporaryDirectory directory;
    testing::writeFile(directory.path("file"), "");
    platform::SQLiteUserDefaultsSuites suites(directory.path("file/store"));
    EXPECT_DEATH(SharedStorage storage(suites),
                 "Fatal error: the application group's store is missing: .*:[0-9]+");
}

}  // namespace
}  // namespace nimbuscope

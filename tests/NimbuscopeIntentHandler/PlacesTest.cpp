#include <gtest/gtest.h>

#include "NimbuscopeIntentHandler/Places/SavedPlaces.hpp"
#include "NimbuscopeIntentHandler/Places/SharedStorage.hpp"
#include "tests/support/FailingUserDefaults.hpp"
#include "tests/support/InMemoryUserDefaults.hpp"

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

std::string with(const std::string& from, const std::string& to) {
    std::string json = storedPlace;
    const std::size_t at = json.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return at == std::string::npos ? json : json.replace(at, from.size(), to);
}

platform::Data listOf(const std::string& element) {
    return platform::dataOf('[' + element + ']');
}

TEST(Place, isWrittenBackToTheByte) {
    const auto places = SavedPlaces::decoded(listOf(storedPlace));
    ASSERT_TRUE(places) << places.error().reason;
    EXPECT_EQ(SavedPlaces::encoded(*places), '[' + storedPlace + ']');
}

TEST(Place, withoutSettingsTakesTheDefaultsAndAbsentTextsStayAbsent) {
    const std::string bare =
        R"({"id":"a","icon":"i","name":"n","current":true,"geolocated":true,"staticCoordinate":{"latitude":1,"longitude":2})";
    const std::string expected =
        R"([{"id":"a","icon":"i","name":"n","current":true,"geolocated":true,)"
        R"("notificationsSettings":{"isCustom":false,"rainDuration":{"isEnabled":true,"accuracy":1,"intensity":25},)"
        R"("inRadius":{"isEnabled":true,"showRadiusOnMap":true,"radius":30000,"intensity":55},)"
        R"("severeWeather":{"isEnabled":true,"severity":"Minor"},)"
        R"("tropicalStorms":{"isEnabled":true,"trackingArea":"global"},)"
        R"("silenceTime":{"isEnabled":false,"start":82800,"end":25200}},)"
        R"("staticCoordinate":{"latitude":1,"longitude":2}}])";
    for (const char* rest : {"}", R"(,"notificationsSettings":null,"address":null})"}) {
        const auto places = SavedPlaces::decoded(listOf(bare + rest));
        ASSERT_TRUE(places) << places.error().reason;
        EXPECT_EQ(SavedPlaces::encoded(*places), expected);
    }
}

TEST(Place, withAFaultIsDroppedFromAListAndNamedInAnImport) {
    struct Case {
        std::string from, to, path;
    };
    const Case cases[] = {
        {R"("id":"a",)", "", "id"},
        {R"("icon":"home",)", "", "icon"},
        {R"("name":"A")", R"("name":null)", "name"},
        {R"("address":"1 Street")", R"("address":5)", "address"},
        {R"("current":false)", R"("current":0)", "current"},
        {R"("geolocated":false,)", "", "geolocated"},
        {R"("accuracy":2)", R"("accuracy":3)", "notificationsSettings.rainDuration.accuracy"},
        {R"("radius":5000)", R"("radius":15000)", "notificationsSettings.inRadius.radius"},
        {R"("severity":"Severe")", R"("severity":"severe")", "notificationsSettings.severeWeather.severity"},
        {R"("trackingArea":"near")", R"("trackingArea":"nearMyLocations")",
         "notificationsSettings.tropicalStorms.trackingArea"},
        {R"("start":1)", R"("start":1.5)", "notificationsSettings.silenceTime.start"},
        {R"({"isCustom":true,)", R"({)", "notificationsSettings.isCustom"},
        {R"("latitude":-33.8688,)", "", "staticCoordinate.latitude"},
    };
    for (const auto& [from, to, path] : cases) {
        const std::string bad = with(from, to);
        const auto imported = SavedPlaces::decoded(listOf(storedPlace + ',' + bad));
        ASSERT_FALSE(imported) << path;
        EXPECT_TRUE(imported.error().reason.starts_with("[1]." + path + ": ")) << imported.error().reason;
        EXPECT_EQ(decodePlaces(listOf(storedPlace + ',' + bad + ',' + storedPlace)).size(), 2U) << path;
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
    const platform::DefaultsValue values[] = {listOf(storedPlace + ",5"), std::string("[]"),
                                              platform::dataOf("{}")};
    for (const auto& value : values) {
        ASSERT_TRUE(store.set("places", value));
        EXPECT_FALSE(places.all());
        EXPECT_FALSE(places.add({.id = "new"}));
        EXPECT_FALSE(places.remove("a"));
        EXPECT_EQ(store.object("places").value(), value);
    }
    EXPECT_TRUE(places.replace({}));
    EXPECT_EQ(store.object("places").value(), platform::dataOf("[]"));
}

}  // namespace
}  // namespace nimbuscope

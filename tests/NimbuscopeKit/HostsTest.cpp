#include <gtest/gtest.h>

#include <limits>

#include "NimbuscopeKit/Networking/Hosts.hpp"
#include "tests/support/FailingUserDefaults.hpp"
#include "tests/support/InMemoryUserDefaults.hpp"
#include "tests/support/SecurityFakes.hpp"

namespace nimbuscope::testing {
namespace {

using Names = std::vector<std::string>;
using platform::DefaultsArray;

struct HostsTest : ::testing::Test {
    std::shared_ptr<InMemoryUserDefaults> group = std::make_shared<InMemoryUserDefaults>();
    std::shared_ptr<FailingUserDefaults> store = std::make_shared<FailingUserDefaults>(group);
    std::shared_ptr<ScriptedRandom> random = std::make_shared<ScriptedRandom>();

    std::unique_ptr<Hosts> open() { return Hosts::open(store, random).value(); }
    static ApiSettingsItem settings(std::map<std::string, Names> hosts) {
        return {.hosts = std::move(hosts)};
    }
    std::string radar(const Hosts& hosts, std::deque<std::uint64_t> words) {
        random->words = std::move(words);
        const std::string host = hosts.getHttpsHost(HostIdentifier::radar);
        EXPECT_TRUE(random->words.empty());
        return host;
    }
};

TEST_F(HostsTest, areBuiltInUntilTheSettingsNameOthers) {
    const auto hosts = open();
    for (const HostIdentifier identifier : platform::allCases<HostIdentifier>()) {
        const bool isApi = identifier == HostIdentifier::api;
        EXPECT_EQ(hosts->getHttpsHost(identifier),
                  isApi ? "https://api.nimbus.example" : "https://cdn.nimbus.example");
    }
    ASSERT_TRUE(
        hosts->updateHostsBySettings(settings({{"radar", {"a", "b:8443"}}, {"storms", {"c"}}, {"api", {}}})));
    const platform::DefaultsDictionary stored{
        {"nbHostsApi", DefaultsArray()},
        {"nbHostsRadar", DefaultsArray{std::string("a"), std::string("b:8443")}}};
    EXPECT_EQ(group->dictionaryRepresentation().value(), stored);
    ASSERT_TRUE(hosts->updateHostsBySettings(settings({{"coverage", {"d"}}})));
    ASSERT_TRUE(hosts->resetHosts(HostIdentifier::extendedRadar));
    EXPECT_EQ(group->object("nbHostsExtendedRadar").value(),
              DefaultsArray{std::string("cdn.nimbus.example")});
    const auto again = open();
    EXPECT_EQ(again->hosts(), hosts->hosts());
    EXPECT_EQ(again->getHttpsHost(HostIdentifier::api), "https://api.nimbus.example");
}

TEST_F(HostsTest, areDrawnWithoutFavour) {
    constexpr std::uint64_t third = std::numeric_limits<std::uint64_t>::max() / 3;
    const auto hosts = open();
    ASSERT_TRUE(hosts->updateHostsBySettings(settings({{"radar", {"a", "b", "c"}}})));
    // 2^64 leaves 1 when divided by 3: the word whose low half is 0 would favour the first.
    EXPECT_EQ(radar(*hosts, {0, 1}), "https://a");
    EXPECT_EQ(radar(*hosts, {third}), "https://a");
    EXPECT_EQ(radar(*hosts, {third + 1}), "https://b");
    EXPECT_EQ(radar(*hosts, {2 * third + 1}), "https://c");
    EXPECT_EQ(radar(*hosts, {3 * third}), "https://c");
}

TEST_F(HostsTest, bendNoURL) {
    const auto hosts = open();
    const Names bent{
        "host/x?", "user@host", "a\r\nb", "", "a b", "a:", "a:0", "a:65536", "a:1:2", "[::1", "a#", "é"};
    ASSERT_TRUE(hosts->updateHostsBySettings(settings({{"radar", bent}})));
    EXPECT_EQ(radar(*hosts, {}), "https://cdn.nimbus.example");
    EXPECT_EQ(hosts->hosts().at(HostIdentifier::radar), bent) << "stored as given";
    Names mixed = bent;
    mixed.insert(mixed.end(), {"[::1]:8443", "localhost:65535"});
    ASSERT_TRUE(hosts->updateHostsBySettings(settings({{"radar", mixed}})));
    EXPECT_EQ(radar(*hosts, {2}), "https://[::1]:8443");
    EXPECT_EQ(radar(*hosts, {~std::uint64_t{0}}), "https://localhost:65535");
}

TEST_F(HostsTest, storedOtherwiseCountAsNoneAndStoresMayFail) {
    ASSERT_TRUE(group->set("nbHostsRadar", DefaultsArray{std::string("a"), true}));
    ASSERT_TRUE(group->set("nbHostsSatellite", std::string("a")));
    const auto hosts = open();
    EXPECT_TRUE(hosts->hosts().empty());
    store->writeFault = platform::DefaultsError::Code::full;
    EXPECT_FALSE(hosts->updateHostsBySettings(settings({{"radar", {"a"}}, {"api", {"b"}}})));
    EXPECT_FALSE(hosts->resetHosts(HostIdentifier::api));
    EXPECT_TRUE(hosts->hosts().empty());
    store->readFault = platform::DefaultsError::Code::damaged;
    EXPECT_FALSE(Hosts::open(store, random));
}

}  // namespace
}  // namespace nimbuscope::testing

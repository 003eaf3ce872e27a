#include <gtest/gtest.h>

#include "NimbuscopeKit/Networking/ApiService.hpp"
#include "tests/support/ApiPeer.hpp"

namespace nimbuscope::testing {
namespace {

TEST(SharedNetworking, asksTheServerOfTheUsersHostTableAndKeepsWhatItMay) {
    // They outlive what is shared.
    static const TemporaryDirectory directory;
    static ApiPeer api;
    ::setenv("NIMBUSCOPE_STORE", directory.path("store").c_str(), 1);
    ::setenv("XDG_CACHE_HOME", directory.path("cache").c_str(), 1);
    ::setenv("SSL_CERT_FILE", api.authorityFile().c_str(), 1);
    ASSERT_TRUE(Hosts::main().updateHostsBySettings({.hosts = {{"api", {api.host()}}}}));

    auto& loop = platform::MainRunLoop::main();
    RequestResult<ApiMaps> maps;
    ApiService::default_().getMaps(600, 600, 7200, [&](auto result) {
        maps = std::move(result);
        loop.stop();
    });
    loop.run();
    EXPECT_EQ(maps.value().data->at("radar").past->at(0).path, "/r/1");

    static_cast<void>(api.takeLog());
    api.misbehave("/tile", 200, "picture");
    for (const bool isCleared : {false, false, true}) {
        if (isCleared) {
            Networking::default_()->clearCache();
        }
        RequestResult<platform::Data> tile;
        Networking::default_()->request("https://" + api.host() + "/tile", [&](auto result) {
            tile = std::move(result);
            loop.stop();
        });
        loop.run();
        EXPECT_EQ(platform::textOf(tile.value()), "picture");
    }
    EXPECT_EQ(api.takeLog(), "GET /tile \nGET /tile \n") << "only the second comes from the cache";
}

}  // namespace
}  // namespace nimbuscope::testing

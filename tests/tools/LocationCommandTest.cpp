#include <gtest/gtest.h>

#include <asio/executor_work_guard.hpp>
#include <thread>

#include "tests/support/GeoClueStandIn.hpp"

namespace nimbuscope::testing {
namespace {

struct LocationCommand : ::testing::Test {
    PrivateBus bus;
    asio::io_context loop;
    GeoClueStandIn standIn{loop};
    Outcome call(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(),
                         {NIMBUSCOPE_BINARY_DIRECTORY "/tools/nimbuscope/nimbuscope", "location"});
        return run(arguments, {}, {{"NIMBUSCOPE_STORE", bus.directory.path("store")}, {"LC_ALL", "C"}});
    }
};

TEST_F(LocationCommand, tellsTheStateAndThePositionAndKeepsIt) {
    standIn.serve(GeoClueStandIn::Status::authorizedWhenInUse);
    standIn.whenStarted = [&] { standIn.locate({{38.5, -9.25}, 20.0}); };
    const auto guard = asio::make_work_guard(loop);
    std::jthread thread([&] { loop.run(); });
    EXPECT_EQ(call({}).output, "available\n38.5 -9.25 (within 20 m)\n");
    EXPECT_EQ(call({"--json"}).output,
              R"({"state":"available","location":{"latitude":38.5,"longitude":-9.25,)"
              R"("horizontalAccuracy":20},"last":{"latitude":38.5,"longitude":-9.25}})"
              "\n");
    loop.stop();
    thread.join();
    bus.stop();
    const Outcome offline = call({"--json"});
    EXPECT_EQ(offline.output,
              R"({"state":"undetermined","location":null,"last":{"latitude":38.5,"longitude":-9.25}})"
              "\n");
    EXPECT_TRUE(offline.errors.starts_with("Location getting error: ")) << offline.errors;
    EXPECT_EQ(call({}).output, "undetermined\nlast known: 38.5 -9.25\n");
}

TEST_F(LocationCommand, endsWhenNothingAnswersOrIsKnown) {
    EXPECT_EQ(call({}).output, "undetermined\n") << "no service";
    standIn.serve(GeoClueStandIn::Status::authorizedWhenInUse);  // but it is silent
    EXPECT_EQ(call({"--watch", "--json", "--timeout", "0.01"}).output, "[]\n");
    EXPECT_EQ(call({"--status", "3"}).output, "available always\n");
    EXPECT_EQ(call({"--status", "5"}).errors, "nimbuscope: location: --status: expected 0 to 4, found 5\n");
}

}  // namespace
}  // namespace nimbuscope::testing

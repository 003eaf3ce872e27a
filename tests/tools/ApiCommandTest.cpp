#include <gtest/gtest.h>

#include "tests/support/ApiPeer.hpp"
#include "tests/support/Process.hpp"

namespace nimbuscope::testing {
namespace {

struct ApiCommand : ::testing::Test {
    TemporaryDirectory directory;
    std::string printed;  // by all calls

    Outcome call(std::vector<std::string> arguments, const std::string& input = {}) {
        arguments.insert(arguments.begin(), NIMBUSCOPE_BINARY_DIRECTORY "/tools/nimbuscope/nimbuscope");
        const Outcome outcome = run(arguments, input,
                                    {{"NIMBUSCOPE_STORE", directory.path("store")},
                                     {"LC_ALL", "en_US.UTF-8"},
                                     {"TZ", "Europe/Lisbon"}});
        printed += outcome.output + outcome.errors;
        return outcome;
    }
    std::string output(std::vector<std::string> arguments, const std::string& input = {}) {
        const Outcome outcome = call(std::move(arguments), input);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
        EXPECT_EQ(outcome.errors, "");
        return outcome.output;
    }
    std::string failure(std::vector<std::string> arguments, int exitCode, const std::string& input = {}) {
        const Outcome outcome = call(std::move(arguments), input);
        EXPECT_EQ(outcome.exitCode, exitCode) << outcome.errors;
        EXPECT_EQ(outcome.output, "");
        return outcome.errors;
    }
};

TEST_F(ApiCommand, talksToTheServerOfTheHostTable) {
    ApiPeer api;
    const std::vector<std::string> maps{"api",   "maps",       "--step", "600",       "--nowcast-interval",
                                        "-1",    "--interval", "7200",   "--ca-file", api.authorityFile(),
                                        "--json"};
    const std::vector<std::string> credentials{"api", "credentials", "--ca-file", api.authorityFile()};
    const std::string mapsLog = "GET /mobile/maps/?step=600&nowcast_interval=-1&interval=7200 \n";
    const std::string exchangeLog =
        "POST /mobile/authorization {\"version\":\"0.1.0\",\"build\":\"1\",\"os\":\"ios\","
        "\"locale\":\"en_US\",\"time_zone\":\"Europe/Lisbon\",\"time_12_hours\":true,"
        "\"units\":0}\n";
    EXPECT_EQ(output({"hosts", "update", "-"}, api.settings()), "");

    EXPECT_EQ(output(maps), ApiPeer::timeline + std::string("\n"));
    EXPECT_EQ(api.takeLog(), exchangeLog + mapsLog);
    EXPECT_EQ(output(credentials), "credentials are stored\n");
    EXPECT_EQ(api.takeLog(), "") << "they were read back";
    const Outcome sync = call({"api", "sync", "--ca-file", api.authorityFile()});
    EXPECT_EQ(sync.exitCode, 0);
    EXPECT_EQ(sync.errors, "Units & Locale: Sync success: {\"code\":0,\"message\":\"OK\"}\n");
    EXPECT_EQ(api.takeLog(),
              "POST /mobile/user/ {\"version\":\"20\",\"build\":\"1\",\"semantic_version\":\"0.1.0\","
              "\"locale\":\"en_US\",\"units\":\"imperial\",\"time_zone\":\"Europe/Lisbon\","
              "\"time_12_hours\":\"true\"}\n");

    auto secrets = api.secrets();
    api.forget();
    EXPECT_EQ(failure(maps, 1),
              "nimbuscope: api maps: status 401: An error occurred communicating with the server. "
              "Please try again.\n");
    EXPECT_EQ(api.takeLog(), mapsLog + "refused: credential\n");
    EXPECT_EQ(output(maps), ApiPeer::timeline + std::string("\n"));
    EXPECT_EQ(api.takeLog(), exchangeLog + mapsLog) << "new credentials";
    EXPECT_EQ(output({"api", "credentials", "--reset"}), "");

    const std::string what = "nimbuscope: api maps: ";
    const std::string refusal = "authorizationError: the server gave no credentials: ";
    const struct {
        std::string target;
        int status;
        std::string body;
        std::string why;
    } faults[]{
        {"/mobile/authorization", 200, "{}", refusal + "Code is missing"},
        {"/mobile/authorization", 403, "{}",
         refusal + "status 403: An error occurred communicating with the server. "
                   "Please try again."},
        {"/mobile/authorization", 200, R"({"code":2,"message":"no","data":{"key":"k","secret":"s"}})",
         refusal + "the server refused: no"},
        {"/mobile/maps", 200, R"({"code":1,"message":"busy"})", "the server refused: busy"},
        {"/mobile/maps", 200, R"({"code":0,"message":"","data":{"radar":{"past":[{"time":1}]}}})",
         "data.radar.past[0].path: missing key"},
        {"/mobile/maps", 204, "", "noData: the reply has no body"},
    };
    for (const auto& fault : faults) {
        api.behave();
        api.misbehave(fault.target, fault.status, fault.body);
        EXPECT_EQ(failure(maps, 1), what + fault.why + '\n');
    }
    api.misbehave("/mobile/user", 500, "");
    EXPECT_TRUE(failure({"api", "sync", "--ca-file", api.authorityFile()}, 1)
                    .starts_with("Units & Locale: Sync error: status 500"));
    EXPECT_TRUE(failure({"api", "maps", "--step", "1", "--nowcast-interval", "1", "--interval", "1"}, 1)
                    .starts_with(what))
        << "an authority that nobody trusts";
    EXPECT_EQ(failure({"api", "maps", "--step", "1"}, 2).substr(0, 25), "nimbuscope: command line:");
    secrets.merge(api.secrets());
    EXPECT_EQ(secrets.size(), 3U);
    for (const auto& [key, secret] : secrets) {
        EXPECT_EQ(printed.find(key), printed.npos);
        EXPECT_EQ(printed.find(secret), printed.npos);
    }
}

TEST_F(ApiCommand, signs) {
    const std::vector<std::string> request{
        "sign",
        "--method",
        "GET",
        "--key",
        "AK",
        "--secret",
        "s3cret",
        "--url",
        "https://api.nimbus.example/mobile/maps/?step=600&nowcast_interval=600&interval=7200"};
    const auto with = [&](std::vector<std::string> more) {
        more.insert(more.begin(), request.begin(), request.end());
        return more;
    };
    const std::string signature = "12bf47b35f34c71dc58a79d75c030ab8ea1d50d6bd99e8d60da6b8d08761f509";
    EXPECT_EQ(
        output(with({"--at", "2024-03-07T09:15:02Z", "--json"})),
        R"({"X-Nb-Algorithm":"NB-HMAC-SHA256","X-Nb-Credential":"AK/20240307/eu-west-1/mobile/nb_request",)"
        R"("X-Nb-Date":"20240307T091502Z","X-Nb-SignedHeaders":"host","X-Nb-Signature":")" +
            signature + "\"}\n");
    EXPECT_TRUE(
        output(with({"--at", "2024-03-07T09:15:02Z"})).ends_with("X-Nb-Signature: " + signature + '\n'));
    for (const char* at : {"2024-03-07 09:15:02Z", "2023-02-29T00:00:00Z", "2024-03-07T24:00:00Z",
                           "2024-03-07T09:15:02", "2024-03-07T09:15:60Z", ""}) {
        EXPECT_NE(failure(with({"--at", at}), 2), "") << at;
    }
    EXPECT_EQ(failure({"sign", "--method", "GET", "--key", "k", "--secret", "hidden", "--url",
                       "https://h/%zz", "--at", "2024-03-07T09:15:02Z"},
                      1)
                  .find("hidden"),
              std::string::npos);
}

TEST_F(ApiCommand, listsAndChangesHostsAndShowsTimelines) {
    const std::string before = output({"hosts", "list", "--json"});
    EXPECT_TRUE(before.starts_with(R"({"radar":["cdn.nimbus.example"],"satellite":)")) << before;
    const std::string settings =
        R"({"code":0,"message":"","data":{"rating":true,"hosts":{"radar":["a","b"],"storms":["c"]})";
    const std::string forecast = R"(,"forecast":{"hourly":{"items":48},"daily":{"items":10}}}})";
    EXPECT_EQ(failure({"hosts", "update", "-"}, 1, settings + "}}"),
              "nimbuscope: -: data.forecast: missing key\n");
    EXPECT_EQ(failure({"hosts", "update", "-"}, 1,
                      R"({"code":7,"message":"later",)" + (settings + forecast).substr(23)),
              "nimbuscope: -: the server refused: later\n");
    EXPECT_EQ(output({"hosts", "list", "--json"}), before);
    EXPECT_EQ(output({"hosts", "update", "-"}, settings + forecast), "");
    EXPECT_TRUE(output({"hosts", "list", "--json"}).starts_with(R"({"radar":["a","b"],"satellite":)"));
    EXPECT_EQ(output({"defaults", "read", "nbHostsRadar", "--json"}), "[\"a\",\"b\"]\n");
    EXPECT_EQ(output({"hosts", "reset", "radar"}), "");
    EXPECT_EQ(output({"hosts", "list", "--json"}), before);
    EXPECT_NE(failure({"hosts", "reset", "storms"}, 2), "");

    const std::string times =
        R"({"code":-1,"message":"m","data":{"b":{"future":[]},"a":{"past":[{"time":1,"path":""}]}}})";
    EXPECT_EQ(output({"maps", "show", "-"}, times),
              "code -1: m\na\n  past frames: 1, from 1 to 1\n  future frames: absent\n"
              "b\n  past frames: absent\n  future frames: none\n");
    const std::pair<const char*, const char*> documents[]{
        {R"({"message":"","x":1,"code":1e0})", R"({"code":1,"message":""})"},
        {R"({"code":1,"message":"","data":null})", R"({"code":1,"message":""})"},
        {R"({"code":1,"message":"","data":{"a":{"past":null,"future":[]}}})",
         R"({"code":1,"message":"","data":{"a":{"future":[]}}})"},
        {R"({"code":1,"message":"","data":{}})", R"({"code":1,"message":"","data":{}})"},
    };
    for (const auto& [document, again] : documents) {
        EXPECT_EQ(output({"maps", "show", "-", "--json"}, document), again + std::string("\n"));
    }
    EXPECT_EQ(
        failure({"maps", "show", "-"}, 1, R"({"code":0,"message":"","data":{"a":{"past":[{"path":"p"}]}}})"),
        "nimbuscope: -: data.a.past[0].time: missing key\n");
}

}  // namespace
}  // namespace nimbuscope::testing

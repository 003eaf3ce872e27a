#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "NimbuscopeKit/Networking/ApiService.hpp"
#include "NimbuscopeKit/Networking/ServerSync.hpp"
#include "NimbuscopeKit/Networking/UserServiceImpl.hpp"
#include "tests/support/FixedLocale.hpp"
#include "tests/support/InMemoryUserDefaults.hpp"
#include "tests/support/ManualRunLoop.hpp"
#include "tests/support/ScriptedURLSession.hpp"
#include "tests/support/SecurityFakes.hpp"
#include "tests/support/SignatureVerifier.hpp"

namespace nimbuscope::testing {
namespace {

using namespace std::chrono_literals;
using platform::Data;
using platform::URLRequest;
using ::testing::ElementsAre;

struct Zone final : platform::TimeZone {
    [[nodiscard]] std::string identifier() const override { return "Etc/Test"; }
};
struct Errors final : ErrorTrackingService {
    std::vector<std::string> all;
    void track(const platform::NSError& error) override { all.push_back(error.localizedDescription); }
};

struct NetworkingTest : ::testing::Test {
    int status = 200;
    std::string body = R"({"code":0,"message":"","data":7})";
    std::string credentials = R"({"code":0,"message":"","data":{"key":"K1","secret":"hidden"}})";
    std::shared_ptr<InMemoryUserDefaults> group = std::make_shared<InMemoryUserDefaults>();
    ScriptedURLSession session{[this](const URLRequest& request) {
        const bool isExchange = request.url.ends_with("/authorization");
        return isExchange ? respond(request, 200, credentials) : respond(request, status, body);
    }};
    ManualRunLoop loop;
    std::unique_ptr<Hosts> hosts = Hosts::open(group, std::make_shared<ScriptedRandom>()).value();
    std::shared_ptr<UserServiceImpl> user = std::make_shared<UserServiceImpl>(
        platform::DefaultsDictionary{{"CFBundleVersion", std::string("42")},
                                     {"CFBundleShortVersionString", std::string("1.2")}},
        std::make_shared<FixedLocale>(false), std::make_shared<Zone>(),
        [] { return UnitsPreference::Hybrid; });
    std::shared_ptr<Errors> errors = std::make_shared<Errors>();
    std::shared_ptr<Networking> networking =
        Networking::make({session, loop, loop, loop, *hosts, *user, errors.get()}, Authorization(group, "0"));
    std::vector<std::string> outcomes;

    template <class T>
    RequestHandler<T> note() {
        return [this](RequestResult<T> outcome) {
            outcomes.push_back(!outcome ? description(outcome.error())
                                        : platform::JSONEncoder().encode(*outcome).value());
        };
    }
    void get(const std::string& path = "x/?b&a=1") {
        networking->authorizedRequest<std::int64_t>(path, "GET", {}, Data{1}, note<std::int64_t>());
    }
    std::vector<std::string> take() {
        loop.runDue();
        return std::exchange(outcomes, {});
    }
    [[nodiscard]] std::string urls() {
        std::string all;
        for (const auto& request : std::exchange(session.requests, {})) {
            all += request.url.substr(request.url.find('/', 8)) + ' ';
        }
        return all;
    }
};

const std::string refused = "authorizationError: the server gave no credentials";

TEST_F(NetworkingTest, obtainsCredentialsOnceAndSignsWithThem) {
    session.isHolding = true;
    get();
    get("y/");
    loop.advance(1700ms);
    ASSERT_EQ(session.requests.size(), 1U);
    const URLRequest exchange = session.requests[0];
    EXPECT_EQ(exchange.url, "https://api.nimbus.example/mobile/authorization");
    EXPECT_EQ(exchange.httpMethod, "POST");
    EXPECT_EQ(exchange.headers, (platform::HTTPHeaders{{"Content-type", "application/json"}}));
    EXPECT_EQ(platform::textOf(*exchange.httpBody),
              R"({"version":"1.2","build":"42","os":"ios","locale":"xx_XA","time_zone":"Etc/Test",)"
              R"("time_12_hours":true,"units":2})");
    session.isHolding = false;
    session.release();
    EXPECT_THAT(take(), ElementsAre("7"));
    loop.advance(299ms);
    EXPECT_TRUE(outcomes.empty()) << "the other waits in steps of half a second";
    loop.advance(1ms);
    EXPECT_THAT(take(), ElementsAre("7"));
    for (std::size_t i = 1; i < 3; ++i) {
        const auto& request = session.requests[i];
        EXPECT_EQ(request.headers.value("content-type"), "application/octet-stream");
        EXPECT_EQ(request.headers.fields().size(), 6U);
        EXPECT_FALSE(request.httpBody) << "a GET has none";
        EXPECT_TRUE(request.isAuthorized && request.timeoutInterval == 60s);
        EXPECT_EQ(faultOfSignature({"GET", request.url.substr(26), "api.nimbus.example:443",
                                    [&](auto& name) { return request.headers.value(name).value_or(""); }},
                                   {{"K1", "hidden"}}),
                  "");
    }
    EXPECT_TRUE(Authorization(group, "0").exists());
    EXPECT_EQ(urls(), "/mobile/authorization /mobile/x/?b&a=1 /mobile/y/ ");
}

TEST_F(NetworkingTest, allWhoWaitFailWithTheExchangeAndTheNextRequestBeginsAnother) {
    const std::string good =
        std::exchange(credentials, R"({"code":3,"message":"no","data":{"key":"k","secret":"hidden"}})");
    session.isHolding = true;
    get();
    get();
    loop.runDue();
    session.isHolding = false;
    session.release();
    EXPECT_THAT(take(), ElementsAre(refused));
    credentials = good;
    get();
    EXPECT_THAT(take(), ElementsAre("7"));
    loop.advance(500ms);
    EXPECT_THAT(take(), ElementsAre(refused));
    EXPECT_THAT(errors->all, ElementsAre("the server refused: no"));
}

TEST_F(NetworkingTest, aRefusalGivesTheCredentialsUpOnce) {
    get();
    EXPECT_THAT(take(), ElementsAre("7"));
    session.isHolding = true;
    get();
    get();
    loop.runDue();
    session.isHolding = false;
    status = 401;
    session.release();
    const std::string text = ": An error occurred communicating with the server. Please try again.";
    EXPECT_THAT(take(), ElementsAre("status 401" + text, "status 401" + text));
    EXPECT_FALSE(Authorization(group, "0").exists());
    status = 403;
    get();
    credentials.replace(credentials.find("K1"), 2, "K2");
    EXPECT_THAT(take(), ElementsAre("status 403" + text)) << "not asked again by itself";
    status = 500;
    get();
    get();
    EXPECT_THAT(take(), ElementsAre("status 500" + text));
    loop.advance(500ms);
    EXPECT_EQ(
        urls(),
        "/mobile/authorization /mobile/x/?b&a=1 /mobile/x/?b&a=1 /mobile/x/?b&a=1 "
        "/mobile/authorization /mobile/x/?b&a=1 /mobile/authorization /mobile/x/?b&a=1 /mobile/x/?b&a=1 ");
}

TEST_F(NetworkingTest, turnsFinishedTasksIntoValuesOrErrors) {
    const struct {
        int status;
        std::string body;
        std::string outcome;
    } cases[]{
        {200, body, "7"},
        {299, R"({"code":5,"message":"","data":-1})", "-1"},
        {199, body, "status 199: " + std::string(StatusCodeError::errorDescription)},
        {300, body, "status 300: " + std::string(StatusCodeError::errorDescription)},
        {204, "", "noData: the reply has no body"},
        {200, "", "invalid JSON at byte 0"},
        {200, R"({"code":0,"message":""})", "data: missing key"},
        {200, R"({"Code":0,"message":"","data":1})", "code: missing key"},
        {200, R"({"code":0,"message":"","data":"1"})", "data: expected an integer, found a text"},
    };
    for (const auto& each : cases) {
        session.answer = [&](const URLRequest& request) {
            auto response = request.url.ends_with("/authorization")
                                ? respond(request, 200, credentials)
                                : respond(request, each.status, each.body);
            if (each.status == 204) {
                response->data.reset();
            }
            return response;
        };
        get();
        EXPECT_THAT(take(), ElementsAre(each.outcome));
    }
    session.answer = [](const URLRequest&) {
        return std::unexpected(
            platform::URLError{platform::URLError::Code::timedOut, {"libcurl", 28, "too slow"}});
    };
    get();
    networking->request("https://tiles/1",
                        [this](auto data) { outcomes.push_back(description(data.error())); });
    EXPECT_THAT(take(), ElementsAre("too slow (libcurl 28)", "too slow (libcurl 28)"));
}

TEST_F(NetworkingTest, theServiceAndTheSyncSendWhatTheServerExpects) {
    body =
        R"({"code":0,"message":"","data":{"radar":{"past":[{"time":1,"path":"/p"}],"future":null},"x":{"future":[]}}})";
    ApiService(networking).getMaps(0, -600, 9'000'000'000, note<ApiMaps>());
    EXPECT_THAT(take(),
                ElementsAre(R"({"code":0,"message":"","data":{"radar":{"past":[{"time":1,"path":"/p"}]},)"
                            R"("x":{"future":[]}}})"));
    EXPECT_EQ(session.requests.back().url,
              "https://api.nimbus.example/mobile/maps/?step=0&nowcast_interval=-600&interval=9000000000");
    const auto sync = [&] {
        ::testing::internal::CaptureStderr();
        EXPECT_TRUE(ServerSync(user, networking, errors).user(note<ApiValidation>()));
        const auto outcome = take();
        EXPECT_EQ(outcome.size(), 1U);
        return ::testing::internal::GetCapturedStderr();
    };
    EXPECT_EQ(sync(), "Units & Locale: Sync success: {\"code\":0,\"message\":\"\"}\n");
    EXPECT_EQ(session.requests.back().httpMethod, "POST");
    EXPECT_EQ(platform::textOf(*session.requests.back().httpBody),
              R"({"version":"20","build":"42","semantic_version":"1.2","locale":"xx_XA","units":"mixed",)"
              R"("time_zone":"Etc/Test","time_12_hours":"true"})");
    body = R"({"code":4,"message":"bad units"})";
    EXPECT_EQ(sync(), "Units & Locale: Sync error: the server refused: bad units\n");
    EXPECT_THAT(errors->all, ElementsAre("the server refused: bad units"));
    const UserServiceImpl nameless({{"CFBundleVersion", std::int64_t{1}}}, nullptr, nullptr, {});
    EXPECT_FALSE(ServerSync(std::make_shared<UserServiceImpl>(nameless), networking, nullptr).user(nullptr));
}

TEST_F(NetworkingTest, repeatsRequestsUntilTheyAreUnscheduled) {
    const RepeatedHandler<std::int64_t> handler = [](auto outcome) { EXPECT_TRUE(outcome); };
    networking->scheduledAuthorizedRequest<std::int64_t>("a", 600, true, handler);
    networking->scheduledAuthorizedRequest<std::int64_t>("b", 600, false, handler);
    networking->scheduledAuthorizedRequest<std::int64_t>("b", 650, false, handler);
    networking->scheduledRequest("https://tiles/1", 700, false, [](auto outcome) { EXPECT_TRUE(outcome); });
    loop.runDue();
    EXPECT_EQ(urls(), "/mobile/authorization /mobile/a ");
    // Tolerances of 60 and 65 seconds let the first two share the wake-up at 660.
    loop.advance(661s);
    EXPECT_EQ(urls(), "/mobile/a /mobile/b ");
    EXPECT_EQ(loop.wakeUps, 1);
    networking->unscheduleAuthorizedRequest("a");
    networking->unscheduleAuthorizedRequest("none");
    loop.advance(110s);
    EXPECT_EQ(urls(), "/1 ");
    networking->unscheduleAllRequests();
    loop.advance(700s);
    EXPECT_EQ(urls(), "/mobile/b ");
    networking->unscheduleAllAuthorizedRequests();
    networking->scheduledRequest("https://tiles/1", 1, false, [](auto) {});
    networking.reset();
    loop.advance(1h);
    EXPECT_EQ(urls(), "");
}

}  // namespace
}  // namespace nimbuscope::testing

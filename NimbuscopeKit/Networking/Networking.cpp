#include "NimbuscopeKit/Networking/Networking.hpp"

#include <array>
#include <chrono>
#include <cstdint>
#include <tuple>

#include "Platform/Coding/JSONEncoder.hpp"

namespace nimbuscope {
namespace {

using platform::Data;
using platform::URLRequest;

constexpr std::chrono::milliseconds timeout{60'000};
constexpr std::chrono::milliseconds retryInterval{500};

/// What a server is told that is asked for credentials.
struct ClientDescription {
    std::optional<std::string> version;
    std::optional<std::string> build;
    std::string os = "ios";
    std::string locale;
    std::string timeZone;
    bool isTime12Hours = false;
    UnitsPreference units = UnitsPreference::Metric;

    static constexpr auto fields =
        std::tuple{platform::key("version", &ClientDescription::version),
                   platform::key("build", &ClientDescription::build),
                   platform::key("os", &ClientDescription::os),
                   platform::key("locale", &ClientDescription::locale),
                   platform::key("time_zone", &ClientDescription::timeZone),
                   platform::key("time_12_hours", &ClientDescription::isTime12Hours),
                   platform::key("units", &ClientDescription::units)};
};

/// What a finished data task comes to.
RequestResult<Data> bodyOf(platform::URLSessionResult outcome) {
    if (!outcome) {
        return std::unexpected(std::move(outcome.error()));
    }
    const std::int64_t status = outcome->response.statusCode;
    if (status < 200 || status > 299) {
        return std::unexpected(StatusCodeError{status});
    }
    if (!outcome->data) {
        return std::unexpected(NetworkError::noData);
    }
    return std::move(*outcome->data);
}

bool isRefusal(const RequestResult<Data>& reply) {
    const auto* status = reply ? nullptr : std::get_if<StatusCodeError>(&reply.error());
    return status != nullptr && (status->code == 401 || status->code == 403);
}

std::string_view contentTypeOf(const std::vector<Networking::Header>& headers) {
    return headers.empty() ? "application/octet-stream" : platform::rawValue(headers.back().contentType);
}

}  // namespace

std::shared_ptr<Networking> Networking::make(Services services, Authorization authorization) {
    return std::shared_ptr<Networking>(new Networking(services, std::move(authorization)));
}

/// Calls `work` with this, unless it is gone by then.
template <class Work>
void Networking::onQueue(Work work) {
    services_.queue.async([self = weak_from_this(), work = std::move(work)]() mutable {
        if (const auto networking = self.lock()) {
            work(*networking);
        }
    });
}

/// Calls `ready` at once where there are credentials: most requests then need no wrapper around it.
template <class Ready>
void Networking::withCredentials(Ready ready) {
    if (authorization_.exists()) {
        ready({});
    } else {
        awaitCredentials(std::move(ready));
    }
}

void Networking::request(std::string url, DataHandler callback) {
    onQueue([url = std::move(url), callback = std::move(callback)](Networking& networking) mutable {
        networking.load({.url = std::move(url), .timeoutInterval = timeout}, std::move(callback));
    });
}

void Networking::backgroundRequest(std::string url, DataHandler callback) {
    request(std::move(url), std::move(callback));
}

void Networking::authorizedData(std::string path, std::string method, const std::vector<Header>& headers,
                                std::optional<Data> body, DataHandler callback) {
    URLRequest request{.url = std::move(path),
                       .httpMethod = std::move(method),
                       .headers = {{"content-type", std::string(contentTypeOf(headers))}},
                       .httpBody = {},
                       .timeoutInterval = timeout,
                       .isAuthorized = true};
    if (request.httpMethod == "POST") {
        request.httpBody = std::move(body);
    }
    onQueue([request = std::move(request), callback = std::move(callback)](Networking& networking) mutable {
        networking.withCredentials([&networking, request = std::move(request),
                                    callback = std::move(callback)](RequestResult<void> ready) mutable {
            if (!ready) {
                callback(std::unexpected(std::move(ready.error())));
                return;
            }
            request.url.insert(0, networking.apiBaseURL());
            networking.sendSigned(std::move(request), std::move(callback));
        });
    });
}

void Networking::obtainCredentials(RequestHandler<void> callback) {
    onQueue([callback = std::move(callback)](Networking& networking) mutable {
        networking.withCredentials(std::move(callback));
    });
}

void Networking::resetCredentials(RequestHandler<void> callback) {
    onQueue([callback = std::move(callback)](Networking& networking) mutable {
        callback(networking.giveUpCredentials());
    });
}

void Networking::clearCache() {
    if (const auto& cache = services_.session.configuration().urlCache) {
        cache->removeAllCachedResponses();
    }
}

std::string Networking::apiBaseURL() const {
    return services_.hosts.getHttpsHost(HostIdentifier::api) + "/mobile/";
}

void Networking::load(URLRequest request, DataHandler callback) {
    services_.session.dataTask(std::move(request), [self = weak_from_this(), callback = std::move(callback)](
                                                       platform::URLSessionResult outcome) mutable {
        if (const auto networking = self.lock()) {
            networking->onQueue([outcome = std::move(outcome),
                                 callback = std::move(callback)](Networking& /*networking*/) mutable {
                callback(bodyOf(std::move(outcome)));
            });
        }
    });
}

void Networking::awaitCredentials(RequestHandler<void> ready) {
    if (authRequest_) {
        waitForExchange(exchange_, std::move(ready));
    } else {
        authRequest_ = true;
        ++exchange_;
        requestCredentials(std::move(ready));
    }
}

void Networking::waitForExchange(std::uint64_t number, RequestHandler<void> ready) {
    services_.main.asyncAfter(
        retryInterval, [self = weak_from_this(), number, ready = std::move(ready)]() mutable {
            const auto networking = self.lock();
            if (!networking) {
                return;
            }
            networking->onQueue([number, ready = std::move(ready)](Networking& later) mutable {
                if (later.failedExchange_ >= number) {
                    ready(std::unexpected(APIError::authorizationError));
                } else {
                    later.withCredentials(std::move(ready));
                }
            });
        });
}

/// The client is described on the main thread, where the user service lives; the rest is on the queue.
void Networking::requestCredentials(RequestHandler<void> ready) {
    services_.main.async([self = weak_from_this(), ready = std::move(ready)]() mutable {
        const auto networking = self.lock();
        if (!networking) {
            return;
        }
        networking->onQueue([body = networking->clientDescription(),
                             ready = std::move(ready)](Networking& described) mutable {
            described.load({.url = described.apiBaseURL() + "authorization",
                            .httpMethod = "POST",
                            .headers = {{"Content-type", "application/json"}},
                            .httpBody = std::move(body),
                            .timeoutInterval = timeout,
                            .isAuthorized = true},
                           [&described, ready = std::move(ready)](RequestResult<Data> reply) mutable {
                               described.finishExchange(std::move(reply), std::move(ready));
                           });
        });
    });
}

void Networking::finishExchange(RequestResult<Data> reply, RequestHandler<void> ready) {
    std::optional<platform::NSError> failure;
    if (!reply) {
        failure = trackable(reply.error());
    } else if (const auto accepted = authorization_.accept(platform::textOf(*reply)); !accepted) {
        failure = {"Authorization", static_cast<int>(accepted.error().index()),
                   description(accepted.error())};
    }
    authRequest_ = false;
    if (!failure) {
        ready({});
        return;
    }
    failedExchange_ = exchange_;
    report(*failure, services_.errorTracking);
    ready(std::unexpected(APIError::authorizationError));
}

void Networking::sendSigned(URLRequest request, DataHandler callback) {
    constexpr std::array<std::string_view, 1> signedHeaders{"host"};
    auto signature = signer_.sign(request, signedHeaders, authorization_.key, authorization_.secret,
                                  std::chrono::floor<std::chrono::milliseconds>(services_.clock.now()));
    if (!signature) {
        callback(std::unexpected(signature.error()));
        return;
    }
    request.headers.add(std::move(*signature).headers());
    load(std::move(request),
         [this, exchange = exchange_, callback = std::move(callback)](RequestResult<Data> reply) mutable {
             // Several replies may refuse the same credentials, and newer ones may be there by then.
             if (isRefusal(reply) && exchange_ == exchange && !authorization_.key.empty()) {
                 if (const auto reset = giveUpCredentials(); !reset) {
                     report(trackable(reset.error()), services_.errorTracking);
                 }
             }
             callback(std::move(reply));
         });
}

RequestResult<void> Networking::giveUpCredentials() {
    authorization_.key.clear();
    authorization_.secret.clear();
    const auto reset = authorization_.reset();
    return reset ? RequestResult<void>{} : std::unexpected(reset.error());
}

Data Networking::clientDescription() const {
    const UserService& user = services_.userService;
    const auto json = platform::JSONEncoder().encode(ClientDescription{.version = user.version(),
                                                                       .build = user.build(),
                                                                       .locale = user.locale(),
                                                                       .timeZone = user.timeZone(),
                                                                       .isTime12Hours = user.isTime12Hours(),
                                                                       .units = user.units()});
    // Texts that are no UTF-8 cannot be told: the server then says that it misses them.
    return platform::dataOf(json.value_or("{}"));
}

}  // namespace nimbuscope

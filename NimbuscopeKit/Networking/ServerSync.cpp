#include "NimbuscopeKit/Networking/ServerSync.hpp"

#include <cstdio>
#include <tuple>
#include <utility>

#include "Platform/Coding/JSONEncoder.hpp"

namespace nimbuscope {
namespace {

/// What the server is told: texts all of them.
struct SyncRecord {
    std::string version = "20";  ///< of this record
    std::string build;
    std::string semanticVersion;
    std::string locale;
    std::string units;
    std::string timeZone;
    std::string time12Hours;

    static constexpr auto fields = std::tuple{platform::key("version", &SyncRecord::version),
                                              platform::key("build", &SyncRecord::build),
                                              platform::key("semantic_version", &SyncRecord::semanticVersion),
                                              platform::key("locale", &SyncRecord::locale),
                                              platform::key("units", &SyncRecord::units),
                                              platform::key("time_zone", &SyncRecord::timeZone),
                                              platform::key("time_12_hours", &SyncRecord::time12Hours)};
};

/// The reply, or the refusal that it tells.
RequestResult<ApiValidation> accepted(RequestResult<ApiValidation> reply) {
    return reply && reply->code != 0 ? std::unexpected(ApiError{reply->message}) : std::move(reply);
}

void print(const RequestResult<ApiValidation>& outcome) {
    const std::string line = outcome ? "success: " + platform::JSONEncoder().encode(*outcome).value_or("")
                                     : "error: " + description(outcome.error());
    std::fprintf(stderr, "Units & Locale: Sync %s\n", line.c_str());
}

}  // namespace

bool ServerSync::user(RequestHandler<ApiValidation> completion) {
    const auto build = userService_->build();
    const auto version = userService_->version();
    if (!build || !version) {
        return false;
    }
    const auto json = platform::JSONEncoder().encode(
        SyncRecord{.build = *build,
                   .semanticVersion = *version,
                   .locale = userService_->locale(),
                   .units = std::string(title(userService_->units())),
                   .timeZone = userService_->timeZone(),
                   .time12Hours = userService_->isTime12Hours() ? "true" : "false"});
    auto finish = [tracking = errorTracking_,
                   completion = std::move(completion)](RequestResult<ApiValidation> reply) mutable {
        auto outcome = accepted(std::move(reply));
        print(outcome);
        if (!outcome && tracking) {
            tracking->track(trackable(outcome.error()));
        }
        completion(std::move(outcome));
    };
    if (!json) {
        finish(std::unexpected(APIError::encodingError));
        return true;
    }
    networking_->authorizedRequest<ApiValidation>("user/", "POST", {}, platform::dataOf(*json),
                                                  std::move(finish));
    return true;
}

}  // namespace nimbuscope

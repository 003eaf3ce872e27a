#pragma once

#include <future>
#include <utility>

#include "Platform/URLLoading/URLSession.hpp"

namespace nimbuscope::testing {

/// Starts a request and waits for its outcome.
[[nodiscard]] inline platform::URLSessionResult load(platform::URLSession& session,
                                                     platform::URLRequest request) {
    std::promise<platform::URLSessionResult> promise;
    session.dataTask(std::move(request), [&](auto result) { promise.set_value(std::move(result)); });
    return promise.get_future().get();
}

}  // namespace nimbuscope::testing

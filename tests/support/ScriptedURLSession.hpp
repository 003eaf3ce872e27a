#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "Platform/URLLoading/URLSession.hpp"

namespace nimbuscope::testing {

/// A session whose responses the test makes up, and which remembers what it was asked. Handlers are called at
/// once, or, while `isHolding`, when the test calls `release`. One thread.
class ScriptedURLSession final : public platform::URLSession {
  public:
    using Answer = std::function<platform::URLSessionResult(const platform::URLRequest&)>;

    explicit ScriptedURLSession(Answer script) : answer(std::move(script)) {}

    Answer answer;
    bool isHolding = false;
    platform::URLSessionConfiguration settings;
    std::vector<platform::URLRequest> requests;

    void dataTask(platform::URLRequest request, platform::URLSessionHandler handler) override {
        requests.push_back(request);
        held_.emplace_back(std::move(request), std::move(handler));
        if (!isHolding) {
            release();
        }
    }

    void release() {
        for (auto& [request, handler] : std::exchange(held_, {})) {
            handler(answer(request));
        }
    }

    [[nodiscard]] const platform::URLSessionConfiguration& configuration() const override { return settings; }

  private:
    std::vector<std::pair<platform::URLRequest, platform::URLSessionHandler>> held_;
};

/// A response to `request`.
[[nodiscard]] inline platform::URLSessionResult respond(const platform::URLRequest& request, int status,
                                                        std::string_view body,
                                                        platform::HTTPHeaders headers = {}) {
    return platform::URLSessionResponse{{request.url, status, std::move(headers)}, platform::dataOf(body)};
}

}  // namespace nimbuscope::testing

#pragma once

#include <memory>

#include "Platform/Concurrency/Clock.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/URLLoading/URLSession.hpp"

namespace nimbuscope::platform {

/// A session that answers from its configuration's cache what need not be loaded, as a private cache does
/// (RFC 9111): GET requests alone, none that are authorized, fresh by Cache-Control or Expires, or validated
/// anew by ETag and Last-Modified. Responses with neither are not stored.
class NIMBUSCOPE_EXPORT CachingURLSession final : public URLSession {
  public:
    /// Loads through `loader`; without a cache in its configuration everything is.
    CachingURLSession(std::shared_ptr<URLSession> loader, std::shared_ptr<const Clock> clock);

    void dataTask(URLRequest request, URLSessionHandler handler) override;

    [[nodiscard]] const URLSessionConfiguration& configuration() const override {
        return loader_->configuration();
    }

  private:
    std::shared_ptr<const Clock> clock_;
    std::shared_ptr<URLSession> loader_;
};

}  // namespace nimbuscope::platform

#include "Platform/URLLoading/CachingURLSession.hpp"

#include <utility>

#include "Platform/URLLoading/HTTPCaching.hpp"

namespace nimbuscope::platform {
namespace {

std::chrono::sys_seconds secondsOf(const Clock& clock) {
    return std::chrono::floor<std::chrono::seconds>(clock.now());
}

/// What a URL names, whatever part of it one wants to see.
std::string keyOf(const std::string& url) {
    return url.substr(0, url.find('#'));
}

/// Stores the answer to a cacheable request where it may be stored.
void store(URLCache& cache, const URLRequest& request, std::chrono::sys_seconds requestTime,
           std::chrono::sys_seconds now, const URLSessionResponse& answer) {
    if (isCacheable(answer.response) && answer.data) {
        CachedURLResponse cached{answer.response, *answer.data, varyingHeaders(request, answer.response),
                                 requestTime, now};
        cached.response.url = keyOf(request.url);
        cache.storeCachedResponse(cached);
    } else if (answer.response.statusCode < 500) {
        cache.removeCachedResponse(keyOf(request.url));  // the server has something else by now
    }
}

URLSessionResponse answerFrom(CachedURLResponse cached, const std::string& url) {
    cached.response.url = url;
    return {std::move(cached.response), std::move(cached.data)};
}

}  // namespace

CachingURLSession::CachingURLSession(std::shared_ptr<URLSession> loader, std::shared_ptr<const Clock> clock)
    : clock_(std::move(clock)), loader_(std::move(loader)) {}

void CachingURLSession::dataTask(URLRequest request, URLSessionHandler handler) {
    const std::shared_ptr<URLCache> cache = configuration().urlCache;
    if (!cache || !isCacheable(request)) {
        if (cache && isUnsafe(request.httpMethod)) {
            // What it changed is gone from the cache once the server says that it was done (RFC 9111, 4.4).
            handler = [cache, key = keyOf(request.url),
                       handler = std::move(handler)](URLSessionResult result) mutable {
                if (result && result->response.statusCode < 400) {
                    cache->removeCachedResponse(key);
                }
                handler(std::move(result));
            };
        }
        loader_->dataTask(std::move(request), std::move(handler));
        return;
    }
    std::optional<CachedURLResponse> cached;
    if (request.cachePolicy == URLRequestCachePolicy::useProtocolCachePolicy) {
        cached = cache->cachedResponse(keyOf(request.url));
        if (cached && cached->varyingHeaders != varyingHeaders(request, cached->response)) {
            cached.reset();
        }
    }
    if (cached && isFresh(*cached, request, clock_->now())) {
        handler(answerFrom(std::move(*cached), request.url));
        return;
    }
    URLRequest sent = request;
    if (cached && !addValidators(sent, *cached)) {
        cached.reset();
    }
    const auto requestTime = secondsOf(*clock_);
    loader_->dataTask(std::move(sent), [cache, clock = clock_, cached = std::move(cached), requestTime,
                                        request = std::move(request),
                                        handler = std::move(handler)](URLSessionResult result) mutable {
        if (result && cached && result->response.statusCode == 304) {
            update(*cached, result->response);
            cached->requestTime = requestTime;
            cached->responseTime = secondsOf(*clock);
            cache->storeCachedResponse(*cached);
            result = answerFrom(std::move(*cached), request.url);
        } else if (result) {
            store(*cache, request, requestTime, secondsOf(*clock), *result);
        }
        handler(std::move(result));
    });
}

}  // namespace nimbuscope::platform

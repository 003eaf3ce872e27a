#pragma once

#include <algorithm>
#include <mutex>
#include <vector>

#include "Platform/URLLoading/URLCache.hpp"

namespace nimbuscope::testing {

/// A cache in memory that counts bodies alone; with no capacity, one that remembers nothing.
class InMemoryURLCache final : public platform::URLCache {
  public:
    explicit InMemoryURLCache(std::size_t capacity = std::size_t{1} << 20U) : capacity_(capacity) {}

    [[nodiscard]] std::optional<platform::CachedURLResponse> cachedResponse(std::string_view url) override {
        const std::lock_guard lock(mutex_);
        const auto found = std::ranges::find(entries_, url, urlOf);
        if (found == entries_.end()) {
            return std::nullopt;
        }
        std::rotate(found, found + 1, entries_.end());
        return entries_.back();
    }
    void storeCachedResponse(const platform::CachedURLResponse& response) override {
        removeCachedResponse(response.response.url);
        const std::lock_guard lock(mutex_);
        if (response.data.size() > capacity_) {
            return;
        }
        entries_.push_back(response);
        std::size_t size = 0;
        auto kept = entries_.end();
        while (kept != entries_.begin() && size + (kept - 1)->data.size() <= capacity_) {
            size += (--kept)->data.size();
        }
        entries_.erase(entries_.begin(), kept);
    }
    void removeCachedResponse(std::string_view url) override {
        const std::lock_guard lock(mutex_);
        std::erase_if(entries_, [&](const auto& entry) { return urlOf(entry) == url; });
    }
    void removeAllCachedResponses() override {
        const std::lock_guard lock(mutex_);
        entries_.clear();
    }
    [[nodiscard]] bool isEmpty() const {
        const std::lock_guard lock(mutex_);
        return entries_.empty();
    }

  private:
    static std::string_view urlOf(const platform::CachedURLResponse& entry) { return entry.response.url; }

    mutable std::mutex mutex_;
    std::size_t capacity_;
    std::vector<platform::CachedURLResponse> entries_;  // the longest unused first
};

}  // namespace nimbuscope::testing

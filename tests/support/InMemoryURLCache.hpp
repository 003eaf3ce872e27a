#pragma once

#include <list>
#include <mutex>

#include "Platform/URLLoading/URLCache.hpp"

namespace nimbuscope::testing {

/// A cache in memory that counts bodies alone; with no capacity, one that remembers nothing.
class InMemoryURLCache final : public platform::URLCache {
  public:
    explicit InMemoryURLCache(std::size_t capacity = std::size_t{1} << 20U) : capacity_(capacity) {}

    [[nodiscard]] std::optional<platform::CachedURLResponse> cachedResponse(std::string_view url) override {
        const std::lock_guard lock(mutex_);
        for (auto entry = entries_.begin(); entry != entries_.end(); ++entry) {
            if (entry->response.url == url) {
                entries_.splice(entries_.begin(), entries_, entry);
                return *entry;
            }
        }
        return std::nullopt;
    }
    void storeCachedResponse(const platform::CachedURLResponse& response) override {
        removeCachedResponse(response.response.url);
        const std::lock_guard lock(mutex_);
        if (response.data.size() <= capacity_) {
            entries_.push_front(response);
            std::size_t size = 0;
            entries_.remove_if([&](const auto& entry) { return (size += entry.data.size()) > capacity_; });
        }
    }
    void removeCachedResponse(std::string_view url) override {
        const std::lock_guard lock(mutex_);
        entries_.remove_if([&](const auto& entry) { return entry.response.url == url; });
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
    mutable std::mutex mutex_;
    std::size_t capacity_;
    std::list<platform::CachedURLResponse> entries_;  // the last one used first
};

}  // namespace nimbuscope::testing

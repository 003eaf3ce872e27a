#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "Platform/Defaults/NSUserDefaults.hpp"

namespace nimbuscope::testing {

/// A store in memory, for tests of what uses one; it passes the contract suite that the real one passes.
class InMemoryUserDefaults final : public platform::NSUserDefaults {
  public:
    [[nodiscard]] platform::DefaultsResult<std::optional<platform::DefaultsValue>> object(
        std::string_view key) const override {
        const std::lock_guard lock(mutex_);
        const auto found = values_.find(key);
        return found != values_.end() ? std::optional(found->second) : std::nullopt;
    }

    [[nodiscard]] platform::DefaultsResult<platform::DefaultsDictionary> dictionaryRepresentation()
        const override {
        const std::lock_guard lock(mutex_);
        return values_;
    }

    [[nodiscard]] platform::DefaultsResult<void> set(std::string_view key,
                                                     const platform::DefaultsValue& value) override {
        const std::lock_guard lock(mutex_);
        platform::JSONWriter writer;
        writer.beginObject();
        writer.key(key);
        writeJSON(writer, value);
        writer.endObject();
        if (key.empty() || key.find('\0') != key.npos || !writer.finish()) {
            return std::unexpected(platform::DefaultsError{platform::DefaultsError::Code::invalidValue,
                                                           "memory", "not storable"});
        }
        values_.insert_or_assign(std::string(key), value);
        return {};
    }

    [[nodiscard]] platform::DefaultsResult<void> removeObject(std::string_view key) override {
        const std::lock_guard lock(mutex_);
        values_.erase(std::string(key));
        return {};
    }

    [[nodiscard]] platform::DefaultsResult<void> synchronize() override { return {}; }

    [[nodiscard]] platform::DefaultsResult<void> transaction(const Transaction& body) override {
        const std::lock_guard lock(mutex_);
        const auto before = values_;
        auto done = body();
        if (!done) {
            values_ = before;
        }
        return done;
    }

  private:
    mutable std::recursive_mutex mutex_;
    platform::DefaultsDictionary values_;
};

/// Suites in memory: one store per name.
class InMemorySuites final : public platform::NSUserDefaultsSuites {
  public:
    [[nodiscard]] platform::DefaultsResult<std::shared_ptr<platform::NSUserDefaults>> suite(
        std::string_view name) override {
        auto& store = stores_[std::string(name)];
        store = store ? store : std::make_shared<InMemoryUserDefaults>();
        return store;
    }
    [[nodiscard]] platform::DefaultsResult<std::shared_ptr<platform::NSUserDefaults>> standard() override {
        return suite("");
    }

  private:
    std::map<std::string, std::shared_ptr<platform::NSUserDefaults>> stores_;
};

}  // namespace nimbuscope::testing

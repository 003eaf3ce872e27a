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
    using Done = platform::DefaultsResult<void>;

    platform::DefaultsResult<std::optional<platform::DefaultsValue>> object(
        std::string_view key) const override {
        const std::lock_guard lock(mutex_);
        const auto found = values_.find(key);
        return found != values_.end() ? std::optional(found->second) : std::nullopt;
    }
    platform::DefaultsResult<platform::DefaultsDictionary> dictionaryRepresentation() const override {
        const std::lock_guard lock(mutex_);
        return values_;
    }
    Done set(std::string_view key, const platform::DefaultsValue& value) override {
        const std::lock_guard lock(mutex_);
        platform::JSONWriter writer;
        writeJSON(writer, platform::DefaultsDictionary{{std::string(key), value}});
        if (key.empty() || key.find('\0') != key.npos || !writer.finish()) {
            return std::unexpected(platform::DefaultsError{platform::DefaultsError::Code::invalidValue,
                                                           "memory", "not storable"});
        }
        values_.insert_or_assign(std::string(key), value);
        return {};
    }
    Done removeObject(std::string_view key) override {
        const std::lock_guard lock(mutex_);
        values_.erase(std::string(key));
        return {};
    }
    Done synchronize() override { return {}; }
    Done transaction(const Transaction& body) override {
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
    using Store = platform::DefaultsResult<std::shared_ptr<platform::NSUserDefaults>>;

    Store suite(std::string_view name) override {
        auto& store = stores_[std::string(name)];
        return store ? store : store = std::make_shared<InMemoryUserDefaults>();
    }
    Store standard() override { return suite(""); }

  private:
    std::map<std::string, std::shared_ptr<platform::NSUserDefaults>> stores_;
};

}  // namespace nimbuscope::testing

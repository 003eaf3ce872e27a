#pragma once

#include <memory>
#include <optional>
#include <utility>

#include "Platform/Defaults/NSUserDefaults.hpp"

namespace nimbuscope::testing {

/// A store that passes calls on to another, except that reads or writes fail while they are told to.
class FailingUserDefaults final : public platform::NSUserDefaults {
  public:
    using Code = platform::DefaultsError::Code;
    using Done = platform::DefaultsResult<void>;

    explicit FailingUserDefaults(std::shared_ptr<NSUserDefaults> inner) : inner_(std::move(inner)) {}

    std::optional<Code> readFault;
    std::optional<Code> writeFault;

    platform::DefaultsResult<std::optional<platform::DefaultsValue>> object(
        std::string_view key) const override {
        return readFault ? fail(*readFault) : inner_->object(key);
    }
    platform::DefaultsResult<platform::DefaultsDictionary> dictionaryRepresentation() const override {
        return readFault ? fail(*readFault) : inner_->dictionaryRepresentation();
    }
    Done set(std::string_view key, const platform::DefaultsValue& value) override {
        return writeFault ? fail(*writeFault) : inner_->set(key, value);
    }
    Done removeObject(std::string_view key) override {
        return writeFault ? fail(*writeFault) : inner_->removeObject(key);
    }
    Done synchronize() override { return writeFault ? fail(*writeFault) : inner_->synchronize(); }
    Done transaction(const Transaction& body) override { return inner_->transaction(body); }

  private:
    static std::unexpected<platform::DefaultsError> fail(Code code) {
        return std::unexpected(platform::DefaultsError{code, "failing", "told to fail"});
    }

    std::shared_ptr<NSUserDefaults> inner_;
};

}  // namespace nimbuscope::testing

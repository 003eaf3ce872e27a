#pragma once

#include "tests/support/FakeLocationManager.hpp"

namespace nimbuscope::testing {

/// A fake that reports a failure after each start while it `fails`.
class FailingLocationManager final : public FakeLocationManager {
  public:
    using FakeLocationManager::FakeLocationManager;
    bool fails = false;

    void startUpdatingLocation() override {
        FakeLocationManager::startUpdatingLocation();
        fail();
    }
    void startMonitoringSignificantLocationChanges() override {
        FakeLocationManager::startMonitoringSignificantLocationChanges();
        fail();
    }

  private:
    void fail() {
        later([this] {
            if (fails) {
                delegate_->didFailWithError(*this, {"test", 1, "told to fail"});
            }
        });
    }
};

}  // namespace nimbuscope::testing

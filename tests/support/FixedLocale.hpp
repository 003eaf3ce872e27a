#pragma once

#include "Platform/Locale/Locale.hpp"

namespace nimbuscope::testing {

/// A locale whose customs the test chooses.
class FixedLocale final : public platform::Locale {
  public:
    explicit FixedLocale(bool usesMetricSystem) : usesMetricSystem_(usesMetricSystem) {}
    [[nodiscard]] bool usesMetricSystem() const override { return usesMetricSystem_; }

  private:
    bool usesMetricSystem_;
};

}  // namespace nimbuscope::testing

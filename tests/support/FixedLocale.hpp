#pragma once

#include "Platform/Locale/Locale.hpp"

namespace nimbuscope::testing {

/// A locale whose customs the test chooses. It knows one country, XA.
class FixedLocale final : public platform::Locale {
  public:
    explicit FixedLocale(bool usesMetricSystem) : usesMetricSystem_(usesMetricSystem) {}
    [[nodiscard]] std::string identifier() const override { return "xx_XA"; }
    [[nodiscard]] bool uses12HourClock() const override { return !usesMetricSystem_; }
    [[nodiscard]] bool usesMetricSystem() const override { return usesMetricSystem_; }
    [[nodiscard]] std::optional<std::string> displayNameOfCountry(std::string_view code) const override {
        return code == "XA" ? std::optional<std::string>("Testland") : std::nullopt;
    }

  private:
    bool usesMetricSystem_;
};

}  // namespace nimbuscope::testing

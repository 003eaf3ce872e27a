#pragma once

namespace nimbuscope::platform {

/// The customs of a language and a region.
class Locale {
  public:
    virtual ~Locale() = default;

    /// True unless the region measures in miles, inches and degrees Fahrenheit. Safe from any thread.
    [[nodiscard]] virtual bool usesMetricSystem() const = 0;
};

}  // namespace nimbuscope::platform

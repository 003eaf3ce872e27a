#pragma once

#include <cstdint>

namespace nimbuscope {

/// A span of time written as a count of seconds, minutes, hours or days. One minute is not the same as sixty
/// seconds, though their intervals are.
class TimeIntervalUnit {
  public:
    [[nodiscard]] static constexpr TimeIntervalUnit seconds(std::int64_t count) { return {count, 1}; }
    [[nodiscard]] static constexpr TimeIntervalUnit minutes(std::int64_t count) { return {count, 60}; }
    [[nodiscard]] static constexpr TimeIntervalUnit hours(std::int64_t count) { return {count, 3600}; }
    [[nodiscard]] static constexpr TimeIntervalUnit days(std::int64_t count) { return {count, 86400}; }

    /// In seconds.
    [[nodiscard]] constexpr double interval() const { return static_cast<double>(count_) * unit_; }

    bool operator==(const TimeIntervalUnit&) const = default;

  private:
    constexpr TimeIntervalUnit(std::int64_t count, double unit) : count_(count), unit_(unit) {}

    std::int64_t count_;
    double unit_;  ///< in seconds
};

}  // namespace nimbuscope

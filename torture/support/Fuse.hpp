#pragma once

#include <cstdint>
#include <limits>

namespace nimbuscope::torture {

/// Counts calls and tells which of them must fail: the `first`, counted from 1, or that one and all behind
/// it. For programs of one thread.
class Fuse {
  public:
    /// Counts from now on.
    void arm(std::int64_t first, bool forEver) {
        *this = Fuse();
        first_ = first;
        forEver_ = forEver;
        isArmed_ = true;
    }
    void disarm() { isArmed_ = false; }

    [[nodiscard]] bool isArmed() const { return isArmed_; }
    /// Whether a call has failed.
    [[nodiscard]] bool hasBlown() const { return calls_ >= first_; }

    /// Called by each call; whether it must fail.
    [[nodiscard]] bool blows() {
        if (!isArmed_) {
            return false;
        }
        ++calls_;
        return calls_ == first_ || (forEver_ && calls_ > first_);
    }

  private:
    std::int64_t first_ = std::numeric_limits<std::int64_t>::max();
    std::int64_t calls_ = 0;
    bool forEver_ = false;
    bool isArmed_ = false;
};

}  // namespace nimbuscope::torture

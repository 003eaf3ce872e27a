#pragma once

#include <functional>

#include "Platform/Core/Export.hpp"

namespace nimbuscope::platform {

/// Runs pieces of work one after another, in the order in which they were handed over.
///
/// Any thread may call. Work must not throw. Work that has not begun when the queue is destroyed is dropped.
class NIMBUSCOPE_EXPORT DispatchQueue {
  public:
    using Work = std::move_only_function<void()>;

    virtual ~DispatchQueue() = default;

    /// Hands `work` over and returns; it never runs before this returns on the calling thread.
    virtual void async(Work work) = 0;
};

}  // namespace nimbuscope::platform

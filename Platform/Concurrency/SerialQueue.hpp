#pragma once

#include <asio/thread_pool.hpp>
#include <string>

#include "Platform/Concurrency/DispatchQueue.hpp"

namespace nimbuscope::platform {

/// A serial queue with a thread of its own.
class SerialQueue final : public DispatchQueue {
  public:
    /// `label` names the queue's thread for those who watch the process.
    explicit SerialQueue(std::string label);

    /// Waits for the work that runs and drops the rest. Not to be called by work of the queue.
    ~SerialQueue() override;
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;

    void async(Work work) override;
    void asyncAfter(std::chrono::nanoseconds delay, Work work) override;

  private:
    asio::thread_pool thread_{1};
};

}  // namespace nimbuscope::platform

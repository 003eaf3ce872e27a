#pragma once

#include <sdbus-c++/sdbus-c++.h>

#include <asio/any_io_executor.hpp>
#include <asio/posix/stream_descriptor.hpp>
#include <asio/steady_timer.hpp>
#include <functional>
#include <memory>

namespace nimbuscope::platform {

/// Lets a D-Bus connection work on a run loop: replies, signals and time-outs are handled there, on one
/// thread, and nothing waits. Held by shared pointer; gone with the last one.
class SDBusRunLoop : public std::enable_shared_from_this<SDBusRunLoop> {
  public:
    /// `lost` is called, once and on the run loop, when the bus has closed the connection.
    SDBusRunLoop(const asio::any_io_executor& runLoop, std::unique_ptr<sdbus::IConnection> connection,
                 std::function<void()> lost);

    [[nodiscard]] sdbus::IConnection& connection() { return *connection_; }

    /// To be called after each use of the connection, so that what was sent is followed.
    void wake();

  private:
    void process();
    void await();
    void await(asio::posix::descriptor_base::wait_type what, bool& isAwaited);
    template <class Handler>
    auto ifAlive(Handler handler);

    std::unique_ptr<sdbus::IConnection> connection_;
    std::function<void()> lost_;
    asio::posix::stream_descriptor descriptor_;
    asio::steady_timer timer_;
    bool isReadAwaited_ = false;
    bool isWriteAwaited_ = false;
};

}  // namespace nimbuscope::platform

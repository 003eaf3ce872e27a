#include "Platform/Linux/SDBusRunLoop.hpp"

#include <fcntl.h>
#include <poll.h>

#include <asio/error_code.hpp>
#include <asio/post.hpp>
#include <utility>

namespace nimbuscope::platform {

SDBusRunLoop::SDBusRunLoop(const asio::any_io_executor& runLoop,
                           std::unique_ptr<sdbus::IConnection> connection, std::function<void()> lost)
    : connection_(std::move(connection)),
      lost_(std::move(lost)),
      // Both sides close what they hold.
      descriptor_(runLoop, ::fcntl(connection_->getEventLoopPollData().fd, F_DUPFD_CLOEXEC, 0)),
      timer_(runLoop) {}

/// A handler of the run loop that does nothing once this object is gone or what it waited for was cancelled.
template <class Handler>
auto SDBusRunLoop::ifAlive(Handler handler) {
    return [weak = weak_from_this(), handler](asio::error_code error = {}) {
        const auto self = weak.lock();
        if (self && !error) {
            handler(*self);
        }
    };
}

void SDBusRunLoop::wake() {
    asio::post(descriptor_.get_executor(), ifAlive([](SDBusRunLoop& self) { self.process(); }));
}

void SDBusRunLoop::process() {
    if (!lost_) {
        return;
    }
    try {
        while (connection_->processPendingRequest()) {
        }
        await();
    } catch (const sdbus::Error&) {
        descriptor_.cancel();
        timer_.cancel();
        std::exchange(lost_, nullptr)();
    }
}

void SDBusRunLoop::await() {
    const auto poll = connection_->getEventLoopPollData();
    await(asio::posix::descriptor_base::wait_read, isReadAwaited_);
    if ((poll.events & POLLOUT) != 0) {
        await(asio::posix::descriptor_base::wait_write, isWriteAwaited_);
    }
    const auto timeout = poll.getRelativeTimeout();
    if (timeout) {
        timer_.expires_after(*timeout);
        timer_.async_wait(ifAlive([](SDBusRunLoop& self) { self.process(); }));
    }
}

void SDBusRunLoop::await(asio::posix::descriptor_base::wait_type what, bool& isAwaited) {
    if (!std::exchange(isAwaited, true)) {
        descriptor_.async_wait(what, ifAlive([&isAwaited](SDBusRunLoop& self) {
                                   isAwaited = false;
                                   self.process();
                               }));
    }
}

}  // namespace nimbuscope::platform

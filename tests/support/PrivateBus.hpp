#pragma once

#include <memory>

#include "tests/support/Process.hpp"
#include "tests/support/TemporaryDirectory.hpp"

namespace nimbuscope::testing {

/// A D-Bus of the test's own, which this process and those that it runs take for the system's.
class PrivateBus {
  public:
    PrivateBus() {
        ::setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + directory.path("bus")).c_str(), 1);
        start();
    }
    void start() {
        daemon_ = std::make_unique<BackgroundProcess>(
            std::vector<std::string>{"dbus-daemon", "--session", "--nofork", "--print-address=1",
                                     "--address=unix:path=" + directory.path("bus")});
        static_cast<void>(daemon_->readLine());  // it is ready
    }
    void stop() { daemon_.reset(); }

    TemporaryDirectory directory;

  private:
    std::unique_ptr<BackgroundProcess> daemon_;
};

}  // namespace nimbuscope::testing

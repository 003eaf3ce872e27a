#pragma once

#include <sdbus-c++/sdbus-c++.h>

#include <asio/io_context.hpp>
#include <map>

#include "Platform/Linux/SDBusRunLoop.hpp"
#include "tests/support/LocationContract.hpp"

namespace nimbuscope::testing {

/// A peer on the bus that works on the test's run loop.
struct BusPeer {
    explicit BusPeer(asio::io_context& runLoop)
        : loop(std::make_shared<platform::SDBusRunLoop>(runLoop.get_executor(),
                                                        sdbus::createSystemBusConnection(), [] {})) {
        loop->wake();
    }
    std::shared_ptr<platform::SDBusRunLoop> loop;
    sdbus::IConnection& bus = loop->connection();
};

/// A location service as GeoClue is one on the bus, without an agent and without hardware.
class GeoClueStandIn : private BusPeer {
  public:
    explicit GeoClueStandIn(asio::io_context& runLoop);

    void serve(Status status);
    void locate(const platform::CLLocation& location);
    void locate(const std::map<std::string, double>& properties);

    std::string asked;  ///< of the last start: desktop id, accuracy level, distance threshold
    std::string mute;   ///< the method that is not answered
    std::function<void()> whenStarted = [] {};

  private:
    using Answer = sdbus::Result<>;
    void addClient();

    Status status_ = Status::notDetermined;
    bool isActive_ = false;
    std::string desktopId_;
    std::uint32_t level_ = 0;
    std::uint32_t threshold_ = 0;
    std::vector<Answer> unanswered_;
    std::vector<sdbus::Result<sdbus::ObjectPath>> unansweredPaths_;
    std::vector<std::unique_ptr<sdbus::IObject>> locations_;
    std::unique_ptr<sdbus::IObject> manager_;
    std::unique_ptr<sdbus::IObject> client_;
};

}  // namespace nimbuscope::testing

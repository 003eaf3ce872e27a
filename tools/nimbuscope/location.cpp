// The noun `location`: where the device is, and whether the system may know.

#include <fmt/format.h>

#include <asio/io_context.hpp>
#include <asio/signal_set.hpp>
#include <asio/steady_timer.hpp>
#include <csignal>

#include "CommandLine.hpp"
#include "Files.hpp"
#include "NimbuscopeKit/Location/LocationManager.hpp"
#include "Platform/Linux/CLLocationManager_geoclue.hpp"
#include "Results.hpp"
#include "StoredPreferences.hpp"

namespace nimbuscope::tool {
namespace {

using platform::CLLocation;
using platform::JSONWriter;
using State = LocationManager::State;

constexpr const char* what = "location";

std::string textOf(const CLLocation& location) {
    const auto accuracy =
        location.horizontalAccuracy ? fmt::format(" (within {} m)", *location.horizontalAccuracy) : "";
    return fmt::format("{} {}{}\n", location.coordinate.latitude, location.coordinate.longitude, accuracy);
}

void write(JSONWriter& writer, const std::optional<CLLocation>& location) {
    if (!location) {
        writer.null();
        return;
    }
    const auto member = [&](const char* key, const std::optional<double>& value) {
        if (value) {
            writer.key(key);
            writer.value(*value);
        }
    };
    writer.beginObject();
    member("latitude", location->coordinate.latitude);
    member("longitude", location->coordinate.longitude);
    member("horizontalAccuracy", location->horizontalAccuracy);
    member("altitude", location->altitude);
    member("speed", location->speed);
    member("course", location->course);
    writer.endObject();
}

/// Stops the loop when it is known where the device is, or that this will not be known.
class Answer final : public LocationManagerDelegate {
  public:
    explicit Answer(asio::io_context& loop) : loop_(loop) {}
    void didReceiveLocation(const CLLocation& /*location*/) override { loop_.stop(); }
    void didChangeState(State state) override {
        if (!isAnyOfAvailable(state)) {
            loop_.stop();
        }
    }

  private:
    asio::io_context& loop_;
};

/// Prints each event as it comes: a line, or an element of a JSON array.
class Watch final : public LocationManagerDelegate {
  public:
    Watch(asio::io_context& loop, asio::steady_timer& limit, bool isJSON)
        : loop_(loop), limit_(limit), isJSON_(isJSON) {}

    void didReceiveLocation(const CLLocation& location) override {
        limit_.cancel();
        print("location", textOf(location), [&](JSONWriter& writer) { write(writer, location); });
    }
    void didChangeState(State state) override {
        const auto text = description(state);
        print("state", std::string(text) + '\n', [&](JSONWriter& writer) { writer.value(text); });
    }
    [[nodiscard]] CommandResult<void> finish() {
        return isJSON_ && written_ ? writeStandardOutput(isFirst_ ? "[]\n" : "]\n") : written_;
    }

  private:
    template <class WriteValue>
    void print(const char* key, std::string text, WriteValue writeValue) {
        if (isJSON_) {
            JSONWriter writer;
            writer.beginObject();
            writer.key(key);
            writeValue(writer);
            writer.endObject();
            text = std::exchange(isFirst_, false) ? "[" : ",";
            written_ = printJSON(what, writer, text);
        }
        written_ = written_ ? writeStandardOutput(text) : written_;
        if (!written_) {
            loop_.stop();
        }
    }

    asio::io_context& loop_;
    asio::steady_timer& limit_;
    bool isJSON_;
    bool isFirst_ = true;
    CommandResult<void> written_;
};

struct LocationOptions {
    bool isWatch = false;
    bool isJSON = false;
    double timeout = 10;
    std::optional<std::int64_t> status;
};

CommandResult<void> print(const LocationManager& manager, bool isJSON, std::string& output) {
    const auto location = manager.currentlocation();
    const auto last = manager.last();
    const auto state = description(manager.state());
    if (!isJSON) {
        output = std::string(state) + '\n';
        output += location ? textOf(*location) : last ? "last known: " + textOf(*last) : "";
        return {};
    }
    JSONWriter writer;
    writer.beginObject();
    writer.key("state");
    writer.value(state);
    writer.key("location");
    write(writer, location);
    writer.key("last");
    write(writer, last);
    writer.endObject();
    return printJSON(what, writer, output);
}

CommandResult<void> printStatus(std::int64_t status, bool isJSON, std::string& output) {
    const auto known = platform::fromRawValue<platform::CLAuthorizationStatus>(status);
    if (!known) {
        return std::unexpected(
            CommandError{what, fmt::format("--status: expected 0 to 4, found {}", status)});
    }
    const auto state = description(locationManagerState(*known));
    if (!isJSON) {
        output = std::string(state) + '\n';
        return {};
    }
    JSONWriter writer;
    writer.beginObject();
    writer.key("state");
    writer.value(state);
    writer.endObject();
    return printJSON(what, writer, output);
}

CommandResult<void> locate(const CommandLine& commandLine, const LocationOptions& options,
                           std::string& output) {
    if (options.status) {
        return printStatus(*options.status, options.isJSON, output);
    }
    const auto preferences = StoredPreferences::open(commandLine);
    if (!preferences) {
        return std::unexpected(preferences.error());
    }
    asio::io_context loop;
    asio::steady_timer limit(loop, std::chrono::duration_cast<std::chrono::milliseconds>(
                                       std::chrono::duration<double>(options.timeout)));
    limit.async_wait([&](asio::error_code error) {
        if (!error) {
            loop.stop();
        }
    });
    asio::signal_set interruptions(loop, SIGINT, SIGTERM);
    interruptions.async_wait([&](asio::error_code, int) { loop.stop(); });

    LocationManager manager(preferences->service(),
                            platform::makeGeoClueLocationManager(loop.get_executor()));
    const auto watch = std::make_shared<Watch>(loop, limit, options.isJSON);
    manager.addDelegate(options.isWatch ? std::shared_ptr<LocationManagerDelegate>(watch)
                                        : std::make_shared<Answer>(loop));
    manager.setMonitoringState(LocationManager::MonitoringState::regular);
    loop.run();
    const auto kept = preferences->outcome();
    const auto printed = options.isWatch ? watch->finish() : print(manager, options.isJSON, output);
    return kept ? printed : kept;
}

}  // namespace

void addLocation(CommandLine& commandLine) {
    const auto options = std::make_shared<LocationOptions>();
    auto& command = commandLine.addCommand(
        "location", "Tells the authorisation state and the position", "nimbuscope location --json",
        [&commandLine, options](std::string& output) { return locate(commandLine, *options, output); });
    command.add_flag("--watch", options->isWatch,
                     "Print each change of the state and the position until interrupted");
    command.add_flag("--json", options->isJSON,
                     "Print {state, location, last}; with --watch, an array of {state} and {location}; with "
                     "--status, {state}");
    command.add_option("--timeout", options->timeout, "Seconds to wait for a position")
        ->capture_default_str()
        ->check(CLI::Range(0.0, 86400.0));
    command.add_option("--status", options->status,
                       "Only name the state that stands for a status number of the platform");
}

}  // namespace nimbuscope::tool

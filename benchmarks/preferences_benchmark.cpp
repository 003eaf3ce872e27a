// Reading the preferences, store and decoding: against the bare read of the same bytes from the same file and
// a parse that looks at no value.

#include <simdjson.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>

#include "NimbuscopeKit/Preferences/PreferencesServiceImpl.hpp"
#include "Platform/Core/UUID.hpp"
#include "Platform/Linux/Locale_icu.hpp"
#include "Platform/Linux/NSUserDefaults_sqlite.hpp"
#include "Platform/Linux/SQLite.hpp"
#include "support/Ratios.hpp"

namespace nimbuscope::benchmarks {
namespace {

/// A directory that is gone when the benchmark ends.
class ScratchDirectory {
  public:
    ScratchDirectory()
        : path_(std::filesystem::temp_directory_path() /
                ("preferences-" + platform::UUID::random().uuidString())) {}
    ~ScratchDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

[[noreturn]] void fail(const char* what) {
    std::cerr << "preferences_benchmark: " << what << '\n';
    std::exit(1);
}

/// Reads the stored bytes and parses them, with everything prepared that can be.
class BareReader {
  public:
    explicit BareReader(const std::filesystem::path& file)
        : connection_(platform::SQLiteConnection::open(file.string(), 0).value()),
          select_(connection_.prepare("SELECT value FROM defaults WHERE key = ?1").value()) {}

    void read() {
        select_.bind(1, PreferencesServiceImpl::appPreferencesKey);
        if (!select_.step().value_or(false)) {
            fail("no record is stored");
        }
        const auto bytes = select_.bytes(0);
        const auto document = parser_.parse(bytes.data(), bytes.size());
        if (document.error() != simdjson::SUCCESS) {
            fail("the record is no JSON");
        }
        select_.reset();
    }

  private:
    platform::SQLiteConnection connection_;
    platform::SQLiteStatement select_;
    simdjson::dom::parser parser_;
};

int run() {
    const ScratchDirectory directory;
    platform::SQLiteUserDefaultsSuites suites(directory.path().string());
    const auto standard = suites.standard();
    const auto group = suites.suite(appGroupIdentifier);
    if (!standard || !group) {
        fail("the stores cannot be opened");
    }
    PreferencesServiceImpl service(**standard, *group, nullptr,
                                   std::make_shared<platform::ICULocale>("en_GB"));
    AppPreferences stored = service.preferences();
    stored.main.ratingVersion = "5.2.1";
    stored.main.launchesCount = 1234;
    stored.notifications.pushToken = std::string(64, 'f');
    stored.map.currentLocation = {50.0755, 14.4378};
    stored.map.currentRect = {143124480.5, 88211456.25, 1048576, 2269814.2123};
    service.setPreferences(stored);
    if (service.preferences() != stored) {
        fail("the record does not read back");
    }
    BareReader bare(directory.path() / (std::string(appGroupIdentifier) + ".sqlite"));
    const std::vector<Contender> contenders{
        {"preferences", [&] { benchmark::DoNotOptimize(service.preferences()); }},
        {"bare read and parse", [&] { bare.read(); }},
    };
    return compare("reading the preferences", contenders, {{1, 2.0}}) ? 0 : 1;
}

}  // namespace
}  // namespace nimbuscope::benchmarks

int main() {
    return nimbuscope::benchmarks::run();
}

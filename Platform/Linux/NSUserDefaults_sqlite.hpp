#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "Platform/Core/Export.hpp"
#include "Platform/Defaults/NSUserDefaults.hpp"

namespace nimbuscope::platform {

/// Key-value stores as SQLite files in one directory: `NAME.sqlite` for the suite NAME, `standard.sqlite` for
/// the application's own. The format is described in docs/formats/defaults-store.md.
///
/// Files have mode 0600. A store that does not exist reads as empty and comes into being, whole, with the
/// first write. A file that is no such store, is damaged or was written in a newer format is reported and
/// left alone; what can still be read of a damaged one is. Before the first write through an object the whole
/// file is looked through. A process killed at any moment leaves every write that returned, and none that did
/// not begin.
class NIMBUSCOPE_EXPORT SQLiteUserDefaultsSuites final : public NSUserDefaultsSuites {
  public:
    /// How long a caller waits while other processes hold a lock, in milliseconds.
    static constexpr int defaultBusyTimeout = 5000;

    explicit SQLiteUserDefaultsSuites(std::string directory, int busyTimeout = defaultBusyTimeout)
        : directory_(std::move(directory)), busyTimeout_(busyTimeout) {}

    /// Fails, with nothing made, when the directory neither exists nor can be made (mode 0700), and for a
    /// name that cannot be a file name.
    [[nodiscard]] DefaultsResult<std::shared_ptr<NSUserDefaults>> suite(std::string_view name) override;
    [[nodiscard]] DefaultsResult<std::shared_ptr<NSUserDefaults>> standard() override;

  private:
    std::string directory_;
    int busyTimeout_;
};

}  // namespace nimbuscope::platform

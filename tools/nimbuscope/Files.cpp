#include "Files.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <optional>
#include <system_error>

namespace nimbuscope::tool {
namespace {

constexpr std::string_view standardStream = "-";

/// An open file descriptor that closes itself.
class Descriptor {
  public:
    explicit Descriptor(int value) : value_(value) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    [[nodiscard]] int value() const { return value_; }

    /// False when the system reports an error that it had kept until now.
    bool close() {
        const int value = std::exchange(value_, -1);
        return value < 0 || ::close(value) == 0;
    }

  private:
    int value_;
};

std::unexpected<CommandError> systemError(const std::string& what) {
    return std::unexpected(CommandError{what, std::generic_category().message(errno)});
}

CommandResult<void> writeAll(int descriptor, std::string_view bytes, const std::string& what) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR) {
            return systemError(what);
        }
        bytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
    return {};
}

CommandResult<void> writeInPlace(const std::string& path, std::string_view bytes) {
    Descriptor file(::open(path.c_str(), O_WRONLY | O_CLOEXEC));
    if (file.value() < 0) {
        return systemError(path);
    }
    const auto written = writeAll(file.value(), bytes, path);
    return written && !file.close() ? systemError(path) : written;
}

/// Writes the draft that is to take the place of `path`, with the mode of the file that it replaces.
CommandResult<void> writeDraft(const std::string& draft, std::string_view bytes, std::optional<mode_t> mode) {
    Descriptor file(::open(draft.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (file.value() < 0) {
        return systemError(draft);
    }
    if (mode && ::fchmod(file.value(), *mode) != 0) {
        return systemError(draft);
    }
    const auto written = writeAll(file.value(), bytes, draft);
    if (written && (::fsync(file.value()) != 0 || !file.close())) {
        return systemError(draft);
    }
    return written;
}

}  // namespace

CommandResult<platform::Data> readInput(const std::string& path) {
    const bool isStandard = path == standardStream;
    Descriptor file(isStandard ? ::dup(STDIN_FILENO) : ::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (file.value() < 0) {
        return systemError(path);
    }
    platform::Data bytes;
    std::array<std::uint8_t, std::size_t{64} << 10U> chunk;
    for (;;) {
        const ssize_t count = ::read(file.value(), chunk.data(), chunk.size());
        if (count == 0) {
            return bytes;
        }
        if (count < 0 && errno != EINTR) {
            return systemError(path);
        }
        bytes.insert(bytes.end(), chunk.begin(), chunk.begin() + std::max<ssize_t>(count, 0));
    }
}

CommandResult<void> writeResult(const std::string& path, std::string_view bytes, std::string& output) {
    if (path == standardStream) {
        output += bytes;
        return {};
    }
    struct stat existing{};
    const bool exists = ::stat(path.c_str(), &existing) == 0;
    if (exists && !S_ISREG(existing.st_mode)) {
        return writeInPlace(path, bytes);
    }
    std::error_code ignored;
    const std::filesystem::path resolved = std::filesystem::weakly_canonical(path, ignored);  // through links
    const std::string target = resolved.empty() ? path : resolved.string();
    const std::string draft = target + ".new-" + std::to_string(::getpid());
    auto written = writeDraft(draft, bytes, exists ? std::optional(existing.st_mode & 07777) : std::nullopt);
    if (written && ::rename(draft.c_str(), target.c_str()) != 0) {
        written = systemError(path);
    }
    if (!written) {
        ::unlink(draft.c_str());
        written.error().what = path;
    }
    return written;
}

CommandResult<void> writeStandardOutput(std::string_view bytes) {
    return writeAll(STDOUT_FILENO, bytes, "standard output");
}

}  // namespace nimbuscope::tool

#include "Platform/Linux/NewDefaultsStore_sqlite.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

#include "Platform/Core/UUID.hpp"

namespace nimbuscope::platform {
namespace {

using Code = DefaultsError::Code;

constexpr const char* schema =
    "BEGIN;"
    "CREATE TABLE defaults (key TEXT PRIMARY KEY NOT NULL, type INTEGER NOT NULL, value NOT NULL);";

Code codeOf(int sqliteCode) {
    switch (sqliteCode) {
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return Code::busy;
        case SQLITE_READONLY:
        case SQLITE_PERM:
            return Code::readOnly;
        case SQLITE_FULL:
            return Code::full;
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
            return Code::damaged;
        case SQLITE_CANTOPEN:
            return Code::cannotOpen;
        case SQLITE_TOOBIG:
            return Code::invalidValue;
        default:
            return Code::failed;
    }
}

/// A file that is not in its place yet; gone when the scope ends, with whatever SQLite put beside it.
class Draft {
  public:
    explicit Draft(const std::string& path) : path_(path + ".new-" + UUID::random().uuidString()) {
        for (std::size_t i = 0; i < files_.size(); ++i) {
            files_[i] = path_ + std::array{"", "-journal", "-wal", "-shm"}[i];
        }
    }
    ~Draft() {
        for (const std::string& file : files_) {
            ::unlink(file.c_str());
        }
    }
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }

  private:
    std::string path_;
    std::array<std::string, 4> files_;
};

SQLiteResult<void> fill(const std::string& path, int busyTimeout) {
    auto connection = SQLiteConnection::open(path, busyTimeout);
    if (!connection) {
        return std::unexpected(std::move(connection.error()));
    }
    const auto filled = connection->execute(
        std::string(schema) + "PRAGMA application_id = " + std::to_string(defaultsApplicationId) +
        "; PRAGMA user_version = " + std::to_string(defaultsFormatVersion) + "; COMMIT;");
    if (!filled) {
        return filled;
    }
    // Last, so that nothing of the store is in a log, which does not come along.
    auto toLog = connection->prepare("PRAGMA journal_mode = WAL");
    const auto row = toLog ? toLog->step() : std::unexpected(toLog.error());
    if (!row) {
        return std::unexpected(row.error());
    }
    return toLog->text(0) == "wal"
               ? SQLiteResult<void>()
               : std::unexpected(SQLiteError{SQLITE_CANTOPEN, "the store cannot have a log"});
}

}  // namespace

DefaultsError defaultsError(const std::string& path, const SQLiteError& cause) {
    return {codeOf(cause.code), path, cause.reason};
}

DefaultsResult<void> createDefaultsStore(const std::string& path, int busyTimeout) {
    const Draft draft(path);
    const int file = ::open(draft.path().c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (file < 0) {
        return std::unexpected(DefaultsError{errno == ENOSPC ? Code::full : Code::cannotOpen, path,
                                             std::generic_category().message(errno)});
    }
    ::close(file);
    const auto filled = fill(draft.path(), busyTimeout);
    if (!filled) {
        return std::unexpected(defaultsError(path, filled.error()));
    }
    if (::link(draft.path().c_str(), path.c_str()) != 0 && errno != EEXIST) {
        return std::unexpected(DefaultsError{Code::cannotOpen, path, std::generic_category().message(errno)});
    }
    return {};
}

}  // namespace nimbuscope::platform

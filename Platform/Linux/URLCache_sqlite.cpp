#include "Platform/Linux/URLCache_sqlite.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <mutex>
#include <new>
#include <optional>
#include <unordered_map>
#include <utility>

#include "Platform/Linux/SQLite.hpp"
#include "Platform/Linux/StoreDirectory.hpp"
#include "Platform/Linux/StoredResponse_sqlite.hpp"

namespace nimbuscope::platform {
namespace {

constexpr std::int64_t applicationId = 0x4E42'5243;  // "NBRC"
constexpr std::int64_t formatVersion = 1;
constexpr int busyTimeout = 250;  // milliseconds: a cache is not worth waiting for
constexpr std::size_t mostUnwrittenUses = 1024;

// Whatever is lost with the power can be loaded again: nothing waits for the disk.
constexpr const char* settings =
    "PRAGMA journal_mode = WAL;"
    "PRAGMA synchronous = OFF;";

bool isDamage(const SQLiteError& error) {
    return error.code == SQLITE_CORRUPT || error.code == SQLITE_NOTADB;
}

class SQLiteURLCache final : public URLCache {
  public:
    SQLiteURLCache(std::string directory, std::size_t capacity)
        : directory_(std::move(directory)), capacity_(static_cast<std::int64_t>(capacity)) {}

    ~SQLiteURLCache() override {
        try {
            if (!uses_.empty()) {
                perform([this](Open& store) {
                    return inTransaction(store, [] { return SQLiteResult<void>(); });
                });
            }
        } catch (const std::bad_alloc&) {  // not worth the process
        }
    }
    SQLiteURLCache(const SQLiteURLCache&) = delete;
    SQLiteURLCache& operator=(const SQLiteURLCache&) = delete;

    [[nodiscard]] std::optional<CachedURLResponse> cachedResponse(std::string_view url) override;
    void storeCachedResponse(const CachedURLResponse& response) override;
    void removeCachedResponse(std::string_view url) override;
    void removeAllCachedResponses() override;

  private:
    struct Open {
        SQLiteConnection connection;
        SQLiteStatement select, insert, remove, use, total, removeOldest;
    };

    /// Closes the store when the scope ends, also where work throws, unless it was left in order.
    class CloseUnlessDone {
      public:
        explicit CloseUnlessDone(std::optional<Open>& open) : open_(open) {}
        ~CloseUnlessDone() {
            if (!isDone) {
                open_.reset();
            }
        }
        CloseUnlessDone(const CloseUnlessDone&) = delete;
        CloseUnlessDone& operator=(const CloseUnlessDone&) = delete;

        bool isDone = false;

      private:
        std::optional<Open>& open_;
    };

    template <class Work>
    void perform(Work work);
    template <class Work>
    [[nodiscard]] SQLiteResult<void> performOnce(Work& work);
    template <class Work>
    [[nodiscard]] SQLiteResult<void> inTransaction(Open& store, Work work);
    [[nodiscard]] SQLiteResult<void> open();
    [[nodiscard]] SQLiteResult<void> checkFormat(SQLiteConnection& connection) const;
    [[nodiscard]] SQLiteResult<void> evict(Open& store) const;
    void noteUse(std::string_view url);
    void deleteFiles();

    [[nodiscard]] std::string path() const {
        return (std::filesystem::path(directory_) / "responses.sqlite").string();
    }

    std::string directory_;
    std::int64_t capacity_;

    std::mutex mutex_;
    std::optional<Open> open_;
    std::unordered_map<std::string, std::int64_t> uses_;  // those that are not written yet
    std::int64_t lastUse_ = 0;
};

/// Runs a statement to its end and leaves it ready for the next time.
SQLiteResult<void> run(SQLiteStatement& statement) {
    const auto done = statement.step();
    statement.reset();
    return done ? SQLiteResult<void>() : std::unexpected(done.error());
}

template <class Work>
SQLiteResult<void> SQLiteURLCache::performOnce(Work& work) {
    CloseUnlessDone guard(open_);
    auto done = open();
    if (done) {
        done = work(*open_);
    }
    guard.isDone = done.has_value();
    return done;
}

/// Runs `work` on the open store; once more, on a new one, when it finds the old one damaged. Any other fault
/// leaves the work undone.
template <class Work>
void SQLiteURLCache::perform(Work work) {
    if (directory_.empty()) {
        return;
    }
    const std::lock_guard lock(mutex_);
    for (int attempt = 0; attempt < 2; ++attempt) {
        auto done = performOnce(work);
        if (done || !isDamage(done.error())) {
            return;
        }
        deleteFiles();
    }
}

/// Runs `work`, and writes the uses noted so far, as a whole.
template <class Work>
SQLiteResult<void> SQLiteURLCache::inTransaction(Open& store, Work work) {
    auto done = store.connection.execute("BEGIN IMMEDIATE");
    for (auto use = uses_.begin(); done && use != uses_.end(); ++use) {
        store.use.bind(1, use->first);
        store.use.bind(2, use->second);
        done = run(store.use);
    }
    if (done) {
        done = work();
    }
    if (done) {
        done = store.connection.execute("COMMIT");
    }
    uses_.clear();
    return done;
}

std::optional<CachedURLResponse> SQLiteURLCache::cachedResponse(std::string_view url) {
    std::optional<CachedURLResponse> found;
    perform([&](Open& store) -> SQLiteResult<void> {
        SQLiteStatement& select = store.select;
        select.bind(1, url);
        const auto isThere = select.step();
        if (!isThere || !*isThere) {
            select.reset();
            return isThere ? SQLiteResult<void>() : std::unexpected(isThere.error());
        }
        found = readResponse(select, url);
        select.reset();
        if (!found) {
            return std::unexpected(SQLiteError{SQLITE_CORRUPT, "a stored response is not what it was"});
        }
        noteUse(url);
        return {};
    });
    return found;
}

void SQLiteURLCache::noteUse(std::string_view url) {
    if (uses_.size() < mostUnwrittenUses) {
        uses_.insert_or_assign(std::string(url), ++lastUse_);
    }
}

void SQLiteURLCache::storeCachedResponse(const CachedURLResponse& response) {
    const StoredResponse stored(response);
    if (stored.size() > capacity_) {
        removeCachedResponse(response.response.url);
        return;
    }
    perform([&](Open& store) {
        return inTransaction(store, [&]() -> SQLiteResult<void> {
            stored.bind(store.insert);
            store.insert.bind(StoredResponse::useParameter, ++lastUse_);
            auto done = run(store.insert);
            return done ? evict(store) : done;
        });
    });
}

SQLiteResult<void> SQLiteURLCache::evict(Open& store) const {
    const auto summed = store.total.step();
    const std::int64_t total = summed ? store.total.integer(0) : 0;
    store.total.reset();
    SQLiteResult<void> done;
    for (std::int64_t left = total; done && left > capacity_;) {
        const auto removed = store.removeOldest.step();
        left -= removed && *removed ? store.removeOldest.integer(0) : left;
        store.removeOldest.reset();
        done = removed ? SQLiteResult<void>() : std::unexpected(removed.error());
    }
    return done;
}

void SQLiteURLCache::removeCachedResponse(std::string_view url) {
    perform([&](Open& store) {
        store.remove.bind(1, url);
        return run(store.remove);
    });
}

void SQLiteURLCache::removeAllCachedResponses() {
    bool isEmpty = false;
    perform([&](Open& store) {
        uses_.clear();
        auto done =
            store.connection.execute("DELETE FROM responses; VACUUM; PRAGMA wal_checkpoint(TRUNCATE)");
        isEmpty = done.has_value();
        return done;
    });
    if (!isEmpty && !directory_.empty()) {  // held by another process, perhaps: what must go goes
        const std::lock_guard lock(mutex_);
        open_.reset();
        deleteFiles();
    }
}

SQLiteResult<void> SQLiteURLCache::open() {
    if (open_) {
        return {};
    }
    const std::string file = path();
    if (makeDirectories(directory_)) {
        return std::unexpected(SQLiteError{SQLITE_CANTOPEN, "the cache has no directory"});
    }
    // With the owner's rights alone from the start.
    ::close(::open(file.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, S_IRUSR | S_IWUSR));
    auto connection = SQLiteConnection::open(file, busyTimeout);
    if (!connection) {
        return std::unexpected(std::move(connection.error()));
    }
    if (auto checked = checkFormat(*connection); !checked) {
        return checked;
    }
    Open store{.connection = std::move(*connection)};
    for (const auto& [statement, sql] : {
             std::pair{&store.select, StoredResponse::select},
             std::pair{&store.insert, StoredResponse::insert},
             std::pair{&store.remove, "DELETE FROM responses WHERE url = ?1"},
             std::pair{&store.use, "UPDATE responses SET used = ?2 WHERE url = ?1"},
             std::pair{&store.total, "SELECT sum(size) FROM responses"},
             std::pair{&store.removeOldest,
                       "DELETE FROM responses WHERE rowid ="
                       " (SELECT rowid FROM responses ORDER BY used LIMIT 1)"
                       " RETURNING size"},
         }) {
        auto prepared = store.connection.prepare(sql);
        if (!prepared) {
            // A file of the right version without the right tables gives the general error.
            if (prepared.error().code == SQLITE_ERROR) {
                prepared.error().code = SQLITE_NOTADB;
            }
            return std::unexpected(std::move(prepared.error()));
        }
        *statement = std::move(*prepared);
    }
    const auto last = store.connection.integer("SELECT max(used) FROM responses");
    if (!last) {
        return std::unexpected(last.error());
    }
    lastUse_ = std::max(lastUse_, *last);
    open_.emplace(std::move(store));
    return {};
}

/// Gives a new file its tables and finds out what an old one is.
SQLiteResult<void> SQLiteURLCache::checkFormat(SQLiteConnection& connection) const {
    const auto set = connection.execute(settings);
    const auto id = set ? connection.integer("PRAGMA application_id") : std::unexpected(set.error());
    const auto version = id ? connection.integer("PRAGMA user_version") : id;
    if (!version) {
        return std::unexpected(version.error());
    }
    if (*id == 0 && *version == 0) {
        return connection.execute("BEGIN IMMEDIATE;" + std::string(StoredResponse::schema) +
                                  "PRAGMA application_id = " + std::to_string(applicationId) +
                                  "; PRAGMA user_version = " + std::to_string(formatVersion) + "; COMMIT;");
    }
    if (*id != applicationId || *version != formatVersion) {
        return std::unexpected(SQLiteError{SQLITE_NOTADB, "the file is no cache of this format"});
    }
    return {};
}

void SQLiteURLCache::deleteFiles() {
    uses_.clear();
    for (const char* suffix : {"", "-wal", "-shm"}) {
        ::unlink((path() + suffix).c_str());
    }
}

}  // namespace

std::shared_ptr<URLCache> makeSQLiteURLCache(std::string directory, std::size_t capacity) {
    return std::make_shared<SQLiteURLCache>(std::move(directory), capacity);
}

}  // namespace nimbuscope::platform

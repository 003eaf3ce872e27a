#include "Platform/Linux/NSUserDefaults_sqlite.hpp"

#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <mutex>
#include <system_error>
#include <utility>

#include "Platform/Core/Fatal.hpp"
#include "Platform/Linux/NewDefaultsStore_sqlite.hpp"
#include "Platform/Linux/SQLite.hpp"
#include "Platform/Linux/StoreDirectory.hpp"
#include "Platform/Linux/StoredValue_sqlite.hpp"

namespace nimbuscope::platform {
namespace {

using Code = DefaultsError::Code;

class SQLiteUserDefaults final : public NSUserDefaults {
  public:
    SQLiteUserDefaults(std::string path, int busyTimeout)
        : path_(std::move(path)), busyTimeout_(busyTimeout) {}

    [[nodiscard]] DefaultsResult<std::optional<DefaultsValue>> object(std::string_view key) const override;
    [[nodiscard]] DefaultsResult<DefaultsDictionary> dictionaryRepresentation() const override;
    [[nodiscard]] DefaultsResult<void> set(std::string_view key, const DefaultsValue& value) override;
    [[nodiscard]] DefaultsResult<void> removeObject(std::string_view key) override;
    [[nodiscard]] DefaultsResult<void> transaction(const Transaction& body) override;

    /// Every commit waits for the disk already.
    [[nodiscard]] DefaultsResult<void> synchronize() override { return {}; }

  private:
    /// The connection with the statements that were compiled on it.
    struct Open {
        SQLiteConnection connection;
        SQLiteStatement select;
        SQLiteStatement selectAll;
        SQLiteStatement insert;
        SQLiteStatement remove;
        bool isWhole = false;  ///< it has been looked through
    };

    [[nodiscard]] std::unexpected<DefaultsError> error(Code code, std::string reason) const {
        return std::unexpected(DefaultsError{code, path_, std::move(reason)});
    }
    [[nodiscard]] std::unexpected<DefaultsError> error(const SQLiteError& cause) const {
        return std::unexpected(defaultsError(path_, cause));
    }

    /// Ends what is not committed when the scope ends, also where the body of a transaction throws: closing
    /// needs no memory, as the statement ROLLBACK would.
    class CloseUnlessCommitted {
      public:
        explicit CloseUnlessCommitted(std::optional<Open>& open) : open_(open) {}
        ~CloseUnlessCommitted() {
            if (open_->connection.inTransaction()) {
                open_.reset();
            }
        }
        CloseUnlessCommitted(const CloseUnlessCommitted&) = delete;
        CloseUnlessCommitted& operator=(const CloseUnlessCommitted&) = delete;

      private:
        std::optional<Open>& open_;
    };

    [[nodiscard]] DefaultsResult<Open*> open() const;
    [[nodiscard]] DefaultsResult<Open*> openOrCreate();
    [[nodiscard]] DefaultsResult<Open*> openForWriting() const;
    [[nodiscard]] DefaultsResult<void> checkFormat(SQLiteConnection& connection) const;
    [[nodiscard]] DefaultsResult<DefaultsValue> value(const SQLiteStatement& row) const;
    [[nodiscard]] DefaultsResult<void> run(SQLiteStatement& statement) const;

    std::string path_;
    int busyTimeout_;
    mutable std::recursive_mutex mutex_;  // recursive: a transaction's body calls set and object
    mutable std::optional<Open> open_;
};

/// Resets a statement when the scope ends, so that it holds no lock and borrows nothing.
class ResetAtEnd {
  public:
    explicit ResetAtEnd(SQLiteStatement& statement) : statement_(statement) {}
    ~ResetAtEnd() { statement_.reset(); }
    ResetAtEnd(const ResetAtEnd&) = delete;
    ResetAtEnd& operator=(const ResetAtEnd&) = delete;

  private:
    SQLiteStatement& statement_;
};

DefaultsResult<std::optional<DefaultsValue>> SQLiteUserDefaults::object(std::string_view key) const {
    const std::lock_guard lock(mutex_);
    const auto store = open();
    if (!store) {
        return std::unexpected(store.error());
    }
    if (*store == nullptr) {
        return std::nullopt;
    }
    SQLiteStatement& select = (*store)->select;
    const ResetAtEnd reset(select);
    select.bind(1, key);
    const auto row = select.step();
    if (!row) {
        return error(row.error());
    }
    return *row ? DefaultsResult<std::optional<DefaultsValue>>(value(select)) : std::nullopt;
}

DefaultsResult<DefaultsDictionary> SQLiteUserDefaults::dictionaryRepresentation() const {
    const std::lock_guard lock(mutex_);
    const auto store = open();
    if (!store) {
        return std::unexpected(store.error());
    }
    DefaultsDictionary dictionary;
    if (*store == nullptr) {
        return dictionary;
    }
    SQLiteStatement& rows = (*store)->selectAll;
    const ResetAtEnd reset(rows);
    for (;;) {
        const auto row = rows.step();
        if (!row) {
            return error(row.error());
        }
        if (!*row) {
            return dictionary;
        }
        auto entry = value(rows);
        if (!entry) {
            return std::unexpected(std::move(entry.error()));
        }
        dictionary.emplace(rows.text(2), std::move(*entry));
    }
}

DefaultsResult<void> SQLiteUserDefaults::set(std::string_view key, const DefaultsValue& value) {
    const std::lock_guard lock(mutex_);
    if (key.empty() || key.find('\0') != std::string_view::npos || !isValidUTF8(key)) {
        return error(Code::invalidValue, "a key is UTF-8 text, not empty and without NUL");
    }
    const auto store = openOrCreate();
    if (!store) {
        return std::unexpected(store.error());
    }
    SQLiteStatement& insert = (*store)->insert;
    const ResetAtEnd reset(insert);
    insert.bind(1, key);
    const StoredValue stored(value);
    if (const auto fault = stored.bind(insert)) {
        return error(Code::invalidValue, *fault);
    }
    return run(insert);
}

DefaultsResult<void> SQLiteUserDefaults::removeObject(std::string_view key) {
    const std::lock_guard lock(mutex_);
    const auto store = openForWriting();
    if (!store) {
        return std::unexpected(store.error());
    }
    if (*store == nullptr) {
        return {};
    }
    SQLiteStatement& remove = (*store)->remove;
    const ResetAtEnd reset(remove);
    remove.bind(1, key);
    return run(remove);
}

DefaultsResult<void> SQLiteUserDefaults::transaction(const Transaction& body) {
    const std::lock_guard lock(mutex_);
    const auto store = openOrCreate();
    if (!store) {
        return std::unexpected(store.error());
    }
    SQLiteConnection& connection = (*store)->connection;
    precondition(!connection.inTransaction(), "a transaction inside a transaction");
    const auto begun = connection.execute("BEGIN IMMEDIATE");
    if (!begun) {
        return error(begun.error());
    }
    const CloseUnlessCommitted guard(open_);
    DefaultsResult<void> result = body();
    if (result) {
        const auto committed = connection.execute("COMMIT");
        if (!committed) {
            result = error(committed.error());
        }
    }
    return result;
}

/// The open store; null while there is no file.
DefaultsResult<SQLiteUserDefaults::Open*> SQLiteUserDefaults::open() const {
    if (open_) {
        return &*open_;
    }
    struct stat information{};
    if (stat(path_.c_str(), &information) != 0) {
        if (errno == ENOENT) {
            return nullptr;
        }
        return error(Code::cannotOpen, std::generic_category().message(errno));
    }
    auto connection = SQLiteConnection::open(path_, busyTimeout_);
    if (!connection) {
        return error(connection.error());
    }
    const auto checked = checkFormat(*connection);
    if (!checked) {
        return std::unexpected(checked.error());
    }
    Open store{
        .connection = std::move(*connection), .select = {}, .selectAll = {}, .insert = {}, .remove = {}};
    for (const auto& [statement, sql] : {
             std::pair{&store.select, "SELECT type, value FROM defaults WHERE key = ?1"},
             std::pair{&store.selectAll, "SELECT type, value, key FROM defaults"},
             std::pair{&store.insert,
                       "INSERT OR REPLACE INTO defaults (key, type, value) VALUES (?1, ?2, ?3)"},
             std::pair{&store.remove, "DELETE FROM defaults WHERE key = ?1"},
         }) {
        auto prepared = store.connection.prepare(sql);
        if (!prepared) {
            return error(prepared.error());
        }
        *statement = std::move(*prepared);
    }
    return &open_.emplace(std::move(store));
}

DefaultsResult<void> SQLiteUserDefaults::checkFormat(SQLiteConnection& connection) const {
    const auto durable = connection.execute("PRAGMA synchronous = FULL");
    const auto id = connection.integer("PRAGMA application_id");
    const auto version = connection.integer("PRAGMA user_version");
    for (const SQLiteError* cause : {durable ? nullptr : &durable.error(), id ? nullptr : &id.error(),
                                     version ? nullptr : &version.error()}) {
        if (cause != nullptr) {
            return error(*cause);
        }
    }
    if (*id != defaultsApplicationId) {
        return error(Code::damaged, "the file is not a key-value store");
    }
    if (*version > defaultsFormatVersion) {
        return error(Code::newerFormat, "store format " + std::to_string(*version) + " is newer than " +
                                            std::to_string(defaultsFormatVersion) +
                                            ", the newest known here");
    }
    return {};
}

DefaultsResult<SQLiteUserDefaults::Open*> SQLiteUserDefaults::openOrCreate() {
    const auto store = openForWriting();
    if (!store || *store != nullptr) {
        return store;
    }
    const auto created = createDefaultsStore(path_, busyTimeout_);
    if (!created) {
        return std::unexpected(created.error());
    }
    return openForWriting();
}

/// As `open`, for a store that is whole: writing among damaged pages could cost what they still hold. Looked
/// through once, all of it; a caller that only reads does not pay for that.
DefaultsResult<SQLiteUserDefaults::Open*> SQLiteUserDefaults::openForWriting() const {
    const auto store = open();
    if (!store || *store == nullptr || (*store)->isWhole) {
        return store;
    }
    auto check = (*store)->connection.prepare("PRAGMA integrity_check(1)");
    const auto row = check ? check->step() : std::unexpected(check.error());
    if (!row) {
        return error(row.error());
    }
    if (check->text(0) != "ok") {
        return error(Code::damaged, "the file is damaged");
    }
    (*store)->isWhole = true;
    return store;
}

DefaultsResult<DefaultsValue> SQLiteUserDefaults::value(const SQLiteStatement& row) const {
    auto read = StoredValue::read(row);
    return read ? DefaultsResult<DefaultsValue>(std::move(*read))
                : error(Code::damaged, "a stored value is not of its type");
}

DefaultsResult<void> SQLiteUserDefaults::run(SQLiteStatement& statement) const {
    const auto done = statement.step();
    if (!done) {
        return error(done.error());
    }
    return {};
}

}  // namespace

DefaultsResult<std::shared_ptr<NSUserDefaults>> SQLiteUserDefaultsSuites::suite(std::string_view name) {
    constexpr std::size_t longestName = 200;  // file systems allow 255 bytes, and SQLite appends to them
    if (name.empty() || name.size() > longestName || name.front() == '.' || name.find('/') != name.npos ||
        name.find('\0') != name.npos) {
        return std::unexpected(
            DefaultsError{Code::invalidValue, directory_, "a suite's name must be a file name"});
    }
    if (auto fault = makeDirectories(directory_)) {
        return std::unexpected(DefaultsError{Code::cannotOpen, directory_, std::move(*fault)});
    }
    const std::filesystem::path file = std::filesystem::path(directory_) / (std::string(name) + ".sqlite");
    return std::make_shared<SQLiteUserDefaults>(file.string(), busyTimeout_);
}

DefaultsResult<std::shared_ptr<NSUserDefaults>> SQLiteUserDefaultsSuites::standard() {
    return suite("standard");
}

}  // namespace nimbuscope::platform

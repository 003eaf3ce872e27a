#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "Platform/Core/Result.hpp"

namespace nimbuscope::platform {

/// What SQLite said: its (primary) result code and its text.
struct SQLiteError {
    int code = SQLITE_ERROR;
    std::string reason;
};

template <class T>
using SQLiteResult = Result<T, SQLiteError>;

/// A statement that was compiled once and runs many times. Must not outlive its connection.
class SQLiteStatement {
  public:
    SQLiteStatement() = default;

    /// Parameters count from 1. Bound bytes and texts are borrowed until the next `reset`.
    void bind(int parameter, std::int64_t value);
    void bind(int parameter, double value);
    void bind(int parameter, std::string_view text);
    void bind(int parameter, std::span<const std::uint8_t> bytes);

    /// Runs up to the next row: true for a row, false at the end.
    [[nodiscard]] SQLiteResult<bool> step();

    /// Ready to run again, its parameters unbound.
    void reset();

    /// The columns of the current row count from 0. Texts and bytes are valid until the next step or reset.
    [[nodiscard]] int storageClass(int column) const;
    [[nodiscard]] std::int64_t integer(int column) const;
    [[nodiscard]] double real(int column) const;
    [[nodiscard]] std::string_view text(int column) const;
    [[nodiscard]] std::span<const std::uint8_t> bytes(int column) const;

  private:
    friend class SQLiteConnection;
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };
    std::unique_ptr<sqlite3_stmt, Finalize> statement_;
};

/// An open database file. One thread at a time.
class SQLiteConnection {
  public:
    /// Opens a file that exists. Waits up to `busyTimeout` milliseconds for locks of other processes.
    [[nodiscard]] static SQLiteResult<SQLiteConnection> open(const std::string& path, int busyTimeout);

    [[nodiscard]] SQLiteResult<SQLiteStatement> prepare(std::string_view sql);

    /// Runs one or more statements whose rows nobody wants.
    [[nodiscard]] SQLiteResult<void> execute(const std::string& sql);

    /// The first column of the first row of a query, as an integer; 0 without a row.
    [[nodiscard]] SQLiteResult<std::int64_t> integer(std::string_view sql);

    /// True between BEGIN and COMMIT or ROLLBACK.
    [[nodiscard]] bool inTransaction() const { return sqlite3_get_autocommit(database_.get()) == 0; }

  private:
    struct Close {
        void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
    };
    std::unique_ptr<sqlite3, Close> database_;
};

}  // namespace nimbuscope::platform

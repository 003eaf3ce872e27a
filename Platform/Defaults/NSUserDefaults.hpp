#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "Platform/Core/Export.hpp"
#include "Platform/Core/Result.hpp"
#include "Platform/Defaults/DefaultsValue.hpp"

namespace nimbuscope::platform {

/// Why a key-value store did not do what it was asked. What was stored is as it was.
struct DefaultsError {
    enum class Code {
        cannotOpen,    ///< the directory or the file cannot be made or opened
        busy,          ///< another process holds the store for longer than one waits
        readOnly,      ///< the store can be read but not written
        full,          ///< no room is left
        damaged,       ///< what is there is no store, or no longer a whole one
        newerFormat,   ///< written by a newer version of this system
        invalidValue,  ///< the key or value cannot be stored
        failed,        ///< any other fault, also one that a transaction's body reports
    };

    Code code = Code::failed;
    std::string store;   ///< which store: the path of its file where it has one
    std::string reason;  ///< one sentence

    [[nodiscard]] std::string message() const { return store.empty() ? reason : store + ": " + reason; }
};

template <class T>
using DefaultsResult = Result<T, DefaultsError>;

/// A key-value store that outlives the process and is shared between processes: one suite, or the standard
/// store.
///
/// Every write is on the disk when it returns, and is seen by the next read of any process. Readers do not
/// wait for writers. Any thread may call; calls on one object are carried out one after another.
class NIMBUSCOPE_EXPORT NSUserDefaults {
  public:
    virtual ~NSUserDefaults() = default;

    /// The value under `key`, or none.
    [[nodiscard]] virtual DefaultsResult<std::optional<DefaultsValue>> object(std::string_view key) const = 0;

    /// Every key with its value, as of one moment.
    [[nodiscard]] virtual DefaultsResult<DefaultsDictionary> dictionaryRepresentation() const = 0;

    /// Stores `value` under `key` in place of any other. Keys are UTF-8 text without NUL and not empty;
    /// doubles are finite and texts UTF-8.
    [[nodiscard]] virtual DefaultsResult<void> set(std::string_view key, const DefaultsValue& value) = 0;

    /// Removes the value under `key`, if there is one.
    [[nodiscard]] virtual DefaultsResult<void> removeObject(std::string_view key) = 0;

    /// Returns once everything written so far is on the disk.
    [[nodiscard]] virtual DefaultsResult<void> synchronize() = 0;

    /// Runs `body` while this caller alone may write the store, in any process; what `body` writes is kept as
    /// a whole when it succeeds and dropped as a whole when it fails. The way to change a value that depends
    /// on what is stored. `body` uses this object on the calling thread and starts no second transaction.
    using Transaction = std::function<DefaultsResult<void>()>;
    [[nodiscard]] virtual DefaultsResult<void> transaction(const Transaction& body) = 0;
};

/// Where stores are opened.
class NIMBUSCOPE_EXPORT NSUserDefaultsSuites {
  public:
    virtual ~NSUserDefaultsSuites() = default;

    /// The store that applications of one group share under the group's name. Opening the same name again
    /// gives another object over the same store.
    [[nodiscard]] virtual DefaultsResult<std::shared_ptr<NSUserDefaults>> suite(std::string_view name) = 0;

    /// The application's own store.
    [[nodiscard]] virtual DefaultsResult<std::shared_ptr<NSUserDefaults>> standard() = 0;
};

}  // namespace nimbuscope::platform

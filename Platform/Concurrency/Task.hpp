#pragma once

#include <asio/awaitable.hpp>
#include <asio/co_spawn.hpp>
#include <asio/thread_pool.hpp>
#include <cstddef>
#include <exception>
#include <functional>
#include <mutex>
#include <optional>
#include <utility>

#include "Platform/Core/Export.hpp"
#include "Platform/Core/NSError.hpp"
#include "Platform/Core/Result.hpp"

namespace nimbuscope::platform {

/// The body of an asynchronous operation: a coroutine that returns a T. Its arguments are passed by value.
template <class T>
using AsyncBody = asio::awaitable<T>;

/// Receives the outcome of an asynchronous operation; called once.
template <class T>
using CompletionHandler = std::move_only_function<void(Result<T, NSError>)>;

/// Calls a completion handler exactly once: with the outcome it is given, or, when it goes without one, with
/// an error that says so.
template <class T>
class Completion {
  public:
    explicit Completion(CompletionHandler<T> handler) : handler_(std::move(handler)) {}
    Completion(Completion&& other) noexcept : handler_(std::exchange(other.handler_, nullptr)) {}
    Completion(const Completion&) = delete;
    Completion& operator=(const Completion&) = delete;
    Completion& operator=(Completion&&) = delete;

    ~Completion() {
        if (handler_) {
            call(std::unexpected(NSError{"nimbuscope.task", 1, "the operation ended without an outcome"}));
        }
    }

    void call(Result<T, NSError> outcome) { std::exchange(handler_, nullptr)(std::move(outcome)); }

  private:
    CompletionHandler<T> handler_;
};

/// Threads that run asynchronous bodies, each started as a task of its own with no order between them.
///
/// Any thread may start tasks. Completion handlers are called on a thread of the pool and must not throw.
/// Destruction waits for the tasks that run; a task that can never go on is dropped, and its handler told so.
class NIMBUSCOPE_EXPORT TaskPool {
  public:
    /// The threads are made with the first task.
    explicit TaskPool(std::size_t threads) : threadCount_(threads) {}

    /// Starts `body` and calls `handler` exactly once: with what the body returns, or with an error when it
    /// throws.
    template <class T>
    void start(AsyncBody<T> body, CompletionHandler<T> handler) {
        asio::co_spawn(pool(), std::move(body),
                       [completion = Completion<T>(std::move(handler))](const std::exception_ptr& thrown,
                                                                        T value) mutable {
                           if (thrown) {
                               completion.call(std::unexpected(errorOf(thrown)));
                           } else {
                               completion.call(std::move(value));
                           }
                       });
    }

    /// Returns when every task that can end has ended. No task may be started afterwards.
    void join();

  private:
    static NSError errorOf(const std::exception_ptr& thrown);
    asio::thread_pool& pool();

    std::size_t threadCount_;
    std::once_flag made_;
    std::optional<asio::thread_pool> pool_;
};

}  // namespace nimbuscope::platform

#include "Platform/Concurrency/Task.hpp"

namespace nimbuscope::platform {

void TaskPool::join() {
    if (pool_) {
        pool_->join();
    }
}

NSError TaskPool::errorOf(const std::exception_ptr& thrown) {
    try {
        std::rethrow_exception(thrown);
    } catch (const std::exception& exception) {
        return {"nimbuscope.task", 2, exception.what()};
    } catch (...) {
        return {"nimbuscope.task", 2, "the operation failed for an unknown reason"};
    }
}

asio::thread_pool& TaskPool::pool() {
    std::call_once(made_, [this] { pool_.emplace(threadCount_); });
    return *pool_;
}

}  // namespace nimbuscope::platform

#include "Platform/Concurrency/SerialQueue.hpp"

#include <pthread.h>

#include <asio/post.hpp>
#include <asio/steady_timer.hpp>
#include <memory>
#include <utility>

namespace nimbuscope::platform {

SerialQueue::SerialQueue(std::string label) {
    async(
        [label = std::move(label)] { ::pthread_setname_np(::pthread_self(), label.substr(0, 15).c_str()); });
}

SerialQueue::~SerialQueue() {
    thread_.stop();
    thread_.join();
}

void SerialQueue::async(Work work) {
    asio::post(thread_, std::move(work));
}

void SerialQueue::asyncAfter(std::chrono::nanoseconds delay, Work work) {
    auto timer = std::make_unique<asio::steady_timer>(thread_, delay);
    auto& waiting = *timer;
    waiting.async_wait(
        [timer = std::move(timer), work = std::move(work)](asio::error_code) mutable { work(); });
}

}  // namespace nimbuscope::platform

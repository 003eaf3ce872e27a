#include "Platform/Linux/URLSession_curl.hpp"

#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <deque>
#include <mutex>
#include <thread>
#include <unordered_map>
#include <utility>
#include <vector>

#include "Platform/Core/Fatal.hpp"
#include "Platform/Linux/URLTransfer_curl.hpp"

namespace nimbuscope::platform {
namespace {

using Instant = URLTransfer::Instant;

// libcurl has such a limit itself, but now and then forgets one of those that wait.
constexpr int transfersPerServer = 6;
constexpr long keptConnections = 24;
constexpr std::size_t keptHandles = 64;

class LoadingThread final : public CurlURLSession, DispatchQueue {
  public:
    explicit LoadingThread(URLSessionConfiguration configuration)
        : configuration_(std::move(configuration)),
          trust_(TrustStore::load(configuration_.additionalAuthorities)) {
        precondition(multi_ != nullptr, "libcurl makes no multi handle");
        curl_multi_setopt(multi_.get(), CURLMOPT_MAXCONNECTS, keptConnections);
        // In libcurl 7.88, streams that share a connection now and then stall for good.
        curl_multi_setopt(multi_.get(), CURLMOPT_PIPELINING, CURLPIPE_NOTHING);
        worker_ = std::thread([this] { run(); });
    }

    ~LoadingThread() override {
        handOver([this] { isStopping_ = true; });
        worker_.join();
    }
    LoadingThread(const LoadingThread&) = delete;
    LoadingThread& operator=(const LoadingThread&) = delete;

    void dataTask(URLRequest request, URLSessionHandler handler) override;

    [[nodiscard]] const URLSessionConfiguration& configuration() const override { return configuration_; }

    [[nodiscard]] DispatchQueue& queue() override { return *this; }

  private:
    struct Waiting {
        URLTransfer::Prepared prepared;
        URLSessionHandler handler;
    };
    struct Server {
        int underWay = 0;
        std::deque<Waiting> queued;
    };
    struct Entry {
        Entry(Server& to, CurlEasy handle, Waiting waiting, const URLSessionConfiguration& configuration,
              const TrustStore& trust)
            : server(to),
              transfer(std::move(handle), std::move(waiting.prepared), std::move(waiting.handler),
                       configuration, trust) {}

        Server& server;
        URLTransfer transfer;
    };
    using Transfers = std::unordered_map<CURL*, Entry>;
    struct MultiCleanup {
        void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
    };

    void async(Work work) override {
        handOver([&] { work_.push_back(std::move(work)); });
    }

    /// Runs `add` under the mutex and sees to it that the worker looks at what it added.
    template <class Add>
    void handOver(const Add& add) {
        std::unique_lock lock(mutex_);
        add();
        const bool wasAsleep = std::exchange(isAsleep_, false);
        lock.unlock();
        if (wasAsleep) {
            curl_multi_wakeup(multi_.get());
        }
    }

    void run();
    [[nodiscard]] bool takeHandedOver();
    [[nodiscard]] bool mayFallAsleep();
    void startQueued(Server& server);
    void start(Waiting waiting, Server& server);
    void clearEnded();
    void finishEnded();
    void finishOverdue();
    void finish(CURL* handle, CURLcode outcome);
    void cancelAll();
    [[nodiscard]] int millisecondsToWait() const;

    URLSessionConfiguration configuration_;
    Result<TrustStore, URLError> trust_;

    std::mutex mutex_;
    // Under the mutex:
    std::vector<Work> work_;
    std::vector<Waiting> waiting_;
    std::atomic<bool> isStopping_ = false;  // read without it
    bool isAsleep_ = false;                 // the worker waits, or is about to, and must be woken

    // On the worker's thread alone.
    std::unique_ptr<CURLM, MultiCleanup> multi_{curl_multi_init()};
    std::unordered_map<std::string, Server> servers_;  // by host and port
    Transfers transfers_;
    std::vector<Transfers::node_type> ended_;
    std::vector<CurlEasy> readyHandles_;
    Instant nextDeadline_ = Instant::max();  // no transfer's deadline is earlier

    std::thread worker_;
};

void LoadingThread::dataTask(URLRequest request, URLSessionHandler handler) {
    auto prepared = URLTransfer::prepare(std::move(request));
    if (!prepared || !trust_) {
        handler(std::unexpected(!prepared ? prepared.error() : trust_.error()));
        return;
    }
    handOver([&] { waiting_.push_back({std::move(*prepared), std::move(handler)}); });
}

void LoadingThread::run() {
    ::pthread_setname_np(::pthread_self(), "Network");
    // OpenSSL writes to connections that the peer has closed.
    sigset_t pipe;
    sigemptyset(&pipe);
    sigaddset(&pipe, SIGPIPE);
    ::pthread_sigmask(SIG_BLOCK, &pipe, nullptr);

    while (takeHandedOver()) {
        int running = 0;
        curl_multi_perform(multi_.get(), &running);
        finishEnded();
        finishOverdue();
        if (mayFallAsleep()) {
            clearEnded();
            curl_multi_poll(multi_.get(), nullptr, 0, millisecondsToWait(), nullptr);
        }
    }
    cancelAll();
}

bool LoadingThread::mayFallAsleep() {
    const std::lock_guard lock(mutex_);
    isAsleep_ = work_.empty() && waiting_.empty() && !isStopping_;
    return isAsleep_;
}

/// Does the work that was handed over and starts the requests that may start; false when the session ends
/// instead.
bool LoadingThread::takeHandedOver() {
    std::vector<Work> works;
    std::vector<Waiting> waiting;
    {
        const std::lock_guard lock(mutex_);
        isAsleep_ = false;
        if (isStopping_) {
            return false;
        }
        works.swap(work_);
    }
    for (Work& work : works) {
        if (isStopping_) {
            return false;
        }
        work();
    }
    {
        const std::lock_guard lock(mutex_);  // the requests that the work prepared are among them
        waiting.swap(waiting_);
    }
    for (Waiting& each : waiting) {
        Server& server = servers_[each.prepared.server];
        server.queued.push_back(std::move(each));
        startQueued(server);
    }
    return true;
}

void LoadingThread::startQueued(Server& server) {
    while (!server.queued.empty() && server.underWay < transfersPerServer) {
        Waiting next = std::move(server.queued.front());
        server.queued.pop_front();
        start(std::move(next), server);
    }
}

void LoadingThread::start(Waiting waiting, Server& server) {
    if (ended_.size() >= keptHandles) {  // the worker has not slept for long
        clearEnded();
    }
    CurlEasy handle;
    if (readyHandles_.empty()) {
        handle.reset(curl_easy_init());
        precondition(handle != nullptr, "libcurl makes no handle");
        URLTransfer::makeReady(handle.get(), configuration_);
    } else {
        handle = std::move(readyHandles_.back());
        readyHandles_.pop_back();
    }
    CURL* const key = handle.get();
    const auto entry =
        transfers_.try_emplace(key, server, std::move(handle), std::move(waiting), configuration_, *trust_);
    const URLTransfer& transfer = entry.first->second.transfer;
    nextDeadline_ = std::min(nextDeadline_, transfer.earliestDeadline(std::chrono::steady_clock::now()));
    ++server.underWay;
    const CURLMcode added = curl_multi_add_handle(multi_.get(), key);
    precondition(added == CURLM_OK, "libcurl does not take a transfer");
}

/// Work that no request waits for, as it is done before falling asleep.
void LoadingThread::clearEnded() {
    for (auto& node : ended_) {
        CurlEasy handle = node.mapped().transfer.takeHandle();
        if (readyHandles_.size() < keptHandles) {
            URLTransfer::makeReady(handle.get(), configuration_);
            readyHandles_.push_back(std::move(handle));
        }
    }
    ended_.clear();
}

void LoadingThread::finishEnded() {
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(multi_.get(), &left)) {
        if (message->msg == CURLMSG_DONE) {
            const CURLcode outcome = message->data.result;
            finish(message->easy_handle, outcome);
        }
    }
}

/// Deadlines move with every byte; looking at them is put off until one can have passed.
void LoadingThread::finishOverdue() {
    const Instant now = std::chrono::steady_clock::now();
    if (now < nextDeadline_) {
        return;
    }
    std::vector<CURL*> overdue;
    nextDeadline_ = Instant::max();
    for (const auto& [handle, entry] : transfers_) {
        if (entry.transfer.deadline() <= now) {
            overdue.push_back(handle);
        } else {
            nextDeadline_ = std::min(nextDeadline_, entry.transfer.earliestDeadline(now));
        }
    }
    for (CURL* handle : overdue) {
        finish(handle, CURLE_OPERATION_TIMEDOUT);
    }
}

void LoadingThread::finish(CURL* key, CURLcode outcome) {
    curl_multi_remove_handle(multi_.get(), key);
    Entry& entry = ended_.emplace_back(transfers_.extract(key)).mapped();
    Server& server = entry.server;
    URLTransfer& transfer = entry.transfer;
    const bool isRepeating = transfer.shouldRepeat(outcome);
    auto result = transfer.result(outcome);
    auto handler = transfer.takeHandler();
    auto prepared = transfer.takePrepared();
    --server.underWay;
    if (isRepeating) {
        prepared.isRepeated = true;
        server.queued.push_front({std::move(prepared), std::move(handler)});
        startQueued(server);
        return;
    }
    startQueued(server);
    handler(std::move(result));
}

/// Handlers may ask for more while they are told; that is cancelled as well.
void LoadingThread::cancelAll() {
    const URLError cancelled{URLError::Code::cancelled, {"nimbuscope.url", 3, "the session has ended"}};
    std::vector<URLSessionHandler> handlers;
    for (auto& [handle, entry] : transfers_) {
        curl_multi_remove_handle(multi_.get(), handle);
        handlers.push_back(entry.transfer.takeHandler());
    }
    transfers_.clear();
    for (auto& [name, server] : servers_) {
        for (Waiting& each : server.queued) {
            handlers.push_back(std::move(each.handler));
        }
    }
    servers_.clear();
    for (;;) {
        {
            const std::lock_guard lock(mutex_);
            for (Waiting& each : std::exchange(waiting_, {})) {
                handlers.push_back(std::move(each.handler));
            }
        }
        if (handlers.empty()) {
            return;
        }
        for (URLSessionHandler& handler : std::exchange(handlers, {})) {
            handler(std::unexpected(cancelled));
        }
    }
}

int LoadingThread::millisecondsToWait() const {
    constexpr std::chrono::milliseconds longest{60'000};
    if (nextDeadline_ == Instant::max()) {
        return static_cast<int>(longest.count());
    }
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(nextDeadline_ - std::chrono::steady_clock::now());
    return static_cast<int>(std::clamp(left, std::chrono::milliseconds(0), longest).count());
}

}  // namespace

std::unique_ptr<CurlURLSession> makeCurlURLSession(URLSessionConfiguration configuration) {
    static const CURLcode initialised = curl_global_init(CURL_GLOBAL_DEFAULT);
    precondition(initialised == CURLE_OK, "libcurl cannot be used");
    return std::make_unique<LoadingThread>(std::move(configuration));
}

}  // namespace nimbuscope::platform

#include <unistd.h>

#include <array>
#include <cerrno>
#include <condition_variable>
#include <csignal>
#include <cstdio>
#include <mutex>
#include <system_error>
#include <utility>

#include "Platform/Intents/JSONRPC.hpp"
#include "Platform/Intents/NSExtensionMain.hpp"

namespace nimbuscope::platform {
namespace {

constexpr std::size_t longestLine = std::size_t{4} << 20U;
constexpr std::size_t mostCallsAtOnce = 256;

/// Splits what a file descriptor gives into lines, holding no more than one line of bounded length.
class LineReader {
  public:
    enum class Outcome { line, tooLong, end };

    explicit LineReader(int input) : input_(input) {}

    /// Reads up to the next line feed, or the end of input, which ends a last line as well. Where reading
    /// fails, what was read of a line is none.
    Outcome next() {
        line_.clear();
        bool isTooLong = false;
        for (;;) {
            const std::string_view rest = std::string_view(buffer_.data(), filled_).substr(taken_);
            const std::size_t length = rest.find('\n');
            const std::string_view part = rest.substr(0, length);
            isTooLong = isTooLong || line_.size() + part.size() > longestLine;
            if (!isTooLong) {
                line_ += part;
            }
            taken_ += part.size();
            if (length != std::string_view::npos) {
                ++taken_;
                return isTooLong ? Outcome::tooLong : Outcome::line;
            }
            if (!refill()) {
                line_.resize(error_ != 0 ? 0 : line_.size());
                return isTooLong ? Outcome::tooLong : line_.empty() ? Outcome::end : Outcome::line;
            }
        }
    }

    [[nodiscard]] std::string_view line() const { return line_; }
    [[nodiscard]] int error() const { return error_; }  ///< why reading failed; 0 where it did not

  private:
    bool refill() {
        ssize_t count = 0;
        do {
            count = ::read(input_, buffer_.data(), buffer_.size());
        } while (count < 0 && errno == EINTR);
        error_ = count < 0 ? errno : 0;
        taken_ = 0;
        filled_ = count > 0 ? static_cast<std::size_t>(count) : 0;
        return filled_ > 0;
    }

    int input_;
    std::array<char, std::size_t{64} << 10U> buffer_{};
    std::size_t filled_ = 0;
    std::size_t taken_ = 0;
    std::string line_;
    int error_ = 0;
};

/// Writes whole replies from any thread, and counts the calls that still owe one.
class ReplyWriter {
  public:
    explicit ReplyWriter(int output) : output_(output) {}

    /// Waits until fewer calls are under way than may be, and counts one more.
    void begin() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return pending_ < mostCallsAtOnce; });
        ++pending_;
    }

    void end() {
        const std::lock_guard lock(mutex_);
        --pending_;
        changed_.notify_all();
    }

    void waitForAll() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return pending_ == 0; });
    }

    void write(std::string_view reply) {
        const std::lock_guard lock(mutex_);
        while (error_ == 0 && !reply.empty()) {
            const ssize_t count = ::write(output_, reply.data(), reply.size());
            if (count >= 0) {
                reply.remove_prefix(static_cast<std::size_t>(count));
            } else if (errno != EINTR) {
                error_ = errno;
            }
        }
    }

    /// Why writing failed; 0 where it did not.
    [[nodiscard]] int error() {
        const std::lock_guard lock(mutex_);
        return error_;
    }

  private:
    int output_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::size_t pending_ = 0;
    int error_ = 0;
};

void serve(const INExtensionDispatcher& dispatcher, JSONDocument& document, std::string_view line,
           ReplyWriter& replies) {
    auto request = jsonrpc::readRequest(document, line);
    if (!request) {
        replies.write(jsonrpc::errorLine(request.error().id, request.error().error));
        return;
    }
    replies.begin();
    const JSONElement* params = request->params ? &*request->params : nullptr;
    dispatcher.call(request->method, params, [&replies, id = request->id](const INCallReply& reply) {
        if (id) {
            replies.write(reply ? jsonrpc::resultLine(*id, *reply)
                                : jsonrpc::errorLine(*id, jsonrpc::errorOf(reply.error())));
        }
        replies.end();
    });
}

/// Says so where a stream failed, and returns whether it did.
bool tell(const char* stream, int error) {
    if (error != 0) {
        std::fprintf(stderr, "%s: %s: %s\n", program_invocation_short_name, stream,
                     std::generic_category().message(error).c_str());
    }
    return error != 0;
}

}  // namespace

int NSExtensionMain(INExtensionDefinition definition, int input, int output) {
    std::signal(SIGPIPE, SIG_IGN);  // a reader that went away shows as a failed write
    const INExtensionDispatcher dispatcher(std::move(definition));
    LineReader lines(input);
    ReplyWriter replies(output);
    JSONDocument document;
    for (auto outcome = lines.next(); outcome != LineReader::Outcome::end && replies.error() == 0;
         outcome = lines.next()) {
        if (outcome == LineReader::Outcome::line) {
            serve(dispatcher, document, lines.line(), replies);
        } else {
            replies.write(jsonrpc::errorLine(
                "null", {jsonrpc::Error::Code::parseError,
                         "a line of more than " + std::to_string(longestLine) + " bytes"}));
        }
    }
    replies.waitForAll();
    const bool isInputBad = tell("standard input", lines.error());
    return tell("standard output", replies.error()) || isInputBad ? 1 : 0;
}

}  // namespace nimbuscope::platform

// The extension process: start to first answer against a program that only reads the same value, and the
// throughput and memory of many pipelined requests. Prints table lines as the other benchmarks do.

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <filesystem>
#include <thread>

#include "NimbuscopeIntentHandler/Places/SharedStorage.hpp"
#include "Platform/Linux/NSUserDefaults_sqlite.hpp"
#include "support/PlacesPeers.hpp"
#include "support/Ratios.hpp"

using namespace nimbuscope;
using namespace nimbuscope::benchmarks;

namespace {

const std::string request = R"({"jsonrpc":"2.0","id":1,"method":"provideLocationOptionsCollection",)"
                            R"("params":{"intent":{"class":"RadarMapIntent","parameters":{}}}})"
                            "\n";

/// A child process with pipes to its standard input and output.
class Child {
  public:
    explicit Child(std::string program) {
        std::array<int, 2> in{};
        std::array<int, 2> out{};
        if (::pipe2(in.data(), O_CLOEXEC) != 0 || ::pipe2(out.data(), O_CLOEXEC) != 0) {
            std::perror("pipe2");
            std::exit(1);
        }
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, in[0], 0);
        posix_spawn_file_actions_adddup2(&actions, out[1], 1);
        std::array<char*, 2> arguments{program.data(), nullptr};
        if (::posix_spawn(&process_, program.c_str(), &actions, nullptr, arguments.data(), environ) != 0) {
            std::perror("posix_spawn");
            std::exit(1);
        }
        posix_spawn_file_actions_destroy(&actions);
        ::close(in[0]);
        ::close(out[1]);
        input_ = in[1];
        output_ = out[0];
    }
    ~Child() {
        closeInput();
        ::close(output_);
        ::waitpid(process_, nullptr, 0);
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    void write(std::string_view text) {
        while (!text.empty()) {
            const ssize_t count = ::write(input_, text.data(), text.size());
            if (count < 0) {
                return;  // the peer answers without asking and may have gone
            }
            text.remove_prefix(static_cast<std::size_t>(count));
        }
    }
    void closeInput() {
        if (input_ >= 0) {
            ::close(std::exchange(input_, -1));
        }
    }
    /// Reads until `lines` line feeds have come, or the end; returns how many came.
    std::size_t readLines(std::size_t lines) {
        std::array<char, 1U << 16U> chunk;
        std::size_t seen = 0;
        while (seen < lines) {
            const ssize_t count = ::read(output_, chunk.data(), chunk.size());
            if (count <= 0) {
                break;
            }
            seen += static_cast<std::size_t>(std::count(chunk.begin(), chunk.begin() + count, '\n'));
        }
        return seen;
    }
    [[nodiscard]] long residentKiB() const {
        std::array<char, 64> path{};
        std::snprintf(path.data(), path.size(), "/proc/%d/statm", process_);
        long pages = 0;
        if (std::FILE* file = std::fopen(path.data(), "r")) {
            if (std::fscanf(file, "%*d %ld", &pages) != 1) {
                pages = 0;
            }
            std::fclose(file);
        }
        return pages * (::sysconf(_SC_PAGESIZE) / 1024);
    }

  private:
    pid_t process_ = -1;
    int input_ = -1;
    int output_ = -1;
};

void firstAnswer(const std::string& program) {
    Child child(program);
    child.write(request);
    if (child.readLines(1) != 1) {
        std::fprintf(stderr, "%s did not answer\n", program.c_str());
        std::exit(1);
    }
}

void reportThroughput(const std::string& extension) {
    constexpr int batch = 2500;
    Child child(extension);
    std::array<long, 4> memory{};
    const auto start = std::chrono::steady_clock::now();
    for (long& resident : memory) {
        std::thread writer([&] {
            for (int i = 0; i < batch; ++i) {
                child.write(request);
            }
        });
        child.readLines(batch);
        writer.join();
        resident = child.residentKiB();
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf(
        "| 10000 pipelined requests, 1000 places | extension | %.0f requests/s | resident %ld, %ld, %ld, %ld "
        "KiB "
        "after each quarter | | reported |\n",
        4 * batch / seconds, memory[0], memory[1], memory[2], memory[3]);
}

}  // namespace

int main(int /*argumentCount*/, char** arguments) {
    const std::filesystem::path build = std::filesystem::absolute(arguments[0]).parent_path().parent_path();
    const std::string extension = build / "NimbuscopeIntentHandler/NimbuscopeIntentHandler";
    const std::string reader = build / "benchmarks/read_places_value";
    std::string directory = (std::filesystem::temp_directory_path() / "nimbuscope-benchmark-XXXXXX").string();
    if (::mkdtemp(directory.data()) == nullptr) {
        std::perror("mkdtemp");
        return 1;
    }
    std::signal(SIGPIPE, SIG_IGN);
    ::setenv("NIMBUSCOPE_STORE", directory.c_str(), 1);
    const auto group = platform::SQLiteUserDefaultsSuites(directory).suite(SharedStorage::appGroupIdentifier);
    if (!group || !(*group)->set(SharedStorage::placesKey, platform::dataOf(placesDocument(1000)))) {
        std::fprintf(stderr, "cannot store the places\n");
        return 1;
    }
    const bool isKept = compare("start to first answer, 1000 places",
                                {{"extension", [&] { firstAnswer(extension); }},
                                 {"hello world that reads the value", [&] { firstAnswer(reader); }}},
                                {{1, 2.5}}, 51);
    reportThroughput(extension);
    std::filesystem::remove_all(directory);
    return isKept ? 0 : 1;
}

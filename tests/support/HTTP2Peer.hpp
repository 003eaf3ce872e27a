#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/Certificates.hpp"
#include "tests/support/Process.hpp"
#include "tests/support/TemporaryDirectory.hpp"

namespace nimbuscope::testing {

/// A server that speaks HTTP/2 alone, nghttpd, on a free port of the loopback interface, for the files of a
/// directory.
class HTTP2Peer {
  public:
    HTTP2Peer() {
        for (int i = 0; i < 2000 && port_ == 0; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
            port_ = listeningPort();
        }
        EXPECT_NE(port_, 0) << "nghttpd does not listen";
    }

    void serve(const std::string& name, const std::string& bytes) const {
        writeFile(directory_.path(name), bytes);
    }

    [[nodiscard]] std::string url(const std::string& name) const {
        return "https://localhost:" + std::to_string(port_) + '/' + name;
    }

    [[nodiscard]] std::string authorityFile() const { return directory_.path("authority.pem"); }

    /// How many connections clients have to it.
    [[nodiscard]] std::ptrdiff_t connections() const {
        return std::ranges::count_if(tcpSockets(), [this](const Socket& socket) {
            return socket.state == established && socket.port == port_;
        });
    }

  private:
    struct Socket {
        int port = 0;
        std::string state;
        std::string inode;
    };
    static constexpr std::string_view listening = "0A";
    static constexpr std::string_view established = "01";

    /// proc(5): the sockets of /proc/net/tcp, by their local ports.
    [[nodiscard]] static std::vector<Socket> tcpSockets() {
        std::vector<Socket> sockets;
        std::ifstream table("/proc/net/tcp");
        std::string line;
        std::getline(table, line);
        while (std::getline(table, line)) {
            Socket socket;
            std::string local;
            std::string skipped;
            std::istringstream columns(line);
            columns >> skipped >> local >> skipped >> socket.state >> skipped >> skipped >> skipped >>
                skipped >> skipped >> socket.inode;
            const auto colon = local.find(':') + 1;
            std::from_chars(&local[colon], local.data() + local.size(), socket.port, 16);
            sockets.push_back(socket);
        }
        return sockets;
    }

    /// Zero until the server listens.
    [[nodiscard]] int listeningPort() const {
        const std::string process = "/proc/" + std::to_string(server_.identifier());
        std::error_code hasGone;
        if (std::filesystem::read_symlink(process + "/exe", hasGone).filename() != "nghttpd") {
            return 0;  // still this program, with the sockets that it listens on
        }
        std::vector<std::string> own;
        for (const auto& entry : std::filesystem::directory_iterator(process + "/fd")) {
            own.push_back(std::filesystem::read_symlink(entry, hasGone).string());
        }
        for (const Socket& socket : tcpSockets()) {
            if (socket.state == listening && std::ranges::count(own, "socket:[" + socket.inode + "]") > 0) {
                return socket.port;
            }
        }
        return 0;
    }

    [[nodiscard]] std::vector<std::string> command() const {
        const Identity identity = Identity::make();
        writeFile(authorityFile(), identity.authority.pem());
        serve("chain.pem", identity.chain[0].pem() + identity.chain[1].pem());
        serve("key.pem", identity.chain[0].keyPEM());
        return {"stdbuf",
                "-oL",
                "/usr/sbin/nghttpd",
                "--address=127.0.0.1",
                "--htdocs=" + directory_.path(),
                "0",
                directory_.path("key.pem"),
                directory_.path("chain.pem")};
    }

    TemporaryDirectory directory_;
    BackgroundProcess server_{command()};
    int port_ = 0;
};

}  // namespace nimbuscope::testing

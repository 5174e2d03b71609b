// A real HTTP server on 127.0.0.1 for download tests: python3's
// http.server serving a folder, on a free port, stopped with the object.
#pragma once

#include <arpa/inet.h>
#include <csignal>
#include <fcntl.h>
#include <netinet/in.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>

extern char **environ;

namespace tramline::testing {

/// A port nobody listens on at the moment of the call.
inline int freePort() {
    const int s = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    ::bind(s, reinterpret_cast<sockaddr *>(&address), sizeof address);
    ::getsockname(s, reinterpret_cast<sockaddr *>(&address), &length);
    ::close(s);
    return ntohs(address.sin_port);
}

inline bool canConnect(int port) {
    const int s = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const bool ok = ::connect(s, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0;
    ::close(s);
    return ok;
}

class LoopbackServer {
public:
    explicit LoopbackServer(const std::filesystem::path &root) : m_port(freePort()) {
        const std::string port = std::to_string(m_port), directory = root.string();
        const char *argv[] = {"python3",   "-m",          "http.server",     port.c_str(), "--bind",
                              "127.0.0.1", "--directory", directory.c_str(), nullptr};
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
        if (posix_spawnp(&m_pid, "python3", &actions, nullptr, const_cast<char **>(argv),
                         environ) != 0)
            m_pid = -1;
        posix_spawn_file_actions_destroy(&actions);
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (m_pid > 0 && !canConnect(m_port) && std::chrono::steady_clock::now() < deadline)
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        m_running = m_pid > 0 && canConnect(m_port);
    }
    ~LoopbackServer() {
        if (m_pid > 0) {
            ::kill(m_pid, SIGTERM);
            ::waitpid(m_pid, nullptr, 0);
        }
    }
    LoopbackServer(const LoopbackServer &) = delete;
    LoopbackServer &operator=(const LoopbackServer &) = delete;

    bool running() const { return m_running; }
    std::string base() const { return "http://127.0.0.1:" + std::to_string(m_port) + "/"; }

private:
    int m_port;
    pid_t m_pid = -1;
    bool m_running = false;
};

/// A server that accepts connections (the kernel completes them) and never
/// answers: the download must give up by its time limit.
class SilentServer {
public:
    SilentServer() {
        m_socket = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        ::bind(m_socket, reinterpret_cast<sockaddr *>(&address), sizeof address);
        ::listen(m_socket, 8);
        ::getsockname(m_socket, reinterpret_cast<sockaddr *>(&address), &length);
        m_port = ntohs(address.sin_port);
    }
    ~SilentServer() { ::close(m_socket); }
    std::string base() const { return "http://127.0.0.1:" + std::to_string(m_port) + "/"; }

private:
    int m_socket = -1;
    int m_port = 0;
};

} // namespace tramline::testing

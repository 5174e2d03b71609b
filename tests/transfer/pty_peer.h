// The instrument on the other end of the line: a pseudo-terminal pair
// whose slave side the transfer opens as its port, while the test plays
// the instrument on the master side in a thread. Every read has a
// deadline, so that no test can hang.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <poll.h>
#include <pty.h>
#include <string>
#include <termios.h>
#include <thread>
#include <unistd.h>

namespace tramline::test {

using std::chrono::milliseconds;

class PtyPeer {
public:
    PtyPeer() {
        char name[256] = {};
        if (::openpty(&m_master, &m_slave, name, nullptr, nullptr) != 0)
            ADD_FAILURE() << "openpty failed";
        m_device = name;
        // Raw from the start: no echo or line editing before the port is set.
        termios t{};
        ::tcgetattr(m_slave, &t);
        ::cfmakeraw(&t);
        ::tcsetattr(m_slave, TCSANOW, &t);
        // The master raw too: a canonical master drops what overflows its
        // line, so a peer that stops reading would never fill the line.
        ::tcgetattr(m_master, &t);
        ::cfmakeraw(&t);
        ::tcsetattr(m_master, TCSANOW, &t);
    }
    ~PtyPeer() {
        join();
        hangUp();
        if (m_slave >= 0)
            ::close(m_slave);
    }
    PtyPeer(const PtyPeer &) = delete;
    PtyPeer &operator=(const PtyPeer &) = delete;

    const std::string &device() const { return m_device; }
    int master() const { return m_master; }
    int slave() const { return m_slave; }

    /// Runs `script` on the master side in a thread.
    void play(std::function<void(PtyPeer &)> script) {
        m_thread = std::thread([this, script = std::move(script)] { script(*this); });
    }
    void join() {
        if (m_thread.joinable())
            m_thread.join();
    }

    /// Writes `bytes` one byte a write, sleeping `pause` after every
    /// `every` bytes (an instrument's slow line).
    void send(const std::string &bytes, std::size_t every = 0, milliseconds pause = {}) {
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            if (::write(m_master, &bytes[i], 1) != 1)
                return;
            if (every && (i + 1) % every == 0)
                std::this_thread::sleep_for(pause);
        }
    }
    void sleep(milliseconds pause) { std::this_thread::sleep_for(pause); }

    /// Reads what arrives until `quiet` passes without a byte, or `limit`.
    std::string receive(milliseconds quiet, milliseconds limit = milliseconds(20000)) {
        std::string got;
        const auto end = std::chrono::steady_clock::now() + limit;
        while (std::chrono::steady_clock::now() < end) {
            pollfd p{m_master, POLLIN, 0};
            if (::poll(&p, 1, int(quiet.count())) <= 0)
                break;
            char buffer[512];
            const ssize_t n = ::read(m_master, buffer, sizeof buffer);
            if (n <= 0)
                break;
            got.append(buffer, std::size_t(n));
        }
        return got;
    }

    /// Closes the master side: the port sees the line hang up.
    void hangUp() {
        if (m_master >= 0)
            ::close(m_master);
        m_master = -1;
    }

private:
    int m_master = -1;
    int m_slave = -1;
    std::string m_device;
    std::thread m_thread;
};

/// Sets how many milliseconds a protocol second lasts, for one test.
class ProtocolPace {
public:
    explicit ProtocolPace(int msPerSecond) {
        ::setenv("TRAMLINE_TRANSFER_MS_PER_SECOND", std::to_string(msPerSecond).c_str(), 1);
    }
    ~ProtocolPace() { ::unsetenv("TRAMLINE_TRANSFER_MS_PER_SECOND"); }
};

} // namespace tramline::test

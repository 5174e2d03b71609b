// DTR and RTS are switched on for instruments that wait for them; ports
// without modem lines (pseudo-terminals, some adapters) refuse that, which
// is harmless, so those failures do not refuse the port. XON and XOFF are
// set as the line's start and stop characters, but software flow control
// stays off: downloads are binary and may carry bytes 17 and 19.
#include "transfer/port_device.h"

#include "transfer/port.h"

#include <libserialport.h>

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace tramline::transfer {

namespace {

// Another program holding the port shows as a failed lock or EBUSY.
int openFailureStatus(int error) {
    return error == EBUSY || error == EWOULDBLOCK ? kBusy : kNoSerialIo;
}

class SerialportDevice : public PortDevice {
public:
    explicit SerialportDevice(sp_port *port) : m_port(port) {}
    ~SerialportDevice() override {
        sp_close(m_port);
        sp_free_port(m_port);
    }
    int write(const char *bytes, std::size_t count) override {
        const sp_return r = sp_nonblocking_write(m_port, bytes, count);
        return r < 0 ? kNoSerialIo : int(r);
    }
    int read(char *buffer, std::size_t capacity, int waitMs) override {
        const sp_return r = waitMs > 0
                                ? sp_blocking_read_next(m_port, buffer, capacity, unsigned(waitMs))
                                : sp_nonblocking_read(m_port, buffer, capacity);
        return r < 0 ? kNoSerialIo : int(r);
    }

private:
    sp_port *m_port;
};

class TtyDevice : public PortDevice {
public:
    explicit TtyDevice(int fd) : m_fd(fd) {}
    ~TtyDevice() override { ::close(m_fd); }
    int write(const char *bytes, std::size_t count) override {
        const ssize_t n = ::write(m_fd, bytes, count);
        if (n >= 0)
            return int(n);
        return errno == EAGAIN || errno == EINTR ? 0 : kNoSerialIo;
    }
    int read(char *buffer, std::size_t capacity, int waitMs) override {
        pollfd p{m_fd, POLLIN, 0};
        const int ready = ::poll(&p, 1, waitMs);
        if (ready <= 0)
            return ready < 0 && errno != EINTR ? kNoSerialIo : 0;
        const ssize_t n = ::read(m_fd, buffer, capacity);
        if (n > 0)
            return int(n);
        if (n < 0 && (errno == EAGAIN || errno == EINTR))
            return 0;
        return kNoSerialIo; // end of file or EIO: the peer hung up
    }

private:
    int m_fd;
};

speed_t ttySpeed(int baud) {
    static constexpr std::pair<int, speed_t> kSpeeds[] = {
        {300, B300},   {600, B600},     {1200, B1200},   {2400, B2400},   {4800, B4800},
        {9600, B9600}, {19200, B19200}, {38400, B38400}, {57600, B57600}, {115200, B115200}};
    for (const auto &[rate, speed] : kSpeeds)
        if (rate == baud)
            return speed;
    return B0;
}

std::unique_ptr<PortDevice> openTty(const std::string &device, const LineSettings &s, int &status) {
    const int fd = ::open(device.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        status = openFailureStatus(errno);
        return nullptr;
    }
    termios t{};
    const speed_t speed = ttySpeed(s.baud);
    if (::flock(fd, LOCK_EX | LOCK_NB) != 0 || !::isatty(fd) || ::tcgetattr(fd, &t) != 0 ||
        speed == B0) {
        status = errno == EWOULDBLOCK ? kBusy : speed == B0 ? kBadBaud : kNoSerialIo;
        ::close(fd);
        return nullptr;
    }
    ::cfmakeraw(&t);
    ::cfsetispeed(&t, speed);
    ::cfsetospeed(&t, speed);
    t.c_cflag &= ~tcflag_t(CSIZE | PARENB | PARODD | CMSPAR | CSTOPB | CRTSCTS);
    t.c_cflag |= CS8 | CLOCAL | CREAD;
    if (s.parity != 'N')
        t.c_cflag |= PARENB;
    if (s.parity == 'O' || s.parity == 'M')
        t.c_cflag |= PARODD;
    if (s.parity == 'M' || s.parity == 'S')
        t.c_cflag |= CMSPAR;
    if (s.stopBits == 2)
        t.c_cflag |= CSTOPB;
    t.c_iflag &= ~tcflag_t(INPCK | IXON | IXOFF | IXANY);
    t.c_cc[VSTART] = 17;
    t.c_cc[VSTOP] = 19;
    t.c_cc[VMIN] = 0;
    t.c_cc[VTIME] = 0;
    if (::tcsetattr(fd, TCSANOW, &t) != 0) {
        status = kNoSerialIo;
        ::close(fd);
        return nullptr;
    }
    int lines = TIOCM_DTR | TIOCM_RTS;
    (void)::ioctl(fd, TIOCMBIS, &lines); // no modem lines on a pseudo-terminal
    return std::make_unique<TtyDevice>(fd);
}

std::unique_ptr<PortDevice> openSerialport(sp_port *port, const LineSettings &s, int &status) {
    if (sp_open(port, SP_MODE_READ_WRITE) != SP_OK) {
        status = openFailureStatus(sp_last_error_code());
        sp_free_port(port);
        return nullptr;
    }
    auto device = std::make_unique<SerialportDevice>(port);
    int fd = -1;
    if (sp_get_port_handle(port, &fd) == SP_OK && ::flock(fd, LOCK_EX | LOCK_NB) != 0) {
        status = kBusy;
        return nullptr;
    }
    static constexpr std::pair<char, sp_parity> kParities[] = {{'N', SP_PARITY_NONE},
                                                               {'O', SP_PARITY_ODD},
                                                               {'E', SP_PARITY_EVEN},
                                                               {'M', SP_PARITY_MARK},
                                                               {'S', SP_PARITY_SPACE}};
    sp_parity parity = SP_PARITY_NONE;
    for (const auto &[letter, value] : kParities)
        if (letter == s.parity)
            parity = value;
    if (sp_set_baudrate(port, s.baud) != SP_OK) {
        status = kBadBaud;
        return nullptr;
    }
    if (sp_set_bits(port, s.dataBits) != SP_OK || sp_set_parity(port, parity) != SP_OK ||
        sp_set_stopbits(port, s.stopBits) != SP_OK ||
        sp_set_flowcontrol(port, SP_FLOWCONTROL_NONE) != SP_OK) {
        status = kNoSerialIo;
        return nullptr;
    }
    // Ports without modem lines refuse these; that does not matter.
    (void)sp_set_dtr(port, SP_DTR_ON);
    (void)sp_set_rts(port, SP_RTS_ON);
    return device;
}

} // namespace

std::unique_ptr<PortDevice> openPortDevice(const std::string &device, const LineSettings &settings,
                                           int &status) {
    sp_port *port = nullptr;
    if (sp_get_port_by_name(device.c_str(), &port) == SP_OK)
        return openSerialport(port, settings, status);
    if (::access(device.c_str(), F_OK) != 0) {
        status = kNoSerialIo;
        return nullptr;
    }
    return openTty(device, settings, status);
}

} // namespace tramline::transfer

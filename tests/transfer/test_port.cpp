// The port object against a pseudo-terminal peer: line settings and their
// status codes, writes with each terminator, reads of bytes and lines with
// their deadlines, cancel, a port that is missing, busy or hung up.
#include "../support/test_support.h"
#include "pty_peer.h"
#include "transfer/port.h"
#include "transfer/port_list.h"
#include "transfer/port_settings.h"

#include <fstream>

namespace tramline::test {
namespace {

using namespace transfer;

struct LineCase {
    int baud;
    char parity;
    int stopBits;
    int status;
};

TEST(SerialPortOpen, LineSettingsGiveTheirStatusCodes) {
    const LineCase cases[] = {
        {115201, 'N', 1, kBadBaud},
        {115200, 'N', 1, 0},
        {9600, 'X', 1, kBadParity},
        {9600, 'n', 1, kBadParity},
        {9600, '\0', 1, kBadParity},
        {9600, 'M', 2, 0},
        {9600, 'S', 1, 0},
        {9600, 'O', 1, 0},
        {9600, 'E', 1, 0},
        {9600, 'N', 0, kBadStopBits},
        {9600, 'N', 3, kBadStopBits},
        {0, 'N', 1, kBadBaud},
    };
    for (const auto &c : cases) {
        PtyPeer peer;
        const auto port = SerialPort::open(peer.device(), {c.baud, c.parity, 8, c.stopBits});
        ASSERT_TRUE(port);
        EXPECT_EQ(port->status(), c.status) << c.baud << ' ' << c.parity << ' ' << c.stopBits;
    }
}

TEST(SerialPortOpen, MissingBusyAndUnnamedPorts) {
    EXPECT_FALSE(SerialPort::open("", {}));
    EXPECT_EQ(SerialPort::open("/dev/tramline-no-such-port", {})->status(), kNoSerialIo);
    ScratchFolder folder;
    spit(folder.path / "plain", "not a terminal");
    EXPECT_EQ(SerialPort::open((folder.path / "plain").string(), {})->status(), kNoSerialIo);

    PtyPeer peer;
    auto first = SerialPort::open(peer.device(), {});
    ASSERT_EQ(first->status(), 0);
    EXPECT_EQ(SerialPort::open(peer.device(), {})->status(), kBusy);
    first.reset(); // closed: free for the next transfer
    EXPECT_EQ(SerialPort::open(peer.device(), {})->status(), 0);
}

TEST(SerialPortWrite, TerminatorsAreAppendedOrRefused) {
    const struct {
        int terminator;
        int status;
        std::string bytes;
    } cases[] = {
        {kCrLf, 0, "AB\r\n"},   {kNoTerminator, 0, "AB"}, {0, 0, std::string("AB\0", 3)},
        {255, 0, "AB\xff"},     {'\n', 0, "AB\n"},        {256, kBadArgument, ""},
        {-3, kBadArgument, ""},
    };
    for (const auto &c : cases) {
        PtyPeer peer;
        auto port = SerialPort::open(peer.device(), {});
        ASSERT_EQ(port->status(), 0);
        EXPECT_EQ(port->writeString("AB", c.terminator, 1000), c.status) << c.terminator;
        EXPECT_EQ(peer.receive(milliseconds(100)), c.bytes) << c.terminator;
    }
}

TEST(SerialPortRead, LinesEndAtTheirTerminatorAndAreCutAtTheBuffer) {
    const struct {
        std::string sent;
        int terminator;
        std::size_t buffer;
        int status;
        std::string line;
    } cases[] = {
        {"abc\r\nrest", kCrLf, 64, 0, "abc"},
        {"a\rb\r\n", kCrLf, 64, 0, "a\rb"}, // a lone CR stays in the text
        {"a\n\r\n", kCrLf, 64, 0, "a\n"},   // a lone LF too
        {"abcdef\r\n", kCrLf, 4, 0, "abc"}, // cut: three bytes and the zero
        {"x;y", ';', 64, 0, "x"},
        {"x\r\n", ';', 64, kTimedOut, "x\r\n"}, // no terminator before the deadline
        {"abc", kCrLf, 1, kBadArgument, ""},
        {"abc", 256, 64, kBadArgument, ""},
    };
    for (const auto &c : cases) {
        PtyPeer peer;
        auto port = SerialPort::open(peer.device(), {});
        ASSERT_EQ(port->status(), 0);
        peer.send(c.sent);
        std::string line;
        EXPECT_EQ(port->readLine(line, c.buffer, c.terminator, 200), c.status) << c.sent;
        EXPECT_EQ(line, c.line) << c.sent;
    }
}

TEST(SerialPortRead, BytesTimeOutCancelAndSeeAHangUp) {
    PtyPeer peer;
    auto port = SerialPort::open(peer.device(), {});
    ASSERT_EQ(port->status(), 0);
    EXPECT_EQ(port->readByte(), kTimedOut);
    EXPECT_EQ(port->readByte(50), kTimedOut);
    peer.send("\xfe");
    EXPECT_EQ(port->readByte(1000), 0xfe) << "bytes above 127 come back unsigned";

    int idles = 0;
    port->setIdleHook([&idles] { return ++idles < 3; });
    EXPECT_EQ(port->readByte(kForever), kCancelled) << "the idle hook ends even an endless wait";
    EXPECT_EQ(port->pause(kForever), kCancelled);
    port->setIdleHook({});

    peer.hangUp();
    const int hungUp = port->readByte(2000);
    EXPECT_LT(hungUp, 0);
    EXPECT_NE(hungUp, kTimedOut) << "a peer that hangs up is not a silent one";
    EXPECT_EQ(port->writeString("x", kCrLf, 100), hungUp) << "nothing more goes out";
}

TEST(SerialPortWrite, ALineThatTakesNothingTimesOut) {
    PtyPeer peer;
    auto port = SerialPort::open(peer.device(), {});
    ASSERT_EQ(port->status(), 0);
    // The peer never reads: the line's buffer fills and the write stops at
    // its deadline rather than waiting for ever.
    const std::string block(4096, 'x');
    int status = 0;
    for (int i = 0; i < 200 && status == 0; ++i)
        status = port->writeString(block, kNoTerminator, 100);
    EXPECT_EQ(status, kTimedOut);
}

TEST(PortSettings, ChoicesReadAndWriteBesideOtherSettings) {
    ScratchFolder folder;
    const auto ini = folder.path / "tramline.ini";
    spit(ini, "tmpdir=/work/\ncom_port=3\ncom_parity=3\ncom_baud=6\nlang_mode=1\n"
              "com_baud=9\ncom_parity=x\n");
    PortSettings s;
    ASSERT_TRUE(readPortSettings(ini, s));
    EXPECT_EQ(s.port, 3);
    EXPECT_EQ(s.parity, 3) << "a value that does not parse changes nothing";
    EXPECT_EQ(s.baud, 6) << "a choice out of range changes nothing";
    EXPECT_EQ(lineSettings(s).baud, 38400);
    EXPECT_EQ(lineSettings(s).parity, 'E');
    EXPECT_EQ(lineSettings(s).stopBits, 1);

    s.port = 2;
    s.baud = 1;
    s.device = "/dev/ttyUSB7";
    ASSERT_TRUE(savePortSettings(ini, s));
    EXPECT_EQ(slurp(ini), "tmpdir=/work/\nlang_mode=1\ncom_port=2\ncom_parity=3\ncom_baud=1\n"
                          "com_device=/dev/ttyUSB7\n");
    PortSettings back;
    ASSERT_TRUE(readPortSettings(ini, back));
    EXPECT_EQ(back.baud, 1);
    EXPECT_EQ(portDevice(back), "/dev/ttyUSB7");

    const std::pair<int, int> bauds[] = {{1, 1200}, {2, 2400},  {3, 4800},
                                         {4, 9600}, {5, 19200}, {6, 38400}};
    for (const auto &[choice, baud] : bauds) {
        EXPECT_EQ(baudOfChoice(choice), baud);
        EXPECT_EQ(choiceOfBaud(baud), choice);
    }
    EXPECT_EQ(parityOfChoice(2), 'O');
    EXPECT_EQ(choiceOfParity('o'), 2);
}

TEST(PortList, ComNamesMapOntoPortsAndPathsStay) {
    EXPECT_EQ(resolvePortName("/dev/pts/9"), "/dev/pts/9");
    EXPECT_EQ(resolvePortName("com2"), comPortDevice(2));
    EXPECT_EQ(resolvePortName("COM5"), "COM5") << "only COM1 to COM4 are choices";
    for (const auto &port : listPorts())
        EXPECT_FALSE(port.device.empty());
}

} // namespace
} // namespace tramline::test

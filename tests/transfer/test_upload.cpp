// Uploads read back by a small receiver on the pseudo-terminal: every
// frame's checksum and sequence digit are checked here independently of
// the sender's code; a receiver that stops taking frames, noise from the
// instrument, and the line-by-line uploads.
#include "../support/test_support.h"
#include "base/format.h"
#include "convert/sdr_import.h"
#include "convert/source_lines.h"
#include "crd/coordinate_file.h"
#include "pty_peer.h"
#include "transfer/framed_upload.h"
#include "transfer/nikon.h"
#include "transfer/point_upload.h"
#include "transfer/raw_upload.h"

#include <fcntl.h>
#include <sstream>

namespace tramline::test {
namespace {

using namespace transfer;

std::filesystem::path makeCrd(const std::filesystem::path &path, int count) {
    crd::CoordinateFile file;
    EXPECT_TRUE(file.open(path));
    for (int i = 1; i <= count; ++i) {
        crd::CrdPoint p;
        p.set(2000.0 + i * 1.25, 1234567.890 + i, 100.5 - i, std::to_string(i), "P");
        EXPECT_TRUE(file.writePoint(p));
    }
    return path;
}

// Fills the line's buffer from the instrument's end so that nothing more
// can be written: the instrument has stopped taking frames.
void jamLine(const PtyPeer &peer) {
    const int fd = ::open(peer.device().c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY);
    ASSERT_GE(fd, 0);
    // The kernel moves bytes on to the reader's side in the background, so
    // room comes back for a while after the first refusal: keep writing
    // until the line has refused for a good while.
    const std::string junk(4096, 'j');
    int refusals = 0;
    for (int i = 0; i < 2000 && refusals < 10; ++i) {
        if (::write(fd, junk.data(), junk.size()) > 0) {
            refusals = 0;
        } else {
            ++refusals;
            std::this_thread::sleep_for(milliseconds(5));
        }
    }
    ::close(fd);
}

struct Frame {
    std::string payload;
    bool checksumOk;
};

// The receiver: frames are STX payload ddd ETX CR LF.
std::vector<Frame> framesOf(const std::string &bytes) {
    std::vector<Frame> frames;
    std::size_t pos = 0;
    while (pos < bytes.size()) {
        const std::size_t end = bytes.find("\x03\r\n", pos);
        if (bytes[pos] != '\x02' || end == std::string::npos || end < pos + 4) {
            ADD_FAILURE() << "not a frame at byte " << pos;
            break;
        }
        Frame f;
        f.payload = bytes.substr(pos + 1, end - pos - 4);
        unsigned sum = 0;
        for (unsigned char c : f.payload)
            sum ^= c;
        f.checksumOk = bytes.substr(end - 3, 3) == format("%03u", sum);
        frames.push_back(f);
        pos = end + 3;
    }
    return frames;
}

TEST(FramedUpload, FieldsFollowTheRules) {
    const std::string header = headerPayload("/data/jobs/site.crd", 3);
    EXPECT_EQ(header, "SITE      +10001.000000100010-200003S");
    EXPECT_EQ(header.size(), 37u);
    EXPECT_EQ(xorChecksum(header), 65);
    EXPECT_EQ(frameOf(header), "\x02" + header + "065\x03");
    EXPECT_EQ(headerPayload("Boundary-North.crd", 12345).substr(0, 10), "BOUNDARY-N");
    EXPECT_EQ(headerPayload("a.crd", 7).substr(32), "0007S");

    const std::pair<double, const char *> digits[] = {
        {1234567.890, "+234567890"}, // leading 1 dropped: the text is 11 long
        {234567.890, "+234567890"},
        {-12.5, "-000012500"},
        {0.0, "+000000000"},
        {12345678.9, "+345678900"},
        {999999.9996, "+000000000"}, // rounds up to 1000000.000, then
                                     // cut
        {0.0004, "+000000000"},
        {-0.0006, "-000000001"},
    };
    for (const auto &[value, expected] : digits)
        EXPECT_EQ(coordinateDigits(value), expected) << value;

    crd::CrdPoint p;
    p.set(2.0, 1.0, 3.0, "12A");
    EXPECT_EQ(pointRecord(p, XCarries::Northing),
              "_+12        _ x+000001000_ y+000002000_ z+000003000");
    EXPECT_EQ(pointRecord(p, XCarries::Easting),
              "_+12        _ x+000002000_ y+000001000_ z+000003000");
}

TEST(FramedUpload, BlocksHoldWholeRecordsAndCountTheirSequence) {
    std::vector<crd::CrdPoint> points(23);
    for (std::size_t i = 0; i < points.size(); ++i)
        points[i].set(1, 2, 3, std::to_string(i + 1));
    const auto blocks = dataBlocks(points, XCarries::Northing);
    ASSERT_EQ(blocks.size(), 12u);
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        EXPECT_EQ(blocks[i].size(), 129u);
        EXPECT_EQ(blocks[i].back(), char('0' + i % 10)) << "block " << i;
    }
    EXPECT_EQ(blocks[10].back(), '0') << "the eleventh block starts the count again";
    EXPECT_EQ(blocks[11].substr(0, 13), "_+23        _");
    EXPECT_EQ(blocks[11].substr(51, 77), std::string(77, ' '));
}

class UploadTest : public ScratchFolderTest {};

TEST_F(UploadTest, FramedPointsArriveWithGoodChecksumsAndSequence) {
    ProtocolPace pace(20);
    const auto crdPath = makeCrd(dir / "site.crd", 23);
    PtyPeer peer;
    std::string received;
    peer.play([&](PtyPeer &p) {
        // Noise from the instrument must not disturb the upload.
        p.send(std::string("\x15\x06garbage\x00\xff", 11));
        received = p.receive(milliseconds(500));
    });
    PointUploadRequest r;
    r.device = peer.device();
    r.coordinateFile = crdPath;
    ScriptedInteraction ui;
    ASSERT_TRUE(uploadPoints(r, ui).ok());
    peer.join();
    EXPECT_EQ(ui.messages.back(), "Upload completed successfully");

    const auto frames = framesOf(received);
    ASSERT_EQ(frames.size(), 13u);
    EXPECT_EQ(frames[0].payload, "SITE      +10001.000000100010-200023S");
    for (std::size_t i = 0; i < frames.size(); ++i) {
        EXPECT_TRUE(frames[i].checksumOk) << "frame " << i;
        if (i > 0) {
            EXPECT_EQ(frames[i].payload.back(), char('0' + (i - 1) % 10)) << "frame " << i;
        }
    }
    // Point 1: northing 1234568.890 loses its leading 1.
    EXPECT_EQ(frames[1].payload.substr(0, 51),
              "_+1         _ x+234568890_ y+002001250_ z+000099500");
}

TEST_F(UploadTest, RangeAndEastingFirst) {
    ProtocolPace pace(20);
    const auto crdPath = makeCrd(dir / "site.crd", 5);
    PtyPeer peer;
    std::string received;
    peer.play([&](PtyPeer &p) { received = p.receive(milliseconds(300)); });
    PointUploadRequest r;
    r.device = peer.device();
    r.coordinateFile = crdPath;
    r.range = "2-3";
    r.xCarries = XCarries::Easting;
    ScriptedInteraction ui;
    ASSERT_TRUE(uploadPoints(r, ui).ok());
    peer.join();
    const auto frames = framesOf(received);
    ASSERT_EQ(frames.size(), 2u);
    EXPECT_EQ(frames[0].payload.substr(32), "0002S");
    EXPECT_EQ(frames[1].payload.substr(0, 102),
              "_+2         _ x+002002500_ y+234569890_ z+000098500"
              "_+3         _ x+002003750_ y+234570890_ z+000097500");
}

TEST_F(UploadTest, AnInstrumentThatStopsTakingFramesEndsTheUpload) {
    ProtocolPace pace(20);
    const auto crdPath = makeCrd(dir / "site.crd", 9);
    const struct {
        int framesTaken;
        const char *message;
    } cases[] = {{-1, "Error sending block 2"}, {2, "Transfer error sending data block"}};
    for (const auto &c : cases) {
        PtyPeer peer;
        if (c.framesTaken < 0)
            jamLine(peer);
        else
            peer.play([&](PtyPeer &p) {
                // Take frames as they come, a few bytes at a time, then jam.
                std::string got;
                const auto end = std::chrono::steady_clock::now() + milliseconds(5000);
                while (std::count(got.begin(), got.end(), '\n') < c.framesTaken &&
                       std::chrono::steady_clock::now() < end)
                    got += p.receive(milliseconds(1), milliseconds(1));
                jamLine(p);
            });
        PointUploadRequest r;
        r.device = peer.device();
        r.coordinateFile = crdPath;
        ScriptedInteraction ui;
        EXPECT_EQ(uploadPoints(r, ui).code, StatusCode::Io);
        peer.join();
        EXPECT_EQ(ui.messages.back(), c.message);
        EXPECT_EQ(SerialPort::open(peer.device(), {})->status(), 0) << "the port was closed";
    }
}

TEST_F(UploadTest, SdrPointsGoOutLineByLineAndReadBack) {
    ProtocolPace pace(20);
    const auto crdPath = makeCrd(dir / "job.crd", 3);
    PtyPeer peer;
    std::string received;
    peer.play([&](PtyPeer &p) { received = p.receive(milliseconds(300)); });
    PointUploadRequest r;
    r.protocol = UploadProtocol::Sdr;
    r.device = peer.device();
    r.coordinateFile = crdPath;
    ScriptedInteraction ui({"Sideshots"});
    ASSERT_TRUE(uploadPoints(r, ui).ok());
    peer.join();
    EXPECT_EQ(received.substr(0, 9), "00NMSDR33");
    EXPECT_EQ(received.find('\n'), received.find("\r\n") + 1) << "every line ends in CR LF";
    EXPECT_EQ(std::count(received.begin(), received.end(), '\n'), 5) << "header, job, 3 points";

    std::istringstream in(received);
    convert::SourceLines lines;
    ASSERT_TRUE(convert::readSourceLines(in, lines).ok());
    convert::ImportOutput out;
    ASSERT_TRUE(convert::importSdr(lines, ui, out).ok());
    ASSERT_EQ(out.points.size(), 3u);
    EXPECT_EQ(out.points[2].name, "3");
    EXPECT_NEAR(out.points[2].northing, 1234570.890, 1e-9);
    EXPECT_NEAR(out.points[2].easting, 2003.75, 1e-9);
}

TEST_F(UploadTest, FailuresBeforeAnyByteGoesOut) {
    PtyPeer peer;
    ScriptedInteraction ui;
    PointUploadRequest r;
    r.device = peer.device();
    r.coordinateFile = dir / "missing.crd";
    EXPECT_FALSE(uploadPoints(r, ui).ok());
    EXPECT_EQ(ui.messages.back(), "Error: failed to read " + (dir / "missing.crd").string());

    r.protocol = UploadProtocol::Gsi;
    r.coordinateFile = makeCrd(dir / "job.crd", 1);
    if (!pointExportFor(UploadProtocol::Gsi)) {
        EXPECT_FALSE(uploadPoints(r, ui).ok());
        EXPECT_EQ(ui.messages.back(), "Error: Leica is not available yet");
    }
    EXPECT_EQ(uploadSdrFile("", peer.device(), {}, ui).code, StatusCode::InvalidInput);
    EXPECT_EQ(ui.messages.back(), "Missing Sokkia File Name");
    EXPECT_EQ(uploadSdrFile(dir / "none.sdr", peer.device(), {}, ui).code, StatusCode::Io);
    EXPECT_EQ(ui.messages.back(), "Error: unable to read file");
    EXPECT_TRUE(peer.receive(milliseconds(50)).empty());
}

TEST_F(UploadTest, RawSdrFileGoesOutLineByLine) {
    ProtocolPace pace(20);
    const auto file = write("job.sdr", "00NMSDR33\n10NMJOB\r\n08KI1");
    PtyPeer peer;
    std::string received;
    peer.play([&](PtyPeer &p) { received = p.receive(milliseconds(300)); });
    ScriptedInteraction ui;
    ASSERT_TRUE(uploadSdrFile(file, peer.device(), {}, ui).ok());
    peer.join();
    EXPECT_EQ(received, "00NMSDR33\r\n10NMJOB\r\n08KI1\r\n");
    EXPECT_EQ(ui.messages.back(), "Upload completed successfully");
    EXPECT_EQ(ui.lastProgress, 3);
}

} // namespace
} // namespace tramline::test

namespace tramline::test {
namespace {

TEST_F(UploadTest, NikonPointFileAndTheMissingLibrary) {
    std::vector<crd::CrdPoint> points(2);
    points[0].set(2.5, 1.25, -3.0, "7", "IP");
    points[1].set(0.0, 1e6, 0.0, "A1");
    EXPECT_EQ(
        transfer::nikonPointLines(points),
        "7,1.25000000,2.50000000,-3.00000000,IP\nA1,1000000.00000000,0.00000000,0.00000000,\n");
    ScriptedInteraction ui;
    EXPECT_TRUE(transfer::writeNikonPointFile(dir / "nikon.txt", points, ui).ok());
    EXPECT_EQ(slurp(dir / "nikon.txt"), transfer::nikonPointLines(points));
    EXPECT_FALSE(transfer::writeNikonPointFile(dir / "no" / "nikon.txt", points, ui).ok());
    EXPECT_EQ(ui.messages.back(), "Error: failed to write " + (dir / "no" / "nikon.txt").string());
    EXPECT_EQ(transfer::runNikonTransfer({}, ui).code, StatusCode::NotSupported);
    EXPECT_EQ(transfer::nikonUnitLetter("Intl Feet"), 'M');
    EXPECT_EQ(transfer::nikonModels().size(), 12u);
}

} // namespace
} // namespace tramline::test

// Downloads against a pseudo-terminal instrument: field samples sent byte
// by byte with pauses come out as a direct import of the same file would;
// the time-out rules, control bytes, cancel, a hang-up and a capture that
// cannot be written.
#include "../support/test_support.h"
#include "convert/import_flow.h"
#include "convert/registry.h"
#include "crd/coordinate_file.h"
#include "pty_peer.h"
#include "transfer/download.h"

#include <algorithm>

namespace tramline::test {
namespace {

using namespace transfer;

std::filesystem::path samplePath(const std::string &relative) {
    return std::filesystem::path(TRAMLINE_SAMPLES_DIR) / relative;
}

bool hasMessage(const ScriptedInteraction &ui, const std::string &text) {
    return std::find(ui.messages.begin(), ui.messages.end(), text) != ui.messages.end();
}

bool hasMessageStarting(const ScriptedInteraction &ui, const std::string &text) {
    return std::any_of(ui.messages.begin(), ui.messages.end(),
                       [&](const std::string &m) { return m.starts_with(text); });
}

std::vector<crd::CrdPoint> pointsOf(const std::filesystem::path &path) {
    crd::CoordinateFile file;
    std::vector<crd::CrdPoint> points;
    if (file.openForReading(path))
        crd::readAllPoints(file, points);
    return points;
}

class DownloadTest : public ScratchFolderTest {
protected:
    DownloadRequest request(Instrument instrument, const PtyPeer &peer) {
        DownloadRequest r;
        r.instrument = instrument;
        r.device = peer.device();
        r.captureFolder = dir;
        return r;
    }
};

struct SampleCase {
    Instrument instrument;
    const char *file;
};

void PrintTo(const SampleCase &c, std::ostream *os) {
    *os << c.file;
}

class SampleDownload : public DownloadTest, public ::testing::WithParamInterface<SampleCase> {};

TEST_P(SampleDownload, GivesWhatADirectImportGives) {
    const SampleCase &c = GetParam();
    const auto sample = samplePath(c.file);
    if (!std::filesystem::exists(sample))
        GTEST_SKIP() << "field sample not found: " << sample;
    const std::string bytes = slurp(sample);
    ProtocolPace pace(200);

    PtyPeer peer;
    peer.play([&](PtyPeer &p) {
        p.sleep(milliseconds(50));
        p.send(bytes, 97, milliseconds(3));
    });
    DownloadRequest r = request(c.instrument, peer);
    r.destination = dir / "rimport.tmp";
    r.coordinateFile = dir / "download.crd";
    ScriptedInteraction ui({"Sideshots"});
    DownloadOutcome outcome;
    const Status status = runDownload(r, ui, outcome);
    peer.join();
    ASSERT_TRUE(status.ok()) << status.message;
    EXPECT_TRUE(hasMessage(ui, "File received"));
    std::string expected = bytes;
    std::erase_if(expected, [](char b) { return b == 2 || b == 3 || b == 4; });
    EXPECT_EQ(slurp(outcome.capture), expected);
    EXPECT_EQ(outcome.received.bytesRead, long(bytes.size()));

    const auto &info = instrumentDownload(c.instrument);
    const auto *entry = convert::findFormat(convert::FormatKind::RawImport, info.importId);
    ASSERT_TRUE(entry);
    if (!entry->built) {
        // Until the converter lands the capture is what the user gets.
        EXPECT_FALSE(outcome.converted);
        EXPECT_TRUE(hasMessageStarting(ui, std::string("The ") + info.name +
                                               " converter is not available yet"));
        return;
    }
    ScriptedInteraction direct({"Sideshots"});
    convert::ImportSummary summary;
    ASSERT_TRUE(convert::runImport(entry->import, {sample, dir / "direct.rw5", dir / "direct.crd"},
                                   direct, summary));
    EXPECT_TRUE(outcome.converted);
    EXPECT_EQ(slurp(dir / "rimport.tmp"), slurp(dir / "direct.rw5"));
    const auto got = pointsOf(dir / "download.crd");
    EXPECT_FALSE(got.empty() && !pointsOf(dir / "direct.crd").empty());
    EXPECT_EQ(got, pointsOf(dir / "direct.crd"));
}

INSTANTIATE_TEST_SUITE_P(
    FieldSamples, SampleDownload,
    ::testing::Values(SampleCase{Instrument::Sokkia, "sdr/20151125.sdr"},
                      SampleCase{Instrument::Sokkia, "sdr/20151130.sdr"},
                      SampleCase{Instrument::Sokkia, "sdr/20151204.sdr"},
                      SampleCase{Instrument::Sokkia, "sdr/20210205-3st.sdr"},
                      SampleCase{Instrument::Sokkia, "sdr/data.sdr"},
                      SampleCase{Instrument::Sokkia, "sdr/example.sdr"},
                      SampleCase{Instrument::Leica, "gsi/GSI16_Cartesian.GSI"},
                      SampleCase{Instrument::Leica, "gsi/RILIEVO.gsi"},
                      SampleCase{Instrument::Leica, "gsi/coords.gsi"},
                      SampleCase{Instrument::Leica, "gsi/leica_gsi16_gurob.gsi"},
                      SampleCase{Instrument::Geodimeter, "geodimeter/DT.job"},
                      SampleCase{Instrument::Geodimeter, "geodimeter/ullo.job"},
                      SampleCase{Instrument::Geodimeter, "geodimeter/BSG-08-11-19.are"}));

TEST_F(DownloadTest, SokkiaCaptureReplacesTheNamedFile) {
    ProtocolPace pace(100);
    PtyPeer peer;
    peer.play([](PtyPeer &p) { p.send("00NMSDR33\r\n10NMJOB\r\n"); });
    DownloadRequest r = request(Instrument::Sokkia, peer);
    r.namedFile = write("job.sdr", "old contents");
    ScriptedInteraction ui;
    DownloadOutcome outcome;
    ASSERT_TRUE(runDownload(r, ui, outcome).ok());
    EXPECT_EQ(outcome.capture, r.namedFile);
    EXPECT_EQ(slurp(r.namedFile), "00NMSDR33\r\n10NMJOB\r\n");
    EXPECT_EQ(ui.lastProgress, 2) << "Receiving Line counts the lines";
}

TEST_F(DownloadTest, ControlBytesNeverReachTheCapture) {
    ProtocolPace pace(100);
    PtyPeer peer;
    const std::string sent("\x02"
                           "A\x01\x05\r\n\x03"
                           "B\x04\x1a\xff\n\x02",
                           13);
    peer.play([&](PtyPeer &p) { p.send(sent); });
    ScriptedInteraction ui;
    DownloadOutcome outcome;
    ASSERT_TRUE(runDownload(request(Instrument::Topcon, peer), ui, outcome).ok());
    EXPECT_EQ(slurp(dir / "download.top"), std::string("A\x01\x05\r\nB\x1a\xff\n", 9));
    EXPECT_EQ(outcome.received.bytesRead, 13);
    EXPECT_EQ(outcome.received.lines, 2);
}

// Pace 200: 2000 ms before the first byte, 200 ms between bytes. The
// pauses sit half a time-out away from either limit.
TEST_F(DownloadTest, OneTimeOutIsForgivenTheSecondEndsTheTransfer) {
    const struct {
        int before, between;
        const char *capture;
    } cases[] = {
        {3000, 0, "ab"}, // first byte after one first-byte time-out
        {0, 300, "ab"},  // one short time-out between bytes
        {0, 500, "a"},   // two in a row: the transfer ended after "a"
    };
    ProtocolPace pace(200);
    for (const auto &c : cases) {
        PtyPeer peer;
        peer.play([&](PtyPeer &p) {
            p.sleep(milliseconds(c.before));
            p.send("a");
            p.sleep(milliseconds(c.between));
            p.send("b");
        });
        ScriptedInteraction ui;
        DownloadOutcome outcome;
        EXPECT_TRUE(runDownload(request(Instrument::Geodimeter, peer), ui, outcome).ok());
        peer.join();
        EXPECT_EQ(slurp(dir / "download.geo"), c.capture) << c.before << '/' << c.between;
    }
}

TEST_F(DownloadTest, SilentInstrumentTimesOut) {
    ProtocolPace pace(50);
    const struct {
        Instrument instrument;
        const char *message;
    } cases[] = {{Instrument::Topcon, "Error: timeout waiting for Topcon"},
                 {Instrument::Geodimeter, "Error: timeout waiting for Geodimeter"},
                 {Instrument::Sokkia, "Error: timeout waiting for Sokkia"}};
    for (const auto &c : cases) {
        PtyPeer peer;
        ScriptedInteraction ui;
        DownloadOutcome outcome;
        DownloadRequest r = request(c.instrument, peer);
        r.destination = dir / "rimport.tmp";
        EXPECT_FALSE(runDownload(r, ui, outcome).ok());
        EXPECT_EQ(ui.messages, std::vector<std::string>{c.message});
        EXPECT_FALSE(std::filesystem::exists(r.destination)) << "nothing converted";
        EXPECT_EQ(SerialPort::open(peer.device(), {})->status(), 0) << "the port was closed";
    }
}

TEST_F(DownloadTest, FailuresSayWhyAndCloseThePort) {
    ProtocolPace pace(100);
    {
        ScriptedInteraction ui;
        DownloadOutcome outcome;
        DownloadRequest r;
        r.captureFolder = dir;
        EXPECT_FALSE(runDownload(r, ui, outcome).ok());
        EXPECT_EQ(ui.messages, std::vector<std::string>{"Error: Null port"});
        r.device = "/dev/tramline-no-such-port";
        EXPECT_FALSE(runDownload(r, ui, outcome).ok());
        EXPECT_EQ(ui.messages.back(), "Failed to open the port. Status = -24");
        r.device = "/dev/null";
        r.line.parity = 'Q';
        EXPECT_FALSE(runDownload(r, ui, outcome).ok());
        EXPECT_EQ(ui.messages.back(), "Failed to open the port. Status = -26");
    }
    {
        PtyPeer peer;
        DownloadRequest r = request(Instrument::Sokkia, peer);
        r.captureFolder = dir / "missing";
        ScriptedInteraction ui;
        DownloadOutcome outcome;
        EXPECT_FALSE(runDownload(r, ui, outcome).ok());
        EXPECT_EQ(ui.messages.back(),
                  "Error: unable to write " + (dir / "missing" / "download.sdr").string());
        EXPECT_EQ(SerialPort::open(peer.device(), {})->status(), 0) << "the port was closed";
    }
    {
        PtyPeer peer;
        ScriptedInteraction ui;
        ui.cancelAfterIdles = 5;
        DownloadOutcome outcome;
        const Status s = runDownload(request(Instrument::Leica, peer), ui, outcome);
        EXPECT_EQ(s.code, StatusCode::Cancelled);
        EXPECT_EQ(ui.messages.back(), "Function cancelled at user request");
        EXPECT_EQ(SerialPort::open(peer.device(), {})->status(), 0) << "the port was closed";
    }
}

TEST_F(DownloadTest, PeerHangingUpKeepsTheCaptureUnconverted) {
    ProtocolPace pace(200);
    PtyPeer peer;
    peer.play([](PtyPeer &p) {
        p.send("00NMSDR33\r\n08KI1 ");
        p.sleep(milliseconds(50));
        p.hangUp();
    });
    DownloadRequest r = request(Instrument::Sokkia, peer);
    r.destination = dir / "rimport.tmp";
    ScriptedInteraction ui;
    DownloadOutcome outcome;
    EXPECT_EQ(runDownload(r, ui, outcome).code, StatusCode::Io);
    peer.join();
    EXPECT_TRUE(hasMessageStarting(ui, "Error: the line failed after 17 bytes"));
    EXPECT_EQ(slurp(dir / "download.sdr"), "00NMSDR33\r\n08KI1 ");
    EXPECT_FALSE(std::filesystem::exists(r.destination));
}

} // namespace
} // namespace tramline::test

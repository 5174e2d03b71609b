// Tools > Data Transfer against a pseudo-terminal instrument: a download
// into the grids, a framed upload read back frame by frame, Cancel in the
// progress window, the port dialog and where its settings are kept.
#include "../transfer/pty_peer.h"
#include "app/command_ids.h"
#include "app/coordinate_grid_model.h"
#include "app/port_dialog.h"
#include "app/raw_grid_model.h"
#include "app_test_support.h"
#include "base/text.h"
#include "convert/import_flow.h"
#include "convert/registry.h"
#include "crd/coordinate_file.h"
#include "transfer/port.h"

#include <QAction>
#include <QProgressDialog>

using namespace tramline;
using namespace tramline::app;
using tramline::test::milliseconds;
using tramline::test::slurp;

namespace {

const std::string kDownload = "Download (Receive From Collector)";
const std::string kUpload = "Upload (Send CRD File To Collector)";

bool hasMessage(const ScriptedInteraction &ui, const std::string &text) {
    return std::find(ui.messages.begin(), ui.messages.end(), text) != ui.messages.end();
}

class DataTransferTest : public tramline::test::ShellTest {
protected:
    // The port dialog's settings, as if the user had chosen the peer.
    void usePort(const std::string &device) {
        transfer::PortSettings port;
        port.device = device;
        ASSERT_TRUE(transfer::savePortSettings(settingsFile(), port));
    }
};

TEST_F(DataTransferTest, SokkiaDownloadLandsInTheGrids) {
    const auto sample = std::filesystem::path(TRAMLINE_SAMPLES_DIR) / "sdr/20151125.sdr";
    if (!std::filesystem::exists(sample))
        GTEST_SKIP() << "field samples not found at " << sample;
    const std::string bytes = slurp(sample);
    tramline::test::ProtocolPace pace(200);
    tramline::test::PtyPeer peer;
    auto d = start();
    const auto named = dir / "job.sdr";
    // The port is chosen in the port dialog, by typing the device's path.
    shell.forms = {"=>Port Settings", "COM1|" + peer.device() + "|9600|None=>OK",
                   named.string() + "|" + kDownload + "=>OK"};
    shell.reply("Sideshots");
    peer.play([&](tramline::test::PtyPeer &p) {
        p.sleep(milliseconds(100));
        p.send(bytes, 97, milliseconds(3));
    });
    d->dispatch(cmd::TransferSokkiaSdr);
    peer.join();
    EXPECT_EQ(shell.asked.at(0), "SDR/Sokkia Data Collection");
    EXPECT_EQ(shell.asked.at(1), "Port Settings");
    EXPECT_TRUE(hasMessage(shell, "File received"));
    EXPECT_EQ(slurp(named), bytes) << "the named file holds what was received";

    ScriptedInteraction direct({"Sideshots"});
    convert::ImportSummary summary;
    const auto *entry = convert::findFormat(convert::FormatKind::RawImport, "sdr");
    ASSERT_TRUE(convert::runImport(entry->import, {sample, dir / "direct.rw5", dir / "direct.crd"},
                                   direct, summary));
    const std::string rw5 = slurp(dir / "direct.rw5");
    EXPECT_EQ(d->rawModel()->rowCount(), long(std::count(rw5.begin(), rw5.end(), '\n')));
    crd::CoordinateFile points;
    std::vector<crd::CrdPoint> stored;
    ASSERT_TRUE(points.openForReading(dir / "direct.crd") && crd::readAllPoints(points, stored));
    EXPECT_FALSE(stored.empty());
    EXPECT_EQ(d->coordinateModel()->rowCount(), long(stored.size()));
    EXPECT_TRUE(d->rawDocument().modified());
    EXPECT_NE(shell.messages.back().find(convert::summaryLine(summary)), std::string::npos)
        << shell.messages.back();
}

// The frames a receiver reads: every checksum is the exclusive-or of its
// payload, every data block ends in its sequence digit.
TEST_F(DataTransferTest, TopconUploadSendsCheckedFrames) {
    tramline::test::ProtocolPace pace(100);
    tramline::test::PtyPeer peer;
    auto d = start();
    usePort(peer.device());
    crd::CrdPoint p;
    for (int i = 1; i <= 12; ++i) {
        p.set(5000.0 + i, 1234567.890 + i, 100.0, std::to_string(i), "IP");
        ASSERT_TRUE(d->workingFile().writePoint(p));
    }
    shell.forms = {"|" + kUpload + "=>OK", "2-11=>OK"};
    std::string received;
    peer.play([&](tramline::test::PtyPeer &line) { received = line.receive(milliseconds(1500)); });
    d->dispatch(cmd::TransferTopcon);
    peer.join();
    EXPECT_EQ(shell.asked.back(), "Points To Transfer");
    EXPECT_EQ(shell.messages.back(), "Upload completed successfully");

    std::vector<std::string> payloads;
    for (std::string_view frame : split(received, '\n')) {
        if (frame.empty())
            continue;
        ASSERT_GE(frame.size(), 6u);
        ASSERT_EQ(frame.front(), '\x02');
        ASSERT_TRUE(frame.ends_with("\x03\r")) << frame;
        const std::string payload(frame.substr(1, frame.size() - 6));
        int sum = 0;
        for (unsigned char b : payload)
            sum ^= b;
        EXPECT_EQ(std::stoi(std::string(frame.substr(frame.size() - 5, 3))), sum) << payload;
        payloads.push_back(payload);
    }
    ASSERT_EQ(payloads.size(), 1u + 5u); // the header, then 10 records of 51, two a block
    EXPECT_EQ(payloads[0], "TRAMLINETM+10001.000000100010-200010S");
    for (std::size_t i = 1; i < payloads.size(); ++i)
        EXPECT_EQ(payloads[i].back(), char('0' + (i - 1))) << i;
    EXPECT_TRUE(payloads[1].starts_with("_+2         _ x+234569890_ y+005002000_ z+000100000"))
        << payloads[1];
}

TEST_F(DataTransferTest, CancelStopsTheDownloadAndFreesThePort) {
    tramline::test::ProtocolPace pace(200);
    tramline::test::PtyPeer peer;
    auto d = start();
    usePort(peer.device());
    shell.forms = {"|" + kDownload + "=>OK"};
    peer.play([](tramline::test::PtyPeer &p) {
        for (int i = 0; i < 60; ++i) {
            p.send("08KI" + std::to_string(i) + "\r\n");
            p.sleep(milliseconds(30));
        }
    });
    // The user presses Cancel once lines are coming in.
    QTimer cancel;
    cancel.setInterval(10);
    QObject::connect(&cancel, &QTimer::timeout, [&] {
        auto *progress = d->findChild<QProgressDialog *>("transferProgress");
        if (progress && progress->labelText().startsWith("Receiving Line: 3"))
            progress->cancel();
    });
    cancel.start();
    d->dispatch(cmd::TransferSokkiaSdr);
    cancel.stop();
    peer.join();
    EXPECT_EQ(shell.messages.back(), "Function cancelled at user request");
    EXPECT_FALSE(hasMessage(shell, "File received"));
    EXPECT_EQ(d->rawModel()->rowCount(), 0);
    EXPECT_EQ(transfer::SerialPort::open(peer.device(), {})->status(), 0) << "the port was closed";
    auto *progress = d->findChild<QProgressDialog *>("transferProgress");
    EXPECT_TRUE(!progress || !progress->isVisible());
}

TEST(PortDialogFields, OfferTheOldChoicesTheListedPortsAndATypedPath) {
    const std::vector<transfer::PortInfo> listed = {{"/dev/ttyUSB0", "FTDI"}};
    transfer::PortSettings settings;
    settings.port = 3;
    settings.baud = 5;
    settings.parity = 2;
    auto fields = portDialogFields(settings, listed);
    ASSERT_EQ(fields.size(), 4u);
    EXPECT_EQ(fields[0].caption, "Port");
    EXPECT_EQ(fields[0].value, "COM3");
    EXPECT_EQ(fields[0].choices,
              (std::vector<std::string>{"COM1", "COM2", "COM3", "COM4", "/dev/ttyUSB0"}));
    EXPECT_EQ(fields[1].caption, "Device Path:");
    EXPECT_EQ(fields[2].value, "19200");
    EXPECT_EQ(fields[2].choices,
              (std::vector<std::string>{"1200", "2400", "4800", "9600", "19200", "38400"}));
    EXPECT_EQ(fields[3].value, "Odd");
    EXPECT_EQ(fields[3].choices, (std::vector<std::string>{"None", "Odd", "Even"}));

    // A path typed once is offered (and chosen) the next time.
    settings.device = "/dev/pts/77";
    fields = portDialogFields(settings, listed);
    EXPECT_EQ(fields[0].value, "/dev/pts/77");
    EXPECT_EQ(fields[0].choices.back(), "/dev/pts/77");
    settings.device = "/dev/ttyUSB0";
    EXPECT_EQ(portDialogFields(settings, listed)[0].choices.size(), 5u) << "listed once";
}

TEST(PortDialogFields, GiveTheSettingsTheUserChose) {
    struct Case {
        const char *port, *typed, *baud, *parity;
        int wantPort, wantBaud, wantParity;
        const char *wantDevice;
    };
    const Case cases[] = {
        {"COM2", "", "2400", "Even", 2, 2, 3, ""},
        {"COM4", " /dev/ttyACM1 ", "38400", "None", 1, 6, 1, "/dev/ttyACM1"}, // typed wins
        {"/dev/ttyUSB0", "", "1200", "Odd", 1, 1, 2, "/dev/ttyUSB0"},
        {"COM1", "", "115200", "Odd", 1, 4, 2, ""}, // a baud the table lacks keeps the old one
    };
    for (const Case &c : cases) {
        transfer::PortSettings old;
        old.device = "/dev/old";
        auto fields = portDialogFields(old, {});
        fields[0].value = c.port;
        fields[1].value = c.typed;
        fields[2].value = c.baud;
        fields[3].value = c.parity;
        const transfer::PortSettings got = portSettingsFrom(fields, old);
        EXPECT_EQ(got.port, c.wantPort) << c.port;
        EXPECT_EQ(got.baud, c.wantBaud) << c.baud;
        EXPECT_EQ(got.parity, c.wantParity) << c.parity;
        EXPECT_EQ(got.device, c.wantDevice) << c.port << c.typed;
    }
}

// The port dialog writes its keys at once; the shell's rewrite at exit
// keeps them.
TEST_F(DataTransferTest, PortSettingsOutliveTheExit) {
    auto d = start();
    shell.forms = {"=>Port Settings", "COM2|/dev/ttyFAKE9|19200|Even=>OK", "=>Cancel"};
    d->dispatch(cmd::TransferGeodimeter);
    ASSERT_TRUE(d->exitProgram());
    transfer::PortSettings back;
    ASSERT_TRUE(transfer::readPortSettings(settingsFile(), back));
    EXPECT_EQ(back.device, "/dev/ttyFAKE9");
    EXPECT_EQ(back.baud, 5);
    EXPECT_EQ(back.parity, 3);
    const std::string text = slurp(settingsFile());
    EXPECT_TRUE(text.starts_with("tmpdir=")) << text;
    EXPECT_EQ(text.find("com_baud="), text.rfind("com_baud=")) << "written once: " << text;
}

TEST_F(DataTransferTest, EveryInstrumentButQuillanRunsHere) {
    auto d = start();
    for (int id : {cmd::TransferSokkiaSdr, cmd::TransferGeodimeter, cmd::TransferLeica,
                   cmd::TransferNikon, cmd::TransferSmi, cmd::TransferTds, cmd::TransferTopcon}) {
        EXPECT_EQ(d->unavailableReason(id), "") << id;
        ASSERT_FALSE(d->actions(id).isEmpty()) << id;
        EXPECT_TRUE(d->actions(id).front()->isEnabled()) << id;
    }
    // The TDS collector only takes uploads: its dialog offers nothing else.
    shell.forms = {"|" + kDownload + "=>OK", "=>Cancel"};
    d->dispatch(cmd::TransferTds);
    EXPECT_EQ(shell.asked, (std::vector<std::string>{"TDS Data Collection", "Points To Transfer"}));
}

TEST_F(DataTransferTest, NikonUploadWritesThePointFileAndNamesTheLibrary) {
    auto d = start();
    crd::CrdPoint p;
    p.set(5000.0, 6000.0, 100.5, "1", "IRON ROD");
    ASSERT_TRUE(d->workingFile().writePoint(p));
    shell.forms = {kUpload + "|Metric|Azimuth|DTM-310=>OK"};
    d->dispatch(cmd::TransferNikon);
    EXPECT_EQ(shell.asked.at(0), "Nikon Data Collection");
    EXPECT_EQ(slurp(d->folders().working / "nikon.txt"),
              "1,6000.00000000,5000.00000000,100.50000000,IRON ROD\n");
    EXPECT_TRUE(shell.messages.back().starts_with("Error: the Nikon transfer needs"))
        << shell.messages.back();
}

} // namespace

// tramline-cli transfer against a pseudo-terminal instrument: a download
// converted to RW5, the framed upload, and the usage errors.
#include "../support/cli_support.h"
#include "../support/test_support.h"
#include "../transfer/pty_peer.h"

namespace tramline::test {
namespace {

class TransferCommands : public ScratchFolderTest {};

TEST_F(TransferCommands, DownloadConvertsAndShowsProgress) {
    ProtocolPace pace(50);
    const std::string sdr = "00NMSDR33     V04-01.00 Jan-18-80 20:34 111111\r\n"
                            "10NMJOB1            121111\r\n"
                            "08KI               7       100.0000       200.0000        "
                            "10.0000CP\r\n";
    PtyPeer peer;
    peer.play([&](PtyPeer &p) { p.send(sdr, 16, milliseconds(2)); });
    const auto r =
        runCli({"transfer", "download", "sdr", "--port", peer.device(), "--baud", "38400", "-o",
                at("job.rw5"), "--crd", at("job.crd"), "--capture", at("capture.sdr")});
    peer.join();
    EXPECT_EQ(r.code, 0) << r.err;
    EXPECT_NE(r.err.find("Port Open. Waiting for Sokkia ...\nReceiving Line: 0\n"),
              std::string::npos)
        << r.err;
    EXPECT_NE(r.err.find("Receiving Line: 3\nFile received"), std::string::npos) << r.err;
    EXPECT_NE(r.out.find("Received 145 bytes, 3 lines"), std::string::npos) << r.out;
    EXPECT_EQ(slurp(dir / "capture.sdr"), sdr);
    EXPECT_NE(slurp(dir / "job.rw5").find("SP,PN7,N 100.0000,E 200.0000"), std::string::npos);
}

TEST_F(TransferCommands, UploadAndItsFailures) {
    ProtocolPace pace(20);
    PtyPeer peer;
    std::string received;
    peer.play([&](PtyPeer &p) { received = p.receive(milliseconds(300)); });
    const auto sdrFile = write("job.sdr", "00NMSDR33\n08KI1\n");
    const auto r = runCli({"transfer", "upload", "sdr", sdrFile.string(), "--port", peer.device()});
    peer.join();
    EXPECT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(received, "00NMSDR33\r\n08KI1\r\n");
    EXPECT_EQ(r.err, "Sending Header\nSending line\nUpload completed successfully\n"
                     "Upload completed successfully\n");

    const struct {
        std::vector<std::string> args;
        int code;
        const char *err;
    } cases[] = {
        {{"transfer", "upload", "points", "--port", peer.device(), "--crd", at("none.crd")},
         1,
         "Error: failed to read"},
        {{"transfer", "download", "topcon", "--port", "/dev/tramline-none"},
         1,
         "Failed to open the port. Status = -24"},
        {{"transfer", "download", "topcon", "--port", peer.device(), "--baud", "230400"},
         1,
         "Failed to open the port. Status = -25"},
        {{"transfer", "download", "nikon", "--port", peer.device()}, 2, "nikon"},
        {{"transfer", "upload", "points", "--port", peer.device(), "--crd", "x.crd", "--protocol",
          "zmodem"},
         2,
         "zmodem"},
    };
    for (const auto &c : cases) {
        const auto result = runCli(c.args);
        EXPECT_EQ(result.code, c.code) << c.args[2];
        EXPECT_NE(result.err.find(c.err), std::string::npos) << result.err;
    }
    EXPECT_EQ(runCli({"transfer", "ports"}).code, 0);
}

} // namespace
} // namespace tramline::test

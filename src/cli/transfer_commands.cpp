// tramline-cli transfer: the serial transfers with instruments. Progress
// goes to standard error while bytes flow; the summary to standard output.
#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"
#include "cli/command_context.h"
#include "cli/console_interaction.h"
#include "transfer/download.h"
#include "transfer/point_upload.h"
#include "transfer/port_list.h"
#include "transfer/raw_upload.h"

namespace tramline::cli {

namespace {

// Shows each new status text on its own line of standard error.
class TransferConsole : public ConsoleInteraction {
public:
    using ConsoleInteraction::ConsoleInteraction;
    explicit TransferConsole(std::ostream &err) : ConsoleInteraction(err), m_progressErr(err) {}
    void progress(long, long, const std::string &caption) override {
        if (caption != m_last)
            m_progressErr << caption << '\n';
        m_last = caption;
    }

private:
    std::ostream &m_progressErr;
    std::string m_last;
};

struct LineOptions {
    std::string port;
    int baud = 9600;
    std::string parity = "N";
};

void addLineOptions(CLI::App *cmd, LineOptions &o) {
    cmd->add_option("--port", o.port, "Device path, or COM1 to COM4")->required();
    cmd->add_option("--baud", o.baud, "Baud (default 9600)");
    cmd->add_option("--parity", o.parity, "N (default), O or E")
        ->check(CLI::IsMember({"N", "O", "E"}, CLI::ignore_case));
}

transfer::LineSettings lineOf(const LineOptions &o) {
    return {o.baud, toUpperAscii(o.parity.empty() ? 'N' : o.parity.front()), 8, 1};
}

struct DownloadOptions {
    std::string instrument, output, crd, capture;
    LineOptions line;
};

void addDownload(CLI::App &transfer, CommandContext &ctx) {
    auto *cmd = transfer.add_subcommand("download",
                                        "Receive a file from an instrument and convert it to RW5");
    auto o = std::make_shared<DownloadOptions>();
    cmd->add_option("INSTRUMENT", o->instrument, "sdr, geodimeter, leica, topcon or smi")
        ->required()
        ->check(CLI::IsMember({"sdr", "geodimeter", "leica", "topcon", "smi"}, CLI::ignore_case));
    addLineOptions(cmd, o->line);
    cmd->add_option("-o,--output", o->output, "RW5 file to write (default: no conversion)");
    cmd->add_option("--crd", o->crd, "Coordinate file for the points (made when missing)");
    cmd->add_option("--capture", o->capture,
                    "File for the bytes received (default download.* here)");
    cmd->callback([&ctx, o] {
        const auto *info = transfer::findInstrumentDownload(o->instrument);
        transfer::DownloadRequest request;
        request.instrument = info->instrument;
        request.device = o->line.port;
        request.line = lineOf(o->line);
        request.captureFolder = ".";
        request.capturePath = o->capture;
        request.destination = o->output;
        request.coordinateFile = o->crd;
        TransferConsole ui(ctx.err);
        ui.answers[tr("Backsight Measurements")] = tr("Sideshots");
        transfer::DownloadOutcome outcome;
        if (!transfer::runDownload(request, ui, outcome)) {
            ctx.exitCode = kFailure;
            return;
        }
        ctx.out << format(tr("Received %ld bytes, %ld lines into %s"), outcome.received.bytesRead,
                          outcome.received.lines, outcome.capture.string().c_str())
                << '\n';
        if (outcome.converted)
            ctx.out << convert::summaryLine(outcome.summary) << '\n';
    });
}

struct UploadOptions {
    std::string file, crd, protocol = "framed", range, xy = "north";
    LineOptions line;
};

void addUpload(CLI::App &transfer, CommandContext &ctx) {
    auto *upload = transfer.add_subcommand("upload", "Send points or a raw file to an instrument");
    upload->require_subcommand(1);

    auto *points = upload->add_subcommand("points", "Send the points of a coordinate file");
    auto p = std::make_shared<UploadOptions>();
    addLineOptions(points, p->line);
    points->add_option("--crd", p->crd, "Coordinate file")->required();
    points->add_option("--protocol", p->protocol, "framed (default), sdr, gsi or geodimeter")
        ->check(CLI::IsMember({"framed", "sdr", "gsi", "geodimeter"}, CLI::ignore_case));
    points->add_option("--range", p->range, "Points to send, \"A-B\" (default all)");
    points->add_option("--xy", p->xy, "What x carries: north (default) or east")
        ->check(CLI::IsMember({"north", "east"}, CLI::ignore_case));
    points->callback([&ctx, p] {
        transfer::PointUploadRequest request;
        transfer::uploadProtocolFrom(p->protocol, request.protocol);
        request.device = p->line.port;
        request.line = lineOf(p->line);
        request.coordinateFile = p->crd;
        request.range = p->range;
        request.xCarries = equalsIgnoreCase(p->xy, "east") ? transfer::XCarries::Easting
                                                           : transfer::XCarries::Northing;
        TransferConsole ui(ctx.err);
        if (!transfer::uploadPoints(request, ui))
            ctx.exitCode = kFailure;
    });

    auto *sdr = upload->add_subcommand("sdr", "Send an SDR file line by line");
    auto s = std::make_shared<UploadOptions>();
    sdr->add_option("FILE", s->file, "SDR file")->required();
    addLineOptions(sdr, s->line);
    sdr->callback([&ctx, s] {
        TransferConsole ui(ctx.err);
        if (!transfer::uploadSdrFile(s->file, s->line.port, lineOf(s->line), ui))
            ctx.exitCode = kFailure;
    });
}

} // namespace

void addTransferCommands(CLI::App &app, CommandContext &context) {
    auto *transfer = app.add_subcommand("transfer", "Data transfer with instruments over serial "
                                                    "lines");
    transfer->require_subcommand(1);
    transfer->add_subcommand("ports", "List the serial ports: device, then description")
        ->callback([&context] {
            for (const auto &port : transfer::listPorts())
                context.out << port.device << '\t' << port.description << '\n';
        });
    addDownload(*transfer, context);
    addUpload(*transfer, context);
}

} // namespace tramline::cli

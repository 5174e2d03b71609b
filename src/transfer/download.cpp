#include "transfer/download.h"

#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"
#include "convert/registry.h"
#include "transfer/open_port.h"

#include <fstream>
#include <system_error>

namespace tramline::transfer {

namespace {

const InstrumentDownload kInstruments[] = {
    {Instrument::Topcon, "topcon", "Topcon", "download.top",
     trNoop("Port Open. Waiting for Topcon."), trNoop("Error: timeout waiting for Topcon"), false,
     nullptr},
    {Instrument::Geodimeter, "geodimeter", "Geodimeter", "download.geo",
     trNoop("Port Open. Waiting for Geodimeter. Run Program 54"),
     trNoop("Error: timeout waiting for Geodimeter"), true, "geodimeter"},
    {Instrument::Smi, "smi", "SMI", "download.smi", trNoop("Port Open. Waiting for SMI."),
     trNoop("Error: timeout waiting for SMI"), false, "smi"},
    {Instrument::Leica, "leica", "Leica", "download.wld", trNoop("Port Open. Waiting for Leica."),
     trNoop("Error: timeout waiting for Leica"), false, "gsi"},
    {Instrument::Sokkia, "sdr", "Sokkia", "download.sdr",
     trNoop("Port Open. Waiting for Sokkia ..."), trNoop("Error: timeout waiting for Sokkia"), true,
     "sdr"},
};

// The capture handed to the converter: Sokkia replaces the named file.
Status placeCapture(const DownloadRequest &request, Interaction &ui, DownloadOutcome &outcome) {
    if (request.instrument != Instrument::Sokkia || request.namedFile.empty())
        return Status::success();
    std::error_code ec;
    std::filesystem::remove(request.namedFile, ec);
    std::filesystem::rename(outcome.capture, request.namedFile, ec);
    if (ec) {
        std::filesystem::copy_file(outcome.capture, request.namedFile,
                                   std::filesystem::copy_options::overwrite_existing, ec);
        if (ec)
            return transferFailure(
                ui, StatusCode::Io,
                format(tr("Error: failed to open %s"), request.namedFile.string().c_str()));
    }
    outcome.capture = request.namedFile;
    return Status::success();
}

Status convertCapture(const DownloadRequest &request, const InstrumentDownload &info,
                      Interaction &ui, DownloadOutcome &outcome) {
    const convert::FormatEntry *entry =
        info.importId ? convert::findFormat(convert::FormatKind::RawImport, info.importId)
                      : nullptr;
    if (!entry || !entry->built || !entry->import) {
        ui.message(format(tr("The %s converter is not available yet; the data received is kept "
                             "in %s"),
                          info.name, outcome.capture.string().c_str()));
        return Status::success();
    }
    const Status status = convert::runImport(
        entry->import,
        {outcome.capture, request.destination, request.coordinateFile, request.openCoordinateFile},
        ui, outcome.summary);
    outcome.converted = status.ok();
    return status;
}

} // namespace

const InstrumentDownload &instrumentDownload(Instrument instrument) {
    for (const auto &info : kInstruments)
        if (info.instrument == instrument)
            return info;
    return kInstruments[0];
}

const InstrumentDownload *findInstrumentDownload(std::string_view id) {
    for (const auto &info : kInstruments)
        if (equalsIgnoreCase(info.id, id))
            return &info;
    return nullptr;
}

Status runDownload(const DownloadRequest &request, Interaction &ui, DownloadOutcome &outcome) {
    const InstrumentDownload &info = instrumentDownload(request.instrument);
    Status opened;
    std::unique_ptr<SerialPort> port = openTransferPort(request.device, request.line, ui, opened);
    if (!port)
        return opened;
    ui.progress(0, 0, tr(info.waitingText));

    outcome.capture = request.capturePath.empty() ? request.captureFolder / info.captureName
                                                  : request.capturePath;
    std::ofstream capture(outcome.capture, std::ios::binary | std::ios::trunc);
    if (!capture)
        return transferFailure(
            ui, StatusCode::Io,
            format(tr("Error: unable to write %s"), outcome.capture.string().c_str()));

    outcome.received = receiveLoop(*port, capture, [&](long lines) {
        ui.progress(lines, 0,
                    info.countsLines ? format("%s: %ld", tr("Receiving Line"), lines)
                                     : std::string(tr("Receiving...")));
    });
    port->close();
    capture.close();
    const ReceiveResult &r = outcome.received;

    if (r.writeFailed)
        return transferFailure(
            ui, StatusCode::Io,
            format(tr("Error: unable to write %s"), outcome.capture.string().c_str()));
    if (r.status == kCancelled)
        return transferFailure(ui, StatusCode::Cancelled, tr("Function cancelled at user request"));
    if (r.bytesRead == 0)
        return transferFailure(ui, StatusCode::Io, tr(info.timeoutText));
    if (r.status != kTimedOut)
        return transferFailure(
            ui, StatusCode::Io,
            format(tr("Error: the line failed after %ld bytes (status %d); the data "
                      "received is kept in %s"),
                   r.bytesRead, r.status, outcome.capture.string().c_str()));
    ui.message(tr("File received"));
    if (Status placed = placeCapture(request, ui, outcome); !placed)
        return placed;
    if (request.destination.empty())
        return Status::success();
    return convertCapture(request, info, ui, outcome);
}

} // namespace tramline::transfer

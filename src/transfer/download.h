// A download from an instrument: open the port, receive into the capture
// file in the program's folder, then convert the capture through the raw
// import of its format, as if the user had imported the file.
//
// Usage from the command line:
//   tramline-cli transfer download sdr --port /dev/ttyUSB0 -o JOB.rw5 --crd JOB.crd
#pragma once

#include "base/interaction.h"
#include "base/status.h"
#include "convert/import_flow.h"
#include "transfer/port_device.h"
#include "transfer/receive_loop.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace tramline::transfer {

enum class Instrument { Topcon, Geodimeter, Smi, Leica, Sokkia };

/// What a download from one instrument shows and writes.
struct InstrumentDownload {
    Instrument instrument;
    const char *id;          ///< the command line's name ("sdr", "topcon")
    const char *name;        ///< "Sokkia", "Topcon", ...
    const char *captureName; ///< "download.sdr", ...
    const char *waitingText; ///< "Port Open. Waiting for Sokkia ..." (English; tr() it)
    const char *timeoutText; ///< "Error: timeout waiting for Sokkia" (English; tr() it)
    bool countsLines;        ///< shows "Receiving Line: %d" rather than "Receiving..."
    const char *importId;    ///< the raw import that converts the capture, or null
};

const InstrumentDownload &instrumentDownload(Instrument instrument);
/// The instrument of a command-line name (any case), or null.
const InstrumentDownload *findInstrumentDownload(std::string_view id);

struct DownloadRequest {
    Instrument instrument = Instrument::Sokkia;
    std::string device; ///< the port to open (a device path or "COM1".."COM4")
    LineSettings line;
    std::filesystem::path captureFolder; ///< the program's folder
    /// Where the capture goes instead of its name in `captureFolder`.
    std::filesystem::path capturePath;
    /// Sokkia: the file named in the dialog, replaced by the capture; empty:
    /// the capture keeps its name.
    std::filesystem::path namedFile;
    /// The RW5 file the conversion writes ("rimport.tmp" in the desktop
    /// program); empty: no conversion.
    std::filesystem::path destination;
    std::filesystem::path coordinateFile;              ///< for the points; may be empty
    crd::CoordinateFile *openCoordinateFile = nullptr; ///< used instead when set
};

struct DownloadOutcome {
    ReceiveResult received;
    std::filesystem::path capture; ///< where the received bytes are
    bool converted = false;        ///< the destination holds the converted job
    convert::ImportSummary summary;
};

/// Runs a download; every message goes through `ui` ("Error: Null port",
/// "Failed to open the port. Status = %d", "Error: unable to write %s",
/// the time-out texts, "File received", "Function cancelled at user
/// request", ...) and the status text through ui.progress(). The port is
/// closed on every path. A capture whose format has no converter yet is
/// kept and said so; that counts as success.
Status runDownload(const DownloadRequest &request, Interaction &ui, DownloadOutcome &outcome);

} // namespace tramline::transfer

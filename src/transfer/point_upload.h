// Sending the points of a coordinate file to an instrument: in framed
// blocks (Topcon, SMI, TDS), or line by line in the instrument's own point
// format (Sokkia SDR 08 records, Leica GSI words, Geodimeter labels),
// written by the same point export the Export Point Data menu uses.
//
// Usage from the command line:
//   tramline-cli transfer upload points --port /dev/ttyUSB0 --crd JOB.crd --protocol sdr
#pragma once

#include "base/interaction.h"
#include "base/status.h"
#include "convert/registry.h"
#include "transfer/framed_upload.h"
#include "transfer/port_device.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tramline::transfer {

enum class UploadProtocol { Framed, Sdr, Gsi, Geodimeter };

/// The protocol of a command-line name ("framed", "sdr", "gsi",
/// "geodimeter", any case); false for another name.
bool uploadProtocolFrom(std::string_view name, UploadProtocol &protocol);

/// The point export a line-by-line upload sends through, or null while
/// nobody has built it (the upload then says it is not available yet).
const convert::FormatEntry *pointExportFor(UploadProtocol protocol);

struct PointUploadRequest {
    UploadProtocol protocol = UploadProtocol::Framed;
    std::string device;
    LineSettings line;
    std::filesystem::path coordinateFile;
    std::string range; ///< "A-B" and lists as users type them; empty: every point
    XCarries xCarries = XCarries::Northing;
    convert::PointExportOptions exportOptions; ///< for the line-by-line formats
};

/// Reads the points ("Error: failed to read %s"), opens the port and sends
/// them; ends with "Upload completed successfully". The port is closed on
/// every path.
Status uploadPoints(const PointUploadRequest &request, Interaction &ui);

/// Sends `bytes` (lines ending in LF or CR LF) one line a time with CR LF,
/// showing `caption` for each; the first line shows `firstCaption` when
/// given. A line the port will not take ends with "Error: transfer
/// stopped at line %ld, status %d".
Status sendLines(SerialPort &port, std::string_view bytes, const char *firstCaption,
                 const char *caption, Interaction &ui);

} // namespace tramline::transfer

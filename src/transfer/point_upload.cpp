#include "transfer/point_upload.h"

#include "base/format.h"
#include "base/point_names.h"
#include "base/text.h"
#include "base/translation.h"
#include "crd/coordinate_file.h"
#include "transfer/open_port.h"
#include "transfer/protocol_time.h"

namespace tramline::transfer {

namespace {

struct ProtocolName {
    UploadProtocol protocol;
    const char *name;
    const char *exportIds[2]; ///< registry ids the point export may carry
    const char *menuName;     ///< or its menu entry
};

constexpr ProtocolName kProtocols[] = {
    {UploadProtocol::Framed, "framed", {nullptr, nullptr}, nullptr},
    {UploadProtocol::Sdr, "sdr", {"sdr", nullptr}, "Sokkia/SDR"},
    {UploadProtocol::Gsi, "gsi", {"gsi", "leica"}, "Leica"},
    {UploadProtocol::Geodimeter, "geodimeter", {"geodimeter", nullptr}, "Geodimeter"},
};

const ProtocolName &protocolName(UploadProtocol protocol) {
    for (const auto &p : kProtocols)
        if (p.protocol == protocol)
            return p;
    return kProtocols[0];
}

Status readPoints(const PointUploadRequest &request, Interaction &ui,
                  std::vector<crd::CrdPoint> &points) {
    crd::CoordinateFile file(crd::CrdContext{&ui, {}, {}});
    std::vector<crd::CrdPoint> all;
    if (!file.openForReading(request.coordinateFile) || !crd::readAllPoints(file, all))
        return transferFailure(
            ui, StatusCode::Io,
            format(tr("Error: failed to read %s"), request.coordinateFile.string().c_str()));
    PointList range;
    if (!request.range.empty() && !range.parse(request.range))
        return transferFailure(ui, StatusCode::InvalidInput,
                               format(tr("Error: bad point range %s"), request.range.c_str()));
    for (auto &point : all)
        if (range.empty() || range.contains(point.name))
            points.push_back(std::move(point));
    return Status::success();
}

} // namespace

bool uploadProtocolFrom(std::string_view name, UploadProtocol &protocol) {
    for (const auto &p : kProtocols)
        if (equalsIgnoreCase(p.name, name)) {
            protocol = p.protocol;
            return true;
        }
    return false;
}

const convert::FormatEntry *pointExportFor(UploadProtocol protocol) {
    const ProtocolName &p = protocolName(protocol);
    const convert::FormatEntry *entry = nullptr;
    for (const char *id : p.exportIds)
        if (id && !entry)
            entry = convert::findFormat(convert::FormatKind::PointExport, id);
    if (!entry && p.menuName)
        entry = convert::findFormatByMenu(convert::FormatKind::PointExport, p.menuName);
    return entry && entry->built && entry->pointExport ? entry : nullptr;
}

Status sendLines(SerialPort &port, std::string_view bytes, const char *firstCaption,
                 const char *caption, Interaction &ui) {
    std::vector<std::string_view> lines = split(bytes, '\n');
    if (!lines.empty() && lines.back().empty())
        lines.pop_back();
    for (std::size_t i = 0; i < lines.size(); ++i) {
        std::string_view line = lines[i];
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        ui.progress(long(i), long(lines.size()),
                    tr(i == 0 && firstCaption ? firstCaption : caption));
        const int status = port.writeString(line, kCrLf, protocolMs(1000));
        if (status == kCancelled)
            return transferFailure(ui, StatusCode::Cancelled,
                                   tr("Function cancelled at user request"));
        if (status < 0)
            return transferFailure(
                ui, StatusCode::Io,
                format(tr("Error: transfer stopped at line %ld, status %d"), long(i) + 1, status));
    }
    ui.progress(long(lines.size()), long(lines.size()), tr("Upload completed successfully"));
    ui.message(tr("Upload completed successfully"));
    return Status::success();
}

Status uploadPoints(const PointUploadRequest &request, Interaction &ui) {
    const convert::FormatEntry *exporter = nullptr;
    if (request.protocol != UploadProtocol::Framed) {
        exporter = pointExportFor(request.protocol);
        if (!exporter)
            return transferFailure(ui, StatusCode::NotSupported,
                                   format(tr("Error: %s is not available yet"),
                                          protocolName(request.protocol).menuName));
    }
    std::vector<crd::CrdPoint> points;
    if (Status s = readPoints(request, ui, points); !s)
        return s;
    std::string bytes;
    if (exporter) {
        convert::ExportOutput out;
        if (Status s = exporter->pointExport(points, request.exportOptions, ui, out); !s)
            return s;
        bytes = std::move(out.bytes);
    }
    Status status;
    const std::unique_ptr<SerialPort> port =
        openTransferPort(request.device, request.line, ui, status);
    if (!port)
        return status;
    if (!exporter)
        return sendFramedPoints(*port, request.coordinateFile, points, request.xCarries, ui);
    return sendLines(*port, bytes, nullptr, trNoop("Sending point"), ui);
}

} // namespace tramline::transfer

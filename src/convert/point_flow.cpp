#include "convert/point_flow.h"

#include "base/format.h"
#include "base/translation.h"
#include "convert/import_flow.h"
#include "crd/coordinate_file.h"

#include <fstream>

namespace tramline::convert {

Status runPointImport(PointImportFunction import, const std::filesystem::path &source,
                      crd::CoordinateFile &file, Interaction &ui, ImportSummary &summary) {
    SourceLines lines;
    ui.progress(0, 1, tr("Reading the source file"));
    std::ifstream in(source, std::ios::binary);
    std::error_code ec;
    if (!in || std::filesystem::is_directory(source, ec) || !readSourceLines(in, lines)) {
        ui.message(tr("Error: unable to read file"));
        return Status::failure(StatusCode::Io, tr("Error: unable to read file"));
    }
    ImportOutput out;
    ui.progress(0, 1, tr("Converting"));
    if (Status s = import(lines, ui, out); !s) {
        if (s.code != StatusCode::Cancelled)
            ui.message(s.message);
        return s;
    }
    summary.records = out.records;
    summary.skipped = out.skipped;
    summary.report = out.report;
    ui.progress(0, 1, tr("Storing points"));
    const long given = long(out.points.size());
    summary.pointsStored = writeImportedPoints(file, std::move(out.points), summary.report);
    summary.pointsRefused = given - summary.pointsStored;
    // A format with its own closing word says it; else the count.
    ui.message(!out.completion.empty() ? out.completion
                                       : format(tr("Read in %ld points."), summary.pointsStored));
    return Status::success();
}

Status runPointExport(PointExportFunction exporter, crd::CoordinateFile &file,
                      const std::filesystem::path &destination, const PointExportOptions &options,
                      Interaction &ui, ExportOutput &out) {
    FileOutput output(destination);
    return runPointExport(exporter, file, output, options, ui, out);
}

Status runPointExport(PointExportFunction exporter, crd::CoordinateFile &file,
                      FileOutput &destination, const PointExportOptions &options, Interaction &ui,
                      ExportOutput &out) {
    std::vector<crd::CrdPoint> points;
    if (!crd::readAllPoints(file, points)) {
        ui.message(tr("Error: unable to read file"));
        return Status::failure(StatusCode::Io, tr("Error: unable to read file"));
    }
    if (Status s = exporter(points, options, ui, out); !s)
        return s;
    if (!destination.write(out.bytes) || !destination.commit()) {
        ui.message(out.writeError);
        return Status::failure(StatusCode::Io, out.writeError);
    }
    if (!out.completion.empty())
        ui.message(out.completion);
    return Status::success();
}

} // namespace tramline::convert

#include "convert/import_flow.h"

#include "base/atomic_save.h"
#include "base/format.h"
#include "base/translation.h"
#include "crd/coordinate_file.h"

#include <fstream>

namespace tramline::convert {

namespace {

Status fail(Interaction &ui, std::string message) {
    ui.message(message);
    return Status::failure(StatusCode::Io, std::move(message));
}

} // namespace

std::filesystem::path scratchImportPath(const std::filesystem::path &folder) {
    return folder / "rimport.tmp";
}

long writeImportedPoints(crd::CoordinateFile &file, std::span<const crd::CrdPoint> points,
                         std::string &report) {
    std::vector<int> errors;
    const long stored = file.writePoints(points, crd::Verbosity::Quiet, &errors);
    for (size_t i = 0; i < errors.size() && i < points.size(); ++i)
        if (errors[i] != 0)
            appendFormat(report, "\n%s: %s %s %s", tr("Error"),
                         crd::CoordinateFile::errorText(errors[i]).c_str(),
                         tr("Unable to write point"), points[i].name.c_str());
    return stored;
}

Status runImport(ImportFunction convert, const ImportPaths &paths, Interaction &ui,
                 ImportSummary &summary) {
    SourceLines lines;
    ui.progress(0, 1, tr("Reading the source file"));
    {
        std::ifstream in(paths.source, std::ios::binary);
        std::error_code ec;
        if (!in || std::filesystem::is_directory(paths.source, ec))
            return fail(ui, tr("Error: unable to read raw file"));
        if (Status read = readSourceLines(in, lines); !read) {
            ui.message(read.message);
            return read;
        }
    }

    ImportOutput out;
    ui.progress(0, 1, tr("Converting"));
    if (Status converted = convert(lines, ui, out); !converted)
        return converted;

    // The coordinate file is opened before the destination is written, so
    // that a refused coordinate file leaves no converted file behind.
    crd::CoordinateFile own(crd::CrdContext{&ui, {}, {}});
    crd::CoordinateFile &file = paths.openCoordinateFile ? *paths.openCoordinateFile : own;
    std::error_code ec;
    const bool crdExisted =
        !paths.coordinateFile.empty() && std::filesystem::exists(paths.coordinateFile, ec);
    if (!paths.openCoordinateFile && !paths.coordinateFile.empty() &&
        !file.open(paths.coordinateFile))
        return fail(ui, format(tr("Error: unable to open coordinate file %s"),
                               paths.coordinateFile.string().c_str()));

    // Written in pieces of about a megabyte: a large job is never held
    // twice in memory.
    AtomicFileWriter rw5(paths.destination);
    std::string piece;
    piece.reserve((1 << 20) + 4096);
    bool saved = true;
    for (const auto &line : out.lines) {
        piece += line;
        if (piece.size() >= (1 << 20)) {
            saved = saved && rw5.write(piece);
            piece.clear();
        }
    }
    saved = saved && rw5.write(piece) && rw5.commit();
    if (!saved) {
        if (own.isOpen()) {
            own.close();
            if (!crdExisted)
                std::filesystem::remove(paths.coordinateFile, ec);
        }
        return fail(ui, tr("Error: unable to write rw5 file"));
    }

    summary.records = out.records;
    summary.observations = out.observations;
    summary.skipped = out.skipped;
    summary.report = out.report;
    if (file.isOpen()) {
        ui.progress(0, 1, tr("Storing points"));
        summary.pointsStored = writeImportedPoints(file, out.points, summary.report);
        summary.pointsRefused = long(out.points.size()) - summary.pointsStored;
        own.close();
    }
    if (!out.completion.empty())
        ui.message(out.completion);
    return Status::success();
}

std::string summaryLine(const ImportSummary &summary) {
    long skipped = 0;
    std::string reasons;
    for (const auto &[reason, count] : summary.skipped) {
        skipped += count;
        if (!reasons.empty())
            reasons += ", ";
        appendFormat(reasons, "%ld %s", count, tr(reason.c_str()));
    }
    std::string line = format(tr("Read %ld records: %ld observations, %ld points stored, %ld "
                                 "lines skipped"),
                              summary.records, summary.observations, summary.pointsStored, skipped);
    if (!reasons.empty())
        line += " (" + reasons + ")";
    return line;
}

} // namespace tramline::convert

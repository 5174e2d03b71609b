#include "convert/text_points_flow.h"

#include "base/atomic_save.h"
#include "base/format.h"
#include "base/point_names.h"
#include "base/translation.h"
#include "convert/import_flow.h"
#include "crd/coordinate_file.h"

#include <fstream>

namespace tramline::convert {

Status importTextPointsFile(const std::filesystem::path &source, crd::CoordinateFile &file,
                            const PointColumns &columns, Interaction &ui,
                            TextImportSummary &summary) {
    std::ifstream in(source, std::ios::binary);
    std::error_code ec;
    if (!in || std::filesystem::is_directory(source, ec)) {
        ui.message(tr("Error: unable to read file"));
        return Status::failure(StatusCode::Io, tr("Error: unable to read file"));
    }
    TextPointsRead read;
    ui.progress(0, 1, tr("Reading the source file"));
    const PointNames names = file.format() == 0 ? PointNames::Numeric : PointNames::Alphanumeric;
    if (Status status = readTextPoints(in, columns, names, read); !status) {
        ui.message(status.message);
        return status;
    }
    numberUnnamedPoints(read.points, file.highestName());
    summary.lines = read.lines;
    summary.notPoints = read.notPoints;
    ui.progress(0, 1, tr("Storing points"));
    summary.pointsStored = writeImportedPoints(file, read.points, summary.report);
    ui.message(format(tr("Read in %ld points."), summary.pointsStored));
    return Status::success();
}

Status exportTextPointsFile(crd::CoordinateFile &file, const std::filesystem::path &destination,
                            const TextExportOptions &options, std::string_view range,
                            Interaction &ui, long &written) {
    FileOutput output(destination);
    return exportTextPointsFile(file, output, options, range, ui, written);
}

Status exportTextPointsFile(crd::CoordinateFile &file, FileOutput &destination,
                            const TextExportOptions &options, std::string_view range,
                            Interaction &ui, long &written) {
    PointList selection;
    if (!range.empty() && !selection.parse(range)) {
        const std::string message =
            format(tr("Invalid point range: %s"), std::string(range).c_str());
        ui.message(message);
        return Status::failure(StatusCode::InvalidInput, message);
    }
    std::vector<crd::CrdPoint> points;
    readAllPoints(file, points);
    written = 0;
    std::string text;
    for (const auto &point : points) {
        if (!selection.empty() && !selection.contains(point.name))
            continue;
        text += formatPointLine(point, options);
        ++written;
    }
    if (!destination.write(text) || !destination.commit()) {
        ui.message(tr("Error: unable to write file"));
        return Status::failure(StatusCode::Io, tr("Error: unable to write file"));
    }
    ui.message(format(tr("File %s successfully written."), destination.name().c_str()));
    return Status::success();
}

} // namespace tramline::convert

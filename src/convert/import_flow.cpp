#include "convert/import_flow.h"

#include "base/atomic_save.h"
#include "base/format.h"
#include "base/point_names.h"
#include "base/translation.h"
#include "crd/coordinate_file.h"

#include <algorithm>
#include <cstdint>
#include <fstream>

namespace tramline::convert {

namespace {

// A name of digits only, without a leading zero and short enough for an
// integer: the point-name order of two such names is that of their values.
bool plainNumber(std::string_view name, std::uint64_t &value) {
    if (name.empty() || name.size() > 18 || name.front() == '0')
        return false;
    value = 0;
    for (const char c : name) {
        if (c < '0' || c > '9')
            return false;
        value = value * 10 + std::uint64_t(c - '0');
    }
    return true;
}

Status fail(Interaction &ui, std::string message) {
    ui.message(message);
    return Status::failure(StatusCode::Io, std::move(message));
}

} // namespace

std::vector<std::uint32_t> pointNameOrder(std::span<const crd::CrdPoint> points) {
    struct Key {
        std::uint64_t value;
        bool plain;
    };
    std::vector<Key> keys(points.size());
    for (std::size_t i = 0; i < points.size(); ++i)
        keys[i].plain = plainNumber(points[i].name, keys[i].value);
    std::vector<std::uint32_t> order(points.size());
    for (std::size_t i = 0; i < order.size(); ++i)
        order[i] = std::uint32_t(i);
    // Imported points are mostly numbered in the order met: the common
    // case compares two integers, the rest takes the general order.
    const auto before = [&](std::uint32_t a, std::uint32_t b) {
        if (keys[a].plain && keys[b].plain)
            return keys[a].value < keys[b].value;
        return comparePointNames(points[a].name, points[b].name) < 0;
    };
    std::stable_sort(order.begin(), order.end(), before);
    return order;
}

std::filesystem::path scratchImportPath(const std::filesystem::path &folder) {
    return folder / "rimport.tmp";
}

long writeImportedPoints(crd::CoordinateFile &file, std::vector<crd::CrdPoint> &&points,
                         std::string &report) {
    // Handed over in name order, the coordinate file appends them in one
    // pass instead of sorting them itself with the slower general order.
    // They are put in order in place: a copy of a million points costs
    // more than the sort.
    const std::vector<std::uint32_t> order = pointNameOrder(points);
    std::vector<bool> placed(order.size(), false);
    for (std::size_t start = 0; start < order.size(); ++start) {
        if (placed[start])
            continue;
        crd::CrdPoint first = std::move(points[start]);
        std::size_t slot = start;
        for (;;) {
            placed[slot] = true;
            const std::size_t from = order[slot];
            if (from == start) {
                points[slot] = std::move(first);
                break;
            }
            points[slot] = std::move(points[from]);
            slot = from;
        }
    }
    std::vector<int> errors;
    const long stored = file.writePoints(points, crd::Verbosity::Quiet, &errors);
    // Refused points are reported in the order they were met.
    std::vector<std::uint32_t> at(order.size());
    for (std::size_t k = 0; k < order.size(); ++k)
        at[order[k]] = std::uint32_t(k);
    for (std::size_t i = 0; i < at.size(); ++i) {
        const std::size_t k = at[i];
        if (k < errors.size() && errors[k] != 0)
            appendFormat(report, "\n%s: %s %s %s", tr("Error"),
                         crd::CoordinateFile::errorText(errors[k]).c_str(),
                         tr("Unable to write point"), points[k].name.c_str());
    }
    return stored;
}

long writeImportedPoints(crd::CoordinateFile &file, std::span<const crd::CrdPoint> points,
                         std::string &report) {
    return writeImportedPoints(file, std::vector<crd::CrdPoint>(points.begin(), points.end()),
                               report);
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
    // The source is not needed any more: its memory serves what follows.
    lines.clear();

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

    // Written straight from the line blocks, in runs of adjacent lines:
    // a large job is never held twice in memory.
    AtomicFileWriter rw5(paths.destination);
    const bool saved =
        out.lines.writeTo([&](std::string_view run) { return rw5.write(run); }) && rw5.commit();
    out.lines.clear();
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
        const long given = long(out.points.size());
        summary.pointsStored = writeImportedPoints(file, std::move(out.points), summary.report);
        summary.pointsRefused = given - summary.pointsStored;
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

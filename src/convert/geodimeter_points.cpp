#include "convert/geodimeter_points.h"

#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"
#include "convert/geodimeter_reader.h"

#include <cmath>
#include <optional>

namespace tramline::convert {

namespace {

using namespace geodimeter;

struct PendingPoint {
    std::string name, code;
    std::optional<double> northing, easting, elevation;

    void finish(ImportOutput &out) {
        if (!name.empty() && northing && easting) {
            crd::CrdPoint point;
            point.set(*easting, *northing, elevation.value_or(0.0), name, code);
            out.points.push_back(std::move(point));
        }
        *this = PendingPoint();
    }
};

std::optional<double> numberOf(std::string_view text) {
    double value = 0.0;
    if (!parseNumber(trim(text), value) || !std::isfinite(value))
        return std::nullopt;
    return value;
}

} // namespace

Status importGeodimeterPoints(const SourceLines &source, Interaction &, ImportOutput &out) {
    PendingPoint point;
    bool anyLabel = false;
    for (const auto &line : source) {
        const LabelLine read = readLabelLine(line.text);
        if (read.kind != LineKind::Label) {
            ++out.skipped[trNoop("not a label")];
            continue;
        }
        anyLabel = true;
        ++out.records;
        switch (read.label) {
        case 2:
        case 5:
        case 62:
            point.finish(out);
            point.name = std::string(read.value);
            break;
        case 4:
            point.code = std::string(read.value);
            break;
        case 37:
            point.northing = numberOf(read.value);
            break;
        case 38:
            point.easting = numberOf(read.value);
            break;
        case 39:
            point.elevation = numberOf(read.value);
            break;
        default:
            --out.records;
            ++out.skipped[trNoop("label not used")];
            break;
        }
    }
    point.finish(out);
    if (!anyLabel)
        return Status::failure(StatusCode::Format, tr("Error: not a Geodimeter file"));
    return Status::success();
}

Status exportGeodimeterPoints(std::span<const crd::CrdPoint> points, const PointExportOptions &,
                              Interaction &, ExportOutput &out) {
    out.bytes.reserve(points.size() * 64);
    for (const auto &p : points) {
        // The description is the point's code in this format; a point that
        // came from a coordinate file has only a description.
        const std::string &code = p.code.empty() ? p.description : p.code;
        appendFormat(out.bytes, "5=%s\n4=%s\n37=%.5f\n38=%.5f\n39=%.5f\n", p.name.c_str(),
                     code.c_str(), p.northing, p.easting, p.elevation);
        ++out.records;
    }
    out.completion = tr("Done");
    out.writeError = tr("Error: unable to write file");
    return Status::success();
}

} // namespace tramline::convert

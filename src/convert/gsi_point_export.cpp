// Only the northing and the easting of a GSI-8 file are checked against the
// record length, and only from above: a long elevation or a large negative
// coordinate is written as it comes, one digit too wide. A missing
// elevation is written as dashes, as instruments write it.
#include "convert/gsi_point_export.h"

#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"
#include "base/unset.h"

#include <cmath>

namespace tramline::convert {

namespace {

void appendData(std::string &line, std::string_view data, std::size_t width) {
    if (data.size() > width)
        data = data.substr(0, width);
    line.append(width - data.size(), '0');
    line += data;
}

void appendCoordinate(std::string &line, int index, int unit, double value, std::size_t width) {
    if (isUnset(value)) {
        appendFormat(line, " %d..1%d+", index, unit);
        line.append(width, '-');
        return;
    }
    appendFormat(line, " %d..1%d%c", index, unit, value < 0 ? '-' : '+');
    const std::string digits = format("%.0f", std::fabs(value) * 1000.0);
    line.append(digits.size() < width ? width - digits.size() : 0, '0');
    line += digits; // never cut: a coordinate too long for GSI-8 runs over
}

} // namespace

Status exportGsiPoints(std::span<const crd::CrdPoint> points, const PointExportOptions &options,
                       Interaction &ui, ExportOutput &out) {
    bool gsi16 = !equalsIgnoreCase(options.variant, "gsi8");
    bool feet = equalsIgnoreCase(options.unit, "ft");
    if (options.variant.empty() || options.unit.empty()) {
        std::vector<FormField> fields = {
            {tr("Coordinate Unit"), feet ? tr("Feet") : tr("Meters"), {tr("Feet"), tr("Meters")}},
            {tr("File Format"), gsi16 ? "GSI-16" : "GSI-8", {"GSI-8", "GSI-16"}}};
        if (!ui.fillForm(tr("Leica Options"), fields))
            return Status::failure(StatusCode::Cancelled, tr("Function cancelled at user request"));
        feet = fields[0].value == tr("Feet");
        gsi16 = fields[1].value != "GSI-8";
    }
    const std::size_t width = gsi16 ? 16 : 8;
    const int unit = feet ? 1 : 0;
    bool tooLong = false;
    out.bytes.reserve(points.size() * (gsi16 ? 122 : 82));
    long block = 1;
    for (const auto &p : points) {
        std::string &line = out.bytes;
        appendFormat(line, gsi16 ? "*11%04ld+" : "11%04ld+", block++ % 10000);
        appendData(line, p.name, width);
        line += " 71....+";
        appendData(line, p.description, width);
        appendCoordinate(line, 81, unit, p.easting, width);
        appendCoordinate(line, 82, unit, p.northing, width);
        appendCoordinate(line, 83, unit, p.elevation, width);
        line += " \n";
        if (!gsi16 && !(p.northing <= 99999.9 && p.easting <= 99999.9))
            tooLong = true; // NaN fails both comparisons
        ++out.records;
    }
    out.writeError = tr("Error: unable to write file");
    out.completion =
        tooLong ? tr("Error: coordinates exceed record length. Try GSI-16 format.") : tr("Done");
    return Status::success();
}

} // namespace tramline::convert

// Names are right-aligned in their field, as the SDR raw export writes
// them, so that reading the file back gives the names without blanks.
#include "convert/sdr_point_export.h"

#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"

namespace tramline::convert {

Status exportSdrPoints(std::span<const crd::CrdPoint> points, const PointExportOptions &options,
                       Interaction &, ExportOutput &out) {
    const bool wide = !equalsIgnoreCase(options.variant, "sdr2x");
    const int distance = equalsIgnoreCase(options.unit, "ft") ? 2 : 1;
    const std::size_t nameWidth = wide ? 16 : 4;
    const int numberWidth = wide ? 16 : 10;
    out.bytes = format(wide ? "00NMSDR33     V04-01.00 Jan-18-80 20:34 %d%d%d%d%d1\n"
                            : "00NMSDR22     V03-050000Jan-18-80 20:34 %d%d%d%d%d1\n",
                       1, distance, 1, 1, 1);
    out.bytes +=
        wide ? format("10NM%-16.16s1%d\n", "POINTS", 21111) : format("10NM%-16.16s\n", "POINTS");
    for (const auto &point : points) {
        std::string record = "08KI";
        appendPadded(record, std::string_view(point.name).substr(0, nameWidth), nameWidth, true);
        for (double value : {point.northing, point.easting, point.elevation}) {
            std::string number = format("%.4f", value);
            appendPadded(record, number, std::size_t(numberWidth), false, true);
        }
        appendPadded(record, point.description, 16, false, true);
        out.bytes += trimRight(record);
        out.bytes += '\n';
        ++out.records;
    }
    out.completion = tr("Done.");
    return Status::success();
}

} // namespace tramline::convert

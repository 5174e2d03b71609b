#include "raw/validate.h"

#include "base/angles.h"
#include "base/format.h"
#include "base/line_reader.h"
#include "base/translation.h"
#include "base/unset.h"

#include "raw/classify.h"
#include <cmath>

namespace tramline::raw {

namespace {

bool fieldNumber(const RawNode &node, size_t index, double &value) {
    return index < node.fields.size() && parseNumber(node.fields[index], value) && !isUnset(value);
}

} // namespace

void validateRawNode(const RawNode &node, long row, const HeightLimits &limits,
                     const ValidationSink &sink) {
    double v = 0.0;
    switch (node.type) {
    case RecordType::Observation: {
        const Observation &o = node.observation;
        if (o.hasHorizontal && !isUnset(o.horizontal) && !isValidDms(o.horizontal))
            sink(format(tr("Warning: Bad horizontal angle: %.4f at row: %ld (Not dd.mmss format)"),
                        o.horizontal, row),
                 true);
        // The vertical value as written, before normalisation.
        if (!o.hasWrittenVertical || isUnset(o.writtenVertical))
            break;
        v = o.writtenVertical;
        if (o.verticalKind == VerticalKind::CE) {
            // A slope distance is kept as written.
            const double distance = o.slopeDistance;
            if (o.distanceKind == DistanceKind::Slope && o.hasDistance && !isUnset(distance) &&
                std::fabs(v) > std::fabs(distance))
                sink(format(tr("Warning: Invalid elevation difference: %.4f at row: %ld (Greater "
                               "than slope distance)"),
                            v, row),
                     false);
        } else if (!isValidDms(v)) {
            sink(format(tr("Warning: Bad vertical angle: %.4f at row: %ld (Not dd.mmss format)"), v,
                        row),
                 true);
        }
        break;
    }
    case RecordType::Backsight:
        if (fieldNumber(node, 2, v) && !isValidDms(v))
            sink(format(tr("Warning: Bad backsight azimuth: %.4f at row: %ld (Not dd.mmss format)"),
                        v, row),
                 true);
        if (fieldNumber(node, 3, v) && !isValidDms(v))
            sink(format(tr("Warning: Bad set backsight azimuth: %.4f at row: %ld (Not dd.mmss "
                           "format)"),
                        v, row),
                 true);
        break;
    case RecordType::Heights:
        if (!limits.enabled)
            break;
        if (node.hasHi && fieldNumber(node, 0, v) &&
            (v < limits.minInstrument || v > limits.maxInstrument))
            sink(format(tr("Warning: Invalid Instrument Height %.2f at row: %ld (Not within %.2f "
                           "to %.2f)"),
                        v, row, limits.minInstrument, limits.maxInstrument),
                 false);
        if (node.hasHr && fieldNumber(node, 1, v) && (v < limits.minRod || v > limits.maxRod))
            sink(
                format(tr("Warning: Invalid Rod Height %.2f at row: %ld (Not within %.2f to %.2f)"),
                       v, row, limits.minRod, limits.maxRod),
                false);
        break;
    default:
        break;
    }
}

std::vector<std::string> validateRaw(const RawFile &file, const HeightLimits &limits) {
    std::vector<std::string> warnings;
    const bool dms = file.units.angle == AngleUnit::DegreesMinutesSeconds;
    const ValidationSink keep = [&](std::string warning, bool dmsOnly) {
        if (dms || !dmsOnly)
            warnings.push_back(std::move(warning));
    };
    for (size_t i = 0; i < file.nodes.size(); ++i)
        validateRawNode(file.nodes[i], static_cast<long>(i + 1), limits, keep);
    return warnings;
}

bool countRawLine(const std::string &line, size_t lineNumber, RawSummary &summary,
                  std::string &unrecognised) {
    thread_local RawFields fields;
    ++summary.lines;
    if (line.size() < 3)
        return false;
    ++summary.records;
    switch (ClassifyRawLine(line, JobRecords::Recognised, fields)) {
    case kObservation:
        ++summary.observations;
        break;
    case kOccupy:
        ++summary.setups;
        break;
    case kStorePoint:
        ++summary.storePoints;
        break;
    case kNote:
    case kEmptyNote:
        ++summary.notes;
        break;
    case kUnrecognised: {
        // Records the strict classifier has no form for, but the editor
        // does (NAME, EL, AZ, DO, CC, standard errors), are not news.
        static const char *const kEditorRecords[] = {"NAME,", "EL,",  "AZ,",  "DO,",
                                                     "CC,",   "CSE,", "SSE,", "MSE,"};
        for (const char *prefix : kEditorRecords)
            if (line.starts_with(prefix))
                return false;
        unrecognised = format("line %zu: %s", lineNumber, line.c_str());
        return true;
    }
    default:
        break;
    }
    return false;
}

RawSummary summarizeRaw(std::istream &in) {
    RawSummary summary;
    LineReader reader(in, kRawLineBuffer);
    std::string line, unrecognised;
    while (reader.next(line))
        if (countRawLine(line, reader.lineNumber(), summary, unrecognised))
            summary.unrecognised.push_back(std::move(unrecognised));
    return summary;
}

} // namespace tramline::raw

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

std::vector<std::string> validateRaw(const RawFile &file, const HeightLimits &limits) {
    std::vector<std::string> warnings;
    const bool dms = file.units.angle == AngleUnit::DegreesMinutesSeconds;
    for (size_t i = 0; i < file.nodes.size(); ++i) {
        const RawNode &node = file.nodes[i];
        const long row = static_cast<long>(i + 1);
        double v = 0.0;
        switch (node.type) {
        case RecordType::Observation: {
            const Observation &o = node.observation;
            if (dms && o.hasHorizontal && !isUnset(o.horizontal) && !isValidDms(o.horizontal))
                warnings.push_back(format(
                    tr("Warning: Bad horizontal angle: %.4f at row: %ld (Not dd.mmss format)"),
                    o.horizontal, row));
            // The vertical value as written, before normalisation.
            if (!fieldNumber(node, 3, v))
                break;
            if (o.verticalKind == VerticalKind::CE) {
                double distance = 0.0;
                if (o.distanceKind == DistanceKind::Slope && fieldNumber(node, 4, distance) &&
                    std::fabs(v) > std::fabs(distance))
                    warnings.push_back(format(tr("Warning: Invalid elevation difference: %.4f at "
                                                 "row: %ld (Greater than slope distance)"),
                                              v, row));
            } else if (dms && !isValidDms(v)) {
                warnings.push_back(
                    format(tr("Warning: Bad vertical angle: %.4f at row: %ld (Not dd.mmss format)"),
                           v, row));
            }
            break;
        }
        case RecordType::Backsight:
            if (dms && fieldNumber(node, 2, v) && !isValidDms(v))
                warnings.push_back(format(
                    tr("Warning: Bad backsight azimuth: %.4f at row: %ld (Not dd.mmss format)"), v,
                    row));
            if (dms && fieldNumber(node, 3, v) && !isValidDms(v))
                warnings.push_back(format(
                    tr("Warning: Bad set backsight azimuth: %.4f at row: %ld (Not dd.mmss format)"),
                    v, row));
            break;
        case RecordType::Heights:
            if (!limits.enabled)
                break;
            if (node.hasHi && fieldNumber(node, 0, v) &&
                (v < limits.minInstrument || v > limits.maxInstrument))
                warnings.push_back(format(tr("Warning: Invalid Instrument Height %.2f at row: %ld "
                                             "(Not within %.2f to %.2f)"),
                                          v, row, limits.minInstrument, limits.maxInstrument));
            if (node.hasHr && fieldNumber(node, 1, v) && (v < limits.minRod || v > limits.maxRod))
                warnings.push_back(format(
                    tr("Warning: Invalid Rod Height %.2f at row: %ld (Not within %.2f to %.2f)"), v,
                    row, limits.minRod, limits.maxRod));
            break;
        default:
            break;
        }
    }
    return warnings;
}

RawSummary summarizeRaw(std::istream &in) {
    RawSummary summary;
    LineReader reader(in, kRawLineBuffer);
    std::string line;
    RawFields fields;
    while (reader.next(line)) {
        ++summary.lines;
        if (line.size() < 3)
            continue;
        ++summary.records;
        const int kind = ClassifyRawLine(line, JobRecords::Recognised, fields);
        switch (kind) {
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
            bool known = false;
            for (const char *prefix : kEditorRecords)
                known = known || line.starts_with(prefix);
            if (!known)
                summary.unrecognised.push_back(
                    format("line %zu: %s", reader.lineNumber(), line.c_str()));
            break;
        }
        default:
            break;
        }
    }
    return summary;
}

} // namespace tramline::raw

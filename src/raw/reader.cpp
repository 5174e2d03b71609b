#include "raw/reader.h"

#include "base/angles.h"
#include "base/format.h"
#include "base/line_reader.h"
#include "base/text.h"
#include "base/translation.h"
#include "raw/angle_math.h"
#include "raw/classify.h"

#include <cmath>
#include <fstream>

namespace tramline::raw {

namespace {

// The value of a field after its two-character code; empty when shorter.
std::string_view afterCode(std::string_view field) {
    return field.size() > 2 ? field.substr(2) : std::string_view{};
}

bool number(std::string_view text, double &value) {
    return parseNumber(text, value);
}

void readHorizontal(std::string_view field, Observation &obs) {
    if (field.starts_with("BR")) {
        // "BRN45.3000E": the quadrant from the third and the last character.
        const char ns = field.size() > 2 ? field[2] : ' ';
        const char ew = field.empty() ? ' ' : field.back();
        if (ns == 'N')
            obs.horizontalKind = ew == 'W' ? HorizontalKind::NW : HorizontalKind::NE;
        else
            obs.horizontalKind = ew == 'W' ? HorizontalKind::SW : HorizontalKind::SE;
        std::string_view value = field.size() > 3 ? field.substr(3) : std::string_view{};
        if (!value.empty() && (value.back() == 'E' || value.back() == 'W'))
            value.remove_suffix(1);
        obs.hasHorizontal = number(value, obs.horizontal);
        return;
    }
    obs.horizontalKind = horizontalKindFromName(field.substr(0, 2));
    obs.hasHorizontal = number(afterCode(field), obs.horizontal);
}

// Brings the observation into vertical angle and slope distance.
void normalise(Observation &obs, AngleUnit unit) {
    if (!obs.hasVertical)
        return;
    const bool horizontal = obs.distanceKind == DistanceKind::Horizontal;
    switch (obs.verticalKind) {
    case VerticalKind::ZE: {
        // (360 - z) - 270 rather than 90 - z: the same, as collectors compute it.
        const double z = angleToDegrees(obs.verticalAngle, unit);
        obs.verticalAngle = angleFromDegrees((360.0 - z) - 270.0, unit);
        break;
    }
    case VerticalKind::CE: {
        const double ce = obs.verticalAngle;
        if (!obs.hasDistance) {
            obs.verticalAngle = 0.0;
            obs.hasVertical = false;
            break;
        }
        double va = 0.0;
        if (horizontal) {
            const double h = obs.slopeDistance;
            obs.slopeDistance = std::sqrt(h * h + ce * ce);
            va = h != 0.0 ? std::atan(ce / h) * kDegreesPerRadian
                          : (ce != 0.0 ? std::copysign(90.0, ce) : 0.0);
        } else {
            const double s = obs.slopeDistance;
            const double h2 = s * s - ce * ce;
            const double h = h2 > 0.0 ? std::sqrt(h2) : 0.0;
            va = h > 0.0 ? std::atan(ce / h) * kDegreesPerRadian : 0.0;
        }
        obs.verticalAngle = angleFromDegrees(va, unit);
        break;
    }
    case VerticalKind::VA:
        if (horizontal && obs.hasDistance) {
            const double c = std::cos(radians(angleToDegrees(obs.verticalAngle, unit)));
            if (c != 0.0)
                obs.slopeDistance = std::fabs(obs.slopeDistance / c);
        }
        break;
    case VerticalKind::None:
        break;
    }
}

void readObservation(const std::vector<std::string_view> &parts, const RawUnits &units,
                     RawNode &node) {
    Observation &obs = node.observation;
    obs.type.assign(parts[0]);
    if (parts.size() > 1)
        obs.occupied.assign(afterCode(parts[1]));
    if (parts.size() > 2)
        obs.foresight.assign(afterCode(parts[2]));
    if (parts.size() > 3)
        readHorizontal(parts[3], obs);
    if (parts.size() > 4) {
        const std::string_view code = parts[4].substr(0, 2);
        obs.verticalKind = code == "ZE"   ? VerticalKind::ZE
                           : code == "CE" ? VerticalKind::CE
                                          : VerticalKind::VA;
        obs.hasVertical = number(afterCode(parts[4]), obs.verticalAngle);
        obs.hasWrittenVertical = obs.hasVertical;
        obs.writtenVertical = obs.verticalAngle;
    }
    if (parts.size() > 5) {
        const char first = parts[5].empty() ? ' ' : parts[5][0];
        obs.distanceKind =
            (first == 'H' || first == 'h') ? DistanceKind::Horizontal : DistanceKind::Slope;
        obs.hasDistance = number(afterCode(parts[5]), obs.slopeDistance);
    }
    if (parts.size() > 6 && parts[6].size() > 2)
        obs.description.assign(parts[6].substr(2));
    normalise(obs, units.angle);
    if (obs.hasHorizontal && obs.hasWrittenVertical && obs.hasDistance)
        return;
    // The field texts as written, for values that are not numbers: the
    // editor shows those as they stand rather than as zero.
    node.fields.assign(6, std::string{});
    for (size_t i = 1; i < parts.size() && i < 6; ++i)
        node.fields[i - 1].assign(afterCode(parts[i]));
    if (parts.size() > 3 && parts[3].starts_with("BR")) {
        std::string_view value = parts[3].size() > 3 ? parts[3].substr(3) : std::string_view{};
        if (!value.empty() && (value.back() == 'E' || value.back() == 'W'))
            value.remove_suffix(1);
        node.fields[2].assign(value);
    }
    node.fields[5] = obs.description;
}

struct PositionalRecord {
    std::string_view name;
    RecordType type;
    size_t fieldCount; ///< the last field keeps any further commas
};

// Records read by position into their fields (codes removed).
constexpr PositionalRecord kPositional[] = {
    {"SP", RecordType::StorePoint, 5},       {"BK", RecordType::Backsight, 4},
    {"GPS", RecordType::GpsPosition, 5},     {"CSE", RecordType::ControlErrors, 4},
    {"SSE", RecordType::SetupErrors, 4},     {"MSE", RecordType::MeasurementErrors, 6},
    {"AZ", RecordType::ReferenceAzimuth, 3}, {"EL", RecordType::Elevation, 2},
};

} // namespace

bool parseRawLine(std::string_view line, const RawUnits &units, RawNode &node) {
    if (line.size() < 3)
        return false;
    node = RawNode{};
    const size_t comma = line.find(',');
    const std::string_view type =
        comma == std::string_view::npos ? std::string_view{} : line.substr(0, comma);
    const std::string_view rest =
        comma == std::string_view::npos ? std::string_view{} : line.substr(comma + 1);
    thread_local std::vector<std::string_view> parts;

    if (!type.empty() && type.substr(0, 2) != "--") {
        if (isObservationType(type)) {
            splitAtMost(line, ',', 7, parts);
            node.type = RecordType::Observation;
            node.name.assign(type);
            readObservation(parts, units, node);
            return true;
        }
        for (const auto &record : kPositional) {
            if (record.name != type)
                continue;
            splitAtMost(rest, ',', record.fieldCount, parts);
            node.type = record.type;
            node.name.assign(type);
            for (std::string_view p : parts)
                node.fields.emplace_back(afterCode(p));
            return true;
        }
        if (type == "LS") {
            // Heights come in three forms; here the code decides which is which.
            splitAtMost(rest, ',', 2, parts);
            node.type = RecordType::Heights;
            node.name = "LS";
            node.fields.assign(2, std::string{});
            for (std::string_view p : parts) {
                if (p.starts_with("HI")) {
                    node.fields[0].assign(afterCode(p));
                    node.hasHi = true;
                } else if (p.starts_with("HR")) {
                    node.fields[1].assign(afterCode(p));
                    node.hasHr = true;
                }
            }
            return true;
        }
        if (type == "BP") {
            splitAtMost(rest, ',', 5, parts);
            node.type = RecordType::BasePoint;
            node.name = "BP";
            for (size_t i = 0; i < parts.size(); ++i)
                node.fields.emplace_back(i < 4 ? afterCode(parts[i]) : parts[i]);
            // The fifth piece is either "--description" or the extra fields
            // (AG, PA, AT, then a note or SR), kept whole.
            if (node.fields.size() == 5 && node.fields[4].starts_with("--"))
                node.fields[4].erase(0, 2);
            return true;
        }
        if (type == "NAME") {
            node.type = RecordType::TraverseName;
            node.name = "NAME";
            node.fields.emplace_back(rest);
            return true;
        }
        if (type == "G0" || type == "G1" || type == "G2" || type == "G3") {
            node.type = RecordType::GpsVector;
            node.name.assign(type);
            node.fields.emplace_back(rest);
            return true;
        }
        if (type == "OC") {
            // The grid shows and saves the line as it stands; the fields are
            // for computation. A line not in the strict form keeps its
            // point and no coordinates.
            node.type = RecordType::Occupy;
            node.name = "OC";
            node.text.assign(line.substr(0, kTextRowLimit));
            node.fields.assign(5, std::string{});
            RawFields f;
            if (ClassifyRawLine(line, JobRecords::Unrecognised, f) == kOccupy) {
                for (size_t i = 0; i < node.fields.size(); ++i)
                    node.fields[i] = std::move(f[i]);
            } else {
                node.fields[kOccupiedPoint] = occupiedPointOf(line);
            }
            return true;
        }
        if (type == "DO") {
            node.type = RecordType::DataOnOff;
            node.name = "DO";
            return true;
        }
    }
    node.type = RecordType::Text;
    node.text.assign(line.substr(0, kTextRowLimit));
    return true;
}

Status readRaw(std::istream &in, RawFile &file) {
    file = RawFile{};
    // Reserve for the whole file when its size is known: growing a vector
    // of a million records moves every one of them several times.
    const auto start = in.tellg();
    if (start != std::streampos(-1) && in.seekg(0, std::ios::end)) {
        const auto end = in.tellg();
        in.seekg(start);
        if (end > start)
            file.nodes.reserve(static_cast<size_t>(end - start) / 40 + 16);
    }
    in.clear();
    LineReader reader(in, kRawLineBuffer);
    std::string line;
    while (reader.next(line)) {
        applyUnitsLine(line, file.units);
        // Parsed in place: a million records are not moved once more.
        RawNode &node = file.nodes.emplace_back();
        if (!parseRawLine(line, file.units, node)) {
            file.nodes.pop_back();
            continue;
        }
        node.lineNumber = reader.lineNumber();
        if (node.type == RecordType::Observation &&
            node.observation.verticalKind != VerticalKind::None)
            file.verticalMode = node.observation.verticalKind;
    }
    if (reader.failed())
        return Status::failure(StatusCode::Io, tr("Error: unable to read raw file"),
                               reader.lineNumber() + 1);
    return Status::success();
}

Status readRawFile(const std::filesystem::path &path, RawFile &file) {
    // Only a plain file: a FIFO or a device would block or never end.
    std::error_code ec;
    std::ifstream in;
    if (std::filesystem::is_regular_file(path, ec))
        in.open(path, std::ios::binary);
    if (!in.is_open())
        return Status::failure(StatusCode::NotFound, tr("Error: unable to read raw file"));
    return readRaw(in, file);
}

} // namespace tramline::raw

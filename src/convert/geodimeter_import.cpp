// Labels fill a current point one by one; a new point (label 5), a new
// station (2) or a reference object (62) ends the point before it, and
// the point's lines are written then: the shot, and the store-point line
// when it carried coordinates.
//
// Decisions of ours where the format leaves room:
// - a station's backsight is the line of its label 21 when it has one;
//   else the first point measured from it is its backsight, and
//   "BK,OP%s,BP%s,BS,BC%.4f" (that point and its horizontal angle) is
//   written before that point's shot;
// - the bearing of a label-21 backsight is known when the station and the
//   reference object both have coordinates by then;
// - a shot with a horizontal distance (label 11) and no slope distance is
//   written with "HD%.4f" in place of the slope distance; a shot without a
//   vertical angle gets the zenith angle 90 (a level sight);
// - label 24, the face-one horizontal angle, stands in for label 7 when a
//   point has none; other face-two labels are not used;
// - a shot to a point that a later station occupies is a traverse shot
//   (TR), others are sideshots (SS);
// - "REDUCED" and "RESULT" in a remark mark computed values that follow
//   the field data; the remark itself is not written (the coordinates
//   after it are written as for any point);
// - with info codes on, labels 60 and 61 are added to the description of
//   the current point instead of being written as notes;
// - angles are ddd.mmss, as the instruments are usually set, unless an
//   angle of the file cannot be (above 360, or minutes or seconds above
//   60): then the whole file is in gons and angles are turned to ddd.mmss;
// - the job line takes labels 50, 51 and 52 and the mode line says metres.
#include "convert/geodimeter_import.h"

#include "base/angles.h"
#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"
#include "convert/geodimeter_labels.h"
#include "convert/geodimeter_reader.h"
#include "raw/writer.h"

#include <cmath>
#include <optional>
#include <unordered_map>

namespace tramline::convert {

namespace {

using namespace geodimeter;

struct Coordinates {
    double northing = 0.0, easting = 0.0;
};

struct CurrentPoint {
    enum class Kind { None, Station, Reference, Measured } kind = Kind::None;
    std::string name, code;
    std::size_t line = 0;
    std::optional<double> horizontal, faceOne, vertical, slope, horizontalDistance;
    std::optional<double> northing, easting, elevation;
};

std::optional<double> numberOf(std::string_view text) {
    double value = 0.0;
    if (!parseNumber(trim(text), value) || !std::isfinite(value))
        return std::nullopt;
    return value;
}

std::string stripped(std::string_view code) {
    std::string out;
    for (char c : code)
        if (c != '.')
            out += c;
    return out;
}

class GeodimeterImport {
public:
    GeodimeterImport(const SourceLines &source, const GeodimeterOptions &options, ImportOutput &out)
        : m_source(source), m_options(options), m_out(out) {}

    bool run();

private:
    void emit(std::string_view line) { m_out.lines.push_back(line); }
    void skip(const char *reason) { ++m_out.skipped[reason]; }
    void label(const LabelLine &line, std::size_t index);
    void startPoint(CurrentPoint::Kind kind, std::string_view name, std::size_t index);
    void finishPoint();
    void writeShot();
    void writeReferenceBacksight(std::string_view circle);
    // An angle of the file as ddd.mmss with four decimals.
    std::string angle(double value) const {
        return m_gons ? formatDms(gonsToDegrees(value)) : format("%.4f", value);
    }
    bool laterStation(const std::string &name, std::size_t index) const {
        const auto it = m_lastStationLine.find(name);
        return it != m_lastStationLine.end() && it->second > index;
    }

    const SourceLines &m_source;
    GeodimeterOptions m_options;
    ImportOutput &m_out;

    CurrentPoint m_point;
    std::string m_station, m_reference;
    bool m_backsightOpen = false;
    std::string m_job, m_date, m_time;
    std::unordered_map<std::string, Coordinates> m_known;
    std::unordered_map<std::string, std::size_t> m_lastStationLine;
    bool m_gons = false;
};

bool isAngleLabel(int label) {
    return label == 7 || label == 8 || label == 17 || label == 21 || label == 24;
}

bool GeodimeterImport::run() {
    bool anyLabel = false;
    for (std::size_t i = 0; i < m_source.size(); ++i) {
        const LabelLine line = readLabelLine(m_source[i].text);
        if (line.kind == LineKind::Label) {
            anyLabel = true;
            if (line.label == 2)
                m_lastStationLine[std::string(line.value)] = i;
            if (isAngleLabel(line.label)) {
                const auto angle = numberOf(line.value);
                if (angle && (*angle > 360.0 || !isValidDms(*angle)))
                    m_gons = true;
            }
        }
    }
    if (!anyLabel)
        return false;

    m_out.lines.reserve(m_source.size() / 2 + 4);
    for (std::size_t i = 0; i < m_source.size(); ++i) {
        const LabelLine line = readLabelLine(m_source[i].text);
        switch (line.kind) {
        case LineKind::HighLabel:
            skip(trNoop("label above 74"));
            break;
        case LineKind::Remark:
            ++m_out.records;
            emit(raw::writeNote(line.value));
            break;
        case LineKind::Label:
            label(line, i);
            break;
        }
    }
    finishPoint();

    m_out.lines.insertFront(
        {raw::writeJob(m_job, m_date, m_time), raw::writeMode(LinearUnit::Metres)});
    m_out.completion = tr("Done.");
    return true;
}

void GeodimeterImport::label(const LabelLine &line, std::size_t index) {
    const LabelInfo info = geodimeterLabel(line.label);
    const std::string value(line.value);
    ++m_out.records;
    switch (info.role) {
    case LabelRole::Unused:
        --m_out.records;
        skip(trNoop("label not used"));
        break;
    case LabelRole::Remark:
        if (value.find("REDUCED") != std::string::npos ||
            value.find("RESULT") != std::string::npos) {
            --m_out.records;
            skip(trNoop("marker of computed values"));
        } else if (!value.empty()) {
            emit(raw::writeNote(value));
        }
        break;
    case LabelRole::Station:
        startPoint(CurrentPoint::Kind::Station, value, index);
        m_station = value;
        m_reference.clear();
        m_backsightOpen = true;
        break;
    case LabelRole::InstrumentHeight:
        emit(raw::writeInstrumentHeight(value));
        break;
    case LabelRole::Code:
        m_point.code = m_options.stripDecimal ? stripped(value) : value;
        break;
    case LabelRole::PointNumber:
        startPoint(CurrentPoint::Kind::Measured, value, index);
        break;
    case LabelRole::TargetHeight:
        emit(raw::writeRodHeight(value));
        break;
    case LabelRole::HorizontalAngle:
        m_point.horizontal = numberOf(value);
        break;
    case LabelRole::FaceOneAngle:
        m_point.faceOne = numberOf(value);
        break;
    case LabelRole::VerticalAngle:
        m_point.vertical = numberOf(value);
        break;
    case LabelRole::SlopeDistance:
        m_point.slope = numberOf(value);
        break;
    case LabelRole::HorizontalDistance:
        m_point.horizontalDistance = numberOf(value);
        break;
    case LabelRole::ReferenceAngle:
        writeReferenceBacksight(value);
        break;
    case LabelRole::Northing:
        m_point.northing = numberOf(value);
        break;
    case LabelRole::Easting:
        m_point.easting = numberOf(value);
        break;
    case LabelRole::Elevation:
        m_point.elevation = numberOf(value);
        break;
    case LabelRole::Info:
        if (m_options.infoCodes && m_point.kind != CurrentPoint::Kind::None) {
            if (!m_point.code.empty())
                m_point.code += ' ';
            m_point.code += value;
        } else {
            emit(format("--%d=%s\n", line.label, value.c_str()));
        }
        break;
    case LabelRole::ReferenceObject:
        startPoint(CurrentPoint::Kind::Reference, value, index);
        m_reference = value;
        break;
    case LabelRole::Note:
        emit(format(info.note, value.c_str()));
        break;
    }
    if (line.label == 50)
        m_job = value;
    else if (line.label == 51)
        m_date = value;
    else if (line.label == 52)
        m_time = value;
}

void GeodimeterImport::startPoint(CurrentPoint::Kind kind, std::string_view name,
                                  std::size_t index) {
    finishPoint();
    m_point.kind = kind;
    m_point.name = std::string(name);
    m_point.line = index;
}

void GeodimeterImport::finishPoint() {
    CurrentPoint &p = m_point;
    if (p.kind == CurrentPoint::Kind::Measured &&
        (p.horizontal || p.faceOne || p.vertical || p.slope || p.horizontalDistance))
        writeShot();
    if (p.kind != CurrentPoint::Kind::None && p.northing && p.easting) {
        crd::CrdPoint point;
        point.set(*p.easting, *p.northing, p.elevation.value_or(0.0), p.name, p.code);
        m_out.points.push_back(point);
        m_known[point.name] = {point.northing, point.easting};
        emit(raw::writeStorePoint(point.name, point.northing, point.easting, point.elevation,
                                  point.description));
    }
    p = CurrentPoint();
}

void GeodimeterImport::writeShot() {
    const CurrentPoint &p = m_point;
    const double horizontal = p.horizontal.value_or(p.faceOne.value_or(0.0));
    if (m_station.empty()) {
        skip(trNoop("point measured without a station"));
        return;
    }
    if (m_backsightOpen) {
        emit(format("BK,OP%s,BP%s,BS,BC%s\n", m_station.c_str(), p.name.c_str(),
                    angle(horizontal).c_str()));
        m_backsightOpen = false;
    }
    std::string distance = "SD0.0";
    if (p.slope)
        distance = format("SD%.4f", *p.slope);
    else if (p.horizontalDistance)
        distance = format("HD%.4f", *p.horizontalDistance);
    const std::string zenith = p.vertical ? angle(*p.vertical) : std::string("90.0000");
    emit(format("%s,OP%s,FP%s,AR%s,ZE%s,%s,--%s\n", laterStation(p.name, p.line) ? "TR" : "SS",
                m_station.c_str(), p.name.c_str(), angle(horizontal).c_str(), zenith.c_str(),
                distance.c_str(), p.code.c_str()));
    ++m_out.observations;
}

void GeodimeterImport::writeReferenceBacksight(std::string_view circle) {
    // The reference object's coordinates, read just before, count as known.
    if (m_point.kind == CurrentPoint::Kind::Reference && m_point.northing && m_point.easting)
        m_known[m_point.name] = {*m_point.northing, *m_point.easting};
    const auto from = m_known.find(m_station);
    const auto to = m_reference.empty() ? m_known.end() : m_known.find(m_reference);
    std::string bearing;
    if (from != m_known.end() && to != m_known.end()) {
        const double dN = to->second.northing - from->second.northing;
        const double dE = to->second.easting - from->second.easting;
        if (dN != 0.0 || dE != 0.0)
            bearing = formatDms(normalizeDegrees(degrees(std::atan2(dE, dN))));
    }
    const auto reading = numberOf(circle);
    const std::string c = reading ? angle(*reading) : std::string(circle);
    if (m_reference.empty())
        emit(format("BK,OP%s,BP,BS%s,BC%s\n", m_station.c_str(), bearing.c_str(), c.c_str()));
    else if (!bearing.empty())
        emit(format("BK,OP%s,BP%s,BS%s,BC%s\n", m_station.c_str(), m_reference.c_str(),
                    bearing.c_str(), c.c_str()));
    else
        emit(format("BK,OP%s,BP%s,BS,BC%s\n", m_station.c_str(), m_reference.c_str(), c.c_str()));
    m_backsightOpen = false;
}

} // namespace

Status importGeodimeterWith(const SourceLines &source, const GeodimeterOptions &options,
                            ImportOutput &out) {
    GeodimeterImport import(source, options, out);
    if (!import.run())
        return Status::failure(StatusCode::Format, tr("Error: not a Geodimeter file"));
    return Status::success();
}

Status importGeodimeter(const SourceLines &source, Interaction &ui, ImportOutput &out) {
    bool anyLabel = false;
    for (const auto &line : source)
        anyLabel = anyLabel || readLabelLine(line.text).kind == LineKind::Label;
    if (!anyLabel)
        return Status::failure(StatusCode::Format, tr("Error: not a Geodimeter file"));
    GeodimeterOptions options;
    if (!askGeodimeterOptions(ui, options))
        return Status::failure(StatusCode::Cancelled, tr("Function cancelled at user request"));
    return importGeodimeterWith(source, options, out);
}

} // namespace tramline::convert

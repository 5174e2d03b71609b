// The Display commands over an open document: observation cells rewritten
// from one form to another. Every value is converted from its cell's text
// (four decimals for angles and elevation differences, three for
// distances), so each conversion uses the row's other values as they stand
// at that moment; repeated switching may move the last place by rounding.
#include "base/format.h"
#include "base/text.h"
#include "raw/angle_math.h"
#include "raw/classify.h"
#include "raw/document.h"

#include <cmath>
#include <optional>
#include <sstream>

namespace tramline::raw {

namespace {

std::optional<double> number(const std::string &text) {
    double v;
    if (parseNumber(text, v))
        return v;
    return std::nullopt;
}

std::string formatAngle(double decimalDegrees, AngleUnit unit) {
    return unit == AngleUnit::Gons ? format("%.4f", degreesToGons(decimalDegrees))
                                   : formatDms(decimalDegrees, 4);
}

// An observation row's vertical angle (decimal degrees) and slope distance
// as its cells give them in the current modes. Either may be unknown.
struct Shot {
    std::optional<double> verticalAngle;
    std::optional<double> slope;
};

Shot readShot(const RawRow &row, VerticalMode vertical, DistanceMode distance, AngleUnit unit) {
    Shot shot;
    const auto v = number(row.cells[kVerticalCell]);
    const auto d = number(row.cells[kDistanceCell]);
    if (v) {
        switch (vertical) {
        case VerticalMode::VerticalAngle:
        case VerticalMode::None:
            shot.verticalAngle = angleToDegrees(*v, unit);
            break;
        case VerticalMode::Zenith:
            shot.verticalAngle = 90.0 - angleToDegrees(*v, unit);
            break;
        case VerticalMode::ElevationDifference:
            // An elevation difference says nothing without its distance.
            if (d) {
                double horizontal = std::fabs(*d);
                if (distance == DistanceMode::Slope)
                    horizontal = std::sqrt(std::max(0.0, *d * *d - *v * *v));
                shot.verticalAngle = degrees(std::atan2(*v, horizontal));
            }
            break;
        }
    }
    if (d) {
        if (distance == DistanceMode::Slope) {
            shot.slope = *d;
        } else {
            const double c = std::fabs(std::cos(radians(shot.verticalAngle.value_or(0.0))));
            if (c > 1e-12)
                shot.slope = *d / c;
        }
    }
    return shot;
}

bool isAngleRecordRow(const std::string &type) {
    return type == "BK" || type == "AZ";
}

bool isGonsNote(const RawRow &row) {
    if (!row.type.empty() || row.cells.empty())
        return false;
    return trimRight(row.cells[0]) == "UNITS GONS";
}

} // namespace

void RawDocument::resetCorruptVerticalMode() {
    m_modes.vertical = m_modes.verticalMode();
}

int RawDocument::changeVerticalMode(VerticalMode mode) {
    resetCorruptVerticalMode();
    const VerticalMode from = m_modes.verticalMode();
    const DistanceMode distance = m_modes.distanceMode();
    m_modes.vertical = DisplayModes::isVerticalMode(mode) ? mode : VerticalMode::Zenith;
    const VerticalMode to = m_modes.verticalMode();
    const AngleUnit unit = m_units.angle;
    int count = 0;
    for (RawRow &row : m_rows) {
        if (!isObservationType(row.type) || row.cells.size() < 7 ||
            row.cells[kVerticalCell].empty())
            continue;
        const Shot shot = readShot(row, from, distance, unit);
        std::string text;
        if (shot.verticalAngle) {
            switch (to) {
            case VerticalMode::VerticalAngle:
            case VerticalMode::None:
                text = formatAngle(*shot.verticalAngle, unit);
                break;
            case VerticalMode::Zenith:
                text = formatAngle(90.0 - *shot.verticalAngle, unit);
                break;
            case VerticalMode::ElevationDifference:
                if (shot.slope)
                    text = format("%.4f", *shot.slope * std::sin(radians(*shot.verticalAngle)));
                break;
            }
        } else if (!number(row.cells[kVerticalCell])) {
            continue; // text that is no number stays as the user typed it
        }
        row.cells[kVerticalCell] = text;
        ++count;
    }
    return count;
}

int RawDocument::changeDistanceMode(DistanceMode mode) {
    resetCorruptVerticalMode();
    const DistanceMode from = m_modes.distanceMode();
    m_modes.distance = mode == DistanceMode::Horizontal ? mode : DistanceMode::Slope;
    const DistanceMode to = m_modes.distanceMode();
    const VerticalMode vertical = m_modes.verticalMode();
    const AngleUnit unit = m_units.angle;
    int count = 0;
    for (RawRow &row : m_rows) {
        if (!isObservationType(row.type) || row.cells.size() < 7 ||
            !number(row.cells[kDistanceCell]))
            continue;
        const Shot shot = readShot(row, vertical, from, unit);
        if (!shot.slope)
            continue; // a horizontal distance straight up or down has no slope
        const double va = radians(shot.verticalAngle.value_or(0.0));
        const double value =
            to == DistanceMode::Slope ? *shot.slope : std::fabs(*shot.slope * std::cos(va));
        row.cells[kDistanceCell] = format("%.3f", value);
        ++count;
    }
    return count;
}

int RawDocument::changeAngleMode(AngleUnit unit) {
    resetCorruptVerticalMode();
    m_modes.angle = unit == AngleUnit::Gons ? unit : AngleUnit::DegreesMinutesSeconds;
    const AngleUnit from = m_units.angle;
    const AngleUnit to = m_modes.angle;
    if (from == to)
        return 0;
    auto convert = [&](std::string &cell) {
        const auto v = number(cell);
        if (!v)
            return 0;
        cell = formatAngle(angleToDegrees(*v, from), to);
        return 1;
    };
    const bool verticalIsAngle = m_modes.verticalMode() != VerticalMode::ElevationDifference;
    int count = 0;
    for (RawRow &row : m_rows) {
        if (isObservationType(row.type) && row.cells.size() >= 7) {
            count += convert(row.cells[kHorizontalCell]);
            if (verticalIsAngle)
                count += convert(row.cells[kVerticalCell]);
        } else if (row.type == "BK") {
            for (size_t c = 2; c < row.cells.size() && c < 4; ++c)
                count += convert(row.cells[c]);
        } else if (isAngleRecordRow(row.type) && row.cells.size() >= 3) {
            count += convert(row.cells[2]);
        }
    }
    markAngleUnit(to);
    return count;
}

// Makes the rows declare the angle unit their cells now hold: the AU value
// of every mode record, or, in a file without one, a "--UNITS GONS" note at
// the top (removed again when the angles go back to ddd.mmss).
void RawDocument::markAngleUnit(AngleUnit unit) {
    m_units.angle = unit;
    const char digit = unit == AngleUnit::Gons ? '1' : '0';
    bool modeRecord = false;
    for (RawRow &row : m_rows) {
        if (row.type != "DS" || row.cells.empty() || !row.cells[0].starts_with("MO,"))
            continue;
        modeRecord = true;
        std::string &text = row.cells[0];
        const size_t au = text.find(",AU");
        if (au == std::string::npos)
            text += unit == AngleUnit::Gons ? ",AU1" : ",AU0";
        else if (au + 3 < text.size())
            text[au + 3] = digit;
        else
            text.push_back(digit);
    }
    std::erase_if(m_rows, isGonsNote);
    if (!modeRecord && unit == AngleUnit::Gons)
        m_rows.insert(m_rows.begin(), RawRow{"", {"UNITS GONS"}});
}

bool RawDocument::records(RawFile &file) const {
    std::istringstream in(text());
    return readRaw(in, file).ok();
}

} // namespace tramline::raw

// The Display commands over an open document: observation cells rewritten
// from one form to another. A row remembers its cells as they were before
// the first change touched it (RowOrigin), and every change converts from
// those texts in full precision: only the shown text is rounded, so going
// back to the first modes gives back the first texts byte for byte, and
// looking never moves a value a later Process computes with.
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

Shot readShot(const RowOrigin &origin) {
    const VerticalMode vertical = origin.vertical;
    const DistanceMode distance = origin.distance;
    const AngleUnit unit = origin.angle;
    Shot shot;
    const auto v = number(origin.cells[kVerticalCell]);
    const auto d = number(origin.cells[kDistanceCell]);
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

// The row's origin, taken now if no display change has touched it yet.
const RowOrigin &originOf(RawRow &row, const DisplayModes &modes, AngleUnit unit) {
    if (!row.origin)
        row.origin = RowOrigin{row.cells, modes.verticalMode(), modes.distanceMode(), unit};
    return *row.origin;
}

// "None" shows vertical angles.
VerticalMode shownAs(VerticalMode mode) {
    return mode == VerticalMode::None ? VerticalMode::VerticalAngle : mode;
}

std::string angleText(const std::string &text, AngleUnit from, AngleUnit to) {
    const auto v = number(text);
    if (from == to || !v)
        return text;
    return formatAngle(angleToDegrees(*v, from), to);
}

// The vertical cell in mode `to` and unit `unit`; empty when the origin
// cannot give it (an elevation difference without its distance).
std::string verticalText(const RowOrigin &origin, VerticalMode to, AngleUnit unit) {
    const std::string &text = origin.cells[kVerticalCell];
    if (shownAs(origin.vertical) == shownAs(to) &&
        (to == VerticalMode::ElevationDifference || origin.angle == unit))
        return text;
    if (!number(text))
        return text; // text that is no number stays as the user typed it
    const Shot shot = readShot(origin);
    if (!shot.verticalAngle)
        return {};
    switch (to) {
    case VerticalMode::VerticalAngle:
    case VerticalMode::None:
        return formatAngle(*shot.verticalAngle, unit);
    case VerticalMode::Zenith:
        return formatAngle(90.0 - *shot.verticalAngle, unit);
    case VerticalMode::ElevationDifference:
        if (shot.slope)
            return format("%.4f", *shot.slope * std::sin(radians(*shot.verticalAngle)));
        break;
    }
    return {};
}

// The distance cell in mode `to`; nullopt when the origin has no slope
// distance to give (a horizontal distance straight up or down).
std::optional<std::string> distanceText(const RowOrigin &origin, DistanceMode to) {
    const std::string &text = origin.cells[kDistanceCell];
    if (origin.distance == to || !number(text))
        return text;
    const Shot shot = readShot(origin);
    if (!shot.slope)
        return std::nullopt;
    const double va = radians(shot.verticalAngle.value_or(0.0));
    const double value =
        to == DistanceMode::Slope ? *shot.slope : std::fabs(*shot.slope * std::cos(va));
    return format("%.3f", value);
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
    const DisplayModes before = m_modes;
    m_modes.vertical = DisplayModes::isVerticalMode(mode) ? mode : VerticalMode::Zenith;
    const VerticalMode to = m_modes.verticalMode();
    int count = 0;
    for (RawRow &row : m_rows) {
        if (!isObservationType(row.type) || row.cells.size() < 7)
            continue;
        // A value an earlier change could not give is still in the origin.
        const auto &first = row.origin ? row.origin->cells : row.cells;
        if (!number(first[kVerticalCell]))
            continue; // empty, or text that is no number: stays as typed
        const RowOrigin &origin = originOf(row, before, m_units.angle);
        row.cells[kVerticalCell] = verticalText(origin, to, m_units.angle);
        ++count;
    }
    return count;
}

int RawDocument::changeDistanceMode(DistanceMode mode) {
    resetCorruptVerticalMode();
    const DisplayModes before = m_modes;
    m_modes.distance = mode == DistanceMode::Horizontal ? mode : DistanceMode::Slope;
    const DistanceMode to = m_modes.distanceMode();
    int count = 0;
    for (RawRow &row : m_rows) {
        if (!isObservationType(row.type) || row.cells.size() < 7)
            continue;
        const auto &first = row.origin ? row.origin->cells : row.cells;
        if (!number(first[kDistanceCell]))
            continue;
        const RowOrigin &origin = originOf(row, before, m_units.angle);
        const auto text = distanceText(origin, to);
        if (!text)
            continue;
        row.cells[kDistanceCell] = *text;
        ++count;
    }
    return count;
}

int RawDocument::changeAngleMode(AngleUnit unit) {
    resetCorruptVerticalMode();
    const DisplayModes before = m_modes;
    m_modes.angle = unit == AngleUnit::Gons ? unit : AngleUnit::DegreesMinutesSeconds;
    const AngleUnit from = m_units.angle;
    const AngleUnit to = m_modes.angle;
    if (from == to)
        return 0;
    const VerticalMode vertical = m_modes.verticalMode();
    int count = 0;
    for (RawRow &row : m_rows) {
        auto convert = [&](size_t cell) {
            if (!number(row.cells[cell]))
                return 0;
            const RowOrigin &origin = originOf(row, before, from);
            row.cells[cell] = cell == kVerticalCell && isObservationType(row.type)
                                  ? verticalText(origin, vertical, to)
                                  : angleText(origin.cells[cell], origin.angle, to);
            return 1;
        };
        if (isObservationType(row.type) && row.cells.size() >= 7) {
            count += convert(kHorizontalCell);
            if (vertical != VerticalMode::ElevationDifference)
                count += convert(kVerticalCell);
        } else if (row.type == "BK") {
            for (size_t c = 2; c < row.cells.size() && c < 4; ++c)
                count += convert(c);
        } else if (isAngleRecordRow(row.type) && row.cells.size() >= 3) {
            count += convert(2);
        }
    }
    markAngleUnit(to, before, from);
    return count;
}

// Makes the rows declare the angle unit their cells now hold: the AU value
// of every mode record, or, in a file without one, a "--UNITS GONS" note at
// the top (removed again when the angles go back to ddd.mmss).
void RawDocument::markAngleUnit(AngleUnit unit, const DisplayModes &before, AngleUnit from) {
    m_units.angle = unit;
    const char digit = unit == AngleUnit::Gons ? '1' : '0';
    bool modeRecord = false;
    for (RawRow &row : m_rows) {
        if (row.type != "DS" || row.cells.empty() || !row.cells[0].starts_with("MO,"))
            continue;
        modeRecord = true;
        const RowOrigin &origin = originOf(row, before, from);
        std::string &text = row.cells[0];
        text = origin.cells[0];
        if (origin.angle == unit)
            continue; // the record as it was read
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
        m_rows.insert(m_rows.begin(), RawRow{"", {"UNITS GONS"}, std::nullopt});
}

void RawDocument::restoreRows(std::vector<RawRow> rows, const DisplayModes &shownIn,
                              AngleUnit unit) {
    const DisplayModes now = m_modes;
    m_rows = std::move(rows);
    m_modes = shownIn;
    m_units.angle = unit;
    changeVerticalMode(now.verticalMode());
    changeDistanceMode(now.distanceMode());
    changeAngleMode(now.angle);
    m_modes = now;
    m_modified = true;
}

bool RawDocument::records(RawFile &file) const {
    std::istringstream in(text());
    return readRaw(in, file).ok();
}

} // namespace tramline::raw

#include "geodesy/wkt.h"

#include "base/angles.h"
#include "base/atomic_save.h"
#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"
#include "base/units.h"
#include "geodesy/messages.h"

#include <algorithm>
#include <cmath>
#include <fstream>

namespace tramline::geodesy {

namespace {

std::string quoteSafe(std::string text) {
    std::replace(text.begin(), text.end(), '"', '\'');
    return text;
}

// Negation that never yields -0.0, which printf would show as "-0.00000".
double negated(double v) {
    return 0.0 - v;
}

std::string formatParameter(const char *name, ProjectionParameter parameter,
                            const ProjectionParameters &p) {
    switch (parameterKind(parameter)) {
    case ParameterKind::Angle:
        return format(",PARAMETER[\"%s\",%.11f]", name, radians(p.value(parameter)));
    case ParameterKind::Length:
        return format(",PARAMETER[\"%s\",%.4f]", name, p.value(parameter));
    case ParameterKind::Scale:
        return format(",PARAMETER[\"%s\",%.12f]", name, p.value(parameter));
    case ParameterKind::Integer:
        return format(",PARAMETER[\"%s\",%d]", name, p.denmarkArea);
    }
    return {};
}

// The text in lower case with everything inside quotes blanked out, so that
// keywords are only found where they are keywords: a name may well hold
// ",SPHEROID[" or "PARAMETER[".
std::string keywordsOnly(std::string_view s) {
    std::string out = toLower(s);
    bool quoted = false;
    for (char &c : out) {
        if (c == '"')
            quoted = !quoted;
        else if (quoted)
            c = ' ';
    }
    return out;
}

// Reads a number at `pos` of `text` up to the next ',' or ']'.
bool numberAt(std::string_view text, std::size_t pos, double &value, std::size_t *end = nullptr) {
    if (pos >= text.size())
        return false;
    std::size_t stop = text.find_first_of(",]", pos);
    if (stop == std::string_view::npos)
        return false;
    if (!parseNumber(text.substr(pos, stop - pos), value))
        return false;
    if (end)
        *end = stop;
    return true;
}

// The quoted text that starts at `pos` (just after the opening quote).
bool quotedAt(std::string_view text, std::size_t pos, std::string &value,
              std::size_t *end = nullptr) {
    const std::size_t close = text.find('"', pos);
    if (close == std::string_view::npos)
        return false;
    value.assign(text.substr(pos, close - pos));
    if (end)
        *end = close + 1;
    return true;
}

Status badValue(const std::string &what) {
    return Status::failure(StatusCode::Format, format(tr(messages::kBadWktValue), what.c_str()));
}

} // namespace

std::string writeWkt(const CoordinateSystem &system) {
    const Ellipsoid ellipsoid = system.ellipsoid();
    const DatumShift &s = system.shift;
    std::string out =
        format("COMPD_CS[\"%s\",PROJCS[\"\",GEOGCS[\"\",DATUM[\"%s\",SPHEROID[\"%s\",%.3f,%.11f],"
               "TOWGS84[%.5f,%.5f,%.5f,%.6f,%.6f,%.6f,%.8f]],",
               quoteSafe(system.name).c_str(), quoteSafe(system.datum).c_str(),
               quoteSafe(std::string(wktEllipsoidName(ellipsoid.name))).c_str(), ellipsoid.a,
               ellipsoid.inverseFlattening, negated(s.dx), negated(s.dy), negated(s.dz), s.rx, s.ry,
               s.rz, invertScalePpm(s.scalePpm));
    out += format(
        "PRIMEM[\"Greenwich\",0],UNIT[\"Radians\",1],AXIS[\"Long\",East],AXIS[\"Lat\",North]],"
        "PROJECTION[\"%s\"]",
        projectionTypeWktName(system.type));
    if (usesCoefficients(system.type)) {
        const auto &values = system.parameters.coefficients;
        const auto names = coefficientNames(system.type, values.size());
        for (std::size_t i = 0; i < names.size() && i < values.size(); ++i)
            out += format(",PARAMETER[\"%s\",%.15g]", names[i].c_str(), values[i]);
    } else {
        for (const auto &written : writtenParameters(system.type))
            out += formatParameter(written.wktName, written.parameter, system.parameters);
    }
    out += ",UNIT[\"Meters\",1],AXIS[\"East\",East],AXIS[\"North\",North]],VERT_CS[\"\",VERT_DATUM["
           "\"Ellipsoid\",2002],"
           "UNIT[\"Meters\",1],AXIS[\"Ellips height\",Up]]];\n";
    return out;
}

Status saveWkt(const CoordinateSystem &system, const std::filesystem::path &path, WktWrite mode) {
    const std::string line = writeWkt(system);
    if (mode == WktWrite::Append) {
        std::ofstream out(path, std::ios::binary | std::ios::app);
        if (out && out.write(line.data(), static_cast<std::streamsize>(line.size())) && out.flush())
            return Status::success();
    } else if (saveTextAtomically(path, line)) {
        return Status::success();
    }
    return Status::failure(StatusCode::Io,
                           format(tr(messages::kCannotWrite), path.string().c_str()));
}

Status readWkt(std::string_view line, CoordinateSystem &system) {
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r'))
        line.remove_suffix(1);
    if (!line.starts_with("COMPD_CS"))
        return Status::failure(StatusCode::Format, tr(messages::kNotWkt));
    const std::string low = keywordsOnly(line);
    CoordinateSystem cs;
    cs.parameters.scaleFactor = 1.0;

    std::size_t pos = low.find("compd_cs[\"");
    if (pos == std::string::npos || !quotedAt(line, pos + 10, cs.name))
        return Status::failure(StatusCode::Format, tr(messages::kNotWkt));

    if ((pos = low.find(",datum[\"")) != std::string::npos && !quotedAt(line, pos + 8, cs.datum))
        return badValue("DATUM");

    // A description without its ellipsoid or projection is not one of ours.
    if (low.find(",spheroid[\"") == std::string::npos ||
        low.find(",projection[\"") == std::string::npos)
        return Status::failure(StatusCode::Format, tr(messages::kNotWkt));
    if ((pos = low.find(",spheroid[\"")) != std::string::npos) {
        std::string name;
        std::size_t end = 0;
        double a = 0.0, inverseF = 0.0;
        if (!quotedAt(line, pos + 11, name, &end) || end >= line.size() || line[end] != ',' ||
            !numberAt(line, end + 1, a, &end) || end >= line.size() || line[end] != ',' ||
            !numberAt(line, end + 1, inverseF) || !usableEllipsoid(a, inverseF))
            return badValue("SPHEROID");
        const double f = inverseF == 0.0 ? 0.0 : 1.0 / inverseF;
        int index = findEllipsoidByName(name);
        if (index >= 0 && std::fabs(ellipsoidAt(index).a - a) > 1e-3)
            index = -1;
        if (index < 0)
            index = findEllipsoidByParameters(a, f);
        cs.ellipsoidIndex = index >= 0 ? index : kUserDefinedEllipsoid;
        if (index < 0) {
            cs.userSemiMajorAxis = a;
            cs.userInverseFlattening = inverseF;
        }
    }

    if ((pos = low.find(",towgs84[")) != std::string::npos) {
        double v[7];
        std::size_t at = pos + 9;
        for (int i = 0; i < 7; ++i) {
            std::size_t end = 0;
            // Shifts beyond the earth, rotations beyond a turn and scales
            // beyond a factor of two are no datum's, and do not survive the
            // inversion the writer applies.
            const double limit = i < 3 ? 1e7 : i < 6 ? 1296000.0 : 1e6;
            if (!numberAt(line, at, v[i], &end) || (i < 6 && line[end] != ',') ||
                !std::isfinite(v[i]) || std::fabs(v[i]) > limit)
                return badValue("TOWGS84");
            at = end + 1;
        }
        cs.shift = {negated(v[0]), negated(v[1]), negated(v[2]),       v[3],
                    v[4],          v[5],          invertScalePpm(v[6])};
    }

    std::optional<ProjectionType> type;
    if ((pos = low.find(",projection[\"")) != std::string::npos) {
        std::string name;
        if (!quotedAt(line, pos + 13, name) || !(type = projectionTypeFromWktName(name)))
            return badValue("PROJECTION");
        cs.type = *type;
    }

    // Angles come in the unit of the geographic part, which is the first
    // UNIT of the text; the program's own files say radians.
    double angleToDegrees = kDegreesPerRadian;
    if (const std::size_t geog = low.find("geogcs["); geog != std::string::npos) {
        const std::size_t unit = low.find("unit[\"", geog);
        const std::size_t close = unit == std::string::npos ? unit : low.find('"', unit + 6);
        double factor = 0.0;
        if (close != std::string::npos && close + 1 < low.size() && low[close + 1] == ',' &&
            numberAt(line, close + 2, factor) && factor > 0.0)
            angleToDegrees = factor * kDegreesPerRadian;
    }
    bool usFeet = false;
    for (pos = low.find(",unit[\""); pos != std::string::npos;
         pos = low.find(",unit[\"", pos + 1)) {
        std::string unit;
        if (quotedAt(line, pos + 7, unit) && equalsIgnoreCase(unit, "foot_us"))
            usFeet = true;
    }

    for (pos = low.find("parameter[\""); pos != std::string::npos;
         pos = low.find("parameter[\"", pos + 1)) {
        std::string name;
        std::size_t end = 0;
        double value = 0.0;
        if (!quotedAt(line, pos + 11, name, &end) || end >= line.size() || line[end] != ',' ||
            !numberAt(line, end + 1, value) || !std::isfinite(value))
            return badValue(name.empty() ? "PARAMETER" : name);
        if (usesCoefficients(cs.type)) {
            cs.setCoefficient(name, value); // other names: another program's parameters
            continue;
        }
        const auto parameter = parameterFromWktName(name);
        if (!parameter)
            continue; // another program's parameter that this type does not use
        switch (parameterKind(*parameter)) {
        case ParameterKind::Angle:
            // Beyond a full turn an angle is no projection's, and it would
            // not come back the same through the writer.
            value *= angleToDegrees;
            if (!std::isfinite(value) || std::fabs(value) > 360.0)
                return badValue(name);
            break;
        case ParameterKind::Length:
            if (usFeet)
                value /= kUsSurveyFeetPerMetre;
            break;
        case ParameterKind::Scale:
        case ParameterKind::Integer:
            break;
        }
        cs.parameters.setValue(*parameter, value);
    }
    system = std::move(cs);
    return Status::success();
}

Status loadWkt(const std::filesystem::path &path, std::vector<CoordinateSystem> &systems) {
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return Status::failure(StatusCode::Io,
                               format(tr(messages::kCannotOpen), path.string().c_str()));
    std::vector<CoordinateSystem> found;
    std::string line;
    // A description is one line of a few hundred characters; anything far
    // longer is not one, and is not held in memory whole.
    constexpr std::size_t kLongest = 1 << 16;
    while (std::getline(in, line)) {
        if (line.size() > kLongest || !line.starts_with("COMPD_CS"))
            continue;
        CoordinateSystem cs;
        if (Status status = readWkt(line, cs); !status)
            return status;
        found.push_back(std::move(cs));
    }
    if (found.empty())
        return Status::failure(StatusCode::Format, tr(messages::kNotWkt));
    systems = std::move(found);
    return Status::success();
}

} // namespace tramline::geodesy

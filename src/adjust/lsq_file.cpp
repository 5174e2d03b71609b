#include "adjust/lsq_file.h"

#include "base/atomic_save.h"
#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"

#include <cmath>
#include <fstream>

namespace tramline::adjust {

namespace {

Status lineError(long lineNumber, std::string_view line) {
    return Status::failure(
        StatusCode::Format,
        format(tr("Error: line %ld of the least-squares file does not parse: %s"), lineNumber,
               std::string(line).c_str()),
        static_cast<std::size_t>(lineNumber));
}

bool number(std::string_view text, double &value) {
    return parseNumber(trim(text), value) && std::isfinite(value);
}

bool name(std::string_view text, std::string &out) {
    out = std::string(trim(text));
    return !out.empty();
}

// Parses one record; false when the line is not one.
bool parseRecord(const std::vector<std::string_view> &f, long lineNumber, LsqData &data) {
    const std::string kind = toUpper(trim(f[0]));
    if (kind == "CP" || kind == "AP") {
        LsqPoint p;
        p.line = lineNumber;
        if (f.size() != 4 || !name(f[1], p.name) || !number(f[2], p.north) || !number(f[3], p.east))
            return false;
        (kind == "CP" ? data.control : data.adjust).push_back(std::move(p));
        return true;
    }
    if (kind == "ZVAL") {
        LsqElevation e;
        if (f.size() != 3 || !name(f[1], e.name) || !number(f[2], e.elevation))
            return false;
        data.elevations.push_back(std::move(e));
        return true;
    }
    LsqObservation o;
    o.line = lineNumber;
    if (kind == "DIST" || kind == "AZ") {
        o.kind = kind == "DIST" ? ObservationKind::Distance : ObservationKind::Azimuth;
        if (f.size() != 5 || !name(f[1], o.at) || !name(f[2], o.to) || !number(f[3], o.value) ||
            !number(f[4], o.stdErr))
            return false;
    } else if (kind == "ANG") {
        o.kind = ObservationKind::Angle;
        if (f.size() != 6 || !name(f[1], o.from) || !name(f[2], o.at) || !name(f[3], o.to) ||
            !number(f[4], o.value) || !number(f[5], o.stdErr))
            return false;
    } else {
        return false;
    }
    data.observations.push_back(std::move(o));
    return true;
}

} // namespace

Status readLsq(std::istream &in, LsqData &data) {
    data = {};
    std::string line;
    long lineNumber = 0;
    while (std::getline(in, line)) {
        ++lineNumber;
        const std::string_view text = trim(line);
        if (text.empty())
            continue;
        const auto fields = split(text, ',');
        if (!parseRecord(fields, lineNumber, data))
            return lineError(lineNumber, text);
        if (!data.observations.empty() && data.observations.back().line == lineNumber &&
            !(data.observations.back().stdErr > 0.0))
            return Status::failure(
                StatusCode::InvalidInput,
                format(tr("Error: zero or negative standard error on line %ld: %s"), lineNumber,
                       std::string(text).c_str()),
                static_cast<std::size_t>(lineNumber));
    }
    return Status::success();
}

std::string lsqText(const LsqData &data) {
    std::string out;
    for (const auto &p : data.control)
        appendFormat(out, "CP,%s,%.5f,%.5f\n", p.name.c_str(), p.north, p.east);
    for (const auto &p : data.adjust)
        appendFormat(out, "AP,%s,%.5f,%.5f\n", p.name.c_str(), p.north, p.east);
    for (const auto &o : data.observations) {
        switch (o.kind) {
        case ObservationKind::Distance:
            appendFormat(out, "DIST,%s,%s,%.5f,%.5f\n", o.at.c_str(), o.to.c_str(), o.value,
                         o.stdErr);
            break;
        case ObservationKind::Angle:
            appendFormat(out, "ANG,%s,%s,%s,%.6f,%.5f\n", o.from.c_str(), o.at.c_str(),
                         o.to.c_str(), o.value, o.stdErr);
            break;
        case ObservationKind::Azimuth:
            appendFormat(out, "AZ,%s,%s,%.6f,%.5f\n", o.at.c_str(), o.to.c_str(), o.value,
                         o.stdErr);
            break;
        }
    }
    for (const auto &e : data.elevations)
        appendFormat(out, "ZVAL,%s,%.5f\n", e.name.c_str(), e.elevation);
    return out;
}

Status saveLsq(const std::filesystem::path &path, const LsqData &data) {
    if (!saveTextAtomically(path, lsqText(data)))
        return Status::failure(StatusCode::Io, tr("Error: failed to write least-squares file"));
    return Status::success();
}

Status loadLsq(const std::filesystem::path &path, LsqData &data) {
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return Status::failure(StatusCode::Io, tr("Error: failed to open read.dat"));
    return readLsq(in, data);
}

} // namespace tramline::adjust

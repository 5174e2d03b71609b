// Each RW5 record becomes the GSI block the import reads back into the same
// record, so that a job exported and imported again keeps every shot.
//
// Decisions of ours where the format leaves room:
// - an occupy record is a code-1 block: point name, northing, easting and
//   elevation in words 42-45; a backsight from another station than the
//   current one writes such a block with the name only. The backsight
//   itself is not written: the import takes it from the first face-1
//   reading, as for instrument files;
// - an instrument height is a code-3 block with the height in word 42;
//   target heights travel in word 87 of every shot;
// - a store point is a measurement block with its coordinates (as GPS and
//   base points are), not a code-1 block, so that the file read back
//   stores the point instead of moving the set-up;
// - the code-22 block holds the job's date and time;
// - a GPS position is a code-80 block (point, latitude, longitude, height
//   as signed decimals in words 42-45, the description in word 71), its
//   quality note "--SDEV: ..." a code-81 block (three standard deviations
//   and the PDOP), so that both read back as they were;
// - values are written in the file's own units; the unit code only says
//   which they are. Angles left are turned into angles right, horizontal
//   distances into slope distances with the zenith angle.
#include "convert/gsi_export.h"

#include "base/angles.h"
#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace tramline::convert {

namespace {

// The record's fields after its type, by two-letter tag, and its note.
struct Fields {
    std::string type, note;
    std::vector<std::string_view> items;
    std::string_view get(std::string_view tag) const {
        for (auto item : items)
            if (item.size() >= 2 && item.substr(0, 2) == tag)
                return item.substr(2);
        return {};
    }
    bool number(std::string_view tag, double &value) const {
        return parseNumber(trim(get(tag)), value);
    }
};

Fields fieldsOf(std::string_view line, std::string &storage) {
    Fields f;
    const std::size_t note = line.find(",--");
    if (note != std::string_view::npos) {
        f.note = std::string(line.substr(note + 3));
        line = line.substr(0, note);
    }
    storage.assign(line);
    f.items = split(storage, ',');
    if (!f.items.empty()) {
        f.type = std::string(trim(f.items.front()));
        f.items.erase(f.items.begin());
    }
    return f;
}

class GsiWriter {
public:
    GsiWriter(char angleCode, char distanceCode, ExportOutput &out)
        : m_angleCode(angleCode), m_distanceCode(distanceCode), m_out(out) {}

    void record(std::string_view line);

private:
    std::string block() { return format("%04d", int(m_block++ % 10000)); }
    static std::string padded(std::string_view text) {
        text = text.substr(0, 16);
        return std::string(16 - text.size(), '0') + std::string(text);
    }
    // A numeric word: index, information field, sign and digits.
    std::string word(const char *head, double value, int decimals) const {
        std::string digits = format("%.*f", decimals, std::fabs(value));
        std::erase(digits, '.');
        return std::string(head) + (value < 0 ? '-' : '+') + padded(digits) + ' ';
    }
    std::string angleWord(int index, double degrees) const {
        const std::string head = format("%02d...%c", index, m_angleCode);
        if (m_angleCode == '2')
            return word(head.c_str(), degreesToGons(degrees), 5);
        std::string digits = formatDms(normalizeDegrees(degrees), 5);
        std::erase(digits, '.');
        return head + '+' + padded(digits) + ' ';
    }
    std::string lengthWord(int index, double value) const {
        return word(format("%02d...%c", index, m_distanceCode).c_str(), value, 3);
    }
    std::string textWord(int index, std::string_view text) const {
        return format("%02d....+", index) + padded(text) + ' ';
    }
    void code(int number, std::initializer_list<std::string> words) {
        std::string line = "*41" + block() + "+" + padded(std::to_string(number)) + ' ';
        for (const auto &w : words)
            line += w;
        m_out.bytes += line;
        m_out.bytes += '\n';
        ++m_out.records;
    }
    void measurement(std::string_view name, double hz, double ze, double sd, double e, double n,
                     double z, std::string_view description);
    void shot(const Fields &f);
    static std::string decimalWord(int index, double value, int decimals) {
        return format("%02d....%c", index, value < 0 ? '-' : '+') +
               padded(format("%.*f", decimals, std::fabs(value))) + ' ';
    }

    char m_angleCode, m_distanceCode;
    ExportOutput &m_out;
    long m_block = 1;
    double m_targetHeight = 0.0;
    std::string m_station;
};

void GsiWriter::measurement(std::string_view name, double hz, double ze, double sd, double e,
                            double n, double z, std::string_view description) {
    std::string line = "*11" + block() + "+" + padded(name) + ' ';
    line += angleWord(21, hz);
    line += angleWord(22, ze);
    line += lengthWord(31, sd);
    line += lengthWord(81, e);
    line += lengthWord(82, n);
    line += lengthWord(83, z);
    line += "51....+000000000013+000 ";
    line += lengthWord(87, m_targetHeight);
    m_out.bytes += line;
    m_out.bytes += '\n';
    ++m_out.records;
    code(90, {textWord(42, description), textWord(43, "")});
}

void GsiWriter::shot(const Fields &f) {
    double hz = 0.0, ze = 90.0, distance = 0.0, v = 0.0;
    if (f.number("AR", v)) {
        hz = unpackDms(v);
    } else if (f.number("AL", v)) {
        hz = 360.0 - unpackDms(v);
    } else {
        ++m_out.skipped[trNoop("shot without an angle right")];
        return;
    }
    const bool slope = f.number("SD", distance);
    if (!slope)
        f.number("HD", distance);
    if (f.number("ZE", v)) {
        ze = unpackDms(v);
    } else if (f.number("VA", v)) {
        ze = 90.0 - unpackDms(v);
    } else if (f.number("CE", v)) {
        // An elevation difference: the zenith angle that gives it.
        ze = slope && distance > 0.0 ? degrees(std::acos(std::clamp(v / distance, -1.0, 1.0)))
                                     : degrees(std::atan2(distance, v));
    }
    if (!slope && distance != 0.0)
        distance /= std::sin(radians(ze));
    measurement(trim(f.get("FP")), hz, ze, distance, 0.0, 0.0, 0.0, f.note);
}

void GsiWriter::record(std::string_view line) {
    if (line.starts_with("--")) {
        const std::string_view text = line.substr(2);
        double sn = 0.0, se = 0.0, sz = 0.0, pdop = 0.0;
        if (text.starts_with("SDEV:") &&
            std::sscanf(std::string(text).c_str(), "SDEV: %lf,%lf,%lf PDOP: %lf", &sn, &se, &sz,
                        &pdop) == 4)
            code(81, {decimalWord(42, sn, 3), decimalWord(43, se, 3), decimalWord(44, sz, 3),
                      decimalWord(45, pdop, 1)});
        else if (text.starts_with("Personnel:"))
            code(21, {textWord(42, trim(text.substr(10)))});
        else if (text.starts_with("Job Name:"))
            code(20, {textWord(42, trim(text.substr(9)))});
        else
            code(26, {textWord(42, text.substr(0, std::min<std::size_t>(text.size(), 16))),
                      textWord(43, text.size() > 16 ? text.substr(16, 16) : ""),
                      textWord(44, text.size() > 32 ? text.substr(32, 16) : ""),
                      textWord(45, text.size() > 48 ? text.substr(48, 16) : "")});
        return;
    }
    std::string storage;
    const Fields f = fieldsOf(line, storage);
    double v = 0.0;
    if (f.type == "JB") {
        code(20, {textWord(42, trim(f.get("NM")))});
        code(22, {textWord(42, trim(f.get("DT"))), textWord(43, trim(f.get("TM")))});
    } else if (f.type == "OC" || f.type == "BK") {
        const std::string station(trim(f.get("OP")));
        if (f.type == "BK" && station == m_station)
            return;
        m_station = station;
        double n = 0.0, e = 0.0, z = 0.0;
        const bool coordinates = f.number("N ", n) && f.number("E ", e);
        const bool hasZ = f.number("EL", z);
        auto coordinate = [&](int index, double value, bool known) {
            return known ? format("%02d....%c", index, value < 0 ? '-' : '+') +
                               padded(format("%.4f", std::fabs(value))) + ' '
                         : textWord(index, "");
        };
        code(1, {textWord(42, station), coordinate(43, n, coordinates),
                 coordinate(44, e, coordinates), coordinate(45, z, coordinates && hasZ)});
    } else if (f.type == "LS") {
        if (f.number("HR", v))
            m_targetHeight = v;
        if (f.number("HI", v)) {
            code(3, {lengthWord(42, v)});
        }
    } else if (f.type == "SP") {
        double n = 0.0, e = 0.0, z = 0.0;
        f.number("N ", n);
        f.number("E ", e);
        f.number("EL", z);
        measurement(trim(f.get("PN")), 0.0, 0.0, 0.0, e, n, z, f.note);
    } else if (f.type == "GPS") {
        double lat = 0.0, lon = 0.0, z = 0.0;
        f.number("LA", lat);
        f.number("LN", lon);
        f.number("EL", z);
        code(80,
             {textWord(42, trim(f.get("PN"))), decimalWord(43, lat, 10), decimalWord(44, lon, 10),
              decimalWord(45, z, 4), format("71....+") + padded(f.note) + ' '});
    } else if (f.type == "BP") {
        double lat = 0.0, lon = 0.0, z = 0.0;
        f.number("LA", lat);
        f.number("LN", lon);
        f.number("EL", z);
        measurement(trim(f.get("PN")), 0.0, 0.0, 0.0, lon, lat, z, f.note);
    } else if (f.type == "SS" || f.type == "BD" || f.type == "FD" || f.type == "FR" ||
               f.type == "TR" || f.type == "BR" || f.type == "AB") {
        shot(f);
    } else if (f.type == "MO") {
        code(26, {textWord(42, line.substr(0, 16)),
                  textWord(43, line.size() > 16 ? line.substr(16, 16) : ""),
                  textWord(44, line.size() > 32 ? line.substr(32, 16) : ""),
                  textWord(45, line.size() > 48 ? line.substr(48, 16) : "")});
    } else {
        ++m_out.skipped[trNoop("record GSI does not hold")];
    }
}

} // namespace

Status exportGsi(const std::vector<std::string> &rawLines, const ExportOptions &, Interaction &ui,
                 ExportOutput &out) {
    std::vector<FormField> fields = {
        {tr("Angle"), tr("Deg/Min/Sec"), {tr("Deg/Min/Sec"), tr("Gon")}},
        {tr("Distance"), tr("Meters"), {tr("Meters"), tr("Feet")}}};
    if (!ui.fillForm(tr("Raw File Units"), fields))
        return Status::failure(StatusCode::Cancelled, tr("Function cancelled at user request"));
    const char angleCode = fields[0].value == tr("Gon") ? '2' : '4';
    const char distanceCode = fields[1].value == tr("Meters") ? '0' : '1';
    out.writeError = tr("Error: unable to create gsi file %s");
    out.completion = tr("Conversion done");
    GsiWriter writer(angleCode, distanceCode, out);
    for (const auto &line : rawLines)
        writer.record(trimRight(line));
    return Status::success();
}

} // namespace tramline::convert

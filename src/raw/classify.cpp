#include "raw/classify.h"

namespace tramline::raw {

namespace {

constexpr std::string_view kObservationTypes[] = {"TR", "SS", "CL", "AB", "CL+AB",
                                                  "FD", "FR", "BD", "BR"};

// Consumes fields strictly in order. Each step checks the next code at the
// head of the rest, cuts it off and takes the value up to the next comma (or
// the end of the line for the last field of the form).
class FieldCursor {
public:
    FieldCursor(std::string_view rest, RawFields &fields) : m_rest(rest), m_fields(fields) {}

    // True when the next field starts with `code`; the value is stored.
    // `last` lets the value run to the end of the line (notes hold commas).
    bool take(std::string_view code, bool last = false) {
        if (m_done || m_rest.substr(0, code.size()) != code)
            return false;
        std::string_view value = m_rest.substr(code.size());
        if (last) {
            m_done = true;
            m_rest = {};
        } else {
            const size_t comma = value.find(',');
            if (comma == std::string_view::npos) {
                m_done = true; // no further field can follow
                m_rest = {};
            } else {
                m_rest = value.substr(comma + 1);
                value = value.substr(0, comma);
            }
        }
        store(value);
        return true;
    }

    // Takes whatever value comes next (for records whose code is variable,
    // like the angle, vertical and distance fields of an observation): the
    // code is checked against `codes`, and the value is cut after it.
    bool takeOneOf(std::initializer_list<std::string_view> codes, bool last = false) {
        for (std::string_view code : codes)
            if (take(code, last))
                return true;
        return false;
    }

    void store(std::string_view value) {
        if (m_count < m_fields.size())
            m_fields[m_count++].assign(value);
    }

    bool exhausted() const { return m_done; }
    std::string_view rest() const { return m_rest; }

private:
    std::string_view m_rest;
    RawFields &m_fields;
    size_t m_count = 0;
    bool m_done = false;
};

// A form is a fixed list of codes; every one must match. A note field
// ("--") runs to the end of the line, any other value to the next comma;
// fields after a complete form are not read.
bool takeForm(FieldCursor &cursor, std::initializer_list<std::string_view> codes) {
    for (std::string_view code : codes)
        if (!cursor.take(code, code == "--"))
            return false;
    return true;
}

int classifyObservation(std::string_view line, RawFields &fields) {
    const size_t comma = line.find(',');
    if (comma == std::string_view::npos)
        return kUnrecognised;
    const std::string_view type = line.substr(0, comma);
    if (!isObservationType(type))
        return kUnrecognised;
    FieldCursor cursor(line.substr(comma + 1), fields);
    cursor.store(type);
    if (!cursor.take("OP") || !cursor.take("FP"))
        return kUnrecognised;
    // The horizontal angle: a bearing keeps its prefix letter and suffix in
    // the value ("BRN45.3000E" gives "N45.3000E"), the others their number.
    if (!cursor.takeOneOf({"BR", "AR", "AL", "AZ", "DR", "DL", "GN"}))
        return kUnrecognised;
    if (!cursor.takeOneOf({"VA", "ZE", "CE"}))
        return kUnrecognised;
    if (!cursor.takeOneOf({"SD", "HD"}))
        return kUnrecognised;
    if (!cursor.take("--", true))
        return kUnrecognised;
    return kObservation;
}

int classifyFields(std::string_view line, JobRecords jobRecords, RawFields &fields);

} // namespace

bool isObservationType(std::string_view type) {
    for (std::string_view t : kObservationTypes)
        if (t == type)
            return true;
    return false;
}

int ClassifyRawLine(std::string_view line, JobRecords jobRecords, RawFields &fields) {
    for (auto &f : fields)
        f.clear();
    const int kind = classifyFields(line, jobRecords, fields);
    if (kind == kUnrecognised) // no half-filled outputs from a rejected form
        for (auto &f : fields)
            f.clear();
    return kind;
}

namespace {

int classifyFields(std::string_view line, JobRecords jobRecords, RawFields &fields) {
    if (line.starts_with("--")) {
        if (line.size() == 2)
            return kEmptyNote;
        fields[0].assign(line.substr(2));
        return kNote;
    }

    if (jobRecords == JobRecords::Recognised && line.starts_with("JB,")) {
        FieldCursor c(line.substr(3), fields);
        return takeForm(c, {"NM", "DT", "TM"}) ? kJob : kUnrecognised;
    }
    if (line.starts_with("LS,")) {
        FieldCursor c(line.substr(3), fields);
        if (c.take("HI"))
            return c.take("HR") ? kHeightsHiHr : kHeightsHi;
        return c.take("HR") ? kHeightsHr : kUnrecognised;
    }
    if (line.starts_with("OC,")) {
        FieldCursor c(line.substr(3), fields);
        if (!c.takeOneOf({"OP", "PN"}))
            return kUnrecognised;
        return takeForm(c, {"N ", "E ", "EL", "--"}) ? kOccupy : kUnrecognised;
    }
    if (line.starts_with("BK,")) {
        FieldCursor c(line.substr(3), fields);
        return takeForm(c, {"OP", "BP", "BS", "BC"}) ? kBacksight : kUnrecognised;
    }
    if (line.starts_with("SP,")) {
        FieldCursor c(line.substr(3), fields);
        return takeForm(c, {"PN", "N ", "E ", "EL", "--"}) ? kStorePoint : kUnrecognised;
    }
    if (line.starts_with("BP,")) {
        FieldCursor c(line.substr(3), fields);
        if (!c.take("PN") || !c.take("LA") || !c.take("LN") || !c.take("EL"))
            return kUnrecognised;
        if (!c.take("AG") || !c.take("PA") || !c.take("AT"))
            return kUnrecognised;
        if (c.take("--", true))
            return kBasePointNote;
        return c.take("SR") ? kBasePointSr : kUnrecognised;
    }
    if (line.starts_with("GPS,")) {
        FieldCursor c(line.substr(4), fields);
        return takeForm(c, {"PN", "LA", "LN", "EL", "--"}) ? kGps : kUnrecognised;
    }
    if (line.starts_with("G0,")) {
        fields[0].assign(line.substr(3));
        return kGps0;
    }
    if (line.starts_with("MO,")) {
        FieldCursor c(line.substr(3), fields);
        return takeForm(c, {"AD", "UN", "SF", "EC", "EO", "AU"}) ? kMode : kUnrecognised;
    }
    if (line.starts_with("G1,")) {
        FieldCursor c(line.substr(3), fields);
        return takeForm(c, {"BP", "PN", "DX", "DY", "DZ"}) ? kGps1 : kUnrecognised;
    }
    if (line.starts_with("G2,")) {
        FieldCursor c(line.substr(3), fields);
        return takeForm(c, {"VX", "VY", "VZ"}) ? kGps2 : kUnrecognised;
    }
    if (line.starts_with("G3,")) {
        FieldCursor c(line.substr(3), fields);
        return takeForm(c, {"XY", "XZ", "YZ"}) ? kGps3 : kUnrecognised;
    }
    return classifyObservation(line, fields);
}

} // namespace

} // namespace tramline::raw

// Every RW5 record the import writes comes back as the SDR record it came
// from, so that a job exported and imported again gives the same
// observations and points: sets go out as face-1 and face-2 readings in
// their set order, the azimuth sideshot of a backsight is left out (the
// backsight record brings it back), and the notes that carried whole GPS
// records give back those records.
#include "convert/sdr_export.h"

#include "base/angles.h"
#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"
#include "base/units.h"

#include <cmath>
#include <map>

namespace tramline::convert {

namespace {

struct Xyz {
    std::string northing, easting, elevation, description;
};

class SdrWriter {
public:
    SdrWriter(bool wide, ExportOutput &out) : m_wide(wide), m_out(out) {}

    void line(std::string_view text);
    void finish(LinearUnit unit);

private:
    std::string pointField(std::string_view name) const {
        std::string f;
        appendPadded(f, name.substr(0, m_wide ? 16 : 4), m_wide ? 16 : 4, true);
        return f;
    }
    std::string numberField(double value, int decimals) const {
        std::string text = format("%.*f", decimals, value);
        std::string f;
        appendPadded(f, text, m_wide ? 16 : 10, false, true);
        return f;
    }
    std::string textField(std::string_view text) const {
        std::string f;
        appendPadded(f, text, 16, false, true);
        return f;
    }
    static std::string_view value(std::string_view field) {
        return field.size() > 2 ? field.substr(2) : std::string_view();
    }
    static double parsed(std::string_view text) {
        double v = 0.0;
        parseNumber(text, v);
        return v;
    }
    void record(std::string text) {
        m_body += text;
        m_body += '\n';
        ++m_out.records;
    }
    void skip(const char *reason) { ++m_out.skipped[reason]; }
    void station(std::string_view name);
    void note(std::string_view text);
    void observation(const std::vector<std::string_view> &f);
    void flushBacksight(std::string_view next);
    void flushPoint(std::string_view next);

    bool m_wide;
    ExportOutput &m_out;
    std::string m_body;
    std::string m_job;
    std::string m_station, m_hi = "0.0000", m_date;
    bool m_hiChanged = false;
    bool m_afterJob = false;
    struct Backsight {
        std::string at, to, azimuth, circle;
    } m_backsight;
    bool m_backsightDue = false;
    std::string m_pendingPoint, m_pendingName;
    std::map<std::string, Xyz, std::less<>> m_points;
};

void SdrWriter::station(std::string_view name) {
    std::string fields = pointField(name);
    if (const auto p = m_points.find(name); p != m_points.end())
        fields += numberField(parsed(p->second.northing), 4) +
                  numberField(parsed(p->second.easting), 4) +
                  numberField(parsed(p->second.elevation), 4);
    else
        fields += std::string(m_wide ? 48 : 30, ' ');
    fields += numberField(parsed(m_hi), 4);
    if (const auto p = m_points.find(name); p != m_points.end())
        fields += textField(p->second.description);
    record("02TP" + fields);
    m_station = std::string(name);
    m_hiChanged = false;
}

void SdrWriter::note(std::string_view text) {
    static constexpr std::pair<std::string_view, const char *> kRecordNotes[] = {
        {"GPSINST:", "14"}, {"GRED:", "17"}, {"GPOS:", "18"}, {"PROJ:", "19"}, {"GPS:", "24"}};
    for (const auto &[prefix, type] : kRecordNotes)
        if (text.starts_with(prefix)) {
            record(std::string(text.substr(prefix.size())));
            return;
        }
    if (text.starts_with("VERTADJ:") || text.starts_with("HZADJ:")) {
        const bool vertical = text.starts_with("VERTADJ:");
        std::string r = vertical ? "21NM" : "50NM";
        for (std::string_view v : split(text.substr(text.find(':') + 1), ','))
            r += numberField(parsed(v), vertical ? 8 : 12);
        record(r);
        return;
    }
    if (text.starts_with("DT")) {
        m_date = std::string(text.substr(2));
        return;
    }
    if (text.starts_with("TM")) {
        record("13TS" + m_date + " " + std::string(text.substr(2)));
        return;
    }
    if (text.starts_with("Warning: zero values")) // the import writes it again
        return;
    if (text.starts_with("Atmospheric Correction: ")) {
        record("13AT" + std::string(text.substr(24)));
        return;
    }
    const bool resection = text.find("Resection:") != std::string_view::npos ||
                           text.find("EDM Mode") != std::string_view::npos ||
                           text.find("Reading") != std::string_view::npos;
    const bool pointCode = text.find("P.C.") != std::string_view::npos ||
                           text.find("Applied:") != std::string_view::npos;
    record((pointCode ? "13PC" : resection ? "13RS" : "13NM") + std::string(text));
}

void SdrWriter::observation(const std::vector<std::string_view> &f) {
    if (f.size() < 6) {
        skip(trNoop("incomplete shot"));
        return;
    }
    const std::string_view type = f[0], from = value(f[1]), to = value(f[2]);
    const std::string_view hzCode = f[3].substr(0, 2), vCode = f[4].substr(0, 2),
                           dCode = f[5].substr(0, 2);
    const double hz = parsed(value(f[3])), v = parsed(value(f[4])), d = parsed(value(f[5]));
    const std::string_view note = f.size() > 6 && f[6].starts_with("--") ? f[6].substr(2) : "";
    if (hzCode == "AZ" && note == "Backsight")
        return; // its azimuth went into the backsight record
    if (hzCode != "AR" && hzCode != "AZ") {
        skip(trNoop("shot with an angle SDR cannot hold"));
        return;
    }
    const std::string head = pointField(from) + pointField(to);
    if (vCode == "CE") { // a reduced shot; by azimuth it only orients the station
        const std::string blank(m_wide ? 16 : 10, ' ');
        const bool orientation = hzCode == "AZ";
        record("11KI" + head + numberField(unpackDms(hz), 8) +
               (orientation ? blank : numberField(d, 4)) +
               (orientation ? blank : numberField(v, 4)) + textField(note));
        return;
    }
    const double zenith = vCode == "VA" ? 90.0 - unpackDms(v) : unpackDms(v);
    const double slope = dCode == "HD" ? d / std::max(1e-12, std::sin(radians(zenith))) : d;
    if (hzCode == "AZ") {
        record("16KI" + head + numberField(unpackDms(hz), 8) + numberField(zenith, 8) +
               numberField(slope, 4) + std::string(m_wide ? 16 : 10, ' ') + textField(note));
        return;
    }
    const bool face2 = type == "FR" || type == "BR";
    record(std::string("09") + (face2 ? "F2" : "F1") + head + numberField(slope, 4) +
           numberField(zenith, 8) + numberField(unpackDms(hz), 8) + textField(note));
}

// The backsight record waits for the line after it: the azimuth sideshot
// the import writes for a backsight gives the azimuth that a backsight to a
// known point does not carry in its own line.
void SdrWriter::flushBacksight(std::string_view next) {
    if (!m_backsightDue)
        return;
    m_backsightDue = false;
    // "SS,OP<at>,FP<to>,AZ<azimuth>,ZE90.0,SD100.0,--Backsight"
    std::vector<std::string_view> f;
    splitAtMost(next, ',', 7, f);
    if (f.size() == 7 && f[0] == "SS" && value(f[1]) == m_backsight.at && f[3].starts_with("AZ") &&
        f[6] == "--Backsight" && (m_backsight.to.empty() || value(f[2]) == m_backsight.to)) {
        m_backsight.to = std::string(value(f[2]));
        m_backsight.azimuth = std::string(value(f[3]));
    }
    const std::string &azimuth = m_backsight.azimuth, &circle = m_backsight.circle;
    record("07TP" + pointField(m_backsight.at) + pointField(m_backsight.to) +
           (azimuth.empty() ? std::string(m_wide ? 16 : 10, ' ')
                            : numberField(unpackDms(parsed(azimuth)), 8)) +
           (circle.empty() ? std::string() : numberField(unpackDms(parsed(circle)), 8)));
}

// A store point followed by an instrument height is a station with its
// coordinates, as the import writes a station record: it goes out as that
// station record, so that a job does not grow a point at every turn.
void SdrWriter::flushPoint(std::string_view next) {
    if (m_pendingName.empty())
        return;
    const std::string name = std::move(m_pendingName);
    m_pendingName.clear();
    if (next.starts_with("LS,HI")) {
        std::vector<std::string_view> f;
        splitAtMost(next, ',', 4, f);
        m_hi = std::string(value(f[1]));
        station(name);
        return;
    }
    record(std::move(m_pendingPoint));
}

void SdrWriter::line(std::string_view text) {
    flushBacksight(text);
    flushPoint(text);
    std::vector<std::string_view> f;
    if (text.starts_with("--")) {
        if (!(m_afterJob && text.starts_with("--Sokkia ")))
            note(text.substr(2));
        m_afterJob = false;
        return;
    }
    m_afterJob = false;
    splitAtMost(text, ',', 8, f);
    const std::string_view type = f[0];
    if (type == "JB") {
        m_job = f.size() > 1 ? std::string(value(f[1])) : std::string();
        m_afterJob = true;
    } else if (type == "MO") {
        // units are read by the caller
    } else if (type == "LS") {
        for (std::size_t k = 1; k < f.size(); ++k) {
            if (f[k].starts_with("HI")) {
                m_hiChanged = m_hiChanged || m_hi != value(f[k]);
                m_hi = std::string(value(f[k]));
            } else if (f[k].starts_with("HR")) {
                record("03KI" + numberField(parsed(value(f[k])), 4));
            }
        }
    } else if (type == "SP" && f.size() >= 5) {
        const std::string_view name = value(f[1]);
        Xyz p{std::string(value(f[2])), std::string(value(f[3])), std::string(value(f[4])), {}};
        const std::string_view description =
            f.size() > 5 && f[5].starts_with("--") ? f[5].substr(2) : "";
        p.description = std::string(description);
        m_pendingPoint = "08KI" + pointField(name) + numberField(parsed(p.northing), 4) +
                         numberField(parsed(p.easting), 4) + numberField(parsed(p.elevation), 4) +
                         textField(description);
        m_pendingName = std::string(name);
        m_points[std::string(name)] = std::move(p);
    } else if (type == "OC" && f.size() >= 2) {
        if (f.size() >= 5)
            m_points[std::string(value(f[1]))] = {
                std::string(value(f[2])), std::string(value(f[3])), std::string(value(f[4])),
                f.size() > 5 && f[5].starts_with("--") ? std::string(f[5].substr(2))
                                                       : std::string()};
        station(value(f[1]));
    } else if (type == "BK" && f.size() >= 5) {
        const std::string_view at = value(f[1]);
        if (at != m_station || m_hiChanged)
            station(at);
        m_backsight = {std::string(at), std::string(value(f[2])), std::string(value(f[3])),
                       std::string(value(f[4]))};
        m_backsightDue = true;
    } else if (type == "SS" || type == "TR" || type == "BD" || type == "FD" || type == "FR" ||
               type == "BR") {
        observation(f);
    } else {
        skip(trNoop("record SDR cannot hold"));
    }
}

void SdrWriter::finish(LinearUnit unit) {
    flushBacksight({});
    flushPoint({});
    const int distance = unit == LinearUnit::Metres ? 1 : 2;
    std::string head = format(m_wide ? "00NMSDR33     V04-01.00 Jan-18-80 20:34 %d%d%d%d%d1\n"
                                     : "00NMSDR22     V03-050000Jan-18-80 20:34 %d%d%d%d%d1\n",
                              1, distance, 1, 1, 1);
    if (unit == LinearUnit::UsSurveyFeet)
        head += "13DU3:US Feet:\n";
    head += m_wide ? format("10NM%-16.16s1%d\n", m_job.c_str(), 21111)
                   : format("10NM%-16.16s\n", m_job.c_str());
    head += format("06NM%s\n", "1.00000000");
    m_out.bytes = head + m_body;
}

} // namespace

Status exportSdr(const std::vector<std::string> &rawLines, const ExportOptions &options,
                 Interaction &ui, ExportOutput &out) {
    bool wide = true;
    if (equalsIgnoreCase(options.format, "sdr2x")) {
        wide = false;
    } else if (!equalsIgnoreCase(options.format, "sdr33")) {
        const int choice =
            ui.choose(tr("SDR Format"), tr("SDR Format"), {tr("SDR-33"), tr("SDR-2x")});
        if (choice < 0)
            return Status::failure(StatusCode::Cancelled, tr("Function cancelled at user request"));
        wide = choice == 0;
    }
    LinearUnit unit = LinearUnit::Metres;
    SdrWriter writer(wide, out);
    for (const auto &line : rawLines) {
        if (line.starts_with("MO,")) {
            const auto at = line.find(",UN");
            int code = 1;
            if (at != std::string::npos && at + 3 < line.size())
                code = line[at + 3] - '0';
            linearUnitFromCode(code, unit);
        }
        writer.line(line);
    }
    writer.finish(unit);
    out.completion = tr("Done.");
    out.writeError = tr("Error: failed to write Sokkia file");
    return Status::success();
}

} // namespace tramline::convert

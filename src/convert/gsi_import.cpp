// Blocks are turned one by one in file order, except the readings of a
// set-up, which are gathered until the next set-up or code block so that
// they can be grouped into direct/reverse sets (gsi_face_sets.h).
//
// Decisions of ours where the format leaves room:
// - a set-up is a measurement block with station words (84, 85, 86; 88
//   the instrument height) or a code block that names the station (code 1
//   in WildSoft and Liscad, code 10 in 10-20-30-40); it writes an occupy
//   line, with the station's coordinates when the block has them. Readings
//   before any set-up have an empty occupied point;
// - the backsight of a set-up is the point of its first face-1 reading
//   unless a code block named it (code 20 in 10-20-30-40); a reading is on
//   face 2 when its zenith angle is over 180 degrees;
// - a block with coordinates (81, 82, 83) and no vertical angle or
//   distance other than zero is a point, not a reading; a missing height
//   (dashes) stays missing, not zero;
// - WildSoft codes beyond their note: 14 sets the target height from word
//   42; 90 gives the previous block its description; 2 is the job number,
//   3 the instrument height (word 42),
//   20 the job name, 21 with text the personnel, 22 the date and time, 26
//   a free remark; 5 to 10 are the offsets left, right, up, down, toward
//   and away (word 42 the length), 11 a temporary point; other codes from
//   1 to 63 write "--Code %d" with their words, higher ones are skipped;
// - Liscad: a single reading to a point that is a station of the file is
//   a traverse shot (TR); the first distance word writes the units note;
//   a single reading to a station occupied before (not the backsight of
//   the set-up) or to the point a code-4 block names is a closing shot,
//   its note tagged " CLO"; a set whose face-2 horizontal reading is not
//   its face-1 reading plus 180 degrees within a minute gets the warning
//   on the reverse angle of that pair (backsight or foresight), one whose
//   zenith angles do not add to 360 degrees within a minute the warning on
//   its direct angle, written after the set;
// - in every coding, code 80 is a GPS position (42 point, 43 latitude,
//   44 longitude, 45 height, 71 description) and code 81 its quality (42-44
//   standard deviations, 45 PDOP), as our export writes them; a word 87
//   in another code block is a target height kept as a note;
// - 10-20-30-40: code 10 is the station (42 point, 43 instrument height),
//   20 the backsight (42 point, 43 target height), 30 the foresights (42
//   target height), 40 a remark; with "10-20-40" code 40 takes the place
//   of 30.
#include "convert/gsi_import.h"

#include "base/angles.h"
#include "base/format.h"
#include "base/huge_pages.h"
#include "base/text.h"
#include "base/translation.h"
#include "base/unset.h"
#include "convert/gsi_reader.h"
#include "convert/sdr_import.h"
#include "raw/writer.h"

#include <cmath>
#include <unordered_set>

namespace tramline::convert {

namespace {

using namespace gsi;

// "%.4f" without printf's cost: a million blocks write millions of them.
std::string fixed4(double value) {
    std::string out;
    appendFixed(out, value, 4);
    return out;
}

struct Reading {
    std::string to, note;
    double horizontal = 0.0, zenith = 90.0, distance = 0.0, targetHeight = 0.0;
    bool slope = true, face2 = false;
    std::size_t point = std::string::npos; ///< the block's coordinates, in the points
};

class GsiImport {
public:
    GsiImport(const SourceLines &source, const GsiImportOptions &options, ImportOutput &out)
        : m_source(source), m_options(options), m_out(out) {}

    void run();

private:
    using Words = std::vector<Word>;
    bool coded(GsiCoding coding) const { return m_options.coding == coding; }
    void emit(std::string_view line) { m_out.lines.push_back(line); }
    void skip(const char *reason) {
        --m_out.records;
        ++m_out.skipped[reason];
    }
    static bool number(const Words &words, int index, double &value) {
        const Word *word = findWord(words, index);
        return word && numberOf(*word, value);
    }
    static std::string text(const Words &words, int index) {
        const Word *word = findWord(words, index);
        return word ? textOf(*word) : std::string();
    }

    void measurement(const Words &words);
    void setUp(const std::string &station, const Words &words, int e, int n, int z);
    std::string_view point(const std::string &name, const Words &words, int e, int n, int z,
                           const std::string &description);
    std::string_view storePointLine(const crd::CrdPoint &p);
    void codeBlock(const Words &words);
    void wildSoftCode(int code, const Words &words);
    void tenTwentyCode(int code, const Words &words);
    void heights(const Words &words);
    void noteUnits(const Words &words);
    void flush();
    void writeReading(Reading &reading, SetRole role, bool first);
    void checkSet(const Reading &bd, const Reading &fd, const Reading &fr, const Reading &br);
    bool closing(const std::string &to) const {
        return to == m_closingPoint || (to != m_backsight && m_occupied.count(to) != 0);
    }

    const SourceLines &m_source;
    GsiImportOptions m_options;
    ImportOutput &m_out;

    std::string m_job, m_date, m_time, m_station, m_backsight;
    bool m_backsightLineDue = false, m_feet = false, m_unitsNoted = false, m_gsi16 = false;
    bool m_next999 = false;
    double m_targetHeight = 0.0, m_writtenHeight = -1e300, m_instrumentHeight = -1e300;
    std::vector<Reading> m_pending;
    std::unordered_set<std::string> m_stations;
    std::unordered_set<std::string> m_occupied; // stations set up before this one
    std::string m_closingPoint;                 // named by a code-4 block
    // The last point block, for a code-90 description after it.
    std::size_t m_lastPointLine = std::string::npos;
    std::string m_line; // where shot and point lines are built
};

void GsiImport::run() {
    // Liscad needs every station name before the first shot is written.
    Words words;
    if (coded(GsiCoding::Liscad))
        for (const auto &line : m_source)
            if (readWords(line.text, words) && words.front().index == 11 &&
                (findWord(words, 84) || findWord(words, 85)))
                m_stations.insert(nameOf(words.front()));
    // A block gives up to two lines (a shot and its point).
    m_out.lines.reserve(2 * m_source.size() + 8);
    // Room for a point per block, so that a large job's points are not
    // moved as they come; pages never written cost nothing.
    m_out.points.reserve(m_source.size());
    adviseHugePages(m_out.points.data(), m_out.points.capacity() * sizeof(crd::CrdPoint));
    for (const auto &line : m_source) {
        ++m_out.records;
        if (!readWords(line.text, words)) {
            skip(trNoop("not a GSI line"));
            continue;
        }
        m_gsi16 = m_gsi16 || isGsi16(line.text);
        if (words.front().index == 41)
            codeBlock(words);
        else if (words.front().index == 11)
            measurement(words);
        else
            skip(trNoop("block without point or code word"));
    }
    flush();
    dropUnusedTargetHeights(m_out.lines);
    m_out.lines.insertFront(
        {raw::writeJob(m_job, m_date, m_time),
         raw::writeNote(m_gsi16 ? "Leica GSI-16" : "Leica GSI-8"),
         raw::writeMode(m_feet ? LinearUnit::InternationalFeet : LinearUnit::Metres)});
    m_out.completion = tr("Conversion done");
}

void GsiImport::heights(const Words &words) {
    double hi = 0.0;
    if (number(words, 88, hi) && hi != m_instrumentHeight) {
        flush();
        m_instrumentHeight = hi;
        double hr = 0.0;
        if (coded(GsiCoding::Liscad) && number(words, 87, hr)) {
            emit(format("LS,HI%.3f,HR%.3f\n", hi, hr));
            m_targetHeight = m_writtenHeight = hr;
        } else {
            emit(format("LS,HI%.3f\n", hi));
        }
    }
    number(words, 87, m_targetHeight);
}

void GsiImport::noteUnits(const Words &words) {
    for (const auto &word : words)
        if ((word.index == 31 || word.index == 32 || word.index == 81) && !m_unitsNoted) {
            m_unitsNoted = true;
            m_feet = inFeet(word);
            if (coded(GsiCoding::Liscad))
                emit(format("--UNITS %s\n", m_feet ? "FOOT" : "METERS"));
        }
}

void GsiImport::measurement(const Words &words) {
    const std::string name = nameOf(words.front());
    noteUnits(words);
    if (findWord(words, 84) || findWord(words, 85) || findWord(words, 86)) {
        setUp(name, words, 84, 85, 86);
        heights(words);
        return;
    }
    heights(words);
    double hz = 0.0, ze = 0.0, sd = 0.0, hd = 0.0;
    const Word *horizontal = findWord(words, 21);
    const bool hasZe = findWord(words, 22) && angleDegrees(*findWord(words, 22), ze);
    const bool hasSd = number(words, 31, sd), hasHd = number(words, 32, hd);
    double e = 0.0, n = 0.0, z = 0.0;
    const bool hasE = number(words, 81, e), hasN = number(words, 82, n);
    number(words, 83, z);
    const bool hasCoordinates = hasE || hasN;
    const bool angled = horizontal && angleDegrees(*horizontal, hz);
    if (!angled || (hasCoordinates && ze == 0.0 && sd == 0.0 && hd == 0.0)) {
        if (!hasCoordinates) {
            skip(trNoop("block without angles or coordinates"));
            return;
        }
        flush();
        m_lastPointLine = m_out.lines.size();
        emit(point(name, words, 81, 82, 83, text(words, 71)));
        return;
    }
    Reading reading;
    reading.to = name;
    reading.horizontal = hz;
    reading.zenith = hasZe ? ze : 90.0;
    reading.slope = hasSd || !hasHd;
    reading.distance = hasSd ? sd : hd;
    reading.face2 = reading.zenith > 180.0;
    reading.targetHeight = m_targetHeight;
    reading.note = m_next999 ? std::string("999") : text(words, 71);
    m_next999 = false;
    // All-zero coordinates in a reading are none: our export writes zeros
    // when it knows no coordinates.
    if (hasCoordinates && (e != 0.0 || n != 0.0 || z != 0.0)) {
        point(name, words, 81, 82, 83, reading.note);
        reading.point = m_out.points.size() - 1;
    }
    m_lastPointLine = std::string::npos;
    m_pending.push_back(std::move(reading));
}

void GsiImport::setUp(const std::string &station, const Words &words, int e, int n, int z) {
    flush();
    if (!m_station.empty())
        m_occupied.insert(m_station);
    m_station = station;
    m_backsight.clear();
    m_backsightLineDue = true;
    double easting = 0.0, northing = 0.0, elevation = 0.0;
    if (number(words, e, easting) && number(words, n, northing)) {
        const bool hasZ = number(words, z, elevation);
        emit(raw::writeOccupy(station, fixed4(northing), fixed4(easting),
                              hasZ ? fixed4(elevation) : "", ""));
        emit(point(station, words, e, n, z, ""));
    } else {
        emit(raw::writeOccupy(station, "", "", "", ""));
    }
}

std::string_view GsiImport::point(const std::string &name, const Words &words, int e, int n, int z,
                                  const std::string &description) {
    double easting = 0.0, northing = 0.0, elevation = 0.0;
    number(words, e, easting);
    number(words, n, northing);
    const bool hasZ = number(words, z, elevation);
    crd::CrdPoint &p = m_out.points.emplace_back();
    p.set(easting, northing, elevation, name, description);
    if (!hasZ)
        p.elevation = kUnsetPositive;
    return storePointLine(p);
}

// The view is of the line being built: valid until the next line is.
std::string_view GsiImport::storePointLine(const crd::CrdPoint &p) {
    // "SP,PN%s,N %s,E %s,EL%s,--%s\n" with "%.4f" numbers, built by
    // appending: a large job writes hundreds of thousands of them.
    std::string &line = m_line;
    line.clear();
    line += "SP,PN";
    line += p.name;
    line += ",N ";
    appendFixed(line, p.northing, 4);
    line += ",E ";
    appendFixed(line, p.easting, 4);
    line += ",EL";
    if (!isUnset(p.elevation))
        appendFixed(line, p.elevation, 4);
    line += ",--";
    line += p.description;
    line += '\n';
    return line;
}

void GsiImport::codeBlock(const Words &words) {
    const std::string codeText = nameOf(words.front());
    double value = 0.0;
    if (!parseNumber(codeText, value) || value < 0 || value > 1e6) {
        skip(trNoop("code block without a code number"));
        return;
    }
    const int code = int(value);
    // A description belongs to the block before it: no flush.
    if (code == 90 && !coded(GsiCoding::TenTwentyThirtyForty)) {
        const std::string description = text(words, 42);
        if (m_lastPointLine != std::string::npos && !m_out.points.empty()) {
            m_out.points.back().description = description;
            m_out.lines.replace(m_lastPointLine, storePointLine(m_out.points.back()));
        } else if (!m_pending.empty()) {
            m_pending.back().note = description;
            if (m_pending.back().point != std::string::npos)
                m_out.points[m_pending.back().point].description = description;
        }
        return;
    }
    flush();
    m_lastPointLine = std::string::npos;
    double a = 0.0, b = 0.0, c = 0.0, d = 0.0;
    if (code == 80) {
        number(words, 43, a);
        number(words, 44, b);
        number(words, 45, c);
        emit(format("GPS,PN%s,LA%.10f,LN%.10f,EL%.4f,--%s\n", text(words, 42).c_str(), a, b, c,
                    text(words, 71).c_str()));
        return;
    }
    if (code == 81) {
        number(words, 42, a);
        number(words, 43, b);
        number(words, 44, c);
        number(words, 45, d);
        emit(format("--SDEV: %.3f,%.3f,%.3f PDOP: %.1f\n", a, b, c, d));
        return;
    }
    if (coded(GsiCoding::TenTwentyThirtyForty))
        tenTwentyCode(code, words);
    else
        wildSoftCode(code, words);
    if (code != 14 && number(words, 87, a))
        emit(format("--LS,HR%.3f\n", a));
}

void GsiImport::wildSoftCode(int code, const Words &words) {
    const std::string w42 = text(words, 42), w43 = text(words, 43), w44 = text(words, 44),
                      w45 = text(words, 45);
    double length = 0.0;
    number(words, 42, length);
    static const char *const kOffsets[] = {"--OFFSET LEFT %.3f\n",   "--OFFSET RIGHT %.3f\n",
                                           "--OFFSET UP %.3f\n",     "--OFFSET DOWN %.3f\n",
                                           "--OFFSET TOWARD %.3f\n", "--OFFSET AWAY %.3f\n"};
    switch (code) {
    case 1:
        // Station by name, with northing, easting and elevation in 43-45.
        setUp(w42, words, 44, 43, 45);
        if (coded(GsiCoding::Liscad) && !findWord(words, 43))
            emit(format("BK,OP%s,BP,BS0,BC\n", w42.c_str()));
        return;
    case 2:
        emit(format("Job#:%s\n", w42.c_str()));
        return;
    case 3:
        if (number(words, 42, length)) {
            m_instrumentHeight = length;
            emit(format("LS,HI%.3f\n", length));
        }
        return;
    case 4:
        emit(format("--Code 4 : Reference Closing Point = %s\n", w42.c_str()));
        m_closingPoint = w42;
        return;
    case 5:
    case 6:
    case 7:
    case 8:
    case 9:
    case 10:
        emit(format(kOffsets[code - 5], length));
        return;
    case 11:
        emit(format("--New Temporary Point : %d\n", int(length)));
        return;
    case 12:
        emit("--Code 12 : X and Y coordinate Translation\n");
        return;
    case 14:
        emit("--Code 14 : Change to Rod Height\n");
        m_targetHeight = m_writtenHeight = length;
        emit(format("LS,HR%.3f\n", length));
        return;
    case 15:
        emit("--Code 15 : Change to Measured Distance\n");
        return;
    case 20:
        emit(format("--Job Name: %s\n", w42.c_str()));
        if (m_job.empty())
            m_job = w42;
        return;
    case 21:
        if (!w42.empty() && !parseNumber(w42, length))
            emit(format("--Personnel: %s %s %s %s\n", w42.c_str(), w43.c_str(), w44.c_str(),
                        w45.c_str()));
        else
            emit("--Code 21 : Occupying a Sideshot Point\n");
        return;
    case 22:
        m_date = w42;
        m_time = w43;
        emit(format("--Date: %s\n", w42.c_str()));
        return;
    case 26:
        emit(format("--%s\n",
                    std::string(trimRight(w42 + " " + w43 + " " + w44 + " " + w45)).c_str()));
        return;
    case 31:
        emit("--Code 31 : Multiple shots to a single Sideshot\n");
        return;
    case 999:
        emit("--Using 999 vertical offset code\n");
        m_next999 = true;
        return;
    default:
        if (code > 63) {
            skip(trNoop("unknown code number"));
            return;
        }
        emit(format("--Code %d : %s %s %s %s\n", code, w42.c_str(), w43.c_str(), w44.c_str(),
                    w45.c_str()));
        return;
    }
}

void GsiImport::tenTwentyCode(int code, const Words &words) {
    double value = 0.0;
    const bool hasValue = number(words, 43, value);
    if (code == 10) {
        setUp(text(words, 42), words, 0, 0, 0);
        if (hasValue) {
            m_instrumentHeight = value;
            emit(format("LS,HI%.3f\n", value));
        }
    } else if (code == 20) {
        m_backsight = text(words, 42);
        if (hasValue) {
            m_targetHeight = m_writtenHeight = value;
            emit(format("LS,HR%.3f\n", value));
        }
    } else if (code == 30 || (code == 40 && !m_options.withThirty)) {
        if (number(words, 42, value)) {
            m_targetHeight = m_writtenHeight = value;
            emit(format("LS,HR%.3f\n", value));
        }
    } else if (code == 40) {
        for (int index = 42; index <= 45; ++index)
            if (const Word *word = findWord(words, index))
                emit(format("--%s\n", std::string(trim(word->data)).c_str()));
    } else {
        skip(trNoop("unknown code number"));
    }
}

void GsiImport::flush() {
    if (m_pending.empty())
        return;
    std::vector<FaceReading> faces;
    faces.reserve(m_pending.size());
    for (const auto &reading : m_pending) {
        faces.push_back({reading.face2, reading.to});
        if (m_backsight.empty() && !reading.face2)
            m_backsight = reading.to;
    }
    if (m_backsightLineDue && !m_station.empty()) {
        const Reading *first = nullptr;
        for (const auto &reading : m_pending)
            if (reading.to == m_backsight && !first)
                first = &reading;
        emit(raw::writeBacksight(m_station, m_backsight, "",
                                 first ? formatDms(first->horizontal, 6) : std::string()));
    }
    m_backsightLineDue = false;
    std::vector<bool> written(m_pending.size(), false);
    const auto placed = groupFaceSets(faces, m_backsight, m_options.order);
    for (std::size_t i = 0; i < placed.size(); ++i) {
        writeReading(m_pending[placed[i].index], placed[i].role, !written[placed[i].index]);
        written[placed[i].index] = true;
        if (placed[i].role == SetRole::BR && i >= 3 && coded(GsiCoding::Liscad))
            checkSet(m_pending[placed[i - 3].index], m_pending[placed[i - 2].index],
                     m_pending[placed[i - 1].index], m_pending[placed[i].index]);
    }
    m_pending.clear();
}

void GsiImport::checkSet(const Reading &bd, const Reading &fd, const Reading &fr,
                         const Reading &br) {
    constexpr double kTolerance = 1.0 / 60.0; // degrees
    auto off = [](double angle) { return std::fabs(normalizeDegrees(angle + 180.0) - 180.0); };
    const bool backsightHz = off(br.horizontal - bd.horizontal - 180.0) > kTolerance;
    const bool foresightHz = off(fr.horizontal - fd.horizontal - 180.0) > kTolerance;
    const bool backsightZe = off(bd.zenith + br.zenith) > kTolerance;
    const bool foresightZe = off(fd.zenith + fr.zenith) > kTolerance;
    if (backsightZe)
        emit("--WARNING: inconsistent backsight direct angle\n");
    if (foresightZe)
        emit("--WARNING: inconsistent forsight direct angle\n");
    if (backsightHz)
        emit("--WARNING: inconsistent backsight reverse angle\n");
    if (foresightHz)
        emit("--WARNING: inconsistent forsight reverse angle\n");
}

void GsiImport::writeReading(Reading &reading, SetRole role, bool first) {
    static const char *const kTypes[] = {"SS", "BD", "FD", "FR", "BR"};
    const char *type = kTypes[int(role)];
    if (role == SetRole::Single && coded(GsiCoding::Liscad) && m_stations.count(reading.to))
        type = "TR";
    const bool closes = role == SetRole::Single && coded(GsiCoding::Liscad) && closing(reading.to);
    if (reading.targetHeight != m_writtenHeight) {
        emit(format("LS,HR%.3f\n", reading.targetHeight));
        m_writtenHeight = reading.targetHeight;
    }
    // "%s,OP%s,FP%s,AR%s,ZE%s,SD%.4f,--%s\n", built by appending into
    // room made once.
    std::string &line = m_line;
    line.clear();
    line += type;
    line += ",OP";
    line += m_station;
    line += ",FP";
    line += reading.to;
    line += m_options.azimuths ? ",AZ" : ",AR";
    line += formatDms(reading.horizontal, 6);
    line += ",ZE";
    line += formatDms(reading.zenith, 6);
    line += reading.slope ? ",SD" : ",HD";
    appendFixed(line, reading.distance, 4);
    line += ",--";
    line += reading.note;
    if (closes)
        line += reading.note.empty() ? "CLO" : " CLO";
    line += '\n';
    emit(line);
    ++m_out.observations;
    if (first && reading.point != std::string::npos)
        emit(storePointLine(m_out.points[reading.point]));
}

bool looksLikeGsi(const SourceLines &source) {
    std::vector<Word> words;
    for (const auto &line : source)
        if (readWords(line.text, words) && (words.front().index == 11 || words.front().index == 41))
            return true;
    return false;
}

Status pointsOnly(const SourceLines &source, GsiCoding coding, ImportOutput &out) {
    GsiImportOptions options;
    options.coding = coding;
    if (Status s = importGsiWith(source, options, out); !s)
        return s;
    out.lines.clear();
    out.observations = 0;
    out.completion = tr("Done");
    return Status::success();
}

} // namespace

Status importGsiWith(const SourceLines &source, const GsiImportOptions &options,
                     ImportOutput &out) {
    if (options.coding == GsiCoding::GeoComp)
        return Status::failure(StatusCode::Format,
                               format(tr("Error: %s is not available yet"), "GeoComp"));
    if (!looksLikeGsi(source))
        return Status::failure(StatusCode::Format, tr("Error: not a Leica GSI file"));
    GsiImport(source, options, out).run();
    return Status::success();
}

Status importGsi(const SourceLines &source, Interaction &ui, ImportOutput &out) {
    std::vector<FormField> fields = {
        {tr("Direct-Reverse Order"), "BFFB", {"BFFB", "BFBF"}},
        {tr("Coding System"), "WildSoft", {"WildSoft", "Liscad", "10-20-30-40", "GeoComp"}}};
    if (!ui.fillForm(tr("Leica Options"), fields))
        return Status::failure(StatusCode::Cancelled, tr("Function cancelled at user request"));
    GsiImportOptions options;
    options.order = equalsIgnoreCase(fields[0].value, "BFBF") ? FaceOrder::BFBF : FaceOrder::BFFB;
    const std::string &coding = fields[1].value;
    options.coding = equalsIgnoreCase(coding, "Liscad")    ? GsiCoding::Liscad
                     : coding == "10-20-30-40"             ? GsiCoding::TenTwentyThirtyForty
                     : equalsIgnoreCase(coding, "GeoComp") ? GsiCoding::GeoComp
                                                           : GsiCoding::WildSoft;
    if (options.coding == GsiCoding::TenTwentyThirtyForty) {
        std::vector<FormField> format = {
            {tr("Data Format"), "10-20-30-40", {"10-20-30-40", "10-20-40"}},
            {tr("Angle Format"), tr("Angle Right"), {tr("Angle Right"), tr("Azimuth")}}};
        if (!ui.fillForm(tr("Leica 10-20-30-40 Format"), format))
            return Status::failure(StatusCode::Cancelled, tr("Function cancelled at user request"));
        options.withThirty = format[0].value != "10-20-40";
        options.azimuths = format[1].value == tr("Azimuth");
    }
    return importGsiWith(source, options, out);
}

Status importGsiPointsWildsoft(const SourceLines &source, Interaction &, ImportOutput &out) {
    return pointsOnly(source, GsiCoding::WildSoft, out);
}

Status importGsiPointsLiscad(const SourceLines &source, Interaction &, ImportOutput &out) {
    return pointsOnly(source, GsiCoding::Liscad, out);
}

Status importGsiPointsTenTwenty(const SourceLines &source, Interaction &, ImportOutput &out) {
    return pointsOnly(source, GsiCoding::TenTwentyThirtyForty, out);
}

} // namespace tramline::convert

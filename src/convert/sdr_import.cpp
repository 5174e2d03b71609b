// Records are turned one by one in file order, except the face readings of
// a station, which are gathered first so that they can be grouped into
// direct/reverse sets (sdr_face_sets.h).
//
// Decisions of ours where the format leaves room:
// - point names are trimmed (real files right-align them in their field);
// - a 07 backsight gives the form with the backsight point when that point
//   is known or no azimuth is given, else the form with the azimuth;
// - a station without a 07 backsight takes the point of its first face-1
//   reading as backsight, so that its sets can be formed;
// - "Notes" writes plain readings to the backsight point as notes and no
//   azimuth sideshot; "Sideshots" writes both as sideshots;
// - 13 "TS" time stamps become "--DT"/"--TM" notes, 13 "AT" notes
//   "--Atmospheric Correction:"; 25, 26 and 57 carry coordinates at the
//   columns of an 08 record, 57 its target height after them;
// - backsight set lines end in an empty note field ("BD,...,SD%.3f,--"),
//   as every observation record does, so that the strict classifier and
//   the reader take them as observations;
// - the job line takes date and time from the header, the note after it
//   names the program that wrote the file, and a mode line follows with
//   the file's distance unit (angles are always written in ddd.mmss).
#include "convert/sdr_import.h"

#include "base/angles.h"
#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"
#include "convert/sdr_face_sets.h"
#include "convert/sdr_reader.h"
#include "raw/writer.h"

#include <unordered_set>

namespace tramline::convert {

namespace {

using namespace sdr;

constexpr std::size_t kToEnd = std::string_view::npos;

// A face or plain reading (09 record) as read.
struct Reading {
    std::string derivation, from, to, description, record;
    double distance = 0.0, zenith = 0.0, horizontal = 0.0, targetHeight = 0.0;
    std::size_t line = 0;
    bool zero = false;
};

class SdrImport {
public:
    SdrImport(const SourceLines &source, ImportOutput &out, const Header &header, bool notes)
        : m_source(source), m_out(out), m_header(header), m_backsightAsNotes(notes),
          m_wide(header.layout == Layout::Sdr33) {}

    void run();

private:
    // Column of a field: the SDR-33 column, or the SDR-2x one.
    std::size_t col(std::size_t wide, std::size_t narrow) const { return m_wide ? wide : narrow; }
    std::string angle(double value) const {
        return formatDms(m_header.gons ? value * 360.0 / 400.0 : value, 4);
    }
    void emit(std::string_view line) { m_out.lines.push_back(line); }
    void skip(const char *reason) { ++m_out.skipped[reason]; }

    void turn(std::size_t &i);
    void station(std::string_view r);
    void targetHeight(double height);
    void backsight(std::string_view r);
    void point(std::string_view r, std::size_t nameCol, std::size_t nameWidth, std::size_t c1,
               std::size_t width, std::size_t descCol, std::size_t descWidth);
    void reducedShot(std::string_view r);
    void azimuthShot(std::string_view r);
    void note(std::string_view r);
    void numbers(std::string_view r, int count, const char *pattern);
    void readings(std::size_t &i);
    Reading reading(std::string_view r, std::size_t line) const;
    bool setStation(const std::string &from, const SourceLine &line);
    void writeReading(const Reading &reading, SetRole role);
    void writeBacksightLine(const std::string &azimuth, const std::string &circle);
    void writeDueBacksightLine() {
        if (m_backsightLineDue)
            writeBacksightLine({}, {});
    }

    const SourceLines &m_source;
    ImportOutput &m_out;
    Header m_header;
    bool m_backsightAsNotes;
    bool m_wide;

    std::string m_job, m_date, m_time;
    std::string m_station, m_backsight;
    double m_targetHeight = 0.0;
    double m_writtenHeight = -1e300;
    bool m_usFeet = false;
    bool m_backsightLineDue = false;         // a station changed among the readings
    std::unordered_set<std::string> m_known; // point names met so far
};

void SdrImport::run() {
    m_out.lines.reserve(m_source.size() + 8);
    m_date = m_header.date;
    m_time = m_header.time;
    for (std::size_t i = 0; i < m_source.size();)
        turn(i);
    dropUnusedTargetHeights(m_out.lines);

    m_out.lines.insertFront({raw::writeJob(m_job, m_date, m_time),
                             format("--%s %s\n", "Sokkia",
                                    m_header.program.empty() ? (m_wide ? "SDR-33" : "SDR-2x")
                                                             : m_header.program.c_str()),
                             raw::writeMode(m_header.metres ? LinearUnit::Metres
                                            : m_usFeet      ? LinearUnit::UsSurveyFeet
                                                            : LinearUnit::InternationalFeet)});
    m_out.completion = tr("SOKKIA File conversion complete");
}

void SdrImport::turn(std::size_t &i) {
    const SourceLine &line = m_source[i];
    const std::string_view r = recordText(line.text);
    const int type = recordType(r);
    if (type == 9 && (field(r, 2, 2) == "F1" || field(r, 2, 2) == "F2")) {
        readings(i);
        return;
    }
    ++i;
    if (type < 0) {
        skip(trNoop("not a record"));
        return;
    }
    ++m_out.records;
    switch (type) {
    case 0:
    case 1:
        break;
    case 2:
        station(r);
        break;
    case 3:
    case 77:
        targetHeight(number(r, 4, col(16, 10)));
        break;
    case 7:
        backsight(r);
        break;
    case 8:
        point(r, 4, col(16, 4), col(20, 8), col(16, 10), col(68, 38), col(31, 16));
        break;
    case 9: {
        Reading shot = reading(r, line.number);
        if (!setStation(shot.from, line)) {
            --m_out.records;
            skip(trNoop("reading without a station"));
            break;
        }
        writeDueBacksightLine();
        writeReading(shot, SetRole::Single);
        break;
    }
    case 10:
        m_job = std::string(trim(field(r, 4, m_wide ? 16 : kToEnd)));
        break;
    case 11:
        reducedShot(r);
        break;
    case 13:
        note(r);
        break;
    case 14:
        emit(format("--GPSINST:%s\n", std::string(trimRight(r)).c_str()));
        break;
    case 15:
        point(r, 4, col(16, 4), col(20, 8), col(16, 10), col(132, 78), 16);
        break;
    case 16:
        azimuthShot(r);
        break;
    case 17:
        emit(format("--GRED:%s\n", std::string(trimRight(r)).c_str()));
        break;
    case 18:
        emit(format("--GPOS:%s\n", std::string(trimRight(r)).c_str()));
        break;
    case 19:
        emit(format("--PROJ:%s\n", std::string(trimRight(r)).c_str()));
        break;
    case 21:
        numbers(r, 5, "--VERTADJ:%.5f,%.5f,%.5f,%.8f,%.8f\n");
        break;
    case 24:
        emit(format("--GPS:%s\n", std::string(trimRight(r)).c_str()));
        break;
    case 50:
        numbers(r, 6, "--HZADJ:%.5f,%.5f,%.5f,%.5f,%.6f,%.12f\n");
        break;
    case 25:
    case 26:
    case 57:
        point(r, 4, col(16, 4), col(20, 8), col(16, 10), col(84, 48), 16);
        if (type == 57)
            targetHeight(number(r, col(68, 38), col(16, 10)));
        break;
    default:
        --m_out.records;
        skip(trNoop("ignored record type"));
        break;
    }
}

void SdrImport::station(std::string_view r) {
    m_station = name(r, 4, col(16, 4));
    m_backsight.clear();
    if (m_station.empty())
        return;
    bool first = false, second = false;
    number(r, col(20, 8), col(16, 10), &first);
    number(r, col(36, 18), col(16, 10), &second);
    if (first && second)
        point(r, 4, col(16, 4), col(20, 8), col(16, 10), col(84, 48), 16);
    const double hi = number(r, col(68, 38), 16);
    emit(format("LS,HI%f\n", hi));
}

void SdrImport::targetHeight(double height) {
    m_targetHeight = height;
    m_writtenHeight = height;
    emit(format("LS,HR%.4f\n", height));
}

void SdrImport::writeBacksightLine(const std::string &azimuth, const std::string &circle) {
    m_backsightLineDue = false;
    if (m_backsight.empty() || (!azimuth.empty() && !m_known.count(m_backsight)))
        emit(format("BK,OP%s,BP,BS%s,BC%s\n", m_station.c_str(), azimuth.c_str(), circle.c_str()));
    else
        emit(format("BK,OP%s,BP%s,BS,BC%s\n", m_station.c_str(), m_backsight.c_str(),
                    circle.c_str()));
}

void SdrImport::backsight(std::string_view r) {
    const std::string at = name(r, 4, col(16, 4));
    if (!at.empty())
        m_station = at;
    m_backsight = name(r, col(20, 8), col(16, 4));
    bool hasAzimuth = false, hasCircle = false;
    const double azimuth = number(r, col(36, 12), col(16, 10), &hasAzimuth);
    const double circle = number(r, col(52, 22), col(16, 10), &hasCircle);
    const std::string azimuthText = hasAzimuth ? angle(azimuth) : std::string();
    writeBacksightLine(azimuthText, hasCircle ? angle(circle) : std::string());
    if (hasAzimuth && !m_backsight.empty() && !m_backsightAsNotes) {
        emit(format("SS,OP%s,FP%s,AZ%s,ZE90.0,SD100.0,--Backsight\n", m_station.c_str(),
                    m_backsight.c_str(), azimuthText.c_str()));
        ++m_out.observations;
    }
}

void SdrImport::point(std::string_view r, std::size_t nameCol, std::size_t nameWidth,
                      std::size_t c1, std::size_t width, std::size_t descCol,
                      std::size_t descWidth) {
    const std::string pointName = name(r, nameCol, nameWidth);
    if (pointName.empty()) {
        --m_out.records;
        skip(trNoop("point without a name"));
        return;
    }
    double first = number(r, c1, width);
    double second = number(r, c1 + width, width);
    const double elevation = number(r, c1 + 2 * width, width);
    if (!m_header.northingFirst)
        std::swap(first, second);
    const std::string description(trim(field(r, descCol, descWidth)));
    crd::CrdPoint p;
    p.set(second, first, elevation, pointName, description);
    m_out.points.push_back(p);
    m_known.insert(pointName);
    emit(raw::writeStorePoint(pointName, first, second, elevation, description));
}

void SdrImport::reducedShot(std::string_view r) {
    const std::string from = name(r, 4, col(16, 4));
    const std::string to = name(r, col(20, 8), col(16, 4));
    bool hasDistance = false, hasHeight = false;
    const double horizontal = number(r, col(36, 12), col(16, 10));
    const double distance = number(r, col(52, 22), col(16, 10), &hasDistance);
    const double height = number(r, col(68, 32), col(16, 10), &hasHeight);
    const std::string description(trim(field(r, col(84, 42), 16)));
    // Without distance and height difference the record only orients the
    // station: its angle is an azimuth.
    const char *pattern = hasDistance || hasHeight ? "SS,OP%s,FP%s,AR%s,CE%.4f,SD%.4f,--%s\n"
                                                   : "SS,OP%s,FP%s,AZ%s,CE%.4f,SD%.4f,--%s\n";
    emit(format(pattern, from.empty() ? m_station.c_str() : from.c_str(), to.c_str(),
                angle(horizontal).c_str(), height, distance, description.c_str()));
    ++m_out.observations;
}

void SdrImport::azimuthShot(std::string_view r) {
    const std::string from = name(r, 4, col(16, 4));
    const std::string to = name(r, col(20, 8), col(16, 4));
    const double azimuth = number(r, col(36, 12), col(16, 10));
    const double zenith = number(r, col(52, 22), col(16, 10));
    const double distance = number(r, col(68, 32), col(16, 10));
    const std::string description(trim(field(r, col(100, 52), 16)));
    emit(format("SS,OP%s,FP%s,AZ%s,ZE%s,SD%.4f,--%s\n",
                from.empty() ? m_station.c_str() : from.c_str(), to.c_str(), angle(azimuth).c_str(),
                angle(zenith).c_str(), distance, description.c_str()));
    ++m_out.observations;
}

void SdrImport::note(std::string_view r) {
    const std::string_view derivation = field(r, 2, 2);
    const std::string text(trimRight(field(r, 4, kToEnd)));
    if (derivation == "DU" && text.find("US Feet") != std::string::npos) {
        m_usFeet = true; // the unit note our export writes for US survey feet
    } else if (derivation == "TS") {
        const auto parts = split(trim(text), ' ');
        emit(format("--DT%s\n", std::string(parts.front()).c_str()));
        if (parts.size() > 1)
            emit(format("--TM%s\n", std::string(parts.back()).c_str()));
    } else if (derivation == "AT") {
        emit(format("--Atmospheric Correction: %s\n", text.c_str()));
    } else {
        emit(format("--%s\n", text.c_str()));
    }
}

void SdrImport::numbers(std::string_view r, int count, const char *pattern) {
    double v[6] = {};
    for (int k = 0; k < count; ++k)
        v[k] = number(r, 4 + std::size_t(k) * col(16, 10), col(16, 10));
    if (count == 5)
        emit(format(pattern, v[0], v[1], v[2], v[3], v[4]));
    else
        emit(format(pattern, v[0], v[1], v[2], v[3], v[4], v[5]));
}

Reading SdrImport::reading(std::string_view r, std::size_t line) const {
    Reading shot;
    shot.derivation = std::string(field(r, 2, 2));
    shot.from = name(r, 4, col(16, 4));
    shot.to = name(r, col(20, 8), col(16, 4));
    bool hasDistance = false, hasZenith = false;
    shot.distance = number(r, col(36, 12), col(16, 10), &hasDistance);
    shot.zenith = number(r, col(52, 22), col(16, 10), &hasZenith);
    shot.horizontal = number(r, col(68, 32), col(16, 10));
    shot.description = std::string(trim(field(r, col(84, 42), 16)));
    shot.record = std::string(trimRight(r));
    shot.targetHeight = m_targetHeight;
    shot.line = line;
    shot.zero = shot.distance == 0.0 && shot.zenith == 0.0;
    return shot;
}

// Makes `from` the current station; a new one gets a fresh backsight line.
bool SdrImport::setStation(const std::string &from, const SourceLine &line) {
    if (from.empty() || from == m_station) {
        if (!m_station.empty())
            return true;
        appendFormat(m_out.report, "%s %s %zu: %s", tr("\nWarning: unable to set occupy point"),
                     tr("at line"), line.number + 1, std::string(line.text).c_str());
        return false;
    }
    if (!m_station.empty())
        appendFormat(m_out.report,
                     tr("\nWarning: occupy points %s and %s don't match for line:\n  %s"),
                     m_station.c_str(), from.c_str(), std::string(line.text).c_str());
    m_station = from;
    m_backsight.clear();
    m_backsightLineDue = true;
    return true;
}

void SdrImport::writeReading(const Reading &shot, SetRole role) {
    if (shot.zero) {
        appendFormat(m_out.report,
                     tr("\nWarning: zero distance and vertical angle at line %d of source raw "
                        "file."),
                     int(shot.line + 1));
        emit("--Warning: zero values for distance and vertical angle on following shot\n");
    }
    const std::string ha = angle(shot.horizontal), ze = angle(shot.zenith);
    const char *op = m_station.c_str(), *fp = shot.to.c_str();
    std::string heightLine;
    if (role != SetRole::Single || shot.derivation != "MC") {
        if (shot.targetHeight != m_writtenHeight)
            heightLine = format("LS,HR%.4f\n", shot.targetHeight);
        m_writtenHeight = shot.targetHeight;
    }
    ++m_out.observations;
    switch (role) {
    case SetRole::BD:
        emit(heightLine);
        emit(format("BD,OP%s,FP%s,AR%s,ZE%s,SD%.3f,--\n", op, fp, ha.c_str(), ze.c_str(),
                    shot.distance));
        return;
    case SetRole::FD:
    case SetRole::FR:
        emit(heightLine);
        emit(format(role == SetRole::FD ? "FD,OP%s,FP%s,AR%s,ZE%s,SD%.3f,--%s\n"
                                        : "FR,OP%s,FP%s,AR%s,ZE%s,SD%.3f,--%s\n",
                    op, fp, ha.c_str(), ze.c_str(), shot.distance, shot.description.c_str()));
        return;
    case SetRole::BR:
        emit(heightLine);
        emit(format("BR,OP%s,FP%s,AR%s,ZE%s,SD%.3f,--\n", op, fp, ha.c_str(), ze.c_str(),
                    shot.distance));
        return;
    case SetRole::Single:
        break;
    }
    if (m_backsightAsNotes && !m_backsight.empty() && shot.to == m_backsight) {
        --m_out.observations;
        emit(format("--Backsight reading: OP%s FP%s AR%s ZE%s SD%.3f\n", op, fp, ha.c_str(),
                    ze.c_str(), shot.distance));
        return;
    }
    if (shot.derivation == "F1" || shot.derivation == "F2") {
        // The height line is a list entry of its own, so that the clean-up
        // of target heights sees it.
        emit(heightLine);
        emit(format("%sSS,OP%s,FP%s,AR%s,ZE%s,SD%.3f,--%s\n", "", op, fp, ha.c_str(), ze.c_str(),
                    shot.distance, shot.description.c_str()));
        return;
    }
    emit(format("SS,OP%s,FP%s,AR%s,ZE%s,SD%f,--%s\n", op, fp, ha.c_str(), ze.c_str(), shot.distance,
                shot.description.c_str()));
}

// Gathers the face readings of one station, with the target heights
// between them, and writes them grouped into sets.
void SdrImport::readings(std::size_t &i) {
    const std::string from = name(recordText(m_source[i].text), 4, col(16, 4));
    std::vector<Reading> shots;
    std::size_t end = i, scan = i;
    double height = m_targetHeight;
    for (; scan < m_source.size(); ++scan) {
        const std::string_view r = recordText(m_source[scan].text);
        const int type = recordType(r);
        if (type == 3) {
            height = number(r, 4, col(16, 10));
            continue;
        }
        if (type != 9 || (field(r, 2, 2) != "F1" && field(r, 2, 2) != "F2") ||
            name(r, 4, col(16, 4)) != from)
            break;
        Reading shot = reading(r, m_source[scan].number);
        shot.targetHeight = height;
        shots.push_back(std::move(shot));
        end = scan + 1;
    }
    // Target heights after the last reading are turned as records of their own.
    for (std::size_t k = i; k < end; ++k)
        if (recordType(recordText(m_source[k].text)) == 3)
            ++m_out.records;
    m_out.records += long(shots.size());
    if (!shots.empty())
        m_targetHeight = shots.back().targetHeight;
    const SourceLine &first = m_source[i];
    i = end;
    if (!setStation(from, first)) {
        m_out.records -= long(shots.size());
        m_out.skipped[trNoop("reading without a station")] += long(shots.size());
        return;
    }
    if (m_backsight.empty()) {
        for (const auto &shot : shots)
            if (shot.derivation == "F1") {
                m_backsight = shot.to;
                m_backsightLineDue = false;
                emit(format("BK,OP%s,BP%s,BS,BC%s\n", m_station.c_str(), m_backsight.c_str(),
                            angle(shot.horizontal).c_str()));
                break;
            }
    }
    writeDueBacksightLine();
    std::vector<FaceReading> faces;
    faces.reserve(shots.size());
    for (const auto &shot : shots)
        faces.push_back({shot.derivation == "F2", shot.to});
    for (const auto &placed : groupFaceReadings(faces, m_backsight))
        writeReading(shots[placed.index], placed.role);
}

} // namespace

void dropUnusedTargetHeights(OutputLines &lines) {
    static constexpr std::string_view kShots[] = {"SS,", "TR,", "FD,", "FR,", "BR,", "BD,"};
    std::vector<bool> drop(lines.size(), false);
    bool laterHeight = false; // a target height follows before the next shot
    for (std::size_t k = lines.size(); k-- > 0;) {
        const std::string_view line = lines[k];
        if (line.starts_with("LS,HR")) {
            drop[k] = laterHeight;
            laterHeight = true;
            continue;
        }
        for (std::string_view shot : kShots)
            if (line.starts_with(shot))
                laterHeight = false;
    }
    lines.removeIf([&](std::size_t k) { return drop[k] || lines[k].empty(); });
}

Status importSdr(const SourceLines &source, Interaction &ui, ImportOutput &out) {
    if (!sdr::looksLikeSdr(source))
        return Status::failure(StatusCode::Format, tr("Error: not a Sokkia SDR file"));
    const int choice =
        ui.choose(tr("Backsight Measurements"), tr("Store backsight measurements as..."),
                  {tr("Sideshots"), tr("Notes")});
    if (choice < 0)
        return Status::failure(StatusCode::Cancelled, tr("Function cancelled at user request"));
    sdr::Header header;
    if (!sdr::findHeader(source, header)) {
        const int format = ui.choose(tr("File Format"),
                                     std::string(tr("Raw File Missing Header.")) + "\n" +
                                         tr("Choose File Format:"),
                                     {tr("SDR-33"), tr("All Others")});
        if (format < 0)
            return Status::failure(StatusCode::Cancelled, tr("Function cancelled at user request"));
        header = sdr::substituteHeader(format == 0 ? sdr::Layout::Sdr33 : sdr::Layout::Sdr2x);
    }
    SdrImport(source, out, header, choice == 1).run();
    return Status::success();
}

} // namespace tramline::convert

// The raw records are walked in file order; each becomes the records of
// the field book that it gives cause for, numbered from 1.
//
// Decisions of ours where the format leaves room:
// - a set-up is written at its first shot (or at the next set-up, or at
//   the end) so that the heights after its backsight line count: an
//   InstrumentRecord before the first one, then a StationRecord with the
//   instrument height in force and a BackBearingRecord; a shot from a new
//   occupied point without a backsight gives a StationRecord alone;
// - a TargetRecord is written before a shot whenever the target height
//   changed (and before the first shot);
// - a shot whose distance is empty or zero is an angle-only observation;
//   BD and BR shots are backsight observations; FR and BR are face 2;
// - direct/reverse sets form rounds: the first set line opens the rounds
//   and round 1, a BD after an FR or BR starts the next round, and the
//   first line of another kind ends the round and the rounds;
// - the first MO record's unit drives the display settings and the
//   UnitsRecord; a job with GPS positions gets the UTM form of the
//   coordinate system, in the zone of its first position; others the
//   scale-only form;
// - the quality notes that follow a GPS record ("--SDEV: n,e,z PDOP: p"
//   as the GSI import writes it, "--PDOP Avg:", "--HDOP Avg:", "--VDOP
//   Avg:", "--HRMS Avg:", "--VRMS Avg:", "--Number of Satellites Avg:")
//   belong to it: its PointRecord is written after them with Precision
//   and QualityControl1 (missing values as empty elements, start and end
//   time unknown: week 0, second 0), and the notes are not written again;
// - a G1 vector record is a GPS point fixed from its base: ECEFDeltas and
//   the reference record of the base;
// - values are written as the schema takes them: angles in decimal
//   degrees (RW5 angles are ddd.mmss), distances, heights and coordinates
//   in metres.
#include "convert/jxl_export.h"

#include "base/angles.h"
#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"
#include "convert/jxl_environment.h"
#include "convert/jxl_writer.h"
#include "raw/classify.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>

namespace tramline::convert {

namespace {

double numberOr(std::string_view text, double fallback) {
    double value = 0.0;
    return parseNumber(trim(text), value) && std::isfinite(value) ? value : fallback;
}

// A note's value after `key`, up to the next blank.
std::string valueAfter(std::string_view note, std::string_view key) {
    const auto at = note.find(key);
    if (at == std::string_view::npos)
        return {};
    std::string_view rest = trimLeft(note.substr(at + key.size()));
    return std::string(rest.substr(0, rest.find_first_of(" \t,")));
}

constexpr std::size_t kPiece = std::size_t(1) << 20;

using namespace jxl;

// The runs of records that never change.
constexpr JxlField kInstrumentBody[] = {value("Type", "Unknown"),
                                        empty("RefractiveIndex"),
                                        empty("CarrierWavelength"),
                                        value("EDMMeasurementMode", "Fine"),
                                        value("SetHorizontalCircleMode", "DoNothing"),
                                        value("Servo", "NoServo"),
                                        empty("AnglesOnlyRate"),
                                        value("TurnToZero", "false"),
                                        value("AverageMeasurements", "1"),
                                        empty("HorizontalAnglePrecision"),
                                        empty("VerticalAnglePrecision"),
                                        empty("EDMPrecision"),
                                        empty("EDMppm"),
                                        value("InstrumentPrecisionsSource", "UserEntered"),
                                        value("CenteringError", "0"),
                                        close("InstrumentRecord")};
constexpr JxlField kStationEnd[] = {value("NumberOfBacksightMeasurements", "1"),
                                    value("NumberOfBacksightPoints", "1"),
                                    value("ScaleFactor", "1"),
                                    value("ScaleType", "Fixed"),
                                    empty("ScaleFactorStandardError"),
                                    value("StationType", "StationSetup"),
                                    close("StationRecord")};
constexpr JxlField kPrism[] = {value("PrismType", "CustomPrism"), value("PrismConstant", "0.000")};
constexpr JxlField kCircleEnd[] = {empty("HorizontalCircleStandardError"),
                                   empty("VerticalCircleStandardError"),
                                   empty("EDMDistanceStandardError"), close("Circle")};
constexpr JxlField kAtmosphereEnd[] = {
    value("ApplyEarthCurvatureCorrection", "true"), value("ApplyRefractionCorrection", "true"),
    value("RefractionCoefficient", "0.142"), value("PressureInputMethod", "KeyedIn"),
    close("AtmosphereRecord")};
constexpr JxlField kAntennaEnd[] = {value("AntennaNumber", "0"),
                                    value("AntennaMethod", "1"),
                                    value("AntennaTapeAdjustment", "0.000000"),
                                    value("AntennaHorizontalOffset", "0.000000"),
                                    value("AntennaVerticalOffset", "0.000000"),
                                    close("AntennaRecord")};

class JxlExport {
public:
    JxlExport(const std::vector<std::string> &lines, const std::string &stamp, Interaction &ui)
        : m_lines(lines), m_out(stamp), m_ui(ui) {}

    bool run(ExportOutput &result);
    /// Why run() failed, when it is more than a cancelled run.
    const std::string &failure() const { return m_failure; }

private:
    double metres(double value) const {
        switch (m_unit) {
        case LinearUnit::InternationalFeet:
            return value * 0.3048;
        case LinearUnit::UsSurveyFeet:
            return value * 1200.0 / 3937.0;
        case LinearUnit::Metres:
            break;
        }
        return value;
    }
    void scanHead();
    void record(std::string_view line, ExportOutput &result);
    void note(std::string_view text);
    void units();
    void atmosphere(std::string_view text);
    void equipment(std::string_view text);
    void antenna(std::string_view text);
    void setup(const std::string &station, bool fresh = false);
    void backBearing(const raw::RawFields &f);
    void flushBacksight() {
        if (!m_pendingBacksight)
            return;
        m_pendingBacksight = false;
        setup(m_backsight[0], true);
        backBearing(m_backsight);
    }
    void target();
    /// A raw instrument or target height: measured true height, no offsets.
    void rawHeight(const char *element, double height) {
        m_out.open(element);
        m_out.raw("MeasurementMethod", "TrueHeight");
        m_out.number("MeasuredHeight", metres(height), 8);
        m_out.raw("HorizontalOffset", "0");
        m_out.raw("VerticalOffset", "0");
        m_out.close(element);
    }
    void observation(std::string_view line, const raw::RawFields &f);
    void rounds(std::string_view type);
    void endRounds();
    void keyedIn(const raw::RawFields &f);
    void gps(const raw::RawFields &f);
    bool gpsQuality(std::string_view note);
    void flushGps();
    void vector(const raw::RawFields &f);
    void reference(const raw::RawFields &f);

    const std::vector<std::string> &m_lines;
    JxlWriter m_out;
    Interaction &m_ui;
    std::string m_failure;
    long m_pieces = 0; // handed on to the file

    std::string m_job;
    LinearUnit m_unit = LinearUnit::Metres;
    bool m_unitsWritten = false;
    JxlGrid m_grid;
    unsigned m_instrument = 0, m_station = 0, m_backBearing = 0, m_target = 0, m_atmosphere = 0;
    unsigned m_reference = 0, m_antenna = 0;
    std::string m_stationName, m_baseName;
    double m_hi = 0.0, m_hr = 0.0, m_writtenHr = -1e300;
    raw::RawFields m_backsight; // a BK line not written yet
    bool m_pendingBacksight = false;
    int m_round = 0;           // 0: not in rounds
    std::string m_lastSetType; // the set line before
    // Kept from line to line, so that their strings keep their room.
    raw::RawFields m_fields;
    std::vector<std::string_view> m_parts;
    // A GPS record waiting for the quality notes after it.
    raw::RawFields m_gps;
    bool m_gpsPending = false;
    struct Quality {
        double sdevN = NAN, sdevE = NAN, sdevZ = NAN, pdop = NAN, hdop = NAN, vdop = NAN;
        double hrms = NAN, vrms = NAN, satellites = NAN;
    } m_quality;
};

void JxlExport::scanHead() {
    raw::RawFields f;
    bool modeSeen = false;
    for (const auto &line : m_lines) {
        // Only job, mode and GPS lines matter here: the rest need no classifying.
        const std::string_view head = trimLeft(line);
        if (!head.starts_with("JB") && !head.starts_with("MO") && !head.starts_with("GPS"))
            continue;
        const int kind = raw::ClassifyRawLine(line, raw::JobRecords::Recognised, f);
        if (kind == raw::kJob && m_job.empty())
            m_job = f[0];
        else if (kind == raw::kMode && !modeSeen) {
            modeSeen = true;
            const int un = int(numberOr(f[1], 1));
            m_unit = un == 0   ? LinearUnit::InternationalFeet
                     : un == 2 ? LinearUnit::UsSurveyFeet
                               : LinearUnit::Metres;
        } else if (kind == raw::kGps && m_grid.zone == 0) {
            m_grid = utmZoneOf(unpackDms(numberOr(f[1], 0)), unpackDms(numberOr(f[2], 0)));
        }
    }
}

bool JxlExport::run(ExportOutput &result) {
    scanHead();
    // About 590 bytes are written for a raw line on average: room for all
    // of them (or for a piece) at once spares the copies of a growing buffer.
    m_out.bytes().reserve(
        result.sink ? kPiece + 65536
                    : std::min<std::size_t>(m_lines.size() * 640 + 8192, std::size_t(1) << 30));
    m_out.begin(m_job);
    m_out.open("FieldBook");
    const long total = long(m_lines.size());
    const std::string creating = tr("Create temporary Trimble JXL file...");
    m_ui.progress(0, total, creating);
    for (long i = 0; i < total; ++i) {
        if ((i & 1023) == 0) {
            m_ui.progress(i, total, creating);
            if (!m_ui.idle())
                return false;
        }
        record(m_lines[std::size_t(i)], result);
        // Large jobs go to the file in pieces of about a megabyte.
        if (result.sink && m_out.bytes().size() > kPiece) {
            if (!result.sink(m_out.bytes())) {
                m_failure = m_pieces == 0 ? tr("\nError: cannot create temporary Trimble JXL file.")
                                          : tr("\nError: cannot write temporary Trimble JXL file.");
                return false;
            }
            ++m_pieces;
            m_out.bytes().clear();
        }
    }
    flushGps();
    endRounds();
    flushBacksight();
    m_out.close("FieldBook");
    writeJxlEnvironment(m_out, m_unit, m_grid);
    m_out.end();
    m_ui.progress(total, total, creating);
    m_ui.progress(0, 1, tr("Searching raw data in Trimble JXL file..."));
    if (m_out.bytes().rfind("</FieldBook>") == std::string::npos)
        return false;
    m_ui.progress(1, 1, tr("Searching raw data in Trimble JXL file..."));
    result.bytes = std::move(m_out.bytes());
    return true;
}

void JxlExport::record(std::string_view line, ExportOutput &result) {
    raw::RawFields &f = m_fields;
    const int kind = raw::ClassifyRawLine(line, raw::JobRecords::Recognised, f);
    ++result.records;
    if (m_gpsPending) {
        if (kind == raw::kNote && gpsQuality(f[0]))
            return;
        flushGps();
    }
    if (kind != raw::kObservation)
        endRounds();
    switch (kind) {
    case raw::kNote:
        note(f[0]);
        break;
    case raw::kMode:
        units();
        break;
    case raw::kHeightsHi:
        m_hi = numberOr(f[0], 0.0);
        break;
    case raw::kHeightsHiHr:
        m_hi = numberOr(f[0], 0.0);
        m_hr = numberOr(f[1], 0.0);
        break;
    case raw::kHeightsHr:
        m_hr = numberOr(f[0], 0.0);
        break;
    case raw::kBacksight:
        flushBacksight();
        m_backsight = f;
        m_pendingBacksight = true;
        break;
    case raw::kStorePoint:
        keyedIn(f);
        break;
    case raw::kObservation:
        observation(line, f);
        break;
    case raw::kGps:
        m_gps = f;
        m_gpsPending = true;
        m_quality = {};
        break;
    case raw::kGps1:
        vector(f);
        break;
    case raw::kBasePointNote:
    case raw::kBasePointSr:
        reference(f);
        break;
    case raw::kOccupy:
        flushBacksight();
        break;
    case raw::kJob:
        break;
    default:
        --result.records;
        ++result.skipped[trNoop("record without a JobXML record")];
        break;
    }
}

void JxlExport::note(std::string_view text) {
    if (text.find("Temperature = ") != std::string_view::npos ||
        text.find("Pressure = ") != std::string_view::npos)
        return atmosphere(text);
    if (text.starts_with("Equipment:"))
        return equipment(text.substr(10));
    if (text.starts_with("Antenna Type:"))
        return antenna(text.substr(13));
    m_out.record("NoteRecord");
    m_out.open("Notes");
    m_out.text("Note", text);
    m_out.close("Notes");
    m_out.close("NoteRecord");
}

void JxlExport::units() {
    if (m_unitsWritten)
        return;
    m_unitsWritten = true;
    m_out.record("UnitsRecord");
    writeJxlDisplaySettings(m_out, m_unit);
    m_out.close("UnitsRecord");
}

void JxlExport::atmosphere(std::string_view text) {
    const std::string upper = toUpper(text);
    const std::string pressureText = valueAfter(text, "Pressure = ");
    const std::string temperatureText = valueAfter(text, "Temperature = ");
    const std::string ppmText = valueAfter(text, "PPM = ");
    double pressure = numberOr(pressureText, 0.0);
    // Pressure in millibars: inches or millimetres of mercury are turned.
    if (upper.find("INHG") != std::string::npos || upper.find("INGH") != std::string::npos)
        pressure *= 33.8638866667;
    else if (upper.find("MMHG") != std::string::npos || upper.find("MMGH") != std::string::npos)
        pressure *= 1.33322368421;
    double temperature = numberOr(temperatureText, 0.0);
    if (m_unit != LinearUnit::Metres)
        temperature = (temperature - 32.0) * 5.0 / 9.0;
    m_atmosphere = m_out.record("AtmosphereRecord");
    m_out.numberIf(!pressureText.empty(), "Pressure", pressure, 8);
    m_out.numberIf(!temperatureText.empty(), "Temperature", temperature, 8);
    m_out.numberIf(!ppmText.empty(), "PPM", numberOr(ppmText, 0.0), 8);
    m_out.fixed(kAtmosphereEnd);
}

void JxlExport::equipment(std::string_view text) {
    // "--Equipment: type, serial, firmware" as far as given.
    const auto parts = split(trim(text), ',');
    m_out.record("GPSEquipmentRecord");
    m_out.text("ReceiverType", parts.size() > 0 ? trim(parts[0]) : "");
    m_out.text("ReceiverSerialNumber", parts.size() > 1 ? trim(parts[1]) : "");
    m_out.text("ReceiverFirmwareVersion", parts.size() > 2 ? trim(parts[2]) : "");
    m_out.close("GPSEquipmentRecord");
}

void JxlExport::antenna(std::string_view text) {
    const auto parts = split(trim(text), ',');
    m_antenna = m_out.record("AntennaRecord");
    m_out.text("AntennaType", parts.size() > 0 ? trim(parts[0]) : "");
    m_out.text("AntennaSerialNumber", parts.size() > 1 ? trim(parts[1]) : "");
    m_out.fixed(kAntennaEnd);
}

void JxlExport::setup(const std::string &station, bool fresh) {
    if (!fresh && m_station != 0 && station == m_stationName)
        return;
    if (m_instrument == 0) {
        m_instrument = m_out.record("InstrumentRecord");
        m_out.fixed(kInstrumentBody);
    }
    m_stationName = station;
    m_backBearing = 0;
    m_station = m_out.record("StationRecord");
    m_out.text("StationName", station);
    m_out.number("TheodoliteHeight", metres(m_hi), 8);
    rawHeight("RawTheodoliteHeight", m_hi);
    m_out.id("InstrumentID", m_instrument);
    m_out.idOrEmpty("AtmosphereID", m_atmosphere);
    m_out.fixed(kStationEnd);
}

void JxlExport::backBearing(const raw::RawFields &f) {
    m_backBearing = m_out.record("BackBearingRecord");
    m_out.id("StationRecordID", m_station);
    m_out.text("Station", f[0]);
    m_out.text("BackSight", f[1]);
    m_out.numberIf(!trim(f[3]).empty(), "Face1HorizontalCircle", unpackDms(numberOr(f[3], 0.0)),
                   10);
    m_out.empty("Face2HorizontalCircle");
    m_out.number("OrientationCorrection", 0.0, 10);
    m_out.empty("OrientationCorrectionStandardError");
    m_out.close("BackBearingRecord");
}

void JxlExport::target() {
    m_writtenHr = m_hr;
    m_target = m_out.record("TargetRecord");
    m_out.fixed(kPrism);
    m_out.number("TargetHeight", metres(m_hr), 8);
    rawHeight("RawTargetHeight", m_hr);
    m_out.close("TargetRecord");
}

void JxlExport::rounds(std::string_view type) {
    if (m_round == 0) {
        m_out.record("StartRoundsRecord", true);
        m_round = 1;
        m_out.record("StartRoundRecord");
        appendFormat(m_out.bytes(), "<Round>%d</Round>\n", m_round);
        m_out.close("StartRoundRecord");
    } else if (type == "BD" && (m_lastSetType == "FR" || m_lastSetType == "BR")) {
        m_out.record("EndRoundRecord", true);
        ++m_round;
        m_out.record("StartRoundRecord");
        appendFormat(m_out.bytes(), "<Round>%d</Round>\n", m_round);
        m_out.close("StartRoundRecord");
    }
    m_lastSetType = std::string(type);
}

void JxlExport::endRounds() {
    if (m_round == 0)
        return;
    m_out.record("EndRoundRecord", true);
    m_out.record("EndRoundsRecord", true);
    m_round = 0;
    m_lastSetType.clear();
}

void JxlExport::observation(std::string_view line, const raw::RawFields &f) {
    const std::string &type = f[0];
    const bool set = type == "BD" || type == "BR" || type == "FD" || type == "FR";
    if (!set)
        endRounds();
    flushBacksight();
    setup(f[1]);
    if (set)
        rounds(type);
    if (m_target == 0 || m_hr != m_writtenHr)
        target();
    // The codes of the angle, vertical and distance fields.
    splitAtMost(line, ',', 7, m_parts);
    const std::string_view vCode = m_parts.size() > 4 ? m_parts[4].substr(0, 2) : "ZE";
    const std::string_view dCode = m_parts.size() > 5 ? m_parts[5].substr(0, 2) : "SD";
    std::string_view hz = f[3];
    if (!hz.empty() && (hz.front() == 'N' || hz.front() == 'S'))
        hz = hz.substr(1, hz.size() - 2); // a bearing: its angle only
    const double horizontal = unpackDms(numberOr(hz, 0.0));
    const double v = numberOr(f[4], 0.0);
    double distance = numberOr(f[5], 0.0);
    double zenith = vCode == "VA" ? 90.0 - unpackDms(v) : unpackDms(v);
    if (vCode == "CE") { // an elevation difference: the zenith from it
        const double across =
            dCode == "HD" ? distance : std::sqrt(std::max(0.0, distance * distance - v * v));
        zenith = 90.0 - degrees(std::atan2(v, across));
    }
    if (dCode == "HD" && distance != 0.0) {
        const double s = std::sin(radians(zenith));
        distance = s != 0.0 ? distance / s : distance;
    }
    const bool angleOnly = trim(f[5]).empty() || distance == 0.0;
    const bool face2 = type == "FR" || type == "BR";

    m_out.record("PointRecord");
    m_out.text("Name", f[2]);
    m_out.text("Code", f[6]);
    m_out.raw("Method", angleOnly ? "AngleOnly" : "DirectReading");
    m_out.raw("SurveyMethod", "Fix");
    m_out.raw("Classification", type == "BD" || type == "BR" ? "BackSight" : "Normal");
    m_out.raw("Deleted", "false");
    m_out.open("Circle");
    m_out.number("HorizontalCircle", horizontal, 10);
    m_out.number("VerticalCircle", zenith, 10);
    m_out.numberIf(!angleOnly, "EDMDistance", metres(distance), 8);
    m_out.raw("Face", face2 ? "Face2" : "Face1");
    m_out.fixed(kCircleEnd);
    m_out.id("StationID", m_station);
    m_out.idOrEmpty("BackBearingID", m_backBearing);
    m_out.id("TargetID", m_target);
    m_out.close("PointRecord");
}

void JxlExport::keyedIn(const raw::RawFields &f) {
    m_out.record("PointRecord");
    m_out.text("Name", f[0]);
    m_out.text("Code", f[4]);
    m_out.raw("Method", "CopiedPoint");
    m_out.raw("SurveyMethod", "KeyedIn");
    m_out.raw("Classification", "Control");
    m_out.raw("Deleted", "false");
    m_out.open("Grid");
    m_out.number("North", metres(numberOr(f[1], 0.0)), 8);
    m_out.number("East", metres(numberOr(f[2], 0.0)), 8);
    m_out.numberIf(!trim(f[3]).empty(), "Elevation", metres(numberOr(f[3], 0.0)), 8);
    m_out.close("Grid");
    m_out.close("PointRecord");
}

bool JxlExport::gpsQuality(std::string_view note) {
    double a = 0.0, b = 0.0, c = 0.0, d = 0.0;
    if (note.starts_with("SDEV:")) {
        if (std::sscanf(std::string(note).c_str(), "SDEV: %lf,%lf,%lf PDOP: %lf", &a, &b, &c, &d) !=
            4)
            return false;
        m_quality.sdevN = a;
        m_quality.sdevE = b;
        m_quality.sdevZ = c;
        m_quality.pdop = d;
        return true;
    }
    static const struct {
        const char *key;
        double Quality::*value;
    } kAverages[] = {
        {"PDOP Avg:", &Quality::pdop}, {"HDOP Avg:", &Quality::hdop},
        {"VDOP Avg:", &Quality::vdop}, {"HRMS Avg:", &Quality::hrms},
        {"VRMS Avg:", &Quality::vrms}, {"Number of Satellites Avg:", &Quality::satellites},
    };
    for (const auto &average : kAverages)
        if (note.starts_with(average.key)) {
            const double value = numberOr(note.substr(std::strlen(average.key)), NAN);
            if (std::isnan(value))
                return false;
            m_quality.*average.value = value;
            return true;
        }
    return false;
}

void JxlExport::flushGps() {
    if (!m_gpsPending)
        return;
    m_gpsPending = false;
    gps(m_gps);
}

void JxlExport::gps(const raw::RawFields &f) {
    const Quality &q = m_quality;
    auto value = [this](const char *name, double v, int decimals) {
        m_out.numberIf(!std::isnan(v), name, v, decimals);
    };
    m_out.record("PointRecord");
    m_out.text("Name", f[0]);
    m_out.text("Code", f[4]);
    m_out.raw("Method", "GpsRTKControlPoint");
    m_out.raw("SurveyMethod", "RTK");
    m_out.raw("Classification", "Normal");
    m_out.raw("Deleted", "false");
    m_out.open("WGS84");
    m_out.number("Latitude", unpackDms(numberOr(f[1], 0.0)), 14);
    m_out.number("Longitude", unpackDms(numberOr(f[2], 0.0)), 14);
    m_out.number("Height", metres(numberOr(f[3], 0.0)), 8);
    m_out.close("WGS84");
    const bool precise = !std::isnan(q.sdevN) || !std::isnan(q.hrms);
    const bool quality = precise || !std::isnan(q.pdop) || !std::isnan(q.hdop) ||
                         !std::isnan(q.vdop) || !std::isnan(q.satellites);
    // Horizontal: from the two standard deviations, else the RMS.
    const double horizontal = !std::isnan(q.sdevN) ? std::hypot(q.sdevN, q.sdevE) : q.hrms;
    const double vertical = !std::isnan(q.sdevZ) ? q.sdevZ : q.vrms;
    if (precise) {
        m_out.open("Precision");
        value("Horizontal", metres(horizontal), 8);
        value("Vertical", metres(vertical), 8);
        m_out.close("Precision");
    }
    if (m_reference) {
        m_out.id("ReferenceRecordID", m_reference);
        m_out.text("RTK_Base", m_baseName);
    }
    if (m_antenna)
        m_out.id("AntennaID", m_antenna);
    if (quality) {
        m_out.open("QualityControl1");
        if (std::isnan(q.satellites))
            m_out.empty("NumberOfSatellites");
        else
            m_out.raw("NumberOfSatellites", std::to_string(long(std::lround(q.satellites))));
        m_out.raw("RelativeDOPs", "false");
        value("PDOP", q.pdop, 1);
        value("HDOP", q.hdop, 1);
        value("VDOP", q.vdop, 1);
        m_out.empty("RMS");
        m_out.raw("NumberOfPositionsUsed", "1");
        value("HorizontalStandardDeviation", metres(horizontal), 6);
        value("VerticalStandardDeviation", metres(vertical), 6);
        for (const char *time : {"StartTime", "EndTime"}) {
            m_out.open(time);
            m_out.raw("GPSWeek", "0");
            m_out.raw("Seconds", "0");
            m_out.close(time);
        }
        m_out.raw("MonitorStatus", "NotMonitored");
        m_out.close("QualityControl1");
    }
    m_out.close("PointRecord");
}

void JxlExport::vector(const raw::RawFields &f) {
    // G1: base, point, DX, DY, DZ.
    const std::string base(trim(f[0])), point(trim(f[1]));
    const double d[3] = {numberOr(f[2], NAN), numberOr(f[3], NAN), numberOr(f[4], NAN)};
    if (point.empty() || std::isnan(d[0]) || std::isnan(d[1]) || std::isnan(d[2]))
        return;
    if (!base.empty() && base != m_baseName) {
        m_baseName = base;
        m_reference = m_out.record("ReferenceRecord");
        m_out.text("PointName", base);
        m_out.idOrEmpty("AntennaID", m_antenna);
        m_out.close("ReferenceRecord");
    }
    m_out.record("PointRecord");
    m_out.text("Name", point);
    m_out.empty("Code");
    m_out.raw("Method", "GpsRTKControlPoint");
    m_out.raw("SurveyMethod", "RTK");
    m_out.raw("Classification", "Normal");
    m_out.raw("Deleted", "false");
    m_out.open("ECEFDeltas");
    m_out.number("DeltaX", metres(d[0]), 8);
    m_out.number("DeltaY", metres(d[1]), 8);
    m_out.number("DeltaZ", metres(d[2]), 8);
    m_out.close("ECEFDeltas");
    if (m_reference) {
        m_out.id("ReferenceRecordID", m_reference);
        m_out.text("RTK_Base", m_baseName);
    }
    if (m_antenna)
        m_out.id("AntennaID", m_antenna);
    m_out.close("PointRecord");
}

void JxlExport::reference(const raw::RawFields &f) {
    m_baseName = f[0];
    m_reference = m_out.record("ReferenceRecord");
    m_out.text("PointName", f[0]);
    m_out.idOrEmpty("AntennaID", m_antenna);
    m_out.close("ReferenceRecord");
}

} // namespace

Status exportJxlAt(const std::vector<std::string> &rawLines, const std::string &timeStamp,
                   Interaction &ui, ExportOutput &out) {
    const std::string failed = std::string("\n") + tr("Conversion Error");
    out.writeError = tr("\nError: cannot create Trimble JXL file.") + failed;
    JxlExport exporter(rawLines, timeStamp, ui);
    if (!exporter.run(out)) {
        out.bytes.clear();
        const std::string message =
            exporter.failure().empty() ? tr("Conversion Error") : exporter.failure() + failed;
        ui.message(message);
        return Status::failure(exporter.failure().empty() ? StatusCode::Cancelled : StatusCode::Io,
                               message);
    }
    out.completion = tr("Conversion Complete");
    return Status::success();
}

Status exportJxl(const std::vector<std::string> &rawLines, const ExportOptions &, Interaction &ui,
                 ExportOutput &out) {
    return exportJxlAt(rawLines, jxlTimeStamp(std::time(nullptr)), ui, out);
}

} // namespace tramline::convert

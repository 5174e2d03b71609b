// The order of a run: store point checks, point protection, traverse
// points, the temporary files, direct-reverse reduction, validation, the
// closing shot, then the measurement pass, the closure and the adjustment.
//
// Adjustments recompute rather than patch: after the angle balance the pass
// runs again with every traverse direction corrected, and after a linear
// rule it runs once more with the adjusted traverse points held fixed, so
// that sideshots and later set-ups follow the adjusted stations.
//
// Find Bad Angle: the traverse is computed forward from the start and,
// with every direction turned by the angular error, backward from the
// closing point; one bad angle leaves the station where it was turned at the
// same place in both, so the station where they agree best (within a tenth
// of the closure error) is named. Otherwise no station is named.
#include "reduce/processing.h"

#include "base/angles.h"
#include "base/format.h"
#include "base/point_names.h"
#include "base/translation.h"
#include "base/unset.h"
#include "geodesy/geoid_model.h"
#include "raw/angle_math.h"
#include "raw/validate.h"
#include "reduce/direct_reverse.h"
#include "reduce/point_computation.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <unordered_map>
#include <unordered_set>

namespace tramline::reduce {

const char *resultTitle(AdjustMethod method) {
    switch (method) {
    case AdjustMethod::AngleBalance:
        return tr("Process Angle Balance Results");
    case AdjustMethod::Transit:
        return tr("Process Transit Results");
    case AdjustMethod::Compass:
        return tr("Process Compass Results");
    case AdjustMethod::Crandall:
        return tr("Process Crandall Results");
    case AdjustMethod::None:
        break;
    }
    return tr("Process No Adjust Results");
}

const char *methodTab(AdjustMethod method) {
    switch (method) {
    case AdjustMethod::AngleBalance:
        return tr("Angle Balance");
    case AdjustMethod::Transit:
        return tr("Transit");
    case AdjustMethod::Compass:
        return tr("Compass");
    case AdjustMethod::Crandall:
        return tr("Crandall");
    case AdjustMethod::None:
        break;
    }
    return tr("No Adjust");
}

namespace {

using raw::RawNode;
using raw::RecordType;

const char *kChangeNotes = "&Change Store Point Records into Notes";
const char *kChangeSecondary = "&Change Secondary Store Point Records into Notes";
const char *kContinue = "Continue &Processing";
const char *kReport = "&Report";
const char *kReturn = "Return To &Editor";

std::string storePointNote(const RawNode &node) {
    auto field = [&](size_t i) { return i < node.fields.size() ? node.fields[i] : std::string{}; };
    double n = 0, e = 0, z = 0;
    parseNumber(field(1), n);
    parseNumber(field(2), e);
    parseNumber(field(3), z);
    std::string text =
        format("SP%s,N %.4f,E %.4f,EL%.4f,--%s", field(0).c_str(), n, e, z, field(4).c_str());
    if (text.size() > 256)
        text.resize(256);
    return text;
}

void turnIntoNote(RawNode &node) {
    const std::string text = "--" + storePointNote(node);
    node = RawNode{};
    node.type = RecordType::Text;
    node.text = text;
}

bool isShot(const RawNode &n) {
    return n.type == RecordType::Observation;
}

class Run {
public:
    Run(raw::RawFile &file, const std::string &rawName, crd::CoordinateFile &crd,
        const ProcessOptions &options, Interaction &ui)
        : m_file(file), m_rawName(rawName), m_crd(crd), m_opt(options), m_ui(ui) {
        m_result.report.setTitle(resultTitle(options.method));
    }

    ProcessResult run() {
        if (!storePointCheck() || !storePointConflicts() || !pointProtect() || !traversePoints())
            return finish();
        if (!openWarnings())
            return finish();
        header();
        if (!directReverse())
            return finish();
        for (const auto &w : raw::validateRaw(*m_work, m_opt.heights))
            m_warnings.push_back(w);
        if (adjusting() && !chooseClosingShot())
            return finish();
        if (!measure())
            return finish();
        write();
        return finish();
    }

private:
    bool adjusting() const { return m_opt.method != AdjustMethod::None; }
    bool balancing() const {
        return m_opt.method == AdjustMethod::AngleBalance || (adjusting() && m_opt.angleBalance);
    }

    ProcessResult finish() {
        // Whatever happened, the report ends with the findings so far.
        std::string tail;
        if (!m_sideshots.empty() && m_opt.reportSideshots)
            tail += std::string("\n") + tr("Sideshots") + "\n\n" + m_sideshots;
        if (!m_multipleBacksights.empty())
            tail += std::string("\n") + tr("Multiple Backsight Orientation") + "\n" +
                    m_multipleBacksights;
        if (!m_depths.empty())
            tail += std::string("\n") + tr("Depth Adjustments") + m_depths + "\n";
        if (!m_warnings.empty()) {
            std::string w;
            for (const auto &line : m_warnings)
                w += line + "\n";
            tail += std::string("\n") + tr("Warnings:") + "\n" + temporary("warnings.tmp", w);
        }
        if (!m_result.error.empty())
            tail += "\n" + m_result.error + "\n";
        if (!tail.empty())
            m_result.report.append(methodTab(m_opt.method), tail);
        return std::move(m_result);
    }

    bool fail(const std::string &error) {
        m_result.status = ProcessResult::Status::Failed;
        m_result.error = error;
        return false;
    }

    bool backToEditor(const std::string &why = {}) {
        m_result.status = ProcessResult::Status::ReturnToEditor;
        m_result.error = why;
        return false;
    }

    // Writes a temporary file of the working folder and reads it back, as
    // the report is made from those files.
    std::string temporary(const char *name, const std::string &text) {
        if (m_opt.workingFolder.empty())
            return text;
        const auto path = m_opt.workingFolder / name;
        std::ofstream out(path, std::ios::binary | std::ios::trunc);
        if (!(out << text) || !out.flush()) {
            m_ui.message(format(tr("Can't open output file %s"), path.string().c_str()));
            return text;
        }
        out.close();
        std::ifstream in(path, std::ios::binary);
        std::ostringstream back;
        back << in.rdbuf();
        return back.str();
    }

    bool openWarnings() {
        if (m_opt.workingFolder.empty())
            return true;
        std::error_code ec;
        std::filesystem::create_directories(m_opt.workingFolder, ec);
        const auto path = m_opt.workingFolder / "warnings.tmp";
        std::ofstream out(path, std::ios::binary | std::ios::trunc);
        if (!out) {
            m_ui.message(format(tr("Can't open output file %s"), path.string().c_str()));
            return fail(format(tr("Can't open output file %s"), path.string().c_str()));
        }
        return true;
    }

    // --- checks before processing ------------------------------------------

    int ask(const char *title, const std::string &text, std::vector<std::string> buttons) {
        std::vector<std::string> shown;
        for (const auto &b : buttons)
            shown.push_back(tr(b.c_str()));
        return m_ui.choose(tr(title), text, shown);
    }

    bool storePointCheck() {
        // Only the names of store points matter: look for shots to those.
        std::unordered_map<std::string, long> measured; // store point name -> first shot to it
        for (const auto &n : m_file.nodes)
            if (n.type == RecordType::StorePoint && !n.fields.empty())
                measured.emplace(n.fields[0], 0);
        std::vector<size_t> conflicts;
        std::string list;
        for (size_t i = 0; i < m_file.nodes.size() && !measured.empty(); ++i) {
            const RawNode &n = m_file.nodes[i];
            if (isShot(n)) {
                const auto it = measured.find(n.observation.foresight);
                if (it != measured.end() && it->second == 0)
                    it->second = static_cast<long>(n.lineNumber);
            } else if (n.type == RecordType::StorePoint && !n.fields.empty() &&
                       measured[n.fields[0]] != 0) {
                conflicts.push_back(i);
                appendFormat(list, "\n%-9.9s %-14.14s %s", n.fields[0].c_str(),
                             std::to_string(measured[n.fields[0]]).c_str(),
                             std::to_string(n.lineNumber).c_str());
            }
        }
        if (conflicts.empty())
            return true;
        std::string text = std::string(tr("Warning: Store Point records found after Measurement")) +
                           "\n" + tr("records with same point numbers as Measurement foresights.") +
                           "\n" + tr("The final CRD file coordinates will be from the last point") +
                           "\n" + tr("number record in the raw file.") + "\n\n" +
                           tr("Point ID  Measure Line#  Store Line#") + list;
        switch (ask("Store Point Check", text, {kChangeNotes, kContinue, kReport, kReturn})) {
        case 0:
            for (size_t i : conflicts)
                turnIntoNote(m_file.nodes[i]);
            m_result.rawChanged = true;
            return true;
        case 1:
            return true;
        case 2: {
            std::string report = format("\n%s: %s\n", tr("Raw File"), m_rawName.c_str());
            appendFormat(report, "\n%-9.9s %-14.14s %s", tr("Point ID"), tr("Measure Line#"),
                         tr("Store Line#"));
            report += list + "\n";
            m_result.report.append(tr("Store Point Check"), report);
            return backToEditor();
        }
        default:
            return backToEditor();
        }
    }

    bool storePointConflicts() {
        std::map<std::string, size_t> first;
        std::vector<size_t> secondary;
        std::string list;
        for (size_t i = 0; i < m_file.nodes.size(); ++i) {
            const RawNode &n = m_file.nodes[i];
            if (n.type != RecordType::StorePoint || n.fields.size() < 3)
                continue;
            const auto [it, isNew] = first.emplace(n.fields[0], i);
            if (isNew)
                continue;
            const RawNode &a = m_file.nodes[it->second];
            auto same = [&](size_t f) {
                double x = 0, y = 0;
                const bool hx = f < a.fields.size() && parseNumber(a.fields[f], x);
                const bool hy = f < n.fields.size() && parseNumber(n.fields[f], y);
                return hx == hy && std::fabs(x - y) < 0.00005;
            };
            if (same(1) && same(2) && same(3))
                continue;
            secondary.push_back(i);
            appendFormat(list, "\n%-9.9s %ld,%ld", n.fields[0].c_str(),
                         static_cast<long>(a.lineNumber), static_cast<long>(n.lineNumber));
        }
        if (secondary.empty())
            return true;
        const std::string text =
            std::string(tr("Warning: Multiple Store Point records to same point number")) + "\n" +
            tr("with different coordinates.") + "\n\n" + tr("Point ID  Store Line #'s") + list;
        switch (
            ask("Store Point Conflicts", text, {kChangeSecondary, kContinue, kReport, kReturn})) {
        case 0:
            for (size_t i : secondary)
                turnIntoNote(m_file.nodes[i]);
            m_result.rawChanged = true;
            return true;
        case 1:
            return true;
        case 2:
            m_result.report.append(tr("Store Point Conflicts"),
                                   format("\n%s: %s\n", tr("Raw File"), m_rawName.c_str()) +
                                       tr("Point ID  Store Line #'s") + list + "\n");
            return backToEditor();
        default:
            return backToEditor();
        }
    }

    std::optional<TraversePoint> stored(const std::string &name) {
        crd::CrdPoint p;
        if (!m_crd.isOpen() || name.empty() ||
            !m_crd.readPoint(name, p, crd::PointSearch::Exact, crd::Verbosity::Quiet))
            return std::nullopt;
        TraversePoint t;
        t.name = p.name;
        t.north = p.northing;
        t.east = p.easting;
        t.hasElevation = !isUnset(p.elevation);
        t.elevation = t.hasElevation ? p.elevation : 0.0;
        t.description = p.description;
        return t;
    }

    bool pointProtect() {
        if (!m_crd.isOpen() || m_crd.highestName().empty())
            return true; // an empty coordinate file protects nothing
        std::string list;
        int count = 0;
        std::unordered_set<std::string> seen;
        for (const auto &n : m_file.nodes) {
            std::string name;
            const char *kind = nullptr;
            if (n.type == RecordType::StorePoint && !n.fields.empty()) {
                name = n.fields[0];
                kind = tr("Store Point");
            } else if (isShot(n) && n.observation.type != "AB") {
                name = n.observation.foresight;
                kind = tr("ForeSight Point");
            }
            if (!kind || !seen.insert(name).second || !stored(name))
                continue;
            ++count;
            appendFormat(list, "%s: %s %s: %ld\n", kind, name.c_str(), tr("Line"),
                         static_cast<long>(n.lineNumber));
        }
        if (count == 0)
            return true;
        const std::string text = std::string(tr("Duplicate Point Numbers")) + "\n\n" + list;
        switch (ask("Point Protect", text, {kContinue, kReport, kReturn})) {
        case 0:
            return true;
        case 1: {
            std::string report = std::string(tr("Duplicate points in RW5 and CRD File")) + "\n";
            appendFormat(report, "\n%s: %s", tr("Raw File"), m_rawName.c_str());
            appendFormat(report, "\nCRD %s: %s\n", tr("File"), m_crd.path().string().c_str());
            report += list;
            appendFormat(report, "\n%s: %d\n", tr("Duplicate Point Numbers"), count);
            m_result.report.append(tr("Point Protect"), report);
            return backToEditor();
        }
        default:
            return backToEditor();
        }
    }

    bool traversePoints() {
        if (!adjusting())
            return true;
        m_start = m_opt.startPoint;
        m_end = m_opt.endPoint;
        if (!m_start.empty() && !m_end.empty())
            return true;
        // Offer the first set-up and the last traverse foresight.
        std::string firstSetup, lastForesight;
        for (const auto &n : m_file.nodes) {
            if (n.type == RecordType::Text && n.text.rfind("OC,", 0) == 0 && firstSetup.empty())
                firstSetup = raw::occupiedPointOf(n.text);
            if (isShot(n) && (n.observation.type == "TR" || n.observation.type == "CL" ||
                              n.observation.type == "CL+AB"))
                lastForesight = n.observation.foresight;
        }
        std::vector<FormField> fields = {
            {tr("Starting Point Number"), m_start.empty() ? firstSetup : m_start, {}},
            {tr("Ending Point Number"), m_end.empty() ? lastForesight : m_end, {}},
            {tr("Specify Traverse Points From Start To End"),
             m_opt.automaticTraversePoints ? tr("Automatic") : tr("Prompt"),
             {tr("Automatic"), tr("Prompt")}}};
        if (!m_ui.fillForm(tr("Traverse Points"), fields))
            return backToEditor(tr("Function cancelled at user request"));
        m_start = fields[0].value;
        m_end = fields[1].value;
        if (m_start.empty() || m_end.empty())
            return backToEditor(tr("Function cancelled at user request"));
        return true;
    }

    // --- the run ---------------------------------------------------------------

    void header() {
        std::string h;
        appendFormat(h, "%s: %s\n", tr("Raw File"), m_rawName.c_str());
        appendFormat(h, "%s: %s\n", tr("Coordinate File"),
                     m_crd.isOpen() ? m_crd.path().string().c_str() : "NONE");
        appendFormat(h, "%s: %s\n", tr("Control File"), "NONE");
        if (m_opt.stadia)
            appendFormat(h, "\n%s\n", tr("Stadia Reduction Method"));
        if (m_opt.combinedScaleFactor) {
            h += tr("Calculate Combined Scale Factor for Each Measurement: ON");
            const std::string geoid =
                m_opt.geoidModel != 0 ? geodesy::geoidModelName(m_opt.geoidModel) : tr("None");
            appendFormat(h, "\n%s: %s\n", tr("Geoid"), geoid.c_str());
        } else {
            appendFormat(h, "%s: %.8f\n", tr("Scale Factor"), m_opt.scaleFactor);
        }
        h += m_opt.curvature ? tr("Correct for Earth Curvature: ON")
                             : tr("Correct for Earth Curvature: OFF");
        h += "\n";
        // The collector's own adjustments, when the raw data carries them.
        for (const auto &n : m_file.nodes) {
            if (n.type != RecordType::Text || n.text.rfind("--", 0) != 0)
                continue;
            const std::string_view note = std::string_view(n.text).substr(2);
            if (!m_sdrH && note.rfind("HZADJ:", 0) == 0) {
                if (auto adj = parseHorizontalAdjustment(note);
                    adj && ask("SDR Horiz Adjustment", tr("Use SDR Horiz Adjustment?"),
                               {"Yes", "No"}) == 0)
                    m_sdrH = adj;
            } else if (!m_sdrV && note.rfind("VERTADJ:", 0) == 0) {
                if (auto adj = parseVerticalAdjustment(note);
                    adj && ask("SDR Vertical Adjustment", tr("Use SDR Vertical Adjustment?"),
                               {"Yes", "No"}) == 0)
                    m_sdrV = adj;
            }
        }
        if (m_sdrH) {
            appendFormat(h, "\n%s\n", tr("SDR Horiz Adjustment"));
            appendFormat(h, "%s: %.5f\n%s: %.5f\n", tr("Origin Northing"), m_sdrH->originNorth,
                         tr("Origin Easting"), m_sdrH->originEast);
            appendFormat(h, "%s: %.5f\n%s: %.5f\n", tr("Delta Northing"), m_sdrH->deltaNorth,
                         tr("Delta Easting"), m_sdrH->deltaEast);
            appendFormat(h, "%s: %.6f\n%s: %.12f\n", tr("Rotation"), m_sdrH->rotation, tr("Scale"),
                         m_sdrH->scale);
        }
        if (m_sdrV) {
            appendFormat(h, "\n%s\n", tr("SDR Vertical Adjustment"));
            appendFormat(h, "%s: %.5f\n%s: %.5f\n", tr("Origin Northing"), m_sdrV->originNorth,
                         tr("Origin Easting"), m_sdrV->originEast);
            appendFormat(h, "%s: %.5f\n", tr("Height Constant"), m_sdrV->heightConstant);
            appendFormat(h, "%s: %.8f\n%s: %.8f\n", tr("Slope North"), m_sdrV->slopeNorth,
                         tr("Slope East"), m_sdrV->slopeEast);
        }
        m_result.report.append(tr("Report Header"), h);
    }

    bool directReverse() {
        m_work = &m_file;
        if (!hasDirectReverseSets(m_file))
            return true;
        DirectReverseResult dr = reduceDirectReverse(m_file, m_rawName, m_opt.directReverse);
        m_result.report.append(tr("Direct-Reverse Report"), dr.report);
        for (const auto &w : dr.warnings)
            m_warnings.push_back(w);
        if (!dr.ok)
            return fail(dr.error);
        m_reduced = std::move(dr.reduced);
        m_work = &m_reduced;
        return true;
    }

    bool chooseClosingShot() {
        std::vector<const RawNode *> candidates;
        for (const auto &n : m_work->nodes)
            if (isShot(n) && n.observation.foresight == m_end &&
                (n.observation.type == "TR" || n.observation.type == "CL" ||
                 n.observation.type == "CL+AB"))
                candidates.push_back(&n);
        if (candidates.empty())
            return fail(tr("Error: no closing shot found"));
        if (!m_opt.closingShotOccupied.empty()) {
            for (const auto *c : candidates)
                if (c->observation.occupied == m_opt.closingShotOccupied &&
                    (m_opt.closingShotForesight.empty() ||
                     c->observation.foresight == m_opt.closingShotForesight))
                    m_closingLine = static_cast<long>(c->lineNumber);
            if (m_closingLine == 0)
                return fail(tr("Error: no closing shot found"));
            return true;
        }
        if (candidates.size() == 1) {
            m_closingLine = static_cast<long>(candidates[0]->lineNumber);
            return true;
        }
        std::string text =
            std::string(tr("Select the Closing Shot")) + "\n" + tr("Occupy Pt  Foresight Pt");
        std::vector<std::string> buttons;
        for (const auto *c : candidates)
            buttons.push_back(format("%-10s %s", c->observation.occupied.c_str(),
                                     c->observation.foresight.c_str()));
        buttons.push_back(tr("&Cancel"));
        const int choice = m_ui.choose(tr("Closing Shot Measurement"), text, buttons);
        if (choice < 0 || choice >= static_cast<int>(candidates.size()))
            return backToEditor(tr("Function cancelled at user request"));
        m_closingLine = static_cast<long>(candidates[static_cast<size_t>(choice)]->lineNumber);
        return true;
    }

    PassInput passInput() {
        PassInput in;
        in.file = m_work;
        in.rawFileName = m_rawName;
        in.options = m_opt;
        in.lookup = [this](const std::string &name) { return stored(name); };
        in.sdrHorizontal = m_sdrH;
        in.sdrVertical = m_sdrV;
        in.closingPoint = adjusting() ? closingName() : m_opt.closingPoint.name;
        return in;
    }

    std::string closingName() const {
        return m_opt.closingPoint.name.empty() ? m_end : m_opt.closingPoint.name;
    }

    // The traverse: the sides from the first one leaving the start up to
    // the closing shot.
    std::vector<TraverseSide> traverseOf(const PassResult &pass) const {
        std::vector<TraverseSide> sides;
        bool started = false;
        for (const auto &s : pass.sides) {
            if (!started && s.from != m_start)
                continue;
            started = true;
            sides.push_back(s);
            if (s.line == m_closingLine)
                break;
        }
        return sides;
    }

    // The known closing point: given by the user, or as stored before the
    // run, or as a control point of the raw file.
    std::optional<TraversePoint> knownClosing(const PassResult &pass) {
        TraversePoint p;
        p.name = closingName();
        const auto &k = m_opt.closingPoint;
        std::optional<TraversePoint> base = stored(p.name);
        if (!base)
            if (const auto *c = pass.find(p.name); c && c->control)
                base = c->point;
        if (k.north && k.east) {
            p.north = *k.north;
            p.east = *k.east;
            p.hasElevation = k.elevation.has_value();
            p.elevation = k.elevation.value_or(0.0);
            return p;
        }
        return base;
    }

    std::optional<TraversePoint> startOf(const PassResult &pass) {
        if (const auto *c = pass.find(m_start))
            return c->point;
        return stored(m_start);
    }

    std::string closureText(const char *title, const Closure &c, const std::string &endName) {
        std::string t;
        appendFormat(t, "\n\n%s", title);
        appendFormat(t, "\n%s: %s\n%s: %s\n%s: %s\n", tr("Starting Point"), m_start.c_str(),
                     tr("Closing Reference Point"), closingName().c_str(), tr("Ending Point"),
                     endName.c_str());
        appendFormat(t, "%s: %s\n", tr("Azimuth Of Error"), formatDms(c.azimuth, 4).c_str());
        appendFormat(t, "%-16.16s: %.5f\n", tr("North Error"), c.north);
        appendFormat(t, "%-16.16s: %.5f\n", tr("East Error"), c.east);
        appendFormat(t, "%-16.16s: %.5f\n", tr("Vertical Error"), c.vertical);
        appendFormat(t, "%-16.16s: %.5f\n", tr("Hz Dist Error"), c.horizontal);
        appendFormat(t, "%-16.16s: %.5f\n", tr("Sl Dist Error"), c.slope);
        appendFormat(t, "%-16.16s: %d\n", tr("Traverse Lines"), m_counts.traverseLines);
        appendFormat(t, "%-16.16s: %d\n", tr("Sideshot Traverses"), m_counts.sideshotTraverses);
        appendFormat(t, "%-16.16s: %d\n", tr("SideShots"), m_counts.sideshotCount);
        appendFormat(t, "%-16.16s: %d\n", tr("Store Points"), m_counts.storePoints);
        appendFormat(t, "%s: %s\n", tr("Horiz Dist Traversed"),
                     format("%.4f", c.horizontalTraversed).c_str());
        appendFormat(t, "%s: %s\n", tr("Slope Dist Traversed"),
                     format("%.4f", c.slopeTraversed).c_str());
        t += precisionLine(c) + "\n";
        return t;
    }

    std::string summary(const PassResult &p) {
        std::string s = "\n";
        appendFormat(s, "%s  : %d\n", tr("Traverse Lines"), p.traverseLines);
        appendFormat(s, "%s: %d\n", tr("Sideshot Traverses"), p.sideshotTraverses);
        appendFormat(s, "%s       : %d\n", tr("SideShots"), p.sideshotCount);
        appendFormat(s, "%s    : %d\n", tr("Store Points"), p.storePoints);
        return s;
    }

    bool runPass(PassInput in, PassResult &out) {
        out = computePoints(in, m_ui);
        if (out.status == PassResult::Status::Stopped)
            return fail(out.error);
        if (out.status == PassResult::Status::ReturnToEditor)
            return backToEditor(out.error);
        return true;
    }

    // Closure of a pass: the computed end is the start plus the sides.
    bool closure(const PassResult &pass, Closure &c, TraversePoint &start,
                 std::vector<TraverseSide> &sides) {
        const auto s = startOf(pass);
        if (!s)
            return fail(format(tr("Error: unable to find starting point %s."), m_start.c_str()));
        start = *s;
        sides = traverseOf(pass);
        if (sides.empty() || sides.back().line != m_closingLine)
            return fail(format(tr("Error: unable to find ending point %s."), m_end.c_str()));
        const auto known = knownClosing(pass);
        if (!known)
            return fail(
                format(tr("No coordinate stored for Closure Point %s"), closingName().c_str()));
        TraversePoint end = start;
        for (const auto &side : sides) {
            end.north += side.dNorth;
            end.east += side.dEast;
            end.hasElevation = end.hasElevation && side.hasElevation;
            end.elevation += side.dElevation;
        }
        m_knownClosing = *known;
        m_computedEnd = end;
        c = computeClosure(end, *known, sides);
        return true;
    }

    bool angleBalance(const PassResult &pass, const Closure &before,
                      const std::vector<TraverseSide> &sides, double &correction) {
        if (pass.balanceShots.empty())
            return fail(tr("Error: no angle balance shot found"));
        const BalanceShot &shot = pass.balanceShots.back();
        double reference = 0.0;
        if (m_opt.referenceAzimuth) {
            reference = raw::angleToDegrees(*m_opt.referenceAzimuth, m_work->units.angle);
        } else {
            // A direction between two points known before the run.
            auto from = stored(shot.occupied), to = stored(shot.foresight);
            if (const auto *c = pass.find(shot.occupied); !from && c && c->control)
                from = c->point;
            if (const auto *c = pass.find(shot.foresight); !to && c && c->control)
                to = c->point;
            if (from && to) {
                reference = normalizeDegrees(
                    degrees(std::atan2(to->east - from->east, to->north - from->north)));
            } else {
                std::vector<FormField> fields = {
                    {tr("From Pt#"), shot.occupied, {}},
                    {tr("To Pt#"), shot.foresight, {}},
                    {tr("Reference Closing Angle (dd.mmss)"), "", {}},
                    {tr("Angle Format"),
                     tr("Azimuth"),
                     {tr("Azimuth"), tr("NE Bearing"), tr("SE Bearing"), tr("SW Bearing"),
                      tr("NW Bearing")}}};
                m_ui.message(format("%s: %s %s %s", tr("Measured Closing Points"),
                                    shot.occupied.c_str(), "-", shot.foresight.c_str()) +
                             "\n" + tr("Measured Closing Azimuth") + ": " +
                             formatDms(shot.measuredAzimuth, 4));
                double value;
                if (!m_ui.fillForm(tr("Reference Closing Angle"), fields) ||
                    !parseNumber(fields[2].value, value))
                    return backToEditor(tr("Function cancelled at user request"));
                const auto kind = fields[3].value == tr("NE Bearing")   ? raw::HorizontalKind::NE
                                  : fields[3].value == tr("SE Bearing") ? raw::HorizontalKind::SE
                                  : fields[3].value == tr("SW Bearing") ? raw::HorizontalKind::SW
                                  : fields[3].value == tr("NW Bearing") ? raw::HorizontalKind::NW
                                                                        : raw::HorizontalKind::AZ;
                reference = shotAzimuth(kind, raw::angleToDegrees(value, m_work->units.angle), 0.0);
            }
        }
        const double error = angularError(reference, shot.measuredAzimuth);
        const int n = static_cast<int>(sides.size());
        correction = n > 0 ? error / n : 0.0;
        std::string t;
        appendFormat(t, "\n%s: %s  %s: %s\n", tr("Reference Closing Azimuth"),
                     formatDms(reference, 4).c_str(), tr("Measured Closing Azimuth"),
                     formatDms(shot.measuredAzimuth, 4).c_str());
        appendFormat(
            t, "%s\n",
            format(tr("Angular Error: %s for %d traverse sides"), signedDms(error).c_str(), n)
                .c_str());
        appendFormat(t, "%s: %s\n", tr("Adjusting Each Angle"), signedDms(correction).c_str());
        t += correctedAngles(sides, correction);
        t += findBadAngle(before, sides, error);
        m_result.report.append(methodTab(AdjustMethod::AngleBalance), t);
        return true;
    }

    // Each traverse angle as corrected, in the form it was measured in.
    std::string correctedAngles(const std::vector<TraverseSide> &sides, double correction) const {
        std::string t = std::string("\n") + tr("Corrected Angles") + "\n";
        const AngleUnit unit = m_work->units.angle;
        for (const auto &node : m_work->nodes) {
            if (node.type != RecordType::Observation || !node.observation.hasHorizontal)
                continue;
            const bool inTraverse =
                std::any_of(sides.begin(), sides.end(), [&](const TraverseSide &s) {
                    return s.line == static_cast<long>(node.lineNumber);
                });
            if (!inTraverse)
                continue;
            const raw::Observation &o = node.observation;
            const double value = raw::angleToDegrees(o.horizontal, unit);
            const bool turnedLeft = o.horizontalKind == raw::HorizontalKind::AL ||
                                    o.horizontalKind == raw::HorizontalKind::DL;
            const double corrected = value + (turnedLeft ? -correction : correction);
            std::string text;
            switch (o.horizontalKind) {
            case raw::HorizontalKind::NE:
            case raw::HorizontalKind::SE:
            case raw::HorizontalKind::SW:
            case raw::HorizontalKind::NW: {
                const double az =
                    normalizeDegrees(shotAzimuth(o.horizontalKind, value, 0.0) + correction);
                const char *ns = az <= 90.0 || az >= 270.0 ? "N" : "S";
                const char *ew = az <= 180.0 ? "E" : "W";
                const double b = az <= 90.0    ? az
                                 : az <= 180.0 ? 180.0 - az
                                 : az <= 270.0 ? az - 180.0
                                               : 360.0 - az;
                text = std::string(ns) + formatDms(b, 4) + ew;
                break;
            }
            default: {
                const char *code = o.horizontalKind == raw::HorizontalKind::None
                                       ? "AR"
                                       : raw::horizontalKindName(o.horizontalKind);
                text = code + (unit == AngleUnit::Gons
                                   ? format("%.4f", degreesToGons(normalizeDegrees(corrected)))
                                   : formatDms(normalizeDegrees(corrected), 4));
            }
            }
            appendFormat(t, "%-9.9s %-9.9s %s\n", o.occupied.c_str(), o.foresight.c_str(),
                         text.c_str());
        }
        return t;
    }

    static std::string signedDms(double degreesValue) {
        return (degreesValue < 0 ? "-" : "") + formatDms(std::fabs(degreesValue), 4);
    }

    std::string findBadAngle(const Closure &c, const std::vector<TraverseSide> &sides,
                             double error) {
        std::string t = std::string("\n") + tr("Find Bad Angle") + "\n";
        if (sides.size() < 2 || c.horizontal == 0.0) {
            return t + tr("Bad angle not found") + "\n";
        }
        // Forward positions of each side's start; backward ones from the
        // known end with every direction turned by the angular error.
        const double cr = std::cos(radians(error)), sr = std::sin(radians(error));
        std::vector<std::pair<double, double>> forward, backward(sides.size());
        double fn = m_computedEnd.north, fe = m_computedEnd.east;
        for (auto it = sides.rbegin(); it != sides.rend(); ++it) {
            fn -= it->dNorth;
            fe -= it->dEast;
        }
        for (const auto &s : sides) {
            forward.emplace_back(fn, fe);
            fn += s.dNorth;
            fe += s.dEast;
        }
        double bn = m_knownClosing.north, be = m_knownClosing.east;
        for (size_t i = sides.size(); i-- > 0;) {
            const double dn = sides[i].dNorth * cr - sides[i].dEast * sr;
            const double de = sides[i].dNorth * sr + sides[i].dEast * cr;
            bn -= dn;
            be -= de;
            backward[i] = {bn, be};
        }
        size_t best = 0;
        double bestDistance = 1e300;
        for (size_t i = 1; i < sides.size(); ++i) {
            const double d = std::hypot(forward[i].first - backward[i].first,
                                        forward[i].second - backward[i].second);
            if (d < bestDistance) {
                bestDistance = d;
                best = i;
            }
        }
        if (bestDistance > c.horizontal / 10.0)
            return t + tr("Bad angle not found") + "\n";
        return t + tr("Bad Angle at Setup") + "\n" +
               format("%s %s, %s %s", tr("Occupy Point"), sides[best].from.c_str(),
                      tr("Backsight Point"), sides[best - 1].from.c_str()) +
               "\n";
    }

    bool measure() {
        PassResult pass;
        if (!runPass(passInput(), pass))
            return false;
        m_counts = {pass.traverseLines, pass.sideshotTraverses, pass.sideshotCount,
                    pass.storePoints};
        m_result.report.append(tr("Unadjusted Data"),
                               temporary("rawedit.tmp", pass.listing) + summary(pass));
        m_sideshots = temporary("sideshot.tmp", pass.sideshots);
        m_multipleBacksights = temporary("multback.tmp", pass.multipleBacksights);
        m_depths = temporary("depth.tmp", pass.depths);
        for (const auto &w : pass.warnings)
            m_warnings.push_back(w);

        if (!adjusting()) {
            if (!m_opt.closingPoint.name.empty()) {
                // No adjustment, but the closure against the point given.
                m_start = m_opt.startPoint;
                m_end = m_opt.closingPoint.name;
                if (m_start.empty() && !pass.sides.empty())
                    m_start = pass.sides.front().from;
                const auto known = knownClosing(pass);
                if (!known || !pass.closingEnd) {
                    m_warnings.push_back(
                        format(tr("No coordinate stored for Closure Point %s"), m_end.c_str()));
                } else {
                    const Closure c = computeClosure(*pass.closingEnd, *known, pass.sides);
                    m_result.report.append(tr("Closure Results"),
                                           closureText(tr("Closure Results"), c, m_end));
                }
            }
            m_final = std::move(pass);
            return true;
        }

        Closure c;
        TraversePoint start;
        std::vector<TraverseSide> sides;
        if (!closure(pass, c, start, sides))
            return false;
        const bool balance = balancing();
        m_result.report.append(balance ? tr("Closure Results (Before Angle Balance)")
                                       : tr("Closure Results"),
                               closureText(balance ? tr("Closure Results (Before Angle Balance)")
                                                   : tr("Closure Results"),
                                           c, m_end));
        if (balance) {
            double correction = 0.0;
            if (!angleBalance(pass, c, sides, correction))
                return false;
            PassInput in = passInput();
            in.traverseAngleCorrection = correction;
            if (!runPass(in, pass))
                return false;
            if (!closure(pass, c, start, sides))
                return false;
            std::string after = closureText(tr("Closure Results (After Angle Balance)"), c, m_end);
            appendFormat(after, "\n%-16.16s\n", tr("Starting Coordinates"));
            appendFormat(after, "%-16.16s: %.5f\n%-16.16s: %.5f\n", tr("North"), start.north,
                         tr("East"), start.east);
            appendFormat(after, "%-16.16s\n", tr("Ending   Coordinates"));
            appendFormat(after, "%-16.16s: %.5f\n%-16.16s: %.5f\n", tr("North"),
                         m_computedEnd.north, tr("East"), m_computedEnd.east);
            appendFormat(after, "%s: %.4f\n%s: %.4f\n", tr("Total Hz Dist Traversed"),
                         c.horizontalTraversed, tr("Total Sl Dist Traversed"), c.slopeTraversed);
            m_result.report.append(tr("Closure Results (After Angle Balance)"), after);
            if (m_opt.method == AdjustMethod::AngleBalance) {
                m_sideshots = temporary("sideshot.tmp", pass.sideshots);
                m_final = std::move(pass);
                return true;
            }
        }

        const LinearRule rule = m_opt.method == AdjustMethod::Transit    ? LinearRule::Transit
                                : m_opt.method == AdjustMethod::Crandall ? LinearRule::Crandall
                                                                         : LinearRule::Compass;
        const LinearAdjustment adj = adjustTraverse(start, sides, c, rule, m_opt.verticalAdjust);
        if (!adj.ok)
            return fail(adj.error);
        std::string t;
        const char *closureTitle = rule == LinearRule::Transit    ? tr("Transit Closure")
                                   : rule == LinearRule::Crandall ? tr("Crandall Closure")
                                                                  : tr("Compass Closure");
        appendFormat(t, "%s\n\n", closureTitle);
        appendFormat(t, "%-9.9s %-11.11s %-11.11s %-11.11s %-11.11s %-6.6s %s\n", tr("Point"),
                     tr("North"), tr("East"), tr("Elevation"), tr("Side"), tr("Shift"),
                     tr("Description"));
        PassInput in = passInput();
        if (balance) {
            // Keep the balanced directions for the final pass.
            in.traverseAngleCorrection = 0.0;
        }
        for (const auto &p : adj.points) {
            if (m_opt.reportAdjustments)
                t += adjustedPointLine(p) + "\n";
            if (p.point.name != closingName())
                in.fixed[p.point.name] = p.point;
        }
        appendFormat(t, "\n%s: %.3f\n", tr("Max adjustment"), adj.maxShift);
        if (!adj.warning.empty()) {
            t += adj.warning + "\n";
            m_warnings.push_back(adj.warning);
        }
        if (m_opt.verticalAdjust)
            appendFormat(t, "\n%s\n%s: %.5f\n", tr("Elevation Adjust"), tr("Vertical Error"),
                         c.vertical);
        m_result.report.append(methodTab(m_opt.method), t);
        if (m_opt.reportUnadjusted)
            m_result.report.append(tr("Unadjusted Points"), pointList(pass));
        if (!runPass(in, m_final))
            return false;
        // The sideshots as finally stored, from the adjusted stations.
        m_sideshots = temporary("sideshot.tmp", m_final.sideshots);
        return true;
    }

    static std::string pointList(const PassResult &pass) {
        // The latest position of each point, in name order.
        std::unordered_map<std::string, const TraversePoint *> latest;
        for (const auto &cp : pass.points)
            latest[cp.point.name] = &cp.point;
        std::vector<const TraversePoint *> points;
        for (const auto &[name, p] : latest)
            points.push_back(p);
        std::sort(points.begin(), points.end(), [](const TraversePoint *a, const TraversePoint *b) {
            return comparePointNames(a->name, b->name) < 0;
        });
        std::string out;
        for (const auto *p : points)
            appendFormat(out, "%-9.9s %12.4f %12.4f %s %s\n", p->name.c_str(), p->north, p->east,
                         p->hasElevation ? format("%10.4f", p->elevation).c_str() : "          ",
                         p->description.c_str());
        return out;
    }

    void write() {
        // Every point in the order stored: the bulk write keeps the last
        // of equal names, as storing them one by one would.
        std::vector<crd::CrdPoint> points;
        std::vector<long> lines;
        points.reserve(m_final.points.size());
        lines.reserve(m_final.points.size());
        for (auto &stored : m_final.points) {
            crd::CrdPoint p;
            p.name = std::move(stored.point.name);
            p.northing = stored.point.north;
            p.easting = stored.point.east;
            p.elevation = stored.point.hasElevation ? stored.point.elevation : kUnsetPositive;
            p.description = std::move(stored.point.description);
            points.push_back(std::move(p));
            lines.push_back(stored.line);
        }
        std::vector<int> errors;
        const long storedCount = m_crd.writePoints(points, crd::Verbosity::Quiet, &errors);
        m_result.pointsStored = storedCount;
        for (size_t i = 0; i < errors.size() && i < points.size(); ++i)
            if (errors[i] != 0)
                m_warnings.push_back(format(tr("\nFailed to store point %s\non line %ld."),
                                            points[i].name.c_str(), lines[i]));
        for (const auto &note : m_final.notes) {
            const size_t tab = note.find('\t');
            m_crd.addNote(note.substr(0, tab), note.substr(tab + 1));
        }
    }

    raw::RawFile &m_file;
    std::string m_rawName;
    crd::CoordinateFile &m_crd;
    const ProcessOptions &m_opt;
    Interaction &m_ui;
    ProcessResult m_result;
    std::vector<std::string> m_warnings;
    std::string m_sideshots, m_multipleBacksights, m_depths;
    std::string m_start, m_end;
    long m_closingLine = 0;
    raw::RawFile m_reduced;
    const raw::RawFile *m_work = nullptr;
    std::optional<SdrHorizontalAdjustment> m_sdrH;
    std::optional<SdrVerticalAdjustment> m_sdrV;
    struct Counts {
        int traverseLines = 0, sideshotTraverses = 0, sideshotCount = 0, storePoints = 0;
    } m_counts;
    PassResult m_final;
    TraversePoint m_knownClosing, m_computedEnd;
};

} // namespace

ProcessResult processRaw(raw::RawFile &file, const std::string &rawFileName,
                         crd::CoordinateFile &coordinates, const ProcessOptions &options,
                         Interaction &ui) {
    Run run(file, rawFileName, coordinates, options, ui);
    return run.run();
}

} // namespace tramline::reduce

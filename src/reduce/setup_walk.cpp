// The set-up state lives here and nowhere else: a client sees it only as
// the Setup handed with each event.
#include "reduce/setup_walk.h"

#include "base/angles.h"
#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"
#include "base/unset.h"
#include "raw/angle_math.h"
#include "reduce/combined_scale_factor.h"
#include "reduce/coordinate_entry.h"

#include <cmath>

namespace tramline::reduce {

using raw::HorizontalKind;
using raw::RawNode;
using raw::RecordType;

double shotAzimuth(HorizontalKind kind, double angle, double backsightAzimuth) {
    switch (kind) {
    case HorizontalKind::AL:
        return normalizeDegrees(backsightAzimuth - angle);
    case HorizontalKind::DR:
        return normalizeDegrees(backsightAzimuth + 180.0 + angle);
    case HorizontalKind::DL:
        return normalizeDegrees(backsightAzimuth + 180.0 - angle);
    case HorizontalKind::AZ:
    case HorizontalKind::GN:
    case HorizontalKind::NE:
        return normalizeDegrees(angle);
    case HorizontalKind::SE:
        return normalizeDegrees(180.0 - angle);
    case HorizontalKind::SW:
        return normalizeDegrees(180.0 + angle);
    case HorizontalKind::NW:
        return normalizeDegrees(360.0 - angle);
    case HorizontalKind::AR:
    case HorizontalKind::None:
        break;
    }
    return normalizeDegrees(backsightAzimuth + angle);
}

bool turnedFromBacksight(HorizontalKind kind) {
    return kind == HorizontalKind::AR || kind == HorizontalKind::AL || kind == HorizontalKind::DR ||
           kind == HorizontalKind::DL || kind == HorizontalKind::None;
}

std::set<std::string> occupiedPoints(const raw::RawFile &file) {
    std::set<std::string> names;
    for (const auto &node : file.nodes)
        if (node.type == RecordType::Occupy)
            names.insert(node.fields[raw::kOccupiedPoint]);
    return names;
}

namespace {

class Walk {
public:
    Walk(const raw::RawFile &file, const ProcessOptions &options, double correction,
         SetupWalkClient &client, Interaction &ui)
        : m_file(file), m_opt(options), m_correction(correction), m_client(client), m_ui(ui),
          m_unit(file.units.angle), m_metres(file.units.linear == LinearUnit::Metres) {
        m_setup.elevations = options.elevations;
    }

    WalkOutcome run() {
        const std::size_t total = m_file.nodes.size();
        std::size_t done = 0;
        for (const auto &node : m_file.nodes) {
            if (m_opt.progress)
                m_opt.progress(done++, total);
            if (!m_ui.idle())
                stop(tr("Function cancelled at user request"), WalkOutcome::Status::Stopped);
            if (m_out.status != WalkOutcome::Status::Done)
                break;
            handle(node);
        }
        return m_out;
    }

private:
    void stop(const std::string &error, WalkOutcome::Status status) {
        m_out.error = error;
        m_out.status = status;
    }

    void handle(const RawNode &node) {
        const long line = static_cast<long>(node.lineNumber);
        switch (node.type) {
        case RecordType::Occupy:
            openSetup(node, line);
            break;
        case RecordType::Text:
            handleNote(node.text, line);
            break;
        case RecordType::Backsight:
            handleBacksight(node, line);
            break;
        case RecordType::Heights:
            if (node.hasHi)
                m_setup.hi = heightOf(node.fields[0]);
            if (node.hasHr)
                m_setup.hr = heightOf(node.fields[1]);
            break;
        case RecordType::StorePoint:
            handleStorePoint(node, line);
            break;
        case RecordType::Observation:
            handleShot(node, line);
            break;
        case RecordType::Elevation: {
            double z;
            if (node.fields.size() > 1 && parseNumber(node.fields[1], z)) {
                if (auto p = m_client.known(node.fields[0])) {
                    p->elevation = z;
                    p->hasElevation = true;
                    m_client.elevationChanged(*p, line, std::nullopt);
                }
            }
            break;
        }
        default:
            break;
        }
    }

    // A value field that holds text but no number: the record is
    // miswritten. Passing over it would only report its point missing on
    // some later line, so the run stops here and names this record.
    bool refuseBadValue(const RawNode &node, std::initializer_list<std::size_t> fields, long line) {
        for (const std::size_t i : fields) {
            double v;
            if (i < node.fields.size() && !trim(node.fields[i]).empty() &&
                !parseNumber(node.fields[i], v)) {
                const std::string value(trim(node.fields[i]));
                stop(format(tr("Error: bad value %s on line# %ld"), value.c_str(), line),
                     WalkOutcome::Status::Stopped);
                return true;
            }
        }
        return false;
    }

    static std::optional<double> heightOf(const std::string &text) {
        double v;
        return parseNumber(text, v) && !isUnset(v) ? std::optional<double>(v) : std::nullopt;
    }

    void handleNote(std::string_view t, long line) {
        if (t.starts_with("--Elevation: 2D")) {
            m_setup.elevations = false;
            m_client.warning(format(tr("Warning: Calculate Elevations turned off by 'Elevation: "
                                       "2D' note in raw file at line %ld"),
                                    line));
        } else if (t.starts_with("--Elevation: 3D")) {
            m_setup.elevations = true;
        } else if (t.starts_with("--DZ,PN")) {
            // "--DZ,PN12,DZ3.25": the point's elevation lowered by the depth.
            const std::string_view rest = t.substr(7);
            const size_t comma = rest.find(',');
            double depth;
            if (comma == std::string_view::npos || !parseNumber(rest.substr(comma + 3), depth))
                return;
            if (auto p = m_client.known(std::string(rest.substr(0, comma))); p && p->hasElevation) {
                p->elevation -= depth;
                m_client.elevationChanged(*p, line, depth);
            }
        }
    }

    void openSetup(const RawNode &node, long line) {
        const std::string &name = node.fields[raw::kOccupiedPoint];
        Setup s;
        s.occupied = name;
        s.line = line;
        s.hi = m_setup.hi; // heights hold until an LS record changes them
        s.hr = m_setup.hr;
        s.elevations = m_setup.elevations;
        s.traverseShotsBefore = m_traverseShots;
        m_setup = std::move(s);
        m_open = true;
        auto p = m_client.known(name);
        if (!p) {
            // An OC record may carry the coordinates itself.
            TraversePoint q;
            q.name = name;
            if (parseNumber(node.fields[raw::kOccupyNorth], q.north) &&
                parseNumber(node.fields[raw::kOccupyEast], q.east)) {
                q.hasElevation = parseNumber(node.fields[raw::kOccupyElevation], q.elevation);
                q.description = node.fields[raw::kOccupyNote];
                m_client.given(q, line, GivenBy::OccupyRecord);
                p = q;
            }
        }
        if (!p) {
            const std::string msg = format(
                tr("No coordinate stored for Occupied Point %s\non line# %ld"), name.c_str(), line);
            p = askCoordinates(m_ui, tr("Occupy Point"), name, msg);
            if (!p) {
                stop(msg, WalkOutcome::Status::ReturnToEditor);
                return;
            }
            m_client.given(*p, line, GivenBy::Entered);
        }
        m_setup.station = *p;
        // Every measurement of the set-up is taken at its occupied point.
        m_setup.scaleFactor = m_opt.scaleFactor;
        if (m_opt.combinedScaleFactor) {
            std::vector<std::string> warnings;
            m_setup.scaleFactor = combinedFactorAt(*p, m_file.units.linear, m_opt, warnings);
            for (const auto &w : warnings)
                m_client.warning(w);
        }
        m_client.setupOpened(m_setup);
    }

    void handleBacksight(const RawNode &node, long line) {
        const std::string op = node.fields.size() > 0 ? node.fields[0] : "";
        const std::string bp = node.fields.size() > 1 ? node.fields[1] : "";
        double bs = 0.0;
        const bool hasAzimuth =
            node.fields.size() > 2 && parseNumber(node.fields[2], bs) && !isUnset(bs);
        if (!m_open || op != m_setup.occupied) {
            stop(format(tr("Error: occupied pt# %s does not match %s on line# %ld"), op.c_str(),
                        m_setup.occupied.c_str(), line),
                 WalkOutcome::Status::Stopped);
            return;
        }
        if (bp.empty() && !hasAzimuth) {
            stop(format(tr("Error: no backsight point specified on line# %ld"), line),
                 WalkOutcome::Status::Stopped);
            return;
        }
        if (!bp.empty() && bp == op) {
            stop(format(tr("Error: backsight record %s on line# %ld\nhas identical occupied and "
                           "backsight pt#'s"),
                        bp.c_str(), line),
                 WalkOutcome::Status::Stopped);
            return;
        }
        double azimuth = hasAzimuth ? raw::angleToDegrees(bs, m_unit) : 0.0;
        m_setup.orientedByPoint = false;
        if (!bp.empty()) {
            auto b = m_client.known(bp);
            bool entered = false;
            if (!b && !hasAzimuth) {
                const std::string msg =
                    format(tr("No coordinate stored for Backsight Point %s\non line# %ld"),
                           bp.c_str(), line);
                const int choice = m_ui.choose(
                    tr("Backsight Point"), msg,
                    {tr("Enter Coordinates"), tr("Enter Azimuth"), tr("Return To Editor")});
                if (choice == 0) {
                    b = askCoordinates(m_ui, tr("Backsight Point"), bp, msg);
                    if (b)
                        m_client.given(*b, line, GivenBy::Entered);
                } else if (choice == 1) {
                    std::vector<FormField> fields = {{tr("Azimuth (dd.mmss)"), "", {}}};
                    double az;
                    if (m_ui.fillForm(tr("Backsight Point"), fields) &&
                        parseNumber(fields[0].value, az)) {
                        azimuth = raw::angleToDegrees(az, m_unit);
                        entered = true;
                    } else {
                        m_ui.message(tr("Error: missing Azimuth"));
                    }
                }
                if (!b && !entered && !m_setup.oriented) {
                    stop(msg, WalkOutcome::Status::ReturnToEditor);
                    return;
                }
            }
            if (b) {
                const double fromCoordinates = azimuthTo(*b);
                if (hasAzimuth) {
                    double diff = std::fabs(fromCoordinates - azimuth);
                    if (diff > 180.0)
                        diff = 360.0 - diff;
                    if (diff > 0.0002777)
                        m_client.warning(format(tr("Warning: backsight record on line# %ld azimuth "
                                                   "different than backsight coordinate by %s"),
                                                line, formatDms(diff, 4).c_str()));
                }
                azimuth = fromCoordinates;
                m_setup.orientedByPoint = true;
            }
        }
        m_setup.backsight = bp;
        m_setup.orientation = azimuth;
        m_setup.oriented = true;
        ++m_setup.backsights;
        m_client.backsightTaken(m_setup, line);
    }

    void handleStorePoint(const RawNode &node, long line) {
        TraversePoint p;
        p.name = node.fields.size() > 0 ? node.fields[0] : "";
        if (!p.name.empty() && refuseBadValue(node, {1, 2, 3}, line))
            return;
        if (p.name.empty() || node.fields.size() < 3 || !parseNumber(node.fields[1], p.north) ||
            !parseNumber(node.fields[2], p.east))
            return;
        p.hasElevation = node.fields.size() > 3 && parseNumber(node.fields[3], p.elevation) &&
                         !isUnset(p.elevation);
        p.description = node.fields.size() > 4 ? node.fields[4] : "";
        m_client.given(p, line, GivenBy::StorePoint);
    }

    double azimuthTo(const TraversePoint &target) {
        const TraversePoint at = m_client.orientationStation(m_setup);
        return normalizeDegrees(
            degrees(std::atan2(target.east - at.east, target.north - at.north)));
    }

    // A direct-reverse set turned from another point than the set-up's
    // backsight: its mean angle is measured from that point, so that is
    // where it must be oriented. True with `orientation` set when the point
    // has coordinates; either way the report says what was done.
    bool orientOnOwnBacksight(const std::string &backsight, long line, double &orientation) {
        const std::string setupBacksight =
            m_setup.backsight.empty() ? std::string(tr("BackSight Azimuth")) : m_setup.backsight;
        if (const auto b = m_client.known(backsight)) {
            orientation = azimuthTo(*b);
            m_client.warning(format(tr("Warning: direct-reverse set on line# %ld oriented on its "
                                       "own backsight %s, not on %s"),
                                    line, backsight.c_str(), setupBacksight.c_str()));
            return true;
        }
        m_client.warning(format(tr("Warning: direct-reverse set on line# %ld: no coordinate "
                                   "stored for its backsight %s, oriented on %s"),
                                line, backsight.c_str(), setupBacksight.c_str()));
        return false;
    }

    void handleShot(const RawNode &node, long line) {
        const raw::Observation &o = node.observation;
        if (!m_open) {
            stop(format(tr("No coordinate stored for Occupied Point %s\non line# %ld"),
                        o.occupied.str().c_str(), line),
                 WalkOutcome::Status::Stopped);
            return;
        }
        if (!o.occupied.empty() && o.occupied != m_setup.occupied) {
            // Computing it from the open set-up would put the point where it
            // is not, and stopping would lose the rest of the file for one
            // miswritten record: the shot is left out and the report says so.
            m_client.warning(format(tr("Error: occupied pt# %s does not match %s on line# %ld"),
                                    o.occupied.str().c_str(), m_setup.occupied.c_str(), line));
            return;
        }
        if (o.foresight == m_setup.occupied) {
            m_client.warning(format(tr("Error: occupied pt# %s same as foresight on line# %ld"),
                                    m_setup.occupied.c_str(), line));
            return;
        }
        if (refuseBadValue(node, {2, 3, 4}, line))
            return;
        if (!o.hasHorizontal || !o.hasDistance || isUnset(o.horizontal) || isUnset(o.slopeDistance))
            return; // angle-only or empty shots carry no position
        const bool fromBacksight = turnedFromBacksight(o.horizontalKind);
        double orientation = m_setup.orientation;
        bool oriented = m_setup.oriented;
        if (fromBacksight && !o.backsight.empty() && o.backsight != m_setup.backsight)
            oriented = orientOnOwnBacksight(o.backsight.str(), line, orientation) || oriented;
        if (fromBacksight && !oriented) {
            stop(format(tr("Error: no backsight point specified on line# %ld"), line),
                 WalkOutcome::Status::Stopped);
            return;
        }
        ReducedShot shot;
        shot.observation = &o;
        shot.line = line;
        shot.traverse = o.isTraverseSide();
        shot.balance = o.isAngleBalance();

        const double zenithDegrees =
            o.hasVertical ? 90.0 - raw::angleToDegrees(o.verticalAngle, m_unit) : 90.0;
        MeasurementOptions mo;
        mo.scaleFactor = m_setup.scaleFactor;
        mo.curvature = m_opt.curvature;
        mo.stadia = m_opt.stadia;
        mo.metres = m_metres;
        shot.measurement = reduceMeasurement(o.slopeDistance, radians(zenithDegrees), mo);
        shot.vertical = shot.measurement.vertical;
        if (o.verticalKind == raw::VerticalKind::CE && o.hasWrittenVertical)
            shot.vertical = o.writtenVertical;

        if (shot.traverse)
            ++m_traverseShots;
        shot.angle = raw::angleToDegrees(o.horizontal, m_unit);
        shot.azimuth = shotAzimuth(o.horizontalKind, shot.angle, orientation);
        // An angle turned from the backsight inherits the corrections of
        // the sides before it through the backsight's coordinates; a
        // direction of its own (azimuth, bearing) must be given all of them.
        const int turns = fromBacksight ? (shot.traverse ? 1 : 0)
                                        : m_setup.traverseShotsBefore + (shot.traverse ? 1 : 0);
        if (turns != 0 && m_correction != 0.0)
            shot.azimuth = normalizeDegrees(shot.azimuth + turns * m_correction);

        m_client.shot(m_setup, shot);
    }

    const raw::RawFile &m_file;
    const ProcessOptions &m_opt;
    double m_correction;
    SetupWalkClient &m_client;
    Interaction &m_ui;
    AngleUnit m_unit;
    bool m_metres;
    WalkOutcome m_out;
    Setup m_setup;
    bool m_open = false;
    int m_traverseShots = 0;
};

} // namespace

WalkOutcome walkSetups(const raw::RawFile &file, const ProcessOptions &options,
                       double traverseAngleCorrection, SetupWalkClient &client, Interaction &ui) {
    Walk walk(file, options, traverseAngleCorrection, client, ui);
    return walk.run();
}

} // namespace tramline::reduce

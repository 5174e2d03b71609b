// Orientation: an angle right (or left, or deflection) is turned from the
// backsight direction; the backsight circle reading is the collector's
// record of where the circle stood and is not subtracted again. Control
// points (store point records) are never moved by a shot onto them: the
// shot's position is listed and kept for the closure only, as is a shot to
// the closing reference point.
#include "reduce/point_computation.h"

#include "base/angles.h"
#include "base/format.h"
#include "base/translation.h"
#include "base/unset.h"
#include "geodesy/geoid_model.h"
#include "geodesy/geoid_models.h"
#include "geodesy/projection.h"
#include "raw/angle_math.h"
#include "raw/classify.h"
#include "reduce/measurement.h"

#include <cmath>
#include <set>
#include <unordered_set>

namespace tramline::reduce {

using raw::HorizontalKind;
using raw::RawNode;
using raw::RecordType;

const ComputedPoint *PassResult::find(const std::string &name) const {
    const auto it = index.find(name);
    return it == index.end() ? nullptr : &points[it->second];
}

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
        return normalizeDegrees(angle);
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

namespace {

bool needsBacksight(HorizontalKind kind) {
    return kind == HorizontalKind::AR || kind == HorizontalKind::AL || kind == HorizontalKind::DR ||
           kind == HorizontalKind::DL || kind == HorizontalKind::None;
}

std::optional<std::vector<double>> numbersAfter(std::string_view text, std::string_view prefix,
                                                size_t count) {
    if (text.substr(0, prefix.size()) != prefix)
        return std::nullopt;
    text.remove_prefix(prefix.size());
    std::vector<double> values;
    while (values.size() < count) {
        const size_t comma = text.find(',');
        double v;
        if (!parseNumber(text.substr(0, comma), v))
            return std::nullopt;
        values.push_back(v);
        if (comma == std::string_view::npos)
            break;
        text.remove_prefix(comma + 1);
    }
    if (values.size() != count)
        return std::nullopt;
    return values;
}

std::string dmsText(double degreesValue) {
    return formatDms(degreesValue, 4);
}

// The end of a listing line: northing, easting, elevation (blank when
// none) and description.
void appendCoordinates(std::string &out, const TraversePoint &p) {
    appendFixed(out, p.north, 4, 12);
    out += ' ';
    appendFixed(out, p.east, 4, 12);
    out += ' ';
    if (p.hasElevation)
        appendFixed(out, p.elevation, 4, 10);
    else
        out.append(10, ' ');
    out += ' ';
    out += p.description;
    out += '\n';
}

class Pass {
public:
    Pass(const PassInput &input, Interaction &ui) : m_in(input), m_ui(ui), m_opt(input.options) {
        m_scale = m_opt.scaleFactor;
        m_unit = input.file->units.angle;
        m_metres = input.file->units.linear == LinearUnit::Metres;
        m_elevations = m_opt.elevations;
        // Points occupied somewhere in the file: a sideshot to one of them
        // is a sideshot traverse.
        for (const auto &node : input.file->nodes) {
            if (node.type == RecordType::Text && node.text.rfind("OC,", 0) == 0)
                m_occupied.insert(occupiedOf(node.text));
            else if (node.type == RecordType::Text && node.text.rfind("--DZ,PN", 0) == 0)
                m_watched.insert(node.text.substr(7, node.text.find(',', 7) - 7));
            else if ((node.type == RecordType::StorePoint || node.type == RecordType::Elevation) &&
                     !node.fields.empty())
                m_watched.insert(node.fields[0]);
            else if (node.type == RecordType::Backsight && node.fields.size() > 1)
                m_watched.insert(node.fields[1]);
            else if (node.type == RecordType::Observation &&
                     (node.observation.type == "AB" || node.observation.type == "CL+AB"))
                m_watched.insert(node.observation.foresight);
        }
        m_watched.insert(m_occupied.begin(), m_occupied.end());
        m_watched.insert(input.closingPoint);
    }

    PassResult run() {
        // Room for every record at once: a large job grows these a million times.
        const size_t records = m_in.file->nodes.size();
        m_r.points.reserve(records);
        m_r.listing.reserve(records * 110);
        // Column heads of the shot lines, laid out as the lines are.
        std::string &h = m_r.listing;
        h += "  ";
        appendPadded(h, tr("Type"), 6);
        h += ' ';
        appendPadded(h, tr("Point"), 9);
        for (const auto &[head, width] :
             std::initializer_list<std::pair<const char *, size_t>>{{"Azimuth", 9},
                                                                    {"SlopeDist", 10},
                                                                    {"HorzDist", 10},
                                                                    {"VertDist", 10},
                                                                    {"Northing", 12},
                                                                    {"Easting", 12},
                                                                    {"Elevation", 10}}) {
            h += ' ';
            appendPadded(h, tr(head), width, true);
        }
        h += ' ';
        h += tr("Description");
        h += '\n';
        for (const auto &node : m_in.file->nodes) {
            if (!m_ui.idle()) {
                stop(tr("Function cancelled at user request"), PassResult::Status::Stopped);
            }
            if (m_r.status != PassResult::Status::Done)
                break;
            handle(node);
        }
        return std::move(m_r);
    }

private:
    static std::string occupiedOf(const std::string &ocLine) {
        return raw::occupiedPointOf(ocLine);
    }

    void stop(const std::string &error, PassResult::Status status) {
        m_r.error = error;
        m_r.status = status;
    }

    void warn(const std::string &text) { m_r.warnings.push_back(text); }

    std::optional<TraversePoint> known(const std::string &name) {
        if (const auto *p = m_r.find(name))
            return p->point;
        if (m_in.lookup)
            return m_in.lookup(name);
        return std::nullopt;
    }

    void store(TraversePoint p, long line, bool control) {
        if (control || m_watched.count(p.name)) {
            const auto [it, isNew] = m_r.index.try_emplace(p.name, m_r.points.size());
            if (!isNew) {
                if (m_r.points[it->second].control && !control)
                    return;
                it->second = m_r.points.size();
            }
        }
        if (m_opt.pointNotes)
            m_r.notes.push_back(p.name + "\t" +
                                format("LINE:%ld,FILE:%s", line, m_in.rawFileName.c_str()));
        m_r.points.push_back({std::move(p), line, control});
    }

    // Asks for the coordinates of a point the pass needs; empty when the
    // user goes back to the editor.
    std::optional<TraversePoint> askCoordinates(const std::string &title, const std::string &name,
                                                const std::string &intro) {
        // A few tries: an entry without northing or easting is refused and
        // asked again, but a script that keeps giving it must not hang.
        for (int attempt = 0; attempt < 3; ++attempt) {
            std::vector<FormField> fields = {{tr("Northing"), "", {}},
                                             {tr("Easting"), "", {}},
                                             {tr("Elevation"), "", {}},
                                             {tr("Description"), "", {}}};
            m_ui.message(intro);
            if (!m_ui.fillForm(title, fields))
                return std::nullopt;
            TraversePoint p;
            p.name = name;
            if (!parseNumber(fields[0].value, p.north)) {
                m_ui.message(tr("Error: missing Northing"));
                continue;
            }
            if (!parseNumber(fields[1].value, p.east)) {
                m_ui.message(tr("Error: missing Easting"));
                continue;
            }
            p.hasElevation = parseNumber(fields[2].value, p.elevation);
            p.description = fields[3].value;
            return p;
        }
        return std::nullopt;
    }

    void handle(const RawNode &node) {
        const long line = static_cast<long>(node.lineNumber);
        switch (node.type) {
        case RecordType::Text:
            handleText(node, line);
            break;
        case RecordType::Backsight:
            handleBacksight(node, line);
            break;
        case RecordType::Heights: {
            double v;
            if (node.hasHi)
                m_hi = parseNumber(node.fields[0], v) && !isUnset(v) ? std::optional<double>(v)
                                                                     : std::nullopt;
            if (node.hasHr)
                m_hr = parseNumber(node.fields[1], v) && !isUnset(v) ? std::optional<double>(v)
                                                                     : std::nullopt;
            break;
        }
        case RecordType::StorePoint:
            handleStorePoint(node, line);
            break;
        case RecordType::Observation:
            handleShot(node, line);
            break;
        case RecordType::Elevation: {
            double z;
            if (node.fields.size() > 1 && parseNumber(node.fields[1], z)) {
                if (auto p = known(node.fields[0])) {
                    p->elevation = z;
                    p->hasElevation = true;
                    store(*p, line, m_r.find(p->name) && m_r.find(p->name)->control);
                }
            }
            break;
        }
        default:
            break;
        }
    }

    void handleText(const RawNode &node, long line) {
        const std::string &t = node.text;
        if (t.rfind("OC,", 0) == 0) {
            startSetup(occupiedOf(t), t, line);
            return;
        }
        if (t.rfind("--Elevation: 2D", 0) == 0) {
            m_elevations = false;
            warn(format(tr("Warning: Calculate Elevations turned off by 'Elevation: 2D' note in "
                           "raw file at line %ld"),
                        line));
        } else if (t.rfind("--Elevation: 3D", 0) == 0) {
            m_elevations = true;
        } else if (t.rfind("--DZ,PN", 0) == 0) {
            // "--DZ,PN12,DZ3.25": the point's elevation lowered by the depth.
            const std::string rest = t.substr(7);
            const size_t comma = rest.find(',');
            const std::string name = rest.substr(0, comma);
            double depth;
            if (comma != std::string::npos &&
                parseNumber(std::string_view(rest).substr(comma + 3), depth)) {
                if (auto p = known(name); p && p->hasElevation) {
                    p->elevation -= depth;
                    const auto *existing = m_r.find(name);
                    store(*p, line, existing && existing->control);
                    appendFormat(m_r.depths, "\n%-9.9s %s: %.3f, %s: %.3f", name.c_str(),
                                 tr("Adjusted Elev"), p->elevation, tr("Depth"), depth);
                }
            }
        }
    }

    void startSetup(const std::string &name, const std::string &text, long line) {
        m_setupOpen = true;
        m_occupiedName = name;
        m_haveOrientation = false;
        m_backsights = 0;
        auto p = known(name);
        if (!p) {
            // An OC record may carry the coordinates itself.
            raw::RawFields f;
            if (raw::ClassifyRawLine(text, raw::JobRecords::Unrecognised, f) == raw::kOccupy) {
                TraversePoint q;
                q.name = name;
                if (parseNumber(f[1], q.north) && parseNumber(f[2], q.east)) {
                    q.hasElevation = parseNumber(f[3], q.elevation);
                    q.description = f[4];
                    store(q, line, true);
                    p = q;
                }
            }
        }
        if (!p) {
            const std::string msg = format(
                tr("No coordinate stored for Occupied Point %s\non line# %ld"), name.c_str(), line);
            p = askCoordinates(tr("Occupy Point"), name, msg);
            if (!p) {
                stop(msg, PassResult::Status::ReturnToEditor);
                return;
            }
            store(*p, line, true);
        }
        m_occupied_point = *p;
        appendFormat(m_r.listing, "\n%s: %s  N %.4f  E %.4f", tr("Occupy Point"), name.c_str(),
                     p->north, p->east);
        if (p->hasElevation)
            appendFormat(m_r.listing, "  Z %.4f", p->elevation);
        m_r.listing += "\n";
        m_scale = m_opt.scaleFactor;
        if (m_opt.combinedScaleFactor) {
            // Every measurement of the set-up is taken at its occupied point.
            m_scale = combinedFactorAt(*p);
            appendFormat(m_r.listing, "%s: %.8f\n", tr("Combined Scale Factor"), m_scale);
        }
    }

    // Grid factor at the point times the elevation factor of its ellipsoid
    // height; grid coordinates in the file's unit, the projection in metres.
    double combinedFactorAt(const TraversePoint &p) {
        const double toMetres = 1.0 / unitsPerMetre(m_in.file->units.linear);
        double grid = 1.0;
        double latitude = 0, longitude = 0;
        bool located = false;
        if (!m_opt.projection) {
            warn(tr("Warning: invalid grid scale factor.\nUsing factor of 1.0"));
        } else if (const geodesy::Status st = m_opt.projection->inverse(
                       p.north * toMetres, p.east * toMetres, latitude, longitude);
                   !st) {
            warn(format(tr("\nError %d: unable to convert grid coordinates to lat/lon"),
                        static_cast<int>(st.code)));
        } else {
            located = true;
            geodesy::GridFactors factors;
            if (m_opt.projection->factorsAt(latitude, longitude, factors) &&
                std::isfinite(factors.scaleFactor) && factors.scaleFactor > 0.0)
                grid = factors.scaleFactor;
            else
                warn(tr("Warning: invalid grid scale factor.\nUsing factor of 1.0"));
        }
        double separation = 0.0;
        if (located && m_opt.geoid && m_opt.geoidModel != 0) {
            if (const geodesy::Status st = geodesy::gpsSeparation(*m_opt.geoid, m_opt.geoidModel,
                                                                  latitude, longitude, separation);
                !st) {
                warn(st.message);
                separation = 0.0;
            }
        }
        constexpr double kFeetPerMetre = 3.280833333333;
        const double elevation = p.hasElevation ? p.elevation : 0.0;
        const double heightFeet = m_metres ? (elevation + separation) * kFeetPerMetre
                                           : elevation + separation * kFeetPerMetre;
        return combinedScaleFactor(grid, heightFeet);
    }

    void handleBacksight(const RawNode &node, long line) {
        const std::string op = node.fields.size() > 0 ? node.fields[0] : "";
        const std::string bp = node.fields.size() > 1 ? node.fields[1] : "";
        double bs = 0.0;
        const bool hasAzimuth =
            node.fields.size() > 2 && parseNumber(node.fields[2], bs) && !isUnset(bs);
        if (!m_setupOpen || op != m_occupiedName) {
            stop(format(tr("Error: occupied pt# %s does not match %s on line# %ld"), op.c_str(),
                        m_occupiedName.c_str(), line),
                 PassResult::Status::Stopped);
            return;
        }
        if (bp.empty() && !hasAzimuth) {
            stop(format(tr("Error: no backsight point specified on line# %ld"), line),
                 PassResult::Status::Stopped);
            return;
        }
        if (!bp.empty() && bp == op) {
            stop(format(tr("Error: backsight record %s on line# %ld\nhas identical occupied and "
                           "backsight pt#'s"),
                        bp.c_str(), line),
                 PassResult::Status::Stopped);
            return;
        }
        double azimuth = hasAzimuth ? raw::angleToDegrees(bs, m_unit) : 0.0;
        if (!bp.empty()) {
            auto b = known(bp);
            if (!b && !hasAzimuth) {
                const std::string msg =
                    format(tr("No coordinate stored for Backsight Point %s\non line# %ld"),
                           bp.c_str(), line);
                const int choice = m_ui.choose(
                    tr("Backsight Point"), msg,
                    {tr("Enter Coordinates"), tr("Enter Azimuth"), tr("Return To Editor")});
                if (choice == 0) {
                    b = askCoordinates(tr("Backsight Point"), bp, msg);
                    if (b)
                        store(*b, line, true);
                } else if (choice == 1) {
                    std::vector<FormField> fields = {{tr("Azimuth (dd.mmss)"), "", {}}};
                    double az;
                    if (m_ui.fillForm(tr("Backsight Point"), fields) &&
                        parseNumber(fields[0].value, az)) {
                        azimuth = raw::angleToDegrees(az, m_unit);
                        m_haveOrientation = true;
                    } else {
                        m_ui.message(tr("Error: missing Azimuth"));
                    }
                }
                if (!b && !m_haveOrientation) {
                    stop(msg, PassResult::Status::ReturnToEditor);
                    return;
                }
            }
            if (b) {
                // Back on the closing point, orient from where the traverse
                // put it: the closing direction then carries the whole
                // angular error of the traverse, not part of it.
                const TraversePoint &at = m_r.closingEnd && m_occupiedName == m_in.closingPoint
                                              ? *m_r.closingEnd
                                              : m_occupied_point;
                const double fromCoordinates =
                    normalizeDegrees(degrees(std::atan2(b->east - at.east, b->north - at.north)));
                if (hasAzimuth) {
                    double diff = std::fabs(fromCoordinates - azimuth);
                    if (diff > 180.0)
                        diff = 360.0 - diff;
                    if (diff > 0.0002777)
                        warn(format(tr("Warning: backsight record on line# %ld azimuth different "
                                       "than backsight coordinate by %s"),
                                    line, dmsText(diff).c_str()));
                }
                azimuth = fromCoordinates;
                appendFormat(m_r.listing, "%s: %s\n", tr("Backsight Point"), bp.c_str());
            }
        } else {
            appendFormat(m_r.listing, "%s: %s\n", tr("BackSight Azimuth"),
                         dmsText(azimuth).c_str());
        }
        if (++m_backsights > 1)
            appendFormat(m_r.multipleBacksights, "%s: %s  %s: %s  %s: %s  %s %ld\n",
                         tr("Occupy Point"), m_occupiedName.c_str(), tr("Backsight Point"),
                         bp.empty() ? "-" : bp.c_str(), tr("Azimuth"), dmsText(azimuth).c_str(),
                         tr("line"), line);
        m_backsightAzimuth = azimuth;
        m_haveOrientation = true;
    }

    void handleStorePoint(const RawNode &node, long line) {
        TraversePoint p;
        p.name = node.fields.size() > 0 ? node.fields[0] : "";
        if (p.name.empty() || node.fields.size() < 3 || !parseNumber(node.fields[1], p.north) ||
            !parseNumber(node.fields[2], p.east))
            return;
        p.hasElevation = node.fields.size() > 3 && parseNumber(node.fields[3], p.elevation) &&
                         !isUnset(p.elevation);
        p.description = node.fields.size() > 4 ? node.fields[4] : "";
        store(p, line, true);
        ++m_r.storePoints;
    }

    void handleShot(const RawNode &node, long line) {
        const raw::Observation &o = node.observation;
        if (!m_setupOpen || o.occupied != m_occupiedName) {
            // A shot from another point than the set-up: orient from its own
            // occupied point only if it carries an azimuth or bearing.
            if (!m_setupOpen) {
                stop(format(tr("No coordinate stored for Occupied Point %s\non line# %ld"),
                            o.occupied.c_str(), line),
                     PassResult::Status::Stopped);
                return;
            }
        }
        if (o.foresight == o.occupied) {
            warn(format(tr("Error: occupied pt# %s same as foresight on line# %ld"),
                        o.occupied.c_str(), line));
            return;
        }
        if (!o.hasHorizontal || !o.hasDistance || isUnset(o.horizontal) || isUnset(o.slopeDistance))
            return; // angle-only or empty shots carry no position
        if (needsBacksight(o.horizontalKind) && !m_haveOrientation) {
            stop(format(tr("Error: no backsight point specified on line# %ld"), line),
                 PassResult::Status::Stopped);
            return;
        }
        const bool traverse = o.type == "TR" || o.type == "CL" || o.type == "CL+AB";
        const bool balance = o.type == "AB" || o.type == "CL+AB";

        // Reduce the measurement.
        const double zenithDegrees =
            o.hasVertical ? 90.0 - raw::angleToDegrees(o.verticalAngle, m_unit) : 90.0;
        MeasurementOptions mo;
        mo.scaleFactor = m_scale;
        mo.curvature = m_opt.curvature;
        mo.stadia = m_opt.stadia;
        mo.metres = m_metres;
        const ReducedMeasurement red =
            reduceMeasurement(o.slopeDistance, radians(zenithDegrees), mo);
        double vertical = red.vertical;
        if (o.verticalKind == raw::VerticalKind::CE) {
            double ce;
            if (node.fields.size() > 3 && parseNumber(node.fields[3], ce))
                vertical = ce;
        }

        double azimuth = shotAzimuth(o.horizontalKind, raw::angleToDegrees(o.horizontal, m_unit),
                                     m_backsightAzimuth);
        if (traverse)
            azimuth = normalizeDegrees(azimuth + m_in.traverseAngleCorrection);

        if (balance)
            m_r.balanceShots.push_back({o.occupied, o.foresight, azimuth, line});

        TraversePoint p;
        p.name = o.foresight;
        p.description = o.description;
        p.north = m_occupied_point.north + red.horizontal * std::cos(radians(azimuth));
        p.east = m_occupied_point.east + red.horizontal * std::sin(radians(azimuth));
        p.hasElevation =
            m_elevations && o.hasVertical && m_occupied_point.hasElevation && m_hi && m_hr;
        if (p.hasElevation)
            p.elevation = m_occupied_point.elevation + *m_hi + vertical - *m_hr;
        if (m_in.sdrVertical && p.hasElevation) {
            const auto &v = *m_in.sdrVertical;
            p.elevation += v.heightConstant + (p.north - v.originNorth) * v.slopeNorth +
                           (p.east - v.originEast) * v.slopeEast;
        }
        if (m_in.sdrHorizontal) {
            const auto &h = *m_in.sdrHorizontal;
            const double dn = p.north - h.originNorth, de = p.east - h.originEast;
            const double c = std::cos(radians(h.rotation)), s = std::sin(radians(h.rotation));
            p.north = h.originNorth + h.deltaNorth + h.scale * (dn * c - de * s);
            p.east = h.originEast + h.deltaEast + h.scale * (dn * s + de * c);
        }
        if (traverse) {
            if (const auto it = m_in.fixed.find(p.name); it != m_in.fixed.end()) {
                p.north = it->second.north;
                p.east = it->second.east;
                if (it->second.hasElevation) {
                    p.elevation = it->second.elevation;
                    p.hasElevation = true;
                }
            }
        }
        if (p.name == m_in.closingPoint)
            m_r.closingEnd = p;

        // One listing line a shot: kind, point, azimuth, slope and
        // horizontal distance, height difference, coordinates, description.
        std::string &l = m_r.listing;
        l += "  ";
        appendPadded(l, o.type, 6);
        l += ' ';
        appendPadded(l, p.name, 9, false, true);
        l += ' ';
        appendPadded(l, dmsText(azimuth), 9, true);
        l += ' ';
        appendFixed(l, o.slopeDistance, 3, 10);
        l += ' ';
        appendFixed(l, red.horizontal, 3, 10);
        l += ' ';
        appendFixed(l, vertical, 3, 10);
        l += ' ';
        appendCoordinates(l, p);

        if (traverse) {
            TraverseSide side;
            side.from = o.occupied;
            side.to = p.name;
            side.horizontal = red.horizontal;
            side.slope = o.slopeDistance;
            side.dNorth = p.north - m_occupied_point.north;
            side.dEast = p.east - m_occupied_point.east;
            side.hasElevation = p.hasElevation && m_occupied_point.hasElevation;
            side.dElevation = side.hasElevation ? p.elevation - m_occupied_point.elevation : 0.0;
            side.line = line;
            side.description = p.description;
            m_r.sides.push_back(side);
            ++m_r.traverseLines;
        } else if (o.type == "SS") {
            ++m_r.sideshotCount;
            if (m_occupied.count(p.name))
                ++m_r.sideshotTraverses;
            std::string &ss = m_r.sideshots;
            appendPadded(ss, p.name, 9, false, true);
            ss += ' ';
            appendCoordinates(ss, p);
        }
        if (balance && !traverse)
            return; // an angle balance shot only measures the closing direction
        if (p.name == m_in.closingPoint)
            return; // the closing point keeps its known coordinates
        store(std::move(p), line, false);
    }

    const PassInput &m_in;
    Interaction &m_ui;
    const ProcessOptions &m_opt;
    AngleUnit m_unit;
    bool m_metres = false;
    bool m_elevations = true;
    std::set<std::string> m_occupied;
    std::unordered_set<std::string> m_watched; ///< points the run looks up

    PassResult m_r;
    bool m_setupOpen = false;
    std::string m_occupiedName;
    TraversePoint m_occupied_point;
    bool m_haveOrientation = false;
    double m_backsightAzimuth = 0.0;
    int m_backsights = 0;
    std::optional<double> m_hi, m_hr;
    double m_scale = 1.0;
};

} // namespace

PassResult computePoints(const PassInput &input, Interaction &ui) {
    Pass pass(input, ui);
    return pass.run();
}

std::optional<SdrHorizontalAdjustment> parseHorizontalAdjustment(std::string_view note) {
    const auto v = numbersAfter(note, "HZADJ:", 6);
    if (!v)
        return std::nullopt;
    return SdrHorizontalAdjustment{(*v)[0], (*v)[1], (*v)[2], (*v)[3], (*v)[4], (*v)[5]};
}

std::optional<SdrVerticalAdjustment> parseVerticalAdjustment(std::string_view note) {
    const auto v = numbersAfter(note, "VERTADJ:", 5);
    if (!v)
        return std::nullopt;
    return SdrVerticalAdjustment{(*v)[0], (*v)[1], (*v)[2], (*v)[3], (*v)[4]};
}

} // namespace tramline::reduce

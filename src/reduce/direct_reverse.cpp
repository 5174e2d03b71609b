// Face-pair reduction. Circle readings are worked in decimal degrees; the
// reverse face is turned to the direct one (horizontal + 180, zenith
// 360 - z) and each mean is the plain average of the two faces, so that a
// constant collimation or index error cancels. Several sets to the same
// foresight from one set-up each give their own shot (the last one stored
// wins, as with any repeated shot); the report's Means section shows how
// well they agree.
#include "reduce/direct_reverse.h"

#include "base/angles.h"
#include "base/format.h"
#include "base/translation.h"
#include "raw/angle_math.h"

#include <cmath>
#include <map>
#include <set>

namespace tramline::reduce {

namespace {

using raw::Observation;
using raw::RawNode;
using raw::RecordType;

double circle(double degrees) {
    return normalizeDegrees(degrees);
}

bool isFaceRecord(const RawNode &node) {
    return node.type == RecordType::Observation && node.observation.isFaceRecord();
}

struct Faces {
    const RawNode *bd = nullptr, *fd = nullptr, *fr = nullptr, *br = nullptr;
    bool complete() const { return bd && fd && fr && br; }
};

double reading(const RawNode &node, AngleUnit unit) {
    return node.observation.hasHorizontal
               ? circle(raw::angleToDegrees(node.observation.horizontal, unit))
               : 0.0;
}

double zenith(const RawNode &node, AngleUnit unit) {
    return 90.0 - raw::angleToDegrees(node.observation.verticalAngle, unit);
}

// The reverse reading turned to the direct face and put on the same side of
// north as the direct reading, so that their mean is not 180 degrees off.
double turnedReverse(double direct, double reverse) {
    double turned = circle(reverse + 180.0);
    if (turned - direct > 180.0)
        turned -= 360.0;
    else if (direct - turned > 180.0)
        turned += 360.0;
    return turned;
}

struct Accumulator {
    std::vector<double> horizontal, vertical, distance;
};

double mean(const std::vector<double> &v) {
    double sum = 0;
    for (double x : v)
        sum += x;
    return v.empty() ? 0.0 : sum / static_cast<double>(v.size());
}

double standardDeviation(const std::vector<double> &v) {
    if (v.size() < 2)
        return 0.0;
    const double m = mean(v);
    double sum = 0;
    for (double x : v)
        sum += (x - m) * (x - m);
    return std::sqrt(sum / static_cast<double>(v.size() - 1));
}

class Reducer {
public:
    Reducer(const raw::RawFile &file, const DirectReverseTolerances &tolerances)
        : m_tol(tolerances), m_unit(file.units.angle) {
        for (const auto &node : file.nodes)
            if (node.type == RecordType::Occupy)
                m_occupiedLater.insert(node.fields[raw::kOccupiedPoint]);
    }

    ReducedSet reduce(const Faces &f, std::vector<std::string> &warnings) {
        ReducedSet s;
        const Observation &fd = f.fd->observation, &fr = f.fr->observation;
        const Observation &bd = f.bd->observation, &br = f.br->observation;
        s.occupied = bd.occupied;
        s.backsight = bd.foresight;
        s.foresight = fd.foresight;
        s.lineNumber = f.bd->lineNumber;

        // Distances.
        s.distance = fd.slopeDistance;
        s.distanceDifference = fd.slopeDistance - fr.slopeDistance;
        if (std::fabs(s.distanceDifference) > m_tol.distance)
            warnings.push_back(format(
                tr("Warning: Pt %s direct-reverse Foresight Distance more than %.4f different"),
                s.foresight.c_str(), m_tol.distance));
        if (fr.slopeDistance != 0.0) {
            s.distance = (fd.slopeDistance + fr.slopeDistance) / 2.0;
            s.distanceResidual = s.distanceDifference / 2.0;
        }
        if (bd.hasDistance && br.hasDistance &&
            std::fabs(bd.slopeDistance - br.slopeDistance) > m_tol.distance)
            warnings.push_back(format(
                tr("Warning: Pt %s direct-reverse Backsight Distance more than %.4f different"),
                s.backsight.c_str(), m_tol.distance));

        // Turned angles of each face.
        const double bdR = reading(*f.bd, m_unit), brR = reading(*f.br, m_unit);
        const double fdR = reading(*f.fd, m_unit), frR = reading(*f.fr, m_unit);
        const double a = circle(fdR - bdR), b = circle(frR - brR);
        double d = std::fabs(a - b);
        if (d > 180.0)
            d = 360.0 - d;
        s.turnedDifference = d * 3600.0;
        s.horizontalResidual = s.turnedDifference / 2.0;
        if (s.turnedDifference > m_tol.horizontalSeconds)
            warnings.push_back(format(tr("Warning: Pt %s direct-reverse horizontal turned angles "
                                         "more than %.1f seconds different"),
                                      s.foresight.c_str(), m_tol.horizontalSeconds));

        // Circle readings, reverse turned to the direct face.
        const double brTurned = turnedReverse(bdR, brR);
        s.backsightDifference = (bdR - brTurned) * 3600.0;
        if (std::fabs(s.backsightDifference) > m_tol.horizontalSeconds)
            warnings.push_back(format(tr("Warning: Pt %s direct-reverse Backsight Hz angles more "
                                         "than %.1f seconds different"),
                                      s.foresight.c_str(), m_tol.horizontalSeconds));
        const double backsightMean = circle((bdR + brTurned) / 2.0);
        const double frTurned = turnedReverse(fdR, frR);
        s.foresightDifference = (fdR - frTurned) * 3600.0;
        if (std::fabs(s.foresightDifference) > m_tol.horizontalSeconds)
            warnings.push_back(format(tr("Warning: Pt %s direct-reverse Foresight Hz angles more "
                                         "than %.1f seconds different"),
                                      s.foresight.c_str(), m_tol.horizontalSeconds));
        const double foresightMean = circle((fdR + frTurned) / 2.0);
        s.horizontalAngle = circle(foresightMean - backsightMean);

        // Vertical: zeniths, the reverse one turned to the direct face; or
        // elevation differences, which read the same in both faces.
        s.elevationDifference = fd.verticalKind == raw::VerticalKind::CE;
        if (s.elevationDifference) {
            const raw::Observation &direct = f.fd->observation, &reverse = f.fr->observation;
            const double ceD = direct.hasWrittenVertical ? direct.writtenVertical : 0.0;
            const double ceR = reverse.hasWrittenVertical ? reverse.writtenVertical : 0.0;
            s.vertical = (ceD + ceR) / 2.0;
            s.verticalDifference = ceD - ceR;
        } else {
            const double zd = zenith(*f.fd, m_unit);
            const double zr = 360.0 - zenith(*f.fr, m_unit);
            s.vertical = (zd + zr) / 2.0;
            s.verticalDifference = (zd - zr) * 3600.0;
            if (std::fabs(s.verticalDifference) > m_tol.verticalSeconds)
                warnings.push_back(format(tr("Warning: Pt %s direct-reverse vert angles more than "
                                             "%.1f seconds different"),
                                          s.foresight.c_str(), m_tol.verticalSeconds));
        }
        s.verticalResidual = s.verticalDifference / 2.0;
        return s;
    }

    RawNode reducedNode(const Faces &f, const ReducedSet &s) const {
        RawNode node;
        node.type = RecordType::Observation;
        node.lineNumber = s.lineNumber;
        Observation &o = node.observation;
        o.type = m_occupiedLater.count(s.foresight) ? "TR" : "SS";
        node.name = o.type;
        o.occupied = s.occupied;
        o.foresight = s.foresight;
        o.backsight = s.backsight;
        o.horizontalKind = raw::HorizontalKind::AR;
        o.horizontal = raw::angleFromDegrees(s.horizontalAngle, m_unit);
        o.hasHorizontal = true;
        o.hasDistance = true;
        o.hasVertical = true;
        o.distanceKind = raw::DistanceKind::Slope;
        o.slopeDistance = s.distance;
        o.description = f.fd->observation.description;
        std::string verticalText;
        if (s.elevationDifference) {
            o.verticalKind = raw::VerticalKind::CE;
            const double h2 = s.distance * s.distance - s.vertical * s.vertical;
            const double h = h2 > 0 ? std::sqrt(h2) : 0.0;
            o.verticalAngle =
                raw::angleFromDegrees(h > 0 ? degrees(std::atan(s.vertical / h)) : 0.0, m_unit);
            verticalText = format("%.4f", s.vertical);
        } else {
            o.verticalKind = raw::VerticalKind::ZE;
            o.verticalAngle = raw::angleFromDegrees(90.0 - s.vertical, m_unit);
            verticalText = format("%.6f", raw::angleFromDegrees(s.vertical, m_unit));
        }
        // As a reader would take the line written with these values.
        o.hasWrittenVertical = parseNumber(verticalText, o.writtenVertical);
        return node;
    }

private:
    DirectReverseTolerances m_tol;
    AngleUnit m_unit;
    std::set<std::string> m_occupiedLater;
};

std::string seconds(double v) {
    return format("%10.1f", v);
}

void reportSet(std::string &out, const ReducedSet &s) {
    appendFormat(out, "\n%s: %s  %s: %s  %s: %s  (%s %zu)\n", tr("Occupied"), s.occupied.c_str(),
                 tr("Backsight"), s.backsight.c_str(), tr("Foresight"), s.foresight.c_str(),
                 tr("line"), s.lineNumber);
    appendFormat(out, "  %10s %10s %10s %10s %12s\n", tr("BK Diff."), tr("FS Diff."),
                 tr("HZ Diff."), tr("Residual"), tr("HorzAngle"));
    appendFormat(out, "  %s %s %s %s %12s\n", seconds(s.backsightDifference).c_str(),
                 seconds(s.foresightDifference).c_str(), seconds(s.turnedDifference).c_str(),
                 seconds(s.horizontalResidual).c_str(), formatDms(s.horizontalAngle, 4).c_str());
    if (s.elevationDifference) {
        appendFormat(out, "  %10s %10s %10s\n", tr("Elev Diff."), tr("Diff."), tr("Residual"));
        appendFormat(out, "  %10.4f %10.4f %10.4f\n", s.vertical, s.verticalDifference,
                     s.verticalResidual);
    } else {
        appendFormat(out, "  %10s %10s %10s\n", tr("Vertical"), tr("Diff."), tr("Residual"));
        appendFormat(out, "  %10s %s %s\n", formatDms(s.vertical, 4).c_str(),
                     seconds(s.verticalDifference).c_str(), seconds(s.verticalResidual).c_str());
    }
    out += "  ";
    out += tr("Distance  Residual  Diff.\n");
    appendFormat(out, "  %8.4f  %8.4f  %5.4f\n", s.distance, s.distanceResidual,
                 s.distanceDifference);
}

void reportMeans(std::string &out, const std::vector<ReducedSet> &sets) {
    // One line per set-up and foresight, over every set to it.
    std::map<std::pair<std::string, std::string>, Accumulator> groups;
    std::vector<std::pair<std::string, std::string>> order;
    bool elevation = false;
    for (const auto &s : sets) {
        const auto key = std::make_pair(s.occupied, s.foresight);
        if (!groups.count(key))
            order.push_back(key);
        auto &g = groups[key];
        g.horizontal.push_back(s.horizontalAngle);
        g.vertical.push_back(s.vertical);
        g.distance.push_back(s.distance);
        elevation = elevation || s.elevationDifference;
    }
    appendFormat(out, "\n%s\n", tr("Means"));
    const char *vertical = elevation ? tr("Elev Diff") : tr("Vertical");
    appendFormat(out, "  %-9s %-9s %4s %12s %8s %12s %8s %12s %8s\n", tr("Occupied"),
                 tr("Foresight"), "n", tr("HorzAngle"), tr("SD"), vertical, tr("SD"),
                 tr("Distance"), tr("SD"));
    for (const auto &key : order) {
        const auto &g = groups[key];
        const double hzSd = standardDeviation(g.horizontal) * 3600.0;
        const double vSd = standardDeviation(g.vertical) * (elevation ? 1.0 : 3600.0);
        const std::string v =
            elevation ? format("%.4f", mean(g.vertical)) : formatDms(mean(g.vertical), 4);
        appendFormat(out, "  %-9.9s %-9.9s %4zu %12s %8.1f %12s %8.1f %12.4f %8.4f\n",
                     key.first.c_str(), key.second.c_str(), g.horizontal.size(),
                     formatDms(mean(g.horizontal), 4).c_str(), hzSd, v.c_str(), vSd,
                     mean(g.distance), standardDeviation(g.distance));
    }
}

} // namespace

bool hasDirectReverseSets(const raw::RawFile &file) {
    for (const auto &node : file.nodes)
        if (isFaceRecord(node))
            return true;
    return false;
}

DirectReverseResult reduceDirectReverse(const raw::RawFile &file, const std::string &rawFileName,
                                        const DirectReverseTolerances &tolerances) {
    DirectReverseResult result;
    result.reduced.units = file.units;
    result.reduced.verticalMode = file.verticalMode;
    Reducer reducer(file, tolerances);
    const auto &nodes = file.nodes;
    for (size_t i = 0; i < nodes.size();) {
        if (!isFaceRecord(nodes[i])) {
            result.reduced.nodes.push_back(nodes[i++]);
            continue;
        }
        // A set: the next four face records, one of each, notes between
        // them allowed (they are kept after the reduced shot).
        Faces faces;
        std::vector<const RawNode *> between;
        size_t j = i;
        int taken = 0;
        for (; j < nodes.size() && taken < 4; ++j) {
            const RawNode &n = nodes[j];
            if (!isFaceRecord(n)) {
                if (n.type == RecordType::Text && n.text.starts_with("--")) {
                    between.push_back(&n);
                    continue;
                }
                break;
            }
            const raw::Observation &o = n.observation;
            const RawNode **slot = o.isBacksightDirect()    ? &faces.bd
                                   : o.isForesightDirect()  ? &faces.fd
                                   : o.isForesightReverse() ? &faces.fr
                                                            : &faces.br;
            if (*slot)
                break; // a second BD (say) starts the next set
            *slot = &n;
            ++taken;
        }
        if (!faces.complete()) {
            result.ok = false;
            result.error = tr("Error: incomplete direct-reverse set");
            return result;
        }
        const ReducedSet set = reducer.reduce(faces, result.warnings);
        result.reduced.nodes.push_back(reducer.reducedNode(faces, set));
        for (const RawNode *n : between)
            result.reduced.nodes.push_back(*n);
        result.sets.push_back(set);
        i = j;
    }

    std::string &out = result.report;
    appendFormat(out, "\n%s: %s\n\n", tr("Raw File"), rawFileName.c_str());
    out += tr("Reduced Sets\n");
    for (const auto &s : result.sets)
        reportSet(out, s);
    reportMeans(out, result.sets);
    if (!result.warnings.empty()) {
        out += "\n";
        for (const auto &w : result.warnings)
            out += w + "\n";
    }
    appendFormat(out, "\n%s\n",
                 format(tr("Reduced records for %d direct-reverse sets."),
                        static_cast<int>(result.sets.size()))
                     .c_str());
    return result;
}

} // namespace tramline::reduce

// Orientation: an angle right (or left, or deflection) is turned from the
// backsight direction; the backsight circle reading is the collector's
// record of where the circle stood and is not subtracted again. Control
// points (store point records) are never moved by a shot onto them: the
// shot's position is listed and kept for the closure only, as is a shot to
// the closing reference point.
#include "reduce/point_computation.h"

#include "base/angles.h"
#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"
#include "reduce/name_flags.h"
#include "reduce/setup_walk.h"

#include <cmath>
#include <ostream>

namespace tramline::reduce {

using raw::RecordType;

const ComputedPoint *PassResult::find(std::string_view name) const {
    const auto it = index.find(name);
    return it == index.end() ? nullptr : &points[it->second];
}

namespace {

// The first `count` comma-separated numbers after `prefix`; more may follow.
std::optional<std::vector<double>> numbersAfter(std::string_view text, std::string_view prefix,
                                                size_t count) {
    if (!text.starts_with(prefix))
        return std::nullopt;
    const auto parts = split(text.substr(prefix.size()), ',');
    if (parts.size() < count)
        return std::nullopt;
    std::vector<double> values(count);
    for (size_t i = 0; i < count; ++i)
        if (!parseNumber(parts[i], values[i]))
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

void appendColumnHeads(std::string &h) {
    h += "  ";
    appendPadded(h, tr("Type"), 6);
    h += ' ';
    appendPadded(h, tr("Point"), 9);
    for (const auto &[head, width] :
         std::initializer_list<std::pair<const char *, size_t>>{{trNoop("Azimuth"), 9},
                                                                {trNoop("SlopeDist"), 10},
                                                                {trNoop("HorzDist"), 10},
                                                                {trNoop("VertDist"), 10},
                                                                {trNoop("Northing"), 12},
                                                                {trNoop("Easting"), 12},
                                                                {trNoop("Elevation"), 10}}) {
        h += ' ';
        appendPadded(h, tr(head), width, true);
    }
    h += ' ';
    h += tr("Description");
    h += '\n';
}

// Stores the foresight of every shot the walk reduces, and lists the run.
class Pass : public SetupWalkClient {
public:
    explicit Pass(const PassInput &input) : m_in(input) {
        for (const auto &name : occupiedPoints(*input.file))
            m_names.add(name, kOccupied | kWatched);
        for (const auto &node : input.file->nodes) {
            if (node.type == RecordType::Text && node.text.starts_with("--DZ,PN"))
                m_names.add(node.text.view().substr(7, node.text.view().find(',', 7) - 7),
                            kWatched);
            else if ((node.type == RecordType::StorePoint || node.type == RecordType::Elevation) &&
                     !node.fields.empty())
                m_names.add(node.fields[0], kWatched);
            else if (node.type == RecordType::Backsight && node.fields.size() > 1)
                m_names.add(node.fields[1], kWatched);
            else if (node.type == RecordType::Observation && node.observation.isAngleBalance())
                m_names.add(node.observation.foresight, kWatched);
        }
        m_names.add(input.closingPoint, kWatched);
        m_names.build();
        // Room for every record at once: a large job grows these a million times.
        const size_t records = input.file->nodes.size();
        m_r.points.reserve(records);
        if (!input.withListing)
            return;
        m_r.listing.reserve(input.listingOut ? kBlock + 4096 : records * 110);
        appendColumnHeads(m_r.listing);
    }

    PassResult take(const WalkOutcome &outcome) {
        m_r.status = outcome.status == WalkOutcome::Status::Done ? PassResult::Status::Done
                     : outcome.status == WalkOutcome::Status::Stopped
                         ? PassResult::Status::Stopped
                         : PassResult::Status::ReturnToEditor;
        m_r.error = outcome.error;
        flush(m_r.sideshots, m_in.sideshotOut, 0);
        flush(m_r.listing, m_in.listingOut, 0);
        return std::move(m_r);
    }

    std::optional<TraversePoint> known(const std::string &name) override {
        if (const auto *p = m_r.find(name))
            return p->point;
        if (m_in.lookup)
            return m_in.lookup(name);
        return std::nullopt;
    }

    void given(const TraversePoint &p, long line, GivenBy by) override {
        store(p, line, true);
        if (by == GivenBy::StorePoint)
            ++m_r.storePoints;
    }

    void elevationChanged(const TraversePoint &p, long line, std::optional<double> depth) override {
        const auto *existing = m_r.find(p.name);
        store(p, line, existing && existing->control);
        if (depth)
            appendFormat(m_r.depths, "\n%-9.9s %s: %.3f, %s: %.3f", p.name.str().c_str(),
                         tr("Adjusted Elev"), p.elevation, tr("Depth"), *depth);
    }

    void setupOpened(const Setup &s) override {
        if (!m_in.withListing)
            return;
        const TraversePoint &p = s.station;
        appendFormat(m_r.listing, "\n%s: %s  N %.4f  E %.4f", tr("Occupy Point"),
                     s.occupied.c_str(), p.north, p.east);
        if (p.hasElevation)
            appendFormat(m_r.listing, "  Z %.4f", p.elevation);
        m_r.listing += "\n";
        if (m_in.options.combinedScaleFactor)
            appendFormat(m_r.listing, "%s: %.8f\n", tr("Combined Scale Factor"), s.scaleFactor);
    }

    void backsightTaken(const Setup &s, long line) override {
        if (m_in.withListing && s.orientedByPoint)
            appendFormat(m_r.listing, "%s: %s\n", tr("Backsight Point"), s.backsight.c_str());
        else if (m_in.withListing && s.backsight.empty())
            appendFormat(m_r.listing, "%s: %s\n", tr("BackSight Azimuth"),
                         dmsText(s.orientation).c_str());
        if (s.backsights > 1)
            appendFormat(m_r.multipleBacksights, "%s: %s  %s: %s  %s: %s  %s %ld\n",
                         tr("Occupy Point"), s.occupied.c_str(), tr("Backsight Point"),
                         s.backsight.empty() ? "-" : s.backsight.c_str(), tr("Azimuth"),
                         dmsText(s.orientation).c_str(), tr("line"), line);
    }

    // Back on the closing point, orient from where the traverse put it:
    // the closing direction then carries the whole angular error of the
    // traverse, not part of it.
    TraversePoint orientationStation(const Setup &s) override {
        return m_r.closingEnd && s.occupied == m_in.closingPoint ? *m_r.closingEnd : s.station;
    }

    void warning(const std::string &text) override { m_r.warnings.push_back(text); }

    void shot(const Setup &s, const ReducedShot &shot) override {
        const raw::Observation &o = *shot.observation;
        if (shot.balance)
            m_r.balanceShots.push_back({s.occupied, o.foresight.str(), shot.azimuth, shot.line});
        TraversePoint p = foresightOf(s, shot);
        // One look at the table a shot: it is as large as the job.
        const std::uint8_t flags = m_names.find(p.name);
        if (p.name == m_in.closingPoint)
            m_r.closingEnd = p;
        list(o, shot, p);
        if (shot.traverse) {
            TraverseSide side;
            side.from = s.occupied;
            side.to = p.name;
            side.horizontal = shot.measurement.horizontal;
            side.slope = o.slopeDistance;
            side.dNorth = p.north - s.station.north;
            side.dEast = p.east - s.station.east;
            side.hasElevation = p.hasElevation && s.station.hasElevation;
            side.dElevation = side.hasElevation ? p.elevation - s.station.elevation : 0.0;
            side.line = shot.line;
            side.description = p.description;
            m_r.sides.push_back(side);
            ++m_r.traverseLines;
        } else if (o.isSideshot()) {
            ++m_r.sideshotCount;
            if (flags & kOccupied)
                ++m_r.sideshotTraverses;
            std::string &ss = m_r.sideshots;
            appendPadded(ss, p.name, 9, false, true);
            ss += ' ';
            appendCoordinates(ss, p);
            flush(ss, m_in.sideshotOut, kBlock);
        }
        if (shot.balance && !shot.traverse)
            return; // an angle balance shot only measures the closing direction
        if (p.name == m_in.closingPoint)
            return; // the closing point keeps its known coordinates
        store(std::move(p), shot.line, false, flags);
    }

private:
    static constexpr size_t kBlock = size_t{1} << 20;

    // Hands a text to its stream once it holds `atLeast` bytes.
    static void flush(std::string &text, std::ostream *out, size_t atLeast) {
        if (!out || text.empty() || text.size() < atLeast)
            return;
        out->write(text.data(), static_cast<std::streamsize>(text.size()));
        text.clear();
    }

    TraversePoint foresightOf(const Setup &s, const ReducedShot &shot) const {
        const raw::Observation &o = *shot.observation;
        const double h = shot.measurement.horizontal;
        TraversePoint p;
        p.name = o.foresight;
        p.description = o.description;
        p.north = s.station.north + h * std::cos(radians(shot.azimuth));
        p.east = s.station.east + h * std::sin(radians(shot.azimuth));
        p.hasElevation = s.elevations && o.hasVertical && s.station.hasElevation && s.hi && s.hr;
        if (p.hasElevation)
            p.elevation = s.station.elevation + *s.hi + shot.vertical - *s.hr;
        if (m_in.sdrVertical && p.hasElevation)
            applySdrVertical(*m_in.sdrVertical, p);
        if (m_in.sdrHorizontal)
            applySdrHorizontal(*m_in.sdrHorizontal, p);
        if (shot.traverse) {
            if (const auto it = m_in.fixed.find(p.name.view()); it != m_in.fixed.end()) {
                p.north = it->second.north;
                p.east = it->second.east;
                if (it->second.hasElevation) {
                    p.elevation = it->second.elevation;
                    p.hasElevation = true;
                }
            }
        }
        return p;
    }

    // One listing line a shot: kind, point, azimuth, slope and horizontal
    // distance, height difference, coordinates, description.
    void list(const raw::Observation &o, const ReducedShot &shot, const TraversePoint &p) {
        if (!m_in.withListing)
            return;
        std::string &l = m_r.listing;
        l += "  ";
        appendPadded(l, o.type, 6);
        l += ' ';
        appendPadded(l, p.name, 9, false, true);
        l += ' ';
        appendPadded(l, dmsText(shot.azimuth), 9, true);
        l += ' ';
        appendFixed(l, o.slopeDistance, 3, 10);
        l += ' ';
        appendFixed(l, shot.measurement.horizontal, 3, 10);
        l += ' ';
        appendFixed(l, shot.vertical, 3, 10);
        l += ' ';
        appendCoordinates(l, p);
        flush(l, m_in.listingOut, kBlock);
    }

    void store(TraversePoint p, long line, bool control) {
        const std::uint8_t flags = m_names.find(p.name);
        store(std::move(p), line, control, flags);
    }

    // `flags` are the name's flags in m_names.
    void store(TraversePoint p, long line, bool control, std::uint8_t flags) {
        if (control || (flags & kWatched)) {
            const auto [it, isNew] = m_r.index.try_emplace(p.name.str(), m_r.points.size());
            if (!isNew) {
                if (m_r.points[it->second].control && !control)
                    return;
                it->second = m_r.points.size();
            }
        }
        if (m_in.options.pointNotes)
            m_r.notes.push_back(p.name + "\t" +
                                format("LINE:%ld,FILE:%s", line, m_in.rawFileName.c_str()));
        m_r.points.push_back({std::move(p), line, control});
    }

    const PassInput &m_in;
    static constexpr std::uint8_t kWatched = 1;  ///< a point the run looks up
    static constexpr std::uint8_t kOccupied = 2; ///< a set-up somewhere in the file
    NameFlags m_names;
    PassResult m_r;
};

} // namespace

PassResult computePoints(const PassInput &input, Interaction &ui) {
    Pass pass(input);
    const WalkOutcome outcome =
        walkSetups(*input.file, input.options, input.traverseAngleCorrection, pass, ui);
    return pass.take(outcome);
}

void applySdrVertical(const SdrVerticalAdjustment &v, TraversePoint &p) {
    p.elevation += v.heightConstant + (p.north - v.originNorth) * v.slopeNorth +
                   (p.east - v.originEast) * v.slopeEast;
}

void applySdrHorizontal(const SdrHorizontalAdjustment &h, TraversePoint &p) {
    const double dn = p.north - h.originNorth, de = p.east - h.originEast;
    const double c = std::cos(radians(h.rotation)), s = std::sin(radians(h.rotation));
    p.north = h.originNorth + h.deltaNorth + h.scale * (dn * c - de * s);
    p.east = h.originEast + h.deltaEast + h.scale * (dn * s + de * c);
}

void askSdrAdjustments(const raw::RawFile &file, Interaction &ui,
                       std::optional<SdrHorizontalAdjustment> &sdrH,
                       std::optional<SdrVerticalAdjustment> &sdrV) {
    for (const auto &n : file.nodes) {
        if (n.type != RecordType::Text || !n.text.starts_with("--"))
            continue;
        const std::string_view note = std::string_view(n.text).substr(2);
        if (!sdrH && note.starts_with("HZADJ:")) {
            if (auto adj = parseHorizontalAdjustment(note);
                adj && ui.choose(tr("SDR Horiz Adjustment"), tr("Use SDR Horiz Adjustment?"),
                                 {tr("Yes"), tr("No")}) == 0)
                sdrH = adj;
        } else if (!sdrV && note.starts_with("VERTADJ:")) {
            if (auto adj = parseVerticalAdjustment(note);
                adj && ui.choose(tr("SDR Vertical Adjustment"), tr("Use SDR Vertical Adjustment?"),
                                 {tr("Yes"), tr("No")}) == 0)
                sdrV = adj;
        }
    }
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

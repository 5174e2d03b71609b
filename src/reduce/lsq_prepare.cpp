#include "reduce/lsq_prepare.h"

#include "base/angles.h"
#include "base/format.h"
#include "base/translation.h"
#include "base/unset.h"
#include "raw/angle_math.h"
#include "reduce/direct_reverse.h"
#include "reduce/point_computation.h"
#include "reduce/point_store.h"
#include "reduce/setup_walk.h"

#include <cmath>
#include <map>
#include <set>
#include <unordered_map>

namespace tramline::reduce {

namespace {

constexpr double kRho = 206264.8;

// The error records in force from each line on.
class ErrorRecords {
public:
    ErrorRecords(const raw::RawFile &file) {
        ObservationErrors current;
        for (const auto &node : file.nodes) {
            const auto value = [&](std::size_t i, double &out) {
                double v;
                if (i < node.fields.size() && parseNumber(node.fields[i], v) && v >= 0.0 &&
                    !isUnset(v))
                    out = v;
            };
            const double toMetres = 1.0 / unitsPerMetre(file.units.linear);
            double length;
            switch (node.type) {
            case raw::RecordType::ControlErrors:
                value(3, current.azimuth);
                break;
            case raw::RecordType::SetupErrors:
                length = -1;
                value(0, length);
                if (length >= 0)
                    current.targetCentre = length * toMetres;
                length = -1;
                value(1, length);
                if (length >= 0)
                    current.instrumentCentre = length * toMetres;
                break;
            case raw::RecordType::MeasurementErrors:
                value(0, current.pointing);
                value(1, current.reading);
                length = -1;
                value(4, length);
                if (length >= 0)
                    current.distance = length * toMetres;
                value(5, current.ppm);
                break;
            default:
                continue;
            }
            m_from[static_cast<long>(node.lineNumber)] = current;
        }
    }

    ObservationErrors at(long line) const {
        auto it = m_from.upper_bound(line);
        if (it == m_from.begin())
            return {};
        return std::prev(it)->second;
    }

private:
    std::map<long, ObservationErrors> m_from;
};

std::map<std::string, TraversePoint> approximations(const PassResult &pass) {
    std::map<std::string, TraversePoint> out;
    for (const auto &p : pass.points)
        out[p.point.name.str()] = p.point;
    return out;
}

class Collector : public SetupWalkClient {
public:
    Collector(const raw::RawFile &file, const PassResult &pass, crd::CoordinateFile *crd)
        : m_file(file), m_errors(file), m_points(approximations(pass)), m_crd(crd),
          m_unitsPerMetre(unitsPerMetre(file.units.linear)) {
        for (const auto &node : file.nodes)
            m_nodeAt[static_cast<long>(node.lineNumber)] = &node;
        for (const auto &p : pass.points)
            if (p.control)
                m_control.insert(p.point.name.str());
    }

    std::optional<TraversePoint> known(const std::string &name) override {
        const auto it = m_points.find(name);
        if (it != m_points.end())
            return it->second;
        if (m_crd) {
            if (auto p = storedPoint(*m_crd, name)) {
                m_control.insert(name);
                m_points[name] = *p;
                return p;
            }
        }
        return std::nullopt;
    }

    void given(const TraversePoint &p, long, GivenBy) override {
        m_control.insert(p.name.str());
        m_points[p.name.str()] = p;
    }

    void setupOpened(const Setup &setup) override { known(setup.occupied); }

    void backsightTaken(const Setup &setup, long line) override {
        const auto it = m_nodeAt.find(line);
        if (it == m_nodeAt.end() || setup.backsight.empty())
            return;
        const auto &fields = it->second->fields;
        double bs;
        if (fields.size() > 2 && parseNumber(fields[2], bs) && !isUnset(bs))
            azimuth(setup.occupied, setup.backsight,
                    normalizeDegrees(raw::angleToDegrees(bs, m_file.units.angle)), line);
    }

    void shot(const Setup &setup, const ReducedShot &shot) override {
        if (!m_error.empty())
            return;
        const raw::Observation &o = *shot.observation;
        if (o.horizontalKind != raw::HorizontalKind::AR) {
            m_error = tr("Error: least-squares only handles angle right shots");
            return;
        }
        const ObservationErrors e = m_errors.at(shot.line);
        const double d2 = shot.measurement.horizontal;
        observe(o.foresight);
        observe(setup.occupied);
        adjust::LsqObservation dist;
        dist.kind = adjust::ObservationKind::Distance;
        dist.at = setup.occupied;
        dist.to = o.foresight;
        dist.value = d2;
        dist.stdErr = distanceStdErr(e, d2, m_unitsPerMetre);
        dist.line = shot.line;
        m_data.observations.push_back(dist);

        adjust::LsqObservation angle;
        angle.line = shot.line;
        angle.at = setup.occupied;
        angle.to = o.foresight;
        if (setup.orientedByPoint && !setup.backsight.empty()) {
            const auto b = known(setup.backsight);
            const double d1 =
                b ? std::hypot(b->north - setup.station.north, b->east - setup.station.east) : 0.0;
            const auto f = m_points.find(o.foresight.str());
            const double d3 = b && f != m_points.end()
                                  ? std::hypot(b->north - f->second.north, b->east - f->second.east)
                                  : 0.0;
            angle.kind = adjust::ObservationKind::Angle;
            angle.from = setup.backsight;
            angle.value = normalizeDegrees(shot.angle);
            angle.stdErr = angleStdErr(e, d1, d2, d3, m_unitsPerMetre);
            observe(setup.backsight);
        } else {
            angle.kind = adjust::ObservationKind::Azimuth;
            angle.value = shot.azimuth;
            angle.stdErr = std::sqrt(e.azimuth * e.azimuth +
                                     angleStdErr(e, 0.0, d2, 0.0, m_unitsPerMetre) *
                                         angleStdErr(e, 0.0, d2, 0.0, m_unitsPerMetre));
        }
        m_data.observations.push_back(angle);
    }

    void azimuth(const std::string &from, const std::string &to, double degreesValue, long line) {
        adjust::LsqObservation az;
        az.kind = adjust::ObservationKind::Azimuth;
        az.at = from;
        az.to = to;
        az.value = degreesValue;
        az.stdErr = m_errors.at(line).azimuth;
        az.line = line;
        m_data.observations.push_back(az);
        observe(from);
        observe(to);
    }

    // Reference azimuth records, and the points: control and adjust
    // points among those the observations name.
    adjust::LsqData finish() {
        for (const auto &node : m_file.nodes) {
            if (node.type != raw::RecordType::ReferenceAzimuth || node.fields.size() < 3)
                continue;
            double bs;
            if (!node.fields[0].empty() && !node.fields[1].empty() &&
                parseNumber(node.fields[2], bs) && known(node.fields[0]) && known(node.fields[1]))
                azimuth(node.fields[0], node.fields[1],
                        normalizeDegrees(raw::angleToDegrees(bs, m_file.units.angle)),
                        static_cast<long>(node.lineNumber));
        }
        for (const auto &name : m_order) {
            const auto it = m_points.find(name);
            if (it == m_points.end())
                continue;
            adjust::LsqPoint p{name, it->second.north, it->second.east, 0};
            (m_control.count(name) ? m_data.control : m_data.adjust).push_back(p);
            if (it->second.hasElevation && !isUnset(it->second.elevation))
                m_data.elevations.push_back({name, it->second.elevation});
        }
        return std::move(m_data);
    }

    const std::string &error() const { return m_error; }

    void observe(std::string_view name) {
        if (m_observed.insert(std::string(name)).second)
            m_order.emplace_back(name);
    }

private:
    const raw::RawFile &m_file;
    ErrorRecords m_errors;
    std::map<std::string, TraversePoint> m_points;
    crd::CoordinateFile *m_crd;
    double m_unitsPerMetre;
    std::unordered_map<long, const raw::RawNode *> m_nodeAt;
    std::set<std::string> m_control;
    std::set<std::string> m_observed;
    std::vector<std::string> m_order; // first mention in the file: the listing's order
    adjust::LsqData m_data;
    std::string m_error;
};

} // namespace

double distanceStdErr(const ObservationErrors &e, double d, double unitsPerMetre) {
    const double ppm = e.ppm * 1e-6 * d;
    const double metric = e.distance * e.distance + e.instrumentCentre * e.instrumentCentre +
                          e.targetCentre * e.targetCentre;
    return std::sqrt(metric * unitsPerMetre * unitsPerMetre + ppm * ppm);
}

double angleStdErr(const ObservationErrors &e, double d1, double d2, double d3,
                   double unitsPerMetre) {
    double variance = 2.0 * e.pointing * e.pointing + 2.0 * e.reading * e.reading;
    const double te = e.targetCentre * unitsPerMetre;
    const double ie = e.instrumentCentre * unitsPerMetre;
    if (d1 > 0.0)
        variance += kRho * kRho * te * te / (d1 * d1);
    if (d2 > 0.0)
        variance += kRho * kRho * te * te / (d2 * d2);
    if (d1 > 0.0 && d2 > 0.0 && d3 > 0.0)
        variance += kRho * kRho * ie * ie * d3 * d3 / (2.0 * d1 * d1 * d2 * d2);
    return std::sqrt(variance);
}

Status prepareLeastSquares(const raw::RawFile &file, const ProcessOptions &options,
                           crd::CoordinateFile *coordinates, Interaction &ui,
                           adjust::LsqData &data) {
    const raw::RawFile *work = &file;
    raw::RawFile reduced;
    if (hasDirectReverseSets(file)) {
        DirectReverseResult dr = reduceDirectReverse(file, {}, options.directReverse);
        if (!dr.ok)
            return Status::failure(StatusCode::Format, dr.error);
        reduced = std::move(dr.reduced);
        work = &reduced;
    }
    PassInput in;
    in.file = work;
    in.options = options;
    if (coordinates)
        in.lookup = [coordinates](const std::string &name) {
            return storedPoint(*coordinates, name);
        };
    const PassResult pass = computePoints(in, ui);
    if (pass.status != PassResult::Status::Done)
        return Status::failure(pass.status == PassResult::Status::ReturnToEditor
                                   ? StatusCode::Cancelled
                                   : StatusCode::InvalidInput,
                               pass.error);
    return collectLeastSquares(*work, pass, options, coordinates, ui, data);
}

Status collectLeastSquares(const raw::RawFile &file, const PassResult &pass,
                           const ProcessOptions &options, crd::CoordinateFile *coordinates,
                           Interaction &ui, adjust::LsqData &data) {
    Collector collector(file, pass, coordinates);
    const WalkOutcome walked = walkSetups(file, options, 0.0, collector, ui);
    if (!collector.error().empty())
        return Status::failure(StatusCode::NotSupported, collector.error());
    if (walked.status != WalkOutcome::Status::Done)
        return Status::failure(StatusCode::InvalidInput, walked.error);
    data = collector.finish();
    return Status::success();
}

std::filesystem::path leastSquaresPathFor(const std::filesystem::path &rawFile) {
    std::filesystem::path p = rawFile;
    p.replace_extension(".lsq");
    return p;
}

} // namespace tramline::reduce

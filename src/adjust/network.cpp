#include "adjust/network.h"

#include "base/format.h"
#include "base/translation.h"

#include <cmath>
#include <numbers>

namespace tramline::adjust {

namespace {

Status addPoint(const LsqPoint &p, bool control, Network &network) {
    if (network.index.count(p.name))
        return Status::failure(
            StatusCode::Format,
            format(tr("Error: point %s is listed twice (line %ld)"), p.name.c_str(), p.line),
            static_cast<std::size_t>(p.line));
    NetworkPoint np{p.name, p.north, p.east, control, -1};
    if (!control) {
        np.unknown = network.unknowns;
        network.unknowns += 2;
    }
    network.index.emplace(p.name, static_cast<int>(network.points.size()));
    network.points.push_back(std::move(np));
    return Status::success();
}

Status pointOf(const Network &network, const std::string &name, long line, int &out) {
    out = network.find(name);
    if (out >= 0)
        return Status::success();
    return Status::failure(
        StatusCode::NotFound,
        format(tr("Error: observation on line %ld names unknown point %s"), line, name.c_str()),
        static_cast<std::size_t>(line));
}

} // namespace

Status buildNetwork(const LsqData &data, Network &network) {
    network = {};
    if (data.adjust.empty() && data.observations.empty())
        return Status::failure(
            StatusCode::NotFound,
            tr("Error: no least-squares data found. Run Prepare Least-Squares Data."));
    for (const auto &p : data.control)
        if (Status s = addPoint(p, true, network); !s)
            return s;
    for (const auto &p : data.adjust)
        if (Status s = addPoint(p, false, network); !s)
            return s;

    std::vector<bool> observed(network.points.size(), false);
    for (const auto &o : data.observations) {
        NetworkObservation n;
        n.kind = o.kind;
        n.line = o.line;
        if (o.kind == ObservationKind::Angle)
            if (Status s = pointOf(network, o.from, o.line, n.from); !s)
                return s;
        if (Status s = pointOf(network, o.at, o.line, n.at); !s)
            return s;
        if (Status s = pointOf(network, o.to, o.line, n.to); !s)
            return s;
        if (n.at == n.to || n.at == n.from)
            return Status::failure(StatusCode::Format,
                                   format(tr("Error: observation on line %ld joins point %s to "
                                             "itself"),
                                          o.line, o.at.c_str()),
                                   static_cast<std::size_t>(o.line));
        if (!(o.stdErr > 0.0))
            return Status::failure(
                StatusCode::InvalidInput,
                format(tr("Error: zero or negative standard error on line %ld"), o.line),
                static_cast<std::size_t>(o.line));
        if (o.kind == ObservationKind::Distance) {
            n.value = o.value;
            n.sigma = o.stdErr;
        } else {
            n.value = o.value * std::numbers::pi / 180.0;
            n.sigma = o.stdErr / kSecondsPerRadian;
        }
        for (int p : {n.from, n.at, n.to})
            if (p >= 0)
                observed[static_cast<std::size_t>(p)] = true;
        network.observations.push_back(n);
    }

    if (data.control.empty())
        return Status::failure(StatusCode::InvalidInput,
                               tr("Error: datum defect: the network has no control points"));
    std::string unobserved;
    for (std::size_t i = 0; i < network.points.size(); ++i)
        if (!network.points[i].control && !observed[i])
            unobserved += (unobserved.empty() ? "" : ", ") + network.points[i].name;
    if (!unobserved.empty())
        return Status::failure(
            StatusCode::InvalidInput,
            format(tr("Error: datum defect: no observation determines %s"), unobserved.c_str()));
    return Status::success();
}

std::string observationName(const Network &network, const NetworkObservation &o) {
    std::string name;
    if (o.from >= 0)
        name = network.points[static_cast<std::size_t>(o.from)].name + "-";
    return name + network.points[static_cast<std::size_t>(o.at)].name + "-" +
           network.points[static_cast<std::size_t>(o.to)].name;
}

} // namespace tramline::adjust

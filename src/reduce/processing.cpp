// The order of a run: store point checks, point protection, traverse
// points, the temporary files, direct-reverse reduction, validation, the
// closing shot, then the measurement pass, the closure and the adjustment.
//
// Adjustments recompute rather than patch: after the angle balance the pass
// runs again with every traverse direction corrected, and after a linear
// rule it runs once more with the adjusted traverse points held fixed, so
// that sideshots and later set-ups follow the adjusted stations.
#include "reduce/processing.h"

#include "adjust/lsq_run.h"
#include "base/angles.h"
#include "base/format.h"
#include "base/translation.h"
#include "raw/angle_math.h"
#include "raw/validate.h"
#include "reduce/angle_balance.h"
#include "reduce/direct_reverse.h"
#include "reduce/lsq_prepare.h"
#include "reduce/point_computation.h"
#include "reduce/point_store.h"
#include "reduce/process_report.h"
#include "reduce/store_point_checks.h"
#include "reduce/temporary_files.h"
#include "reduce/traverse_closure.h"
#include "reduce/traverse_selection.h"

#include <cmath>
#include <fstream>
#include <unordered_map>

namespace tramline::reduce {

namespace {

class Run {
public:
    Run(raw::RawFile &file, const std::string &rawName, crd::CoordinateFile &crd,
        const ProcessOptions &options, Interaction &ui)
        : m_file(file), m_rawName(rawName), m_crd(crd), m_opt(options), m_ui(ui),
          m_method(adjustMethodInfo(options.method)), m_files(options.workingFolder, ui) {
        m_result.report.setTitle(resultTitle(options.method));
    }

    ProcessResult run() {
        if (!m_method.built)
            fail(format(tr("%s: this command is not available yet."), tr(m_method.name)));
        else if (checks() && traversePoints() && openWarnings()) {
            askSdrAdjustments(m_file, m_ui, m_sdrH, m_sdrV);
            m_result.report.append(
                tr("Report Header"),
                reportHeader(m_rawName, coordinateName(), m_opt, m_sdrH, m_sdrV) +
                    unitsLine(m_file.units.linear, m_file.units.angle));
            if (directReverse()) {
                for (const auto &w : raw::validateRaw(*m_work, m_opt.heights))
                    m_warnings.push_back(w);
                if ((!adjusting() || leastSquares() || closingShot()) && measure())
                    write();
            }
        }
        return finish();
    }

private:
    bool adjusting() const { return m_opt.method != AdjustMethod::None; }
    bool leastSquares() const { return m_opt.method == AdjustMethod::LeastSquares; }
    bool balancing() const {
        return m_opt.method == AdjustMethod::AngleBalance || (adjusting() && m_opt.angleBalance);
    }

    ProcessResult finish() {
        m_result.figures.warnings = m_warnings;
        // Whatever happened, the report ends with the findings so far.
        std::string warnings;
        for (const auto &line : m_warnings)
            warnings += line + "\n";
        if (!warnings.empty())
            warnings = m_files.through("warnings.tmp", warnings);
        std::string tail =
            reportTail({std::move(m_sideshots), std::move(m_multipleBacksights),
                        std::move(m_depths), std::move(warnings), m_opt.reportSideshots});
        if (!m_result.error.empty())
            tail += "\n" + m_result.error + "\n";
        if (!tail.empty())
            m_result.report.append(methodTab(m_opt.method), std::move(tail));
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

    bool openWarnings() {
        std::string error;
        return m_files.open(error) || fail(error);
    }

    bool checks() {
        CheckContext context{m_file, m_rawName, m_ui, m_result.report};
        const bool go = storePointCheck(context) == CheckOutcome::Continue &&
                        storePointConflicts(context) == CheckOutcome::Continue &&
                        pointProtect(context, m_crd) == CheckOutcome::Continue;
        m_result.rawChanged = context.rawChanged;
        return go || backToEditor();
    }

    bool traversePoints() {
        if (!adjusting() || leastSquares())
            return true;
        auto choice = chooseTraversePoints(m_file, m_opt, m_ui);
        if (!choice)
            return backToEditor(tr("Function cancelled at user request"));
        m_traverse = std::move(*choice);
        return true;
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

    bool closingShot() {
        const ClosingShot shot = chooseClosingShot(*m_work, m_traverse.end, m_opt, m_ui);
        if (shot.status == ClosingShot::Status::Cancelled)
            return backToEditor(tr("Function cancelled at user request"));
        if (shot.status == ClosingShot::Status::NotFound)
            return fail(tr("Error: no closing shot found"));
        m_closingLine = shot.line;
        return true;
    }

    PassInput passInput() {
        PassInput in;
        in.file = m_work;
        in.rawFileName = m_rawName;
        in.options = m_opt;
        in.lookup = [this](const std::string &name) { return storedPoint(m_crd, name); };
        in.sdrHorizontal = m_sdrH;
        in.sdrVertical = m_sdrV;
        in.closingPoint = adjusting() ? closingName() : m_opt.closingPoint.name;
        return in;
    }

    // The passes after the first: only the first one's listing is shown.
    PassInput laterPassInput() {
        PassInput in = passInput();
        in.withListing = false;
        return in;
    }

    std::string closingName() const {
        return m_opt.closingPoint.name.empty() ? m_traverse.end : m_opt.closingPoint.name;
    }

    std::string coordinateName() const {
        if (!m_opt.coordinateFileName.empty())
            return m_opt.coordinateFileName;
        return m_crd.isOpen() ? m_crd.path().string() : "NONE";
    }

    ClosureNames names() const { return {m_traverse.start, closingName(), m_traverse.end}; }

    bool runPass(PassInput in, PassResult &out) {
        // Left out of the report, the sideshots go straight to their file.
        std::ofstream sideshots, listing;
        m_sideshotsStreamed = !m_opt.reportSideshots && m_files.stream("sideshot.tmp", sideshots);
        if (m_sideshotsStreamed)
            in.sideshotOut = &sideshots;
        // The listing goes to rawedit.tmp as it grows; the report reads it there.
        m_listingStreamed = in.withListing && m_files.stream("rawedit.tmp", listing);
        if (m_listingStreamed)
            in.listingOut = &listing;
        out = computePoints(in, m_ui);
        if (m_sideshotsStreamed && !sideshots.flush())
            m_ui.message(format(tr("Can't open output file %s"),
                                (m_opt.workingFolder / "sideshot.tmp").string().c_str()));
        if (m_listingStreamed && !listing.flush())
            m_ui.message(format(tr("Can't open output file %s"),
                                (m_opt.workingFolder / "rawedit.tmp").string().c_str()));
        if (out.status == PassResult::Status::Stopped)
            return fail(out.error);
        if (out.status == PassResult::Status::ReturnToEditor)
            return backToEditor(out.error);
        return true;
    }

    bool closure(const PassResult &pass) {
        m_closure = closeTraverse(pass, m_traverse, m_closingLine, m_opt.closingPoint,
                                  closingName(), m_crd);
        if (m_closure.ok) {
            const TraversePoint &end = m_closure.knownEnd;
            m_result.closure = ClosureVector{end.name.str(), end.north, end.east,
                                             m_closure.closure.north, m_closure.closure.east};
        }
        return m_closure.ok || fail(m_closure.error);
    }

    // The balance of the closure in m_closure: the correction per angle.
    bool angleBalance(const PassResult &pass, double &correction) {
        const auto &sides = m_closure.sides;
        if (pass.balanceShots.empty())
            return fail(tr("Error: no angle balance shot found"));
        const BalanceShot &shot = pass.balanceShots.back();
        const AngleUnit unit = m_work->units.angle;
        double reference = 0.0;
        if (m_opt.referenceAzimuth) {
            reference = raw::angleToDegrees(*m_opt.referenceAzimuth, unit);
        } else if (const auto from = knownBeforeRun(pass, m_crd, shot.occupied),
                   to = knownBeforeRun(pass, m_crd, shot.foresight);
                   from && to) {
            // A direction between two points known before the run.
            reference = normalizeDegrees(
                degrees(std::atan2(to->east - from->east, to->north - from->north)));
        } else if (const auto asked = askReferenceAzimuth(shot, unit, m_ui)) {
            reference = *asked;
        } else {
            return backToEditor(tr("Function cancelled at user request"));
        }
        const double error = angularError(reference, shot.measuredAzimuth);
        correction = correctionPerAngle(error, static_cast<int>(sides.size()));
        const std::string t =
            angleBalanceText(reference, shot.measuredAzimuth, *m_work, sides,
                             findBadAngle(m_closure.computedEnd, m_closure.knownEnd, sides, error,
                                          m_closure.closure.horizontal));
        m_result.report.append(methodTab(AdjustMethod::AngleBalance), t);
        return true;
    }

    // The closure against a closing point given to a run without adjustment.
    void closureWithoutAdjustment(const PassResult &pass) {
        m_traverse.start = m_opt.startPoint;
        m_traverse.end = m_opt.closingPoint.name;
        if (m_traverse.start.empty() && !pass.sides.empty())
            m_traverse.start = pass.sides.front().from;
        const auto known = knownClosingPoint(pass, m_crd, m_opt.closingPoint, closingName());
        if (!known || !pass.closingEnd) {
            m_warnings.push_back(
                format(tr("No coordinate stored for Closure Point %s"), m_traverse.end.c_str()));
            return;
        }
        const Closure c = computeClosure(*pass.closingEnd, *known, pass.sides);
        m_result.figures.closures.push_back({tr("Closure Results"), c});
        m_result.closure =
            ClosureVector{known->name.str(), known->north, known->east, c.north, c.east};
        m_result.report.append(tr("Closure Results"),
                               closureText(tr("Closure Results"), c, names(), m_counts));
    }

    bool measure() {
        PassResult pass;
        if (!runPass(passInput(), pass))
            return false;
        m_counts = countsOf(pass);
        if (m_listingStreamed) {
            m_result.report.appendFile(tr("Unadjusted Data"), m_opt.workingFolder / "rawedit.tmp")
                .text = passSummary(m_counts);
        } else {
            std::string listing = m_files.through("rawedit.tmp", std::move(pass.listing));
            listing += passSummary(m_counts);
            m_result.report.append(tr("Unadjusted Data"), std::move(listing));
        }
        keepSideshots(std::move(pass.sideshots));
        m_multipleBacksights = m_files.through("multback.tmp", pass.multipleBacksights);
        m_depths = m_files.through("depth.tmp", pass.depths);
        for (const auto &w : pass.warnings)
            m_warnings.push_back(w);

        if (!adjusting()) {
            if (!m_opt.closingPoint.name.empty())
                closureWithoutAdjustment(pass);
            m_final = std::move(pass);
            return true;
        }

        if (leastSquares())
            return adjustLeastSquares(pass);
        if (!closure(pass))
            return false;
        const bool balance = balancing();
        const char *firstTitle =
            balance ? tr("Closure Results (Before Angle Balance)") : tr("Closure Results");
        m_result.report.append(firstTitle,
                               closureText(firstTitle, m_closure.closure, names(), m_counts));
        m_result.figures.closures.push_back({firstTitle, m_closure.closure});
        if (balance) {
            double correction = 0.0;
            if (!angleBalance(pass, correction))
                return false;
            PassInput in = laterPassInput();
            in.traverseAngleCorrection = correction;
            if (!runPass(std::move(in), pass) || !closure(pass))
                return false;
            const auto &c = m_closure;
            const char *title = tr("Closure Results (After Angle Balance)");
            m_result.figures.closures.push_back({title, c.closure});
            m_result.report.append(title,
                                   closureText(title, c.closure, names(), m_counts) +
                                       balancedClosureExtra(c.start, c.computedEnd, c.closure));
            if (m_opt.method == AdjustMethod::AngleBalance) {
                keepSideshots(std::move(pass.sideshots));
                m_final = std::move(pass);
                return true;
            }
        }
        return adjust(pass);
    }

    // The linear rule over the closure in m_closure, then the final pass
    // with the adjusted traverse points held fixed.
    bool adjust(const PassResult &pass) {
        const Closure &c = m_closure.closure;
        const LinearRule rule = m_opt.method == AdjustMethod::Transit    ? LinearRule::Transit
                                : m_opt.method == AdjustMethod::Crandall ? LinearRule::Crandall
                                                                         : LinearRule::Compass;
        const LinearAdjustment adj =
            adjustTraverse(m_closure.start, m_closure.sides, c, rule, m_opt.verticalAdjust);
        if (!adj.ok)
            return fail(adj.error);
        for (const auto &p : adj.points)
            if (!std::isfinite(p.point.north) || !std::isfinite(p.point.east) ||
                !std::isfinite(p.point.elevation))
                return fail(format(tr("Error: point %s has no finite coordinates after the "
                                      "adjustment; nothing was stored."),
                                   p.point.name.str().c_str()));
        m_result.figures.adjusted = adj.points;
        std::string t = adjustmentHeading(tr(m_method.closureTitle));
        // The final pass keeps the balanced directions through the fixed points.
        PassInput in = laterPassInput();
        for (const auto &p : adj.points) {
            if (m_opt.reportAdjustments)
                t += adjustedPointLine(p) + "\n";
            if (p.point.name != closingName()) {
                in.fixed[p.point.name.str()] = p.point;
                m_adjusted.insert(p.point.name.str());
            }
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
        if (!runPass(std::move(in), m_final))
            return false;
        // The sideshots as finally stored, from the adjusted stations.
        keepSideshots(std::move(m_final.sideshots));
        return true;
    }

    // sideshot.tmp is written on every run; the report holds its text only
    // when it lists the sideshots.
    void keepSideshots(std::string text) {
        if (m_sideshotsStreamed)
            return;
        m_sideshots = m_files.through("sideshot.tmp", std::move(text));
        if (!m_opt.reportSideshots)
            std::string().swap(m_sideshots);
    }

    // The network of every shot, adjusted by least squares; then the final
    // pass with the adjusted points held fixed, so that sideshots follow.
    bool adjustLeastSquares(const PassResult &pass) {
        adjust::LsqData data;
        if (const Status st = collectLeastSquares(*m_work, pass, m_opt,
                                                  m_crd.isOpen() ? &m_crd : nullptr, m_ui, data);
            !st)
            return fail(st.message);
        // The run's observation file goes with its other files into the
        // working folder, named after the raw file.
        if (!m_opt.workingFolder.empty() && !m_rawName.empty()) {
            const auto path = m_opt.workingFolder /
                              leastSquaresPathFor(std::filesystem::path(m_rawName).filename());
            if (const Status st = adjust::saveLsq(path, data); !st)
                return fail(st.message);
        }
        adjust::LsqRunOptions options;
        options.angleUnit = m_work->units.angle;
        const adjust::LsqRun run = adjust::runLeastSquares(data, options);
        adjust::addLeastSquaresTabs(run, m_result.report);
        if (!run.status)
            return fail(run.status.message);
        if (!run.shiftWarning.empty())
            m_warnings.push_back(run.shiftWarning);
        for (const adjust::PointStatistics &p : run.statistics.points) {
            const auto i = static_cast<std::size_t>(p.point);
            m_result.ellipses.push_back(
                {run.network.points[i].name, run.solution.north[i], run.solution.east[i],
                 p.standard.semiMajor * adjust::kConfidence95Factor,
                 p.standard.semiMinor * adjust::kConfidence95Factor, p.standard.azimuth});
        }
        PassInput in = laterPassInput();
        std::unordered_map<std::string_view, const TraversePoint *> latest;
        for (const auto &c : pass.points)
            latest[c.point.name.view()] = &c.point;
        for (std::size_t p = 0; p < run.network.points.size(); ++p) {
            const auto &point = run.network.points[p];
            if (point.control)
                continue;
            TraversePoint fixed;
            if (const auto it = latest.find(point.name); it != latest.end())
                fixed = *it->second;
            fixed.name = point.name;
            fixed.north = run.solution.north[p];
            fixed.east = run.solution.east[p];
            in.fixed[point.name] = fixed;
            m_adjusted.insert(point.name);
        }
        if (m_opt.reportUnadjusted)
            m_result.report.append(tr("Unadjusted Points"), pointList(pass));
        if (!runPass(std::move(in), m_final))
            return false;
        keepSideshots(std::move(m_final.sideshots));
        return true;
    }

    bool write() {
        // A point that overflowed (a huge distance, a degenerate traverse)
        // stops the run before anything is stored: an infinite or NaN
        // coordinate in a file is worse than none.
        for (const ComputedPoint &p : m_final.points) {
            const TraversePoint &t = p.point;
            if (!std::isfinite(t.north) || !std::isfinite(t.east) ||
                (t.hasElevation && !std::isfinite(t.elevation)))
                return fail(format(tr("Error: point %s computed from line %ld has no finite "
                                      "coordinates; nothing was stored."),
                                   t.name.str().c_str(), p.line));
        }
        if (m_opt.keepStoredPoints) {
            m_result.figures.stored.reserve(m_final.points.size());
            for (const ComputedPoint &p : m_final.points)
                m_result.figures.stored.push_back(p.point);
        }
        StoreResult r = storePoints(m_final, m_crd, m_adjusted, m_method.historyOperation);
        m_result.pointsStored = r.stored;
        m_result.storeFailures = r.warnings;
        for (auto &w : r.warnings)
            m_warnings.push_back(std::move(w));
        return true;
    }

    raw::RawFile &m_file;
    std::string m_rawName;
    crd::CoordinateFile &m_crd;
    const ProcessOptions &m_opt;
    Interaction &m_ui;
    const AdjustMethodInfo &m_method;
    TemporaryFiles m_files;
    ProcessResult m_result;
    std::vector<std::string> m_warnings;
    std::string m_sideshots, m_multipleBacksights, m_depths;
    TraverseChoice m_traverse;
    long m_closingLine = 0;
    raw::RawFile m_reduced;
    const raw::RawFile *m_work = nullptr;
    std::optional<SdrHorizontalAdjustment> m_sdrH;
    std::optional<SdrVerticalAdjustment> m_sdrV;
    PassCounts m_counts;
    PassResult m_final;
    bool m_sideshotsStreamed = false; ///< the latest pass wrote sideshot.tmp itself
    bool m_listingStreamed = false;   ///< the latest pass wrote rawedit.tmp itself
    std::set<std::string> m_adjusted; ///< traverse points moved by the adjustment
    TraverseClosure m_closure;        ///< of the latest pass along the traverse
};

} // namespace

ProcessResult processRaw(raw::RawFile &file, const std::string &rawFileName,
                         crd::CoordinateFile &coordinates, const ProcessOptions &options,
                         Interaction &ui) {
    Run run(file, rawFileName, coordinates, options, ui);
    return run.run();
}

} // namespace tramline::reduce

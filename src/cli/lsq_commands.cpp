// tramline-cli lsq: the least-squares adjustment in its two steps, prepare
// (a raw file's observations into an ".lsq" file) and solve (the
// adjustment, its report and statistics, the adjusted points stored).
#include "adjust/lsq_report.h"
#include "adjust/lsq_run.h"
#include "base/atomic_save.h"
#include "base/format.h"
#include "base/status_text.h"
#include "base/translation.h"
#include "cli/command_context.h"
#include "cli/console_interaction.h"
#include "cli/stream_files.h"
#include "crd/coordinate_file.h"
#include "raw/reader.h"
#include "reduce/adjust_methods.h"
#include "reduce/lsq_prepare.h"

#include <nlohmann/json.hpp>

namespace tramline::cli {

namespace {

struct SolveCliOptions {
    std::string file, crd, plot;
    bool json = false, debug = false;
};

struct PrepareCliOptions {
    std::string file, output, crd;
};

const char *kindWord(adjust::ObservationKind kind) {
    switch (kind) {
    case adjust::ObservationKind::Distance:
        return "distance";
    case adjust::ObservationKind::Angle:
        return "angle";
    case adjust::ObservationKind::Azimuth:
        return "azimuth";
    }
    return "";
}

nlohmann::json ellipseJson(const adjust::Ellipse &e) {
    return {{"semiMajor", e.semiMajor}, {"semiMinor", e.semiMinor}, {"azimuth", e.azimuth}};
}

nlohmann::json runJson(const adjust::LsqRun &run, long stored) {
    nlohmann::json doc;
    doc["error"] = run.status ? "" : run.status.message;
    doc["pointsStored"] = stored;
    if (!run.status)
        return doc;
    const auto &s = run.solution;
    const auto &net = run.network;
    doc["iterations"] = s.iterations;
    doc["s0"] = s.degreesOfFreedom > 0 ? s.s0 : 0.0;
    doc["degreesOfFreedom"] = s.degreesOfFreedom;
    if (const auto bounds = adjust::chiSquareBounds(s.degreesOfFreedom))
        doc["chiSquare"] = {{"statistic", s.degreesOfFreedom * s.s0 * s.s0},
                            {"lower", bounds->first},
                            {"upper", bounds->second},
                            {"passes", *adjust::chiSquarePasses(s)}};
    else
        doc["chiSquare"] = nullptr;
    nlohmann::json points = nlohmann::json::array();
    for (const auto &p : run.statistics.points) {
        const auto i = static_cast<std::size_t>(p.point);
        points.push_back({{"name", net.points[i].name},
                          {"N", s.north[i]},
                          {"E", s.east[i]},
                          {"sN", p.northStdErr},
                          {"sE", p.eastStdErr},
                          {"ellipse", ellipseJson(p.standard)},
                          {"ellipse95Factor", adjust::kConfidence95Factor}});
    }
    doc["points"] = points;
    nlohmann::json observations = nlohmann::json::array();
    for (std::size_t i = 0; i < net.observations.size(); ++i) {
        const auto &o = net.observations[i];
        const auto &st = run.statistics.observations[i];
        observations.push_back({{"kind", kindWord(o.kind)},
                                {"points", adjust::observationName(net, o)},
                                {"line", o.line},
                                {"residual", st.residual},
                                {"standardized", st.tested ? nlohmann::json(st.standardized)
                                                           : nlohmann::json(nullptr)},
                                {"redundancy", st.redundancy},
                                {"suspect", st.suspect}});
    }
    doc["observations"] = observations;
    nlohmann::json suspects = nlohmann::json::array();
    for (int i : run.statistics.suspects)
        suspects.push_back(adjust::suspectSentence(net, run.statistics, i));
    doc["suspects"] = suspects;
    doc["criticalValue"] = adjust::kSnoopingCriticalValue;
    return doc;
}

void runSolve(const SolveCliOptions &o, CommandContext &ctx) {
    adjust::LsqData data;
    if (const Status st = adjust::loadLsq(o.file, data); !st) {
        ctx.err << st.message << '\n';
        ctx.exitCode = kFailure;
        return;
    }
    adjust::LsqRunOptions options;
    options.debug = o.debug;
    const adjust::LsqRun run = adjust::runLeastSquares(data, options);
    long stored = 0;
    std::vector<std::string> warnings;
    if (run.status) {
        ConsoleInteraction ui(ctx.err);
        crd::CrdContext crdContext;
        crdContext.messages = &ui;
        crd::CoordinateFile coordinates(crdContext);
        if (!coordinates.open(o.crd)) {
            ctx.err << crd::CoordinateFile::errorText(coordinates.lastError()) << '\n';
            ctx.exitCode = kFailure;
            return;
        }
        stored = adjust::storeAdjustedPoints(
            run, data, coordinates,
            reduce::adjustMethodInfo(reduce::AdjustMethod::LeastSquares).historyOperation,
            warnings);
        coordinates.close();
    }
    if (run.status && !o.plot.empty()) {
        std::string error;
        if (!saveTextAtomically(o.plot, run.svg, &error)) {
            ctx.err << format(tr("Can't open output file %s"), o.plot.c_str()) << '\n';
            ctx.exitCode = kFailure;
        }
    }
    if (o.json) {
        nlohmann::json doc = runJson(run, stored);
        if (o.debug)
            doc["debug"] = run.debug;
        ctx.out << doc.dump(1, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
    } else {
        Report report(reduce::resultTitle(reduce::AdjustMethod::LeastSquares));
        report.append(tr("Least-Squares"),
                      run.leastSquares + (run.status ? "" : run.status.message + "\n"));
        if (run.status)
            report.append(tr("Statistics"), run.statisticsText);
        ctx.out << report.toText();
        if (o.debug)
            ctx.out << run.debug << '\n';
    }
    for (const auto &w : warnings)
        ctx.err << w << '\n';
    if (!run.status) {
        ctx.err << run.status.message << '\n';
        ctx.exitCode = kFailure;
    }
}

void runPrepare(const PrepareCliOptions &o, CommandContext &ctx) {
    raw::RawFile file;
    if (const Status status = raw::readRawFile(o.file, file); !status) {
        ctx.err << statusText(status) << '\n';
        explainFileFailure(ctx, {o.file});
        ctx.exitCode = kFailure;
        return;
    }
    ConsoleInteraction ui(ctx.err);
    crd::CrdContext crdContext;
    crdContext.messages = &ui;
    crd::CoordinateFile coordinates(crdContext);
    if (!o.crd.empty() && !coordinates.openForReading(o.crd)) {
        ctx.err << crd::CoordinateFile::errorText(coordinates.lastError()) << '\n';
        ctx.exitCode = kFailure;
        return;
    }
    reduce::ProcessOptions options;
    adjust::LsqData data;
    const Status st = reduce::prepareLeastSquares(
        file, options, coordinates.isOpen() ? &coordinates : nullptr, ui, data);
    if (!st) {
        ctx.err << st.message << '\n';
        ctx.exitCode = kFailure;
        return;
    }
    const std::filesystem::path out =
        o.output.empty() ? reduce::leastSquaresPathFor(o.file) : std::filesystem::path(o.output);
    if (const Status saved = adjust::saveLsq(out, data); !saved) {
        ctx.err << saved.message << '\n';
        ctx.exitCode = kFailure;
        return;
    }
    ctx.out << format(tr("%zu control points, %zu adjust points, %zu observations written to %s"),
                      data.control.size(), data.adjust.size(), data.observations.size(),
                      out.string().c_str())
            << '\n';
}

} // namespace

void addLsqCommands(CLI::App &app, CommandContext &ctx) {
    auto *lsq = app.add_subcommand("lsq", "Least-squares adjustment: prepare, solve");
    lsq->require_subcommand(1);

    auto p = std::make_shared<PrepareCliOptions>();
    auto *prepare = lsq->add_subcommand(
        "prepare", "Write the observations of a raw file into a least-squares file");
    prepare->add_option("FILE", p->file, "RW5 raw file")->required();
    prepare->add_option("-o,--output", p->output,
                        "Least-squares file (default: beside the raw file, .lsq)");
    prepare->add_option("--crd", p->crd, "Coordinate file holding the control points");
    prepare->callback([&ctx, p] {
        if (coordinateFilePath(p->crd, ctx))
            runPrepare(*p, ctx);
    });

    auto s = std::make_shared<SolveCliOptions>();
    auto *solve = lsq->add_subcommand(
        "solve", "Adjust a least-squares file, print the report and store the adjusted points");
    solve->add_option("FILE", s->file, "Least-squares file (.lsq)")->required();
    solve
        ->add_option("--crd", s->crd,
                     "Coordinate file to store the adjusted points in (created when missing)")
        ->required();
    solve->add_flag("--json", s->json,
                    "Write points, s0, chi-square, iterations and observations as JSON");
    solve->add_option("--plot", s->plot, "Write the network picture as SVG to this file");
    solve->add_flag("--debug", s->debug, "Add the step-by-step listing with its matrices");
    solve->callback([&ctx, s] {
        if (coordinateFilePath(s->crd, ctx))
            runSolve(*s, ctx);
    });
}

} // namespace tramline::cli

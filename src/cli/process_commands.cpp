// tramline-cli process: the main job, a raw file reduced (and adjusted)
// into a coordinate file, with the "Process Results" report.
#include "adjust/lsq_run.h"
#include "base/folders.h"
#include "base/format.h"
#include "base/status_text.h"
#include "base/text.h"
#include "base/translation.h"
#include "base/unset.h"
#include "cli/command_context.h"
#include "cli/console_interaction.h"
#include "cli/progress.h"
#include "cli/stream_files.h"
#include "crd/coordinate_file.h"
#include "geodesy/coordinate_system_family.h"
#include "geodesy/geoid_models.h"
#include "geodesy/localization_files.h"
#include "geodesy/projection.h"
#include "geodesy/zones.h"
#include "raw/reader.h"
#include "reduce/gps_processing.h"
#include "reduce/processing.h"

#include <nlohmann/json.hpp>

namespace tramline::cli {

namespace {

struct ProcessCliOptions {
    std::string file, crd, method = "none", start, end, closing, closingShot, referenceAzimuth,
                           workdir;
    std::string family, zone, geoidData, localization;
    int geoidModel = 0;
    double scale = 1.0;
    bool combinedScale = false, curvature = false, stadia = false, twoD = false,
         reportSideshots = false, verticalAdjust = false, notes = false, json = false,
         angleBalance = false, reportUnadjusted = false;
    std::vector<std::string> answers;
};

// GPS processing is a Process menu command of its own, not a traverse
// adjustment; the command line takes it as one more method.
constexpr const char *kGpsMethod = "gps";

std::vector<std::string> methodWords() {
    std::vector<std::string> words;
    for (const auto &m : reduce::adjustMethods())
        words.emplace_back(m.cliWord);
    words.emplace_back(kGpsMethod);
    return words;
}

bool hasPicture(const Report &report) {
    for (const auto &t : report.tabs())
        if (t.title == adjust::plotTabTitle())
            return true;
    return false;
}

nlohmann::json pointJson(const reduce::TraversePoint &p) {
    return {{"name", p.name},
            {"northing", p.north},
            {"easting", p.east},
            {"elevation", p.hasElevation ? nlohmann::json(p.elevation) : nlohmann::json()},
            {"description", p.description}};
}

// The run's figures as numbers; an exact closure has no finite precision
// ratio and gives null.
void addFigures(nlohmann::json &doc, const reduce::ProcessFigures &figures) {
    nlohmann::json closures = nlohmann::json::array(), adjusted = nlohmann::json::array(),
                   stored = nlohmann::json::array();
    for (const auto &[title, c] : figures.closures)
        closures.push_back(
            {{"title", title},
             {"north", c.north},
             {"east", c.east},
             {"vertical", c.vertical},
             {"horizontal", c.horizontal},
             {"slope", c.slope},
             {"azimuth", c.azimuth},
             {"horizontalTraversed", c.horizontalTraversed},
             {"slopeTraversed", c.slopeTraversed},
             {"sides", c.sides},
             {"precision", c.exact ? nlohmann::json() : nlohmann::json(c.precision)}});
    for (const auto &a : figures.adjusted) {
        nlohmann::json point = pointJson(a.point);
        point["northCorrection"] = a.northCorrection;
        point["eastCorrection"] = a.eastCorrection;
        point["shift"] = a.shift;
        adjusted.push_back(std::move(point));
    }
    for (const auto &p : figures.stored)
        stored.push_back(pointJson(p));
    nlohmann::json warnings = nlohmann::json::array();
    for (const auto &w : figures.warnings)
        if (const auto text = trim(w); !text.empty())
            warnings.push_back(std::string(text));
    doc["closures"] = closures;
    doc["adjustedPoints"] = adjusted;
    doc["storedPoints"] = stored;
    doc["warnings"] = warnings;
}

void printReport(const Report &report, long pointsStored, const std::string &error, bool json,
                 CommandContext &ctx, const reduce::ProcessFigures &figures = {}) {
    if (json) {
        nlohmann::json tabs = nlohmann::json::array();
        for (const auto &t : report.tabs())
            tabs.push_back({{"title", t.title}, {"text", t.content()}});
        nlohmann::json doc = {{"title", report.title()},
                              {"tabs", tabs},
                              {"pointsStored", pointsStored},
                              {"error", error.empty() ? nlohmann::json() : nlohmann::json(error)}};
        addFigures(doc, figures);
        ctx.out << doc.dump(1, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
    } else if (!hasPicture(report)) {
        report.write(ctx.out);
    } else {
        // The picture is for the desktop program and --plot, not the terminal.
        Report shown(report.title());
        for (const auto &t : report.tabs())
            if (t.title != adjust::plotTabTitle())
                shown.append(t.title, t.content());
        shown.write(ctx.out);
    }
}

void runGps(const ProcessCliOptions &o, CommandContext &ctx) {
    if (o.localization.empty())
        throw CLI::ValidationError("--localization", "GPS processing needs --localization LOC.dat");
    const auto failWith = [&ctx](const std::string &message) {
        ctx.err << message << '\n';
        ctx.exitCode = kFailure;
    };
    geodesy::CoordinateSystem system;
    geodesy::LocalizationSettings settings;
    std::vector<geodesy::AlignmentPoint> points;
    if (Status status = geodesy::loadLocalization(o.localization, system, settings, points);
        !status)
        return failWith(status.message);
    settings.pointNotes = settings.pointNotes || o.notes;
    geodesy::GeoidFolders folders;
    folders.dataFolder =
        o.geoidData.empty() ? settingsFolder() : std::filesystem::path(o.geoidData);
    geodesy::GeoidModels models(folders);
    const auto separation = geodesy::separationSource(models, settings.geoidModel);
    geodesy::Localization localization;
    geodesy::GridProjector projector;
    Status status = geodesy::fitLocalization(system, settings, points, separation, localization);
    if (status)
        status = projector.open(system, settings, separation);
    if (!status)
        return failWith(status.message);
    raw::RawFile file;
    if (status = raw::readRawFile(o.file, file); !status) {
        failWith(statusText(status));
        explainFileFailure(ctx, {o.file});
        return;
    }
    ConsoleInteraction ui(ctx.err);
    crd::CrdContext crdContext;
    crdContext.messages = &ui;
    crd::CoordinateFile coordinates(crdContext);
    if (!coordinates.open(o.crd))
        return failWith(crd::CoordinateFile::errorText(coordinates.lastError()));
    const reduce::GpsProcessResult result =
        reduce::processGps(file, o.file, localization, projector, coordinates);
    coordinates.close();
    printReport(result.report, result.pointsStored, result.error, o.json, ctx);
    if (!result.ok)
        failWith(result.error);
}

void runProcess(const ProcessCliOptions &o, CommandContext &ctx) {
    if (o.method == kGpsMethod)
        return runGps(o, ctx);
    reduce::ProcessOptions options;
    const reduce::AdjustMethodInfo *method = reduce::adjustMethodByCliWord(o.method);
    if (!method || !method->built) {
        ctx.err << format(tr("%s: this command is not available yet."),
                          method ? tr(method->name) : o.method.c_str())
                << '\n';
        ctx.exitCode = kFailure;
        return;
    }
    options.method = method->method;
    options.scaleFactor = o.scale;
    options.curvature = o.curvature;
    options.stadia = o.stadia;
    options.elevations = !o.twoD;
    options.reportSideshots = o.reportSideshots;
    options.verticalAdjust = o.verticalAdjust;
    options.pointNotes = o.notes;
    options.angleBalance = o.angleBalance;
    options.reportUnadjusted = o.reportUnadjusted;
    options.keepStoredPoints = o.json;
    options.startPoint = o.start;
    options.endPoint = o.end;
    options.workingFolder =
        o.workdir.empty() ? defaultWorkingFolder() : std::filesystem::path(o.workdir);
    // The job's coordinate system and geoid, for the combined scale factor.
    geodesy::Projection projection;
    std::unique_ptr<geodesy::GeoidModels> geoid;
    if (o.combinedScale) {
        if (o.family.empty() || o.zone.empty())
            throw CLI::ValidationError("--combined-scale",
                                       "name the job's system with --family and --zone");
        const auto family = geodesy::familyFromName(o.family);
        if (!family)
            throw CLI::ValidationError("--family", "no family " + o.family);
        const std::string zone = geodesy::zoneByNameOrPosition(*family, o.zone);
        geodesy::CoordinateSystem system;
        geodesy::Status status = geodesy::zoneSystem(*family, zone, {}, system);
        if (status)
            status = projection.open(system);
        if (!status) {
            ctx.err << status.message << '\n';
            ctx.exitCode = kFailure;
            return;
        }
        options.combinedScaleFactor = true;
        options.projection = &projection;
        options.geoidModel = o.geoidModel;
        if (o.geoidModel != 0) {
            geodesy::GeoidFolders folders;
            folders.dataFolder =
                o.geoidData.empty() ? settingsFolder() : std::filesystem::path(o.geoidData);
            geoid = std::make_unique<geodesy::GeoidModels>(folders);
            options.geoid = geoid.get();
        }
    }
    if (!o.closing.empty()) {
        const auto parts = split(o.closing, ',');
        options.closingPoint.name = std::string(parts[0]);
        double v;
        if (parts.size() >= 3) {
            if (!parseNumber(parts[1], v))
                throw CLI::ValidationError("--closing", "northing is not a number");
            options.closingPoint.north = v;
            if (!parseNumber(parts[2], v))
                throw CLI::ValidationError("--closing", "easting is not a number");
            options.closingPoint.east = v;
            if (parts.size() >= 4 && parseNumber(parts[3], v))
                options.closingPoint.elevation = v;
        } else if (parts.size() != 1) {
            throw CLI::ValidationError("--closing", "give P or P,N,E[,Z]");
        }
    }
    if (!o.closingShot.empty()) {
        const auto parts = split(o.closingShot, ',');
        if (parts.size() != 2)
            throw CLI::ValidationError("--closing-shot", "give OCC,FS");
        options.closingShotOccupied = std::string(parts[0]);
        options.closingShotForesight = std::string(parts[1]);
    }
    if (!o.referenceAzimuth.empty()) {
        double v;
        if (!parseNumber(o.referenceAzimuth, v))
            throw CLI::ValidationError("--reference-azimuth", "give the azimuth as ddd.mmss");
        options.referenceAzimuth = v;
    }

    ConsoleInteraction ui(ctx.err);
    for (const auto &a : o.answers) {
        const size_t eq = a.find('=');
        if (eq == std::string::npos || eq == 0)
            throw CLI::ValidationError("--answer", "give DIALOG=BUTTON");
        ui.answers[a.substr(0, eq)] = a.substr(eq + 1);
    }
    if (!o.start.empty() && !o.end.empty())
        ui.prefilled.insert(tr("Traverse Points"));
    ui.hints = {
        {tr("Traverse Points"), "--start P and --end P"},
        {tr("Closing Shot Measurement"), "--closing-shot OCC,FS"},
        {tr("Reference Closing Angle"), "--reference-azimuth DDD.MMSS"},
        {tr("Occupy Point"), "--answer \"Occupy Point=NORTH|EAST|ELEV|DESCRIPTION\""},
        {tr("Backsight Point"),
         "--answer \"Backsight Point=Enter Coordinates\" with --answer \"Backsight Point=...\""},
        {tr("Store Point Check"), "--answer \"Store Point Check=Continue Processing\""},
        {tr("Store Point Conflicts"), "--answer \"Store Point Conflicts=Continue Processing\""},
        {tr("Point Protect"), "--answer \"Point Protect=Continue Processing\""},
        {tr("SDR Horiz Adjustment"), "--answer \"SDR Horiz Adjustment=Yes\" (or No)"},
        {tr("SDR Vertical Adjustment"), "--answer \"SDR Vertical Adjustment=Yes\" (or No)"}};

    Progress progress(ctx.err, !ctx.quiet);
    if (progress.enabled())
        options.progress = [&progress](std::size_t done, std::size_t total) {
            progress.records(done, total);
        };
    raw::RawFile file;
    if (const Status status = raw::readRawFile(o.file, file); !status) {
        ctx.err << statusText(status) << '\n';
        explainFileFailure(ctx, {o.file});
        ctx.exitCode = kFailure;
        return;
    }
    crd::CrdContext crdContext;
    crdContext.messages = &ui;
    crd::CoordinateFile coordinates(crdContext);
    std::error_code ec;
    const bool existed = std::filesystem::exists(o.crd, ec);
    if (!coordinates.open(o.crd)) {
        ctx.err << crd::CoordinateFile::errorText(coordinates.lastError()) << '\n';
        ctx.exitCode = kFailure;
        return;
    }
    reduce::ProcessResult result = reduce::processRaw(file, o.file, coordinates, options, ui);
    // The file has the last word on what was stored (adjusted traverse
    // points replace their pass values).
    for (reduce::TraversePoint &p : result.figures.stored) {
        crd::CrdPoint stored;
        if (!coordinates.readPoint(p.name, stored, crd::PointSearch::Exact, crd::Verbosity::Quiet))
            continue;
        p.north = stored.northing;
        p.east = stored.easting;
        p.hasElevation = !isUnset(stored.elevation);
        p.elevation = stored.elevation;
    }
    coordinates.close();

    progress.clear();
    printReport(result.report, result.pointsStored, result.error, o.json, ctx, result.figures);
    if (result.status != reduce::ProcessResult::Status::Done) {
        // A question nobody could answer has named the options to give;
        // the run's own "cancelled" would say something else happened.
        if (!result.error.empty() && !ui.unanswered)
            ctx.err << result.error << '\n';
        ctx.exitCode = kFailure;
    }
    // Points that did not reach the file are a failure, not a footnote.
    for (const std::string &line : result.storeFailures)
        ctx.err << trim(line) << '\n';
    if (!result.storeFailures.empty())
        ctx.exitCode = kFailure;
    // A coordinate file this run created and left without a point goes again.
    if (!existed && result.pointsStored == 0 &&
        result.status != reduce::ProcessResult::Status::Done) {
        crd::CoordinateFile check;
        std::vector<crd::CrdPoint> points;
        if (check.openForReading(o.crd) && crd::readAllPoints(check, points) && points.empty()) {
            check.close();
            std::filesystem::remove(o.crd, ec);
        }
    }
}

} // namespace

void addProcessCommands(CLI::App &app, CommandContext &ctx) {
    auto o = std::make_shared<ProcessCliOptions>();
    auto *cmd = app.add_subcommand(
        "process", "Process a raw file into a coordinate file: no adjustment, angle "
                   "balance, compass, transit or Crandall, or GPS through a localization; "
                   "prints the Process Results");
    cmd->add_option("FILE", o->file, "RW5 raw file")->required();
    cmd->add_option("--crd", o->crd,
                    "Coordinate file to store the points in (created when missing)")
        ->required();
    cmd->add_option("--method", o->method, "Adjustment method")
        ->check(CLI::IsMember(methodWords()));
    cmd->add_option("--start", o->start, "Starting point of the traverse");
    cmd->add_option("--end", o->end, "Ending point of the traverse");
    cmd->add_option("--closing", o->closing,
                    "Closing reference point P, or P,N,E[,Z] with its coordinates");
    cmd->add_option("--closing-shot", o->closingShot,
                    "The closing shot OCC,FS when several reach the end");
    cmd->add_option("--reference-azimuth", o->referenceAzimuth,
                    "Reference closing azimuth for the angle balance, ddd.mmss");
    auto *scale = cmd->add_option("--scale", o->scale, "Fixed scale factor (default 1)");
    cmd->add_flag("--combined-scale", o->combinedScale,
                  "Combined scale factor per measurement (needs --family and --zone)")
        ->excludes(scale);
    cmd->add_option("--family", o->family,
                    "The job's coordinate system family, for --combined-scale");
    cmd->add_option("--zone", o->zone, "The job's zone of that family, for --combined-scale");
    cmd->add_option("--localization", o->localization,
                    "For --method gps: the alignment file that localize fit -o kept");
    cmd->add_option("--geoid", o->geoidModel,
                    "Geoid model code (1 to 78) for the ellipsoid heights; 0 none");
    cmd->add_option("--geoid-data", o->geoidData,
                    "Folder holding the geoid grids (default: the settings folder)");
    cmd->add_flag("--curvature", o->curvature, "Correct for earth curvature and refraction");
    cmd->add_flag("--stadia", o->stadia, "Stadia reduction");
    cmd->add_flag("--2d", o->twoD, "No elevations");
    cmd->add_flag("--angle-balance", o->angleBalance,
                  "Balance the angles before the compass, transit or Crandall rule");
    cmd->add_flag("--report-sideshots", o->reportSideshots, "List the sideshots in the report");
    cmd->add_flag("--report-unadjusted", o->reportUnadjusted,
                  "List the unadjusted points in the report");
    cmd->add_flag("--vertical-adjust", o->verticalAdjust, "Spread the vertical closure error");
    cmd->add_flag("--notes", o->notes, "Give every stored point the note LINE:n,FILE:name");
    cmd->add_option("--answer", o->answers,
                    "Answer a dialog: DIALOG=BUTTON, or DIALOG=v1|v2|... for a form");
    cmd->add_option("--workdir", o->workdir,
                    "Working folder for the temporary files (default: Documents/Halvren Tramline)");
    cmd->add_flag("--json", o->json, "Write the report as JSON");
    cmd->callback([&ctx, o] {
        if (coordinateFilePath(o->crd, ctx))
            runProcess(*o, ctx);
    });
}

} // namespace tramline::cli

// tramline-cli localize ...: fit GPS positions onto a local grid from an
// alignment file or a raw file, report it, draw it and keep it.
#include "base/folders.h"
#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"
#include "cli/command_context.h"
#include "cli/system_options.h"
#include "geodesy/alignment_file.h"
#include "geodesy/localization_files.h"
#include "geodesy/localization_plot.h"
#include "geodesy/localization_report.h"
#include "geodesy/zones.h"
#include "reduce/gps_processing.h"

#include <nlohmann/json.hpp>

#include <fstream>

namespace tramline::cli {

namespace {

using namespace tramline::geodesy;

struct FitOptions {
    std::string align, horizontal = "similarity", vertical = "level", units = "m", azimuth = "grid",
                       twoPoint = "fit-rotate", multiple = "last", plot, output, reportSettings,
                       geoidData;
    SystemOptions system;
    int geoid = 0, places = 3;
    double projectScale = 1.0;
    bool report = false, json = false, defineDatum = false;
};

const std::map<std::string, LocalizationUnits> kUnits = {
    {"us-ft", LocalizationUnits::UsFeet},
    {"m", LocalizationUnits::Metres},
    {"intl-ft", LocalizationUnits::InternationalFeet}};
const std::map<std::string, MultipleMeasurements> kMultiple = {
    {"last", MultipleMeasurements::UseLast},
    {"average", MultipleMeasurements::Average},
    {"first", MultipleMeasurements::UseFirst}};

bool isRawName(const std::string &path) {
    const std::string ext = toLower(std::filesystem::path(path).extension().string());
    return ext == ".rw5" || ext == ".raw";
}

// An alignment file, or a raw file's GPS records paired with grid
// coordinates; a file of neither kind gives the alignment reader's message.
Status loadPoints(const FitOptions &o, const LocalizationSettings &settings,
                  std::vector<AlignmentPoint> &points) {
    if (isRawName(o.align))
        return reduce::alignmentFromRawFile(o.align, settings.units, settings.multiple, points);
    AlignmentFile file;
    Status status = loadAlignmentFile(o.align, file);
    if (status) {
        points = mergeRepeatedPoints(file.points, settings.multiple);
        return status;
    }
    if (status.code == StatusCode::Format &&
        reduce::alignmentFromRawFile(o.align, settings.units, settings.multiple, points))
        return {};
    return status;
}

LocalizationSettings settingsOf(const FitOptions &o, const CoordinateSystem &system) {
    LocalizationSettings s;
    if (o.system.epsg > 0) {
        s.family = "EPSG";
        s.zone = std::to_string(o.system.epsg);
    } else if (!o.system.family.empty()) {
        const auto family = familyFromName(o.system.family);
        s.family = family ? familyName(*family) : o.system.family;
        s.zone = family ? zoneByNameOrPosition(*family, o.system.zone) : o.system.zone;
    } else {
        s.family = familyName(CoordinateSystemFamily::UserDefined);
    }
    s.datumName = system.datum;
    s.defineDatum = o.defineDatum;
    s.rigid = o.horizontal == "rigid";
    s.tilted = o.vertical == "tilted";
    s.geodeticAzimuth = o.azimuth == "geodetic";
    s.rotateOnly = o.twoPoint == "rotate-only";
    s.geoidModel = o.geoid;
    s.projectScale = o.projectScale;
    s.places = o.places;
    s.units = kUnits.at(o.units);
    s.multiple = kMultiple.at(o.multiple);
    return s;
}

nlohmann::json toJson(const Localization &loc) {
    nlohmann::json points = nlohmann::json::array();
    for (std::size_t i = 0; i < loc.points.size(); ++i) {
        const PointResidual &r = loc.residuals.points[i];
        points.push_back({{"description", loc.points[i].description},
                          {"northing", r.computedY},
                          {"easting", r.computedX},
                          {"elevation", r.computedZ},
                          {"horizontal_residual", r.horizontal},
                          {"vertical_residual", r.vertical},
                          {"residual_3d", r.threeD},
                          {"use_horizontal", loc.points[i].useHorizontal},
                          {"use_vertical", loc.points[i].useVertical}});
    }
    const HorizontalTransform &h = loc.horizontal;
    const VerticalTransform &v = loc.vertical;
    nlohmann::json doc = {{"horizontal",
                           {{"a0", h.a0},
                            {"a1", h.a1},
                            {"b0", h.b0},
                            {"b1", h.b1},
                            {"rotation", h.rotationDegrees()},
                            {"scale", h.scale()}}},
                          {"vertical",
                           {{"tilted", v.tilted},
                            {"a", v.a},
                            {"b", v.b},
                            {"c", v.c},
                            {"d", v.d},
                            {"slope_north_percent", v.slopeNorthPercent()},
                            {"slope_east_percent", v.slopeEastPercent()}}},
                          {"average_horizontal_residual", loc.residuals.averageHorizontal},
                          {"maximum_horizontal_residual", loc.residuals.maximumHorizontal},
                          {"average_vertical_residual", loc.residuals.averageVertical},
                          {"maximum_vertical_residual", loc.residuals.maximumVertical},
                          {"warnings", loc.warnings},
                          {"points", points}};
    if (loc.helmertEstimated)
        doc["helmert"] = {{"dx", loc.helmert.dx},
                          {"dy", loc.helmert.dy},
                          {"dz", loc.helmert.dz},
                          {"rx", loc.helmert.rx},
                          {"ry", loc.helmert.ry},
                          {"rz", loc.helmert.rz},
                          {"scale_ppm", loc.helmert.scalePpm}};
    return doc;
}

void fail(CommandContext &ctx, const Status &status) {
    ctx.err << status.message << '\n';
    ctx.exitCode = kFailure;
}

void runFit(const FitOptions &o, CommandContext &ctx) {
    CoordinateSystem system;
    if (!buildSystem(o.system, ctx, system))
        return;
    const LocalizationSettings settings = settingsOf(o, system);
    std::vector<AlignmentPoint> points;
    if (Status status = loadPoints(o, settings, points); !status)
        return fail(ctx, status);
    GeoidFolders folders;
    folders.dataFolder =
        o.geoidData.empty() ? settingsFolder() : std::filesystem::path(o.geoidData);
    GeoidModels models(folders);
    Localization loc;
    if (Status status =
            fitLocalization(system, settings, points, separationSource(models, o.geoid), loc);
        !status)
        return fail(ctx, status);
    const LocalizationReportSettings reportSettings =
        loadReportSettings(o.reportSettings.empty() ? settingsFolder() / kLocalizationReportIni
                                                    : std::filesystem::path(o.reportSettings));
    if (o.json)
        ctx.out << toJson(loc).dump(1) << '\n';
    else if (o.report)
        ctx.out << localizationReportText(loc, reportSettings);
    else
        ctx.out << format("%s: %.10f\n%s: %.8f\n%s: %.4f\n%s: %.4f\n",
                          tr("Transformation Scale Factor"), loc.horizontal.scale(), tr("Rotation"),
                          loc.horizontal.rotationDegrees(), tr("Maximum Horizontal Residual"),
                          loc.residuals.maximumHorizontal, tr("Maximum Vertical Residual"),
                          loc.residuals.maximumVertical);
    for (const std::string &warning : loc.warnings)
        ctx.err << warning << '\n';
    if (!o.plot.empty()) {
        std::ofstream svg(o.plot, std::ios::binary);
        if (!(svg << localizationPlotSvg(loc)))
            return fail(ctx, {StatusCode::Io,
                              format(tr("\nError: unable to save file %s"), o.plot.c_str())});
    }
    if (!o.output.empty())
        if (Status status = saveLocalization(o.output, loc); !status)
            return fail(ctx, status);
}

} // namespace

void addLocalizeCommands(CLI::App &app, CommandContext &ctx) {
    auto *localize = app.add_subcommand(
        "localize", "Localization: fit GPS positions onto a local grid and report it");
    localize->require_subcommand(1);
    auto o = std::make_shared<FitOptions>();
    auto *fit = localize->add_subcommand(
        "fit", "Fit the alignment points of an alignment file or a raw file (GPS records "
               "paired with store points or --GS, notes of the same name)");
    fit->add_option("ALIGN", o->align, "Alignment file (.dat, .loc, .gc3) or raw file")->required();
    addSystemOptions(fit, o->system);
    fit->add_option("--geoid", o->geoid, "Geoid model code (1-78) for the heights; 0 none")
        ->check(CLI::Range(0, 78));
    fit->add_option("--geoid-data", o->geoidData,
                    "Folder holding the geoid grids (default: the settings folder)");
    fit->add_option("--horizontal", o->horizontal, "Horizontal transformation")
        ->check(CLI::IsMember({"similarity", "rigid"}));
    fit->add_option("--vertical", o->vertical, "Vertical transformation")
        ->check(CLI::IsMember({"level", "tilted"}));
    fit->add_option("--units", o->units, "Units of the local coordinates and heights")
        ->check(CLI::IsMember({"us-ft", "m", "intl-ft"}));
    fit->add_option("--azimuth", o->azimuth, "One point: the north of the local grid")
        ->check(CLI::IsMember({"grid", "geodetic"}));
    fit->add_option("--two-point", o->twoPoint, "Two points: the align method")
        ->check(CLI::IsMember({"fit-rotate", "rotate-only"}));
    fit->add_option("--multiple", o->multiple, "Several measurements of one point")
        ->check(CLI::IsMember({"last", "average", "first"}));
    fit->add_option("--project-scale", o->projectScale,
                    "Project scale factor: grid coordinates are divided by it before the fit")
        ->check(CLI::PositiveNumber);
    fit->add_option("--places", o->places, "Decimals of the report's point table")
        ->check(CLI::Range(2, 4));
    fit->add_flag("--define-datum", o->defineDatum,
                  "Estimate the seven parameters WGS 84 to the local datum from the points");
    fit->add_option("--report-settings", o->reportSettings,
                    "The report settings file (default: locreport.ini in the settings folder)");
    fit->add_flag("--report", o->report, "Print the Define Localization report");
    fit->add_flag("--json", o->json, "Write the fit as JSON");
    fit->add_option("--plot", o->plot, "Write an SVG picture of the residuals");
    fit->add_option("-o,--output", o->output,
                    "Keep the localization: the alignment file, and its settings beside it (.ini)");
    fit->callback([&ctx, o] { runFit(*o, ctx); });
}

} // namespace tramline::cli

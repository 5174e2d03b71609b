// tramline-cli geo ...: coordinate systems, projections and well-known
// text from the command line.
#include "base/angles.h"
#include "base/folders.h"
#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"
#include "cli/command_context.h"
#include "cli/console_interaction.h"
#include "cli/geoid_names.h"
#include "cli/system_options.h"
#include "geodesy/datum_shift.h"
#include "geodesy/epsg.h"
#include "geodesy/geoid_model.h"
#include "geodesy/geoid_models.h"
#include "geodesy/gtx_import.h"
#include "geodesy/projection.h"
#include "geodesy/set_geoid_area.h"
#include "geodesy/wkt.h"
#include "geodesy/zones.h"

#include <nlohmann/json.hpp>

#include <charconv>
#include <cmath>
#include <cstdio>

namespace tramline::cli {

using namespace tramline::geodesy;

// The options that name a coordinate system (see system_options.h).
void addSystemOptions(CLI::App *cmd, SystemOptions &o) {
    auto *family =
        cmd->add_option("--family", o.family, "Family of predefined systems (name or code)");
    auto *zone = cmd->add_option("--zone", o.zone,
                                 "Zone of the family: its name, or its position in the list");
    cmd->add_option(
        "--grid-zone", o.gridZone,
        "Grid zone where the family's entry leaves it open: UTM/MGA/AMG number, ISG like 56/2");
    cmd->add_flag("--south", o.south, "UTM zone in the southern hemisphere");
    auto *type =
        cmd->add_option("--type", o.type, "Projection type code (0-19)")->check(CLI::Range(0, 19));
    cmd->add_option("--param", o.params,
                    "Projection parameter NAME=VALUE (well-known-text name; degrees, metres)");
    cmd->add_option("--ellipsoid", o.ellipsoid, "Ellipsoid name from the ellipsoid list");
    cmd->add_option("--semi-major-axis", o.semiMajorAxis,
                    "Semi-major axis of a User-Defined ellipsoid, metres");
    cmd->add_option("--inverse-flattening", o.inverseFlattening,
                    "Inverse flattening of a User-Defined ellipsoid");
    cmd->add_option("--towgs84", o.towgs84,
                    "Datum to WGS 84: DX,DY,DZ,RX,RY,RZ,PPM (metres, arc-seconds, ppm)");
    cmd->add_option("--name", o.name, "System name");
    cmd->add_option("--datum", o.datum, "Datum name");
    auto *epsg = cmd->add_option("--epsg", o.epsg,
                                 "EPSG code of a projected system in PROJ's database (e.g. 2177)");
    family->needs(zone);
    zone->needs(family);
    family->excludes(type);
    epsg->excludes(family);
    epsg->excludes(type);
}

namespace {

void fail(CommandContext &ctx, const Status &status) {
    ctx.err << status.message << '\n';
    ctx.exitCode = kFailure;
}

bool parseCsvNumbers(const std::string &text, std::vector<double> &values) {
    values.clear();
    for (const std::string_view field : split(text, ',')) {
        double v = 0;
        if (!parseNumber(field, v))
            return false;
        values.push_back(v);
    }
    return true;
}

} // namespace

// Builds the system the options name. Bad usage throws CLI's validation
// error (exit code 2); a system that cannot be built is reported (1).
bool buildSystem(const SystemOptions &o, CommandContext &ctx, CoordinateSystem &cs, double latitude,
                 double longitude) {
    if (o.epsg > 0) {
        if (Status status = systemFromEpsg(o.epsg, cs); !status) {
            fail(ctx, status);
            return false;
        }
    } else if (!o.family.empty()) {
        const auto family = familyFromName(o.family);
        if (!family)
            throw CLI::ValidationError("--family", "no family " + o.family);
        const std::string zone = zoneByNameOrPosition(*family, o.zone);
        ZoneOptions options;
        options.gridZone = o.gridZone;
        options.hemisphere = o.south ? Hemisphere::South : Hemisphere::North;
        options.latitude = latitude;
        options.longitude = longitude;
        if (Status status = zoneSystem(*family, zone, options, cs); !status) {
            fail(ctx, status);
            return false;
        }
    } else if (o.type >= 0) {
        cs = CoordinateSystem{};
        cs.type = *projectionTypeFromCode(o.type);
        for (const auto &param : o.params) {
            std::string_view key, text;
            double value = 0;
            if (!splitKeyValue(param, '=', key, text) || !parseNumber(text, value))
                throw CLI::ValidationError("--param", "give NAME=VALUE, not " + param);
            const std::string name(key);
            if (usesCoefficients(cs.type)) {
                if (!cs.setCoefficient(name, value))
                    throw CLI::ValidationError("--param",
                                               "no coefficient " + name + " in this type");
                continue;
            }
            const auto parameter = parameterFromWktName(name);
            if (!parameter)
                throw CLI::ValidationError("--param", "no parameter " + name);
            cs.parameters.setValue(*parameter, value);
        }
    } else {
        throw CLI::ValidationError(
            "SYSTEM", "name a system with --family and --zone, --epsg, or --type and --param");
    }
    if (!o.ellipsoid.empty()) {
        const auto choices = ellipsoidChoices();
        const auto it = std::find(choices.begin(), choices.end(), o.ellipsoid);
        const int index = it == choices.end() ? findEllipsoidByName(o.ellipsoid)
                                              : static_cast<int>(it - choices.begin());
        if (index < 0 && o.ellipsoid != "User-Defined" && o.ellipsoid != "User Defined")
            throw CLI::ValidationError("--ellipsoid", "no ellipsoid " + o.ellipsoid);
        if (index >= 0 && index < kEllipsoidCount) {
            cs.ellipsoidIndex = index;
        } else {
            if (!usableEllipsoid(o.semiMajorAxis, o.inverseFlattening))
                throw CLI::ValidationError("--semi-major-axis",
                                           "a User-Defined ellipsoid needs an axis of 1 to 1e9 "
                                           "metres and an inverse flattening of 0 or 1 to 1e9");
            cs.ellipsoidIndex = kUserDefinedEllipsoid;
            cs.userSemiMajorAxis = o.semiMajorAxis;
            cs.userInverseFlattening = o.inverseFlattening;
        }
    }
    if (!o.towgs84.empty()) {
        std::vector<double> v;
        if (!parseCsvNumbers(o.towgs84, v) || v.size() != 7)
            throw CLI::ValidationError("--towgs84", "give seven numbers DX,DY,DZ,RX,RY,RZ,PPM");
        cs.shift = {0.0 - v[0], 0.0 - v[1], 0.0 - v[2], v[3], v[4], v[5], invertScalePpm(v[6])};
    }
    if (!o.name.empty())
        cs.name = o.name;
    if (!o.datum.empty())
        cs.datum = o.datum;
    return true;
}

namespace {

// A system as the user reads it: names, ellipsoid, shift, type and the
// labelled parameters of its type.
std::string describe(const CoordinateSystem &cs) {
    std::string out;
    const Ellipsoid e = cs.ellipsoid();
    appendFormat(out, "Name: %s\n", cs.name.c_str());
    appendFormat(out, "Datum: %s\n", cs.datum.c_str());
    appendFormat(out, "Ellipsoid: %s %.3f %.9f\n", e.name.c_str(), e.a, e.inverseFlattening);
    appendFormat(out, tr("Translate (m) DX: %.4f DY: %.4f DZ: %.4f\n"), cs.shift.dx, cs.shift.dy,
                 cs.shift.dz);
    appendFormat(out, tr("Rotate (seconds) RX: %.6f RY: %.6f RZ: %.6f\n"), cs.shift.rx, cs.shift.ry,
                 cs.shift.rz);
    appendFormat(out, "%s: %.6f\n", tr("Scale (ppm)"), cs.shift.scalePpm);
    appendFormat(out, "Type: %d %s\n", static_cast<int>(cs.type), tr(projectionTypeName(cs.type)));
    if (usesCoefficients(cs.type)) {
        const auto names = coefficientNames(cs.type, cs.parameters.coefficients.size());
        for (std::size_t i = 0; i < names.size() && i < cs.parameters.coefficients.size(); ++i)
            appendFormat(out, "%s: %.15g\n", names[i].c_str(), cs.parameters.coefficients[i]);
        return out;
    }
    for (const auto &written : writtenParameters(cs.type)) {
        if (std::string_view(written.wktName) == "XY_Plane_Rotation")
            continue; // the rectified grid angle again
        const char *label = tr(parameterLabel(written.parameter));
        switch (parameterKind(written.parameter)) {
        case ParameterKind::Angle:
            appendFormat(out, "%s: %.9f\n", label, cs.parameters.value(written.parameter));
            break;
        case ParameterKind::Length:
            appendFormat(out, "%s: %.4f\n", label, cs.parameters.value(written.parameter));
            break;
        case ParameterKind::Scale:
            appendFormat(out, "%s: %.12f\n", label, cs.parameters.value(written.parameter));
            break;
        case ParameterKind::Integer:
            appendFormat(out, "%s: %d\n", label, cs.parameters.denmarkArea);
            break;
        }
    }
    return out;
}

void addLists(CLI::App &geo, CommandContext &ctx) {
    geo.add_subcommand("types", "Projection types in code order, one a line")->callback([&ctx] {
        for (int code = 0; code < kProjectionTypeCount; ++code)
            ctx.out << tr(projectionTypeName(*projectionTypeFromCode(code))) << '\n';
    });
    geo.add_subcommand("families", "Families of predefined systems in code order, one a line")
        ->callback([&ctx] {
            for (int code = 0; code < kFamilyCount; ++code)
                ctx.out << tr(familyName(*familyFromCode(code))) << '\n';
        });
    geo.add_subcommand("ellipsoids", "The ellipsoid choice list, one a line")->callback([&ctx] {
        for (const auto &name : ellipsoidChoices())
            ctx.out << name << '\n';
    });
    auto *zones = geo.add_subcommand("zones", "Zones of a family in their fixed order, one a line");
    auto family = std::make_shared<std::string>();
    zones->add_option("FAMILY", *family, "Family name or code")->required();
    zones->callback([&ctx, family] {
        const auto f = familyFromName(*family);
        if (!f)
            throw CLI::ValidationError("FAMILY", "no family " + *family);
        for (const auto &name : zoneNames(*f))
            ctx.out << name << '\n';
    });
}

void addWkt(CLI::App &geo, CommandContext &ctx) {
    auto *cmd = geo.add_subcommand(
        "wkt", "Write a system as compound well-known text, or read such a file");
    struct Options {
        SystemOptions system;
        std::string out, read;
        bool append = false;
    };
    auto o = std::make_shared<Options>();
    addSystemOptions(cmd, o->system);
    auto *out =
        cmd->add_option("--out", o->out, "Write the line to this file instead of the output");
    cmd->add_flag("--append", o->append, "Add the line at the end of the file")->needs(out);
    cmd->add_option("--read", o->read, "Read the systems of this file and print them")
        ->excludes(out);
    cmd->callback([&ctx, o] {
        if (!o->read.empty()) {
            std::vector<CoordinateSystem> systems;
            if (Status status = loadWkt(o->read, systems); !status)
                return fail(ctx, status);
            for (std::size_t i = 0; i < systems.size(); ++i)
                ctx.out << (i ? "\n" : "") << describe(systems[i]);
            return;
        }
        CoordinateSystem cs;
        if (!buildSystem(o->system, ctx, cs))
            return;
        if (o->out.empty()) {
            ctx.out << writeWkt(cs);
        } else if (Status status =
                       saveWkt(cs, o->out, o->append ? WktWrite::Append : WktWrite::Replace);
                   !status) {
            fail(ctx, status);
        }
    });
}

struct ConversionOptions {
    SystemOptions system;
    double first = 0, second = 0;
    bool json = false, wgs84 = false;
};

void addForward(CLI::App &geo, CommandContext &ctx) {
    auto *cmd = geo.add_subcommand(
        "forward", "Latitude and longitude to northing and easting, with the grid scale "
                   "factor and convergence (tab-separated)");
    auto o = std::make_shared<ConversionOptions>();
    addSystemOptions(cmd, o->system);
    cmd->add_option("LAT", o->first, "Latitude, decimal degrees, north positive")->required();
    cmd->add_option("LON", o->second, "Longitude, decimal degrees, east positive")->required();
    cmd->add_flag("--json", o->json, "Write a JSON object");
    cmd->add_flag("--wgs84", o->wgs84,
                  "LAT and LON are WGS 84: apply the system's datum shift first");
    cmd->callback([&ctx, o] {
        CoordinateSystem cs;
        if (!buildSystem(o->system, ctx, cs, o->first, o->second))
            return;
        double lat = o->first, lon = o->second, h = 0;
        if (o->wgs84) {
            SevenParameterShift shift;
            Status status = shift.open(cs);
            if (status)
                status = shift.fromWgs84(lat, lon, h);
            if (!status)
                return fail(ctx, status);
        }
        Projection projection;
        double n = 0, e = 0;
        GridFactors f;
        Status status = projection.open(cs);
        if (status)
            status = projection.forward(lat, lon, n, e);
        if (status)
            status = projection.factorsAt(lat, lon, f);
        if (!status)
            return fail(ctx, status);
        if (o->json)
            ctx.out << nlohmann::json{{"northing", n},
                                      {"easting", e},
                                      {"scale_factor", f.scaleFactor},
                                      {"convergence", f.convergence}}
                           .dump()
                    << '\n';
        else
            ctx.out << format("%.4f\t%.4f\t%.8f\t%.8f\n", n, e, f.scaleFactor, f.convergence);
    });
}

void addInverse(CLI::App &geo, CommandContext &ctx) {
    auto *cmd = geo.add_subcommand("inverse",
                                   "Northing and easting to latitude and longitude, with the grid "
                                   "scale factor and convergence (tab-separated)");
    auto o = std::make_shared<ConversionOptions>();
    addSystemOptions(cmd, o->system);
    cmd->add_option("NORTHING", o->first, "Northing, metres")->required();
    cmd->add_option("EASTING", o->second, "Easting, metres")->required();
    cmd->add_flag("--json", o->json, "Write a JSON object");
    cmd->add_flag("--wgs84", o->wgs84,
                  "Give WGS 84 latitude and longitude: apply the system's datum shift");
    cmd->callback([&ctx, o] {
        CoordinateSystem cs;
        if (!buildSystem(o->system, ctx, cs))
            return;
        Projection projection;
        double lat = 0, lon = 0, h = 0;
        GridFactors f;
        Status status = projection.open(cs);
        if (status)
            status = projection.inverse(o->first, o->second, lat, lon);
        if (status)
            status = projection.factorsAt(lat, lon, f);
        if (status && o->wgs84) {
            SevenParameterShift shift;
            status = shift.open(cs);
            if (status)
                status = shift.toWgs84(lat, lon, h);
        }
        if (!status)
            return fail(ctx, status);
        if (o->json)
            ctx.out << nlohmann::json{{"latitude", lat},
                                      {"longitude", lon},
                                      {"scale_factor", f.scaleFactor},
                                      {"convergence", f.convergence}}
                           .dump()
                    << '\n';
        else
            ctx.out << format("%.9f\t%.9f\t%.8f\t%.8f\n", lat, lon, f.scaleFactor, f.convergence);
    });
}

// Where grids are kept and fetched from.
struct GeoidLocation {
    std::string data;
    std::string server = kDefaultGeoidServer;
    long timeout = 120;

    GeoidFolders folders() const {
        return {data.empty() ? settingsFolder() : std::filesystem::path(data), server, timeout};
    }
};

// A model named by code or name; a number outside the table is left to
// the model lookup, which says it does not exist.
int modelCode(const std::string &text) {
    if (const int code = geoidModelFromText(text))
        return code;
    int number = 0;
    const std::string_view digits = trim(text);
    const auto [end, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (ec == std::errc() && end == digits.data() + digits.size())
        return number;
    throw CLI::ValidationError("--model", "no geoid model " + text + " (see geoid list)");
}

void addGeoidLocationOptions(CLI::App *cmd, GeoidLocation &location) {
    cmd->add_option("--data", location.data,
                    "The data folder holding the grids (default: the settings folder)");
    cmd->add_option("--server", location.server,
                    "The update server's base address (grids under GeoidGrids/)");
    cmd->add_option("--timeout", location.timeout, "Seconds before a download is given up")
        ->check(CLI::PositiveNumber);
}

void addSeparation(CLI::App &geoid, CommandContext &ctx) {
    auto *cmd =
        geoid.add_subcommand("separation", "Geoid separation of a model at a position, metres");
    struct Options {
        GeoidLocation location;
        std::string model;
        double latitude = 0, longitude = 0;
        bool json = false;
    };
    auto o = std::make_shared<Options>();
    cmd->add_option("--model", o->model, "Geoid model: code (1-78) or name (see geoid list)")
        ->required();
    cmd->add_option("LAT", o->latitude, "Latitude, decimal degrees, north positive")->required();
    cmd->add_option("LON", o->longitude, "Longitude, decimal degrees, east positive")->required();
    cmd->add_flag("--json", o->json, "Write a JSON object");
    addGeoidLocationOptions(cmd, o->location);
    cmd->callback([&ctx, o] {
        const int model = modelCode(o->model);
        GeoidModels models(o->location.folders());
        double separation = 0;
        if (Status status = models.separation(model, o->latitude, o->longitude, separation);
            !status)
            return reportGeoidFailure(ctx, status, model, models.folders());
        if (o->json)
            ctx.out << nlohmann::json{{"model", model},
                                      {"name", geoidModelName(model)},
                                      {"latitude", o->latitude},
                                      {"longitude", o->longitude},
                                      {"separation", separation}}
                           .dump()
                    << '\n';
        else
            ctx.out << format("%.4f\n", separation);
    });
}

void addImport(CLI::App &geoid, CommandContext &ctx) {
    auto *cmd = geoid.add_subcommand(
        "import", "Convert a PROJ vertical grid (GTX, as proj-data installs) into a "
                  ".grd geoid grid");
    auto source = std::make_shared<std::string>();
    auto destination = std::make_shared<std::string>();
    cmd->add_option("SRC", *source, "GTX file, e.g. /usr/share/proj/egm96_15.gtx")->required();
    cmd->add_option("DEST", *destination, "The .grd file to write")->required();
    cmd->callback([&ctx, source, destination] {
        if (Status status = importGtx(*source, *destination); !status)
            return fail(ctx, status);
        ctx.out << tr("Done") << '\n';
    });
}

void addArea(CLI::App &geoid, CommandContext &ctx) {
    auto *cmd = geoid.add_subcommand(
        "area", "Set Geoid Area: cut a square of a model around a position into a "
                "geoid separation file; entries not given come from setgeoid.ini");
    struct Options {
        GeoidLocation location;
        GeoidAreaSettings settings;
        std::string out;
        std::string model;
        bool south = false, north = false, east = false, west = false, miles = false,
             degrees = false, dms = false;
    };
    auto o = std::make_shared<Options>();
    // Decimal degrees as everywhere else on the command line; the settings
    // keep dd.mmss, which --dms takes as it is.
    auto *lat = cmd->add_option("--lat", o->settings.latitude,
                                "Latitude of the job's centre, decimal degrees (south negative)");
    auto *lon = cmd->add_option("--lon", o->settings.longitude,
                                "Longitude of the job's centre, decimal degrees (west negative)");
    cmd->add_flag("--dms", o->dms, "--lat and --lon are dd.mmss, as setgeoid.ini keeps them");
    auto *north = cmd->add_flag("--north", o->north, "The latitude is north");
    cmd->add_flag("--south", o->south, "The latitude is south")->excludes(north);
    auto *east = cmd->add_flag("--east", o->east, "The longitude is east");
    cmd->add_flag("--west", o->west, "The longitude is west")->excludes(east);
    auto *size = cmd->add_option("--size", o->settings.size, "Geoid Size: side of the square");
    auto *degrees = cmd->add_flag("--degrees", o->degrees, "The size is in degrees");
    cmd->add_flag("--miles", o->miles, "The size is in miles")->excludes(degrees);
    auto *model = cmd->add_option("--model", o->model,
                                  "Geoid To Process: model code (1-78) or name (see geoid list)");
    cmd->add_option("--out", o->out, "Geoid Separation File to Create (.grd or .gsf)")->required();
    addGeoidLocationOptions(cmd, o->location);
    cmd->callback([&ctx, o, lat, lon, size, model] {
        const GeoidFolders folders = o->location.folders();
        const auto ini = folders.dataFolder / kSetGeoidIni;
        GeoidAreaSettings s;
        loadGeoidAreaSettings(ini, s);
        // A signed decimal value gives its side too; the flags below win.
        const auto angle = [&](double value) {
            return o->dms ? std::fabs(value) : packDms(std::fabs(value), 2);
        };
        if (lat->count()) {
            s.latitude = angle(o->settings.latitude);
            if (!o->dms)
                s.latitudeSide =
                    o->settings.latitude < 0.0 ? LatitudeSide::South : LatitudeSide::North;
        }
        if (lon->count()) {
            s.longitude = angle(o->settings.longitude);
            if (!o->dms)
                s.longitudeSide =
                    o->settings.longitude < 0.0 ? LongitudeSide::West : LongitudeSide::East;
        }
        if (size->count())
            s.size = o->settings.size;
        if (model->count())
            s.model = modelCode(o->model);
        if (o->north || o->south)
            s.latitudeSide = o->north ? LatitudeSide::North : LatitudeSide::South;
        if (o->east || o->west)
            s.longitudeSide = o->east ? LongitudeSide::East : LongitudeSide::West;
        if (o->degrees || o->miles)
            s.sizeUnit = o->degrees ? AreaSizeUnit::Degrees : AreaSizeUnit::Miles;
        std::error_code ec;
        std::filesystem::create_directories(folders.dataFolder, ec);
        saveGeoidAreaSettings(ini, s);
        GeoidModels models(folders);
        ConsoleInteraction ui(ctx.err);
        const Status status = setGeoidArea(models, s, o->out, ui);
        if (!status)
            ctx.exitCode = kFailure; // the tool has shown its message
    });
}

} // namespace

void addGeoCommands(CLI::App &app, CommandContext &ctx) {
    auto *geoid =
        app.add_subcommand("geoid", "Geoid models: separations, Set Geoid Area, grid import");
    geoid->require_subcommand(1);
    addSeparation(*geoid, ctx);
    addArea(*geoid, ctx);
    addImport(*geoid, ctx);
    addGeoidList(*geoid, ctx);

    auto *geo =
        app.add_subcommand("geo", "Coordinate systems: types, families and zones, well-known text, "
                                  "forward and inverse projection");
    geo->require_subcommand(1);
    addLists(*geo, ctx);
    addWkt(*geo, ctx);
    addForward(*geo, ctx);
    addInverse(*geo, ctx);
    addGeoConvertCommands(*geo, ctx);
}

} // namespace tramline::cli

// tramline-cli geo convert: many points from one system to another, read
// from a file or standard input, in the manner of PROJ's cs2cs.
#include "base/csv_writer.h"
#include "base/folders.h"
#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"
#include "cli/command_context.h"
#include "cli/coordinate_line.h"
#include "cli/geoid_names.h"
#include "cli/progress.h"
#include "cli/stream_files.h"
#include "cli/system_definition.h"
#include "geodesy/coordinate_system_family.h"
#include "geodesy/crs_transform.h"
#include "geodesy/geoid_models.h"
#include "geodesy/zones.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <memory>
#include <sstream>
#include <vector>

namespace tramline::cli {

using namespace tramline::geodesy;

namespace {

constexpr const char *kBadLine = trNoop("Error: line %zu: not a coordinate line");
constexpr const char *kNotConverted = trNoop("Error: line %zu: the point cannot be converted");
constexpr const char *kOutsideArea = trNoop("Warning: line %zu: outside the area of use of %s");
constexpr const char *kSouthernPoint =
    trNoop("Warning: line %zu: south of the equator in a northern zone (use the southern zone)");
constexpr const char *kNoSeparation = trNoop("Error: line %zu: %s");
constexpr const char *kGeoidNeedsLatLon =
    trNoop("Error: --geoid needs latitude and longitude on one side of the conversion");
constexpr const char *kMoreWarnings = trNoop("Warning: %zu more points outside the area of use");

constexpr std::size_t kBatch = 4096;
constexpr std::size_t kWarningsShown = 20;

struct Unit {
    const char *name;
    double metres;
};
constexpr Unit kUnits[] = {{"m", 1.0}, {"ft", 0.3048}, {"us-ft", 1200.0 / 3937.0}};

double unitFactor(const std::string &name, const char *option) {
    for (const Unit &unit : kUnits)
        if (equalsIgnoreCase(name, unit.name))
            return unit.metres;
    throw CLI::ValidationError(option, "give m, ft or us-ft, not " + name);
}

} // namespace

Status systemDefinition(const std::string &text, std::string &definition, std::string &area) {
    const std::string trimmed(trim(text));
    area.clear();
    if (const auto colon = trimmed.find(':'); colon != std::string::npos) {
        if (const auto family = familyFromName(trim(std::string_view(trimmed).substr(0, colon)))) {
            const std::string zone =
                zoneByNameOrPosition(*family, std::string(trim(trimmed.substr(colon + 1))));
            CoordinateSystem system;
            if (Status status = zoneSystem(*family, zone, ZoneOptions{}, system); !status)
                return status;
            if (system.epsgCode != 0)
                area = "EPSG:" + std::to_string(system.epsgCode);
            return crsDefinition(system, false, definition);
        }
    }
    definition = trimmed;
    return Status::success();
}

Status openTransform(const std::string &from, const std::string &to, CrsTransform &transform) {
    std::string source, target, sourceArea, targetArea;
    Status status = systemDefinition(from, source, sourceArea);
    if (status)
        status = systemDefinition(to, target, targetArea);
    if (status)
        status = transform.open(source, target, sourceArea, targetArea);
    return status;
}

namespace {

struct ConvertOptions {
    std::string from, to, input = "-", output = "-", units, fromUnits, geoid, geoidData;
    bool json = false, csv = false, factors = false;
};

// Appends a number with a fixed count of decimals, without the locale.
void appendFixed(std::string &out, double value, int decimals) {
    char buffer[64];
    // A value that rounds to zero prints without a sign, as cs2cs has it.
    constexpr double kHalfUnit[] = {0.5, 5e-2, 5e-3, 5e-4, 5e-5, 5e-6, 5e-7, 5e-8, 5e-9, 5e-10};
    if (std::fabs(value) < kHalfUnit[std::clamp(decimals, 0, 9)])
        value = 0.0;
    const auto [end, ec] =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, decimals);
    out.append(buffer, ec == std::errc() ? end : buffer);
}

class Converter {
public:
    Converter(const ConvertOptions &o, const CrsTransform &transform, CommandContext &ctx,
              std::ostream &out)
        : m_o(o), m_transform(transform), m_ctx(ctx), m_out(out), m_csv(out) {
        const CrsUnit &source = transform.sourceUnit();
        const CrsUnit &target = transform.targetUnit();
        if (!o.fromUnits.empty()) {
            if (source.geographic)
                throw CLI::ValidationError("--from-units", "the source is latitude and longitude");
            m_inScale = unitFactor(o.fromUnits, "--from-units") / source.toBase;
        }
        if (!o.units.empty()) {
            if (target.geographic)
                throw CLI::ValidationError("--units", "the target is latitude and longitude");
            m_outScale = target.toBase / unitFactor(o.units, "--units");
        }
        m_decimals = target.geographic ? 9 : 4;
        m_names = target.geographic
                      ? std::array<const char *, 3>{"latitude", "longitude", "height"}
                      : std::array<const char *, 3>{"northing", "easting", "elevation"};
        m_lines.resize(kBatch);
        m_points.resize(kBatch);
        m_numbers.resize(kBatch);
        x.resize(kBatch);
        y.resize(kBatch);
        z.resize(kBatch);
        m_inX.resize(kBatch);
        m_inY.resize(kBatch);
    }

    void header() {
        if (m_o.csv) {
            m_csv.field(m_names[0]).field(m_names[1]).field(m_names[2]);
            if (m_o.factors)
                m_csv.field("scale_factor").field("convergence");
            m_csv.field("rest").endRecord();
        } else if (m_o.json) {
            m_out << "{\"from\":" << nlohmann::json(m_o.from).dump()
                  << ",\"to\":" << nlohmann::json(m_o.to).dump() << ",\"unit\":"
                  << nlohmann::json(m_o.units.empty() ? m_transform.targetUnit().name : m_o.units)
                         .dump()
                  << ",\"points\":[";
        }
    }

    /// Heights on the latitude and longitude side are ellipsoidal, on the
    /// grid side above the geoid of model `code`.
    void useGeoid(GeoidModels *models, int code) {
        m_geoid = models;
        m_geoidModel = code;
    }

    /// Takes one input line; converts when a batch is full.
    void add(std::string &&line) {
        const std::size_t i = m_count;
        m_numbers[i] = ++m_lineNumber;
        m_lines[i] = std::move(line);
        CoordinateLine &p = m_points[i];
        switch (parseCoordinateLine(m_lines[i], p)) {
        case LineKind::Skip:
            if (!m_o.json && !m_o.csv)
                flushAndCopy(m_lines[i]);
            return;
        case LineKind::Bad:
            m_ctx.err << format(tr(kBadLine), m_lineNumber) << '\n';
            m_failures.push_back(format(tr(kBadLine), m_lineNumber));
            return;
        case LineKind::Point:
            break;
        }
        x[i] = m_inX[i] = p.second * m_inScale;
        y[i] = m_inY[i] = p.first * m_inScale;
        z[i] = p.hasThird ? p.third : 0.0;
        if (++m_count == kBatch)
            flush();
    }

    /// Converts and writes what is pending; the JSON closes at finish().
    void flush() {
        m_transform.transform(x.data(), y.data(), z.data(), m_count);
        std::string text;
        for (std::size_t i = 0; i < m_count; ++i)
            write(i, text);
        m_out << text;
        m_count = 0;
    }

    int finish() {
        flush();
        if (m_outside > kWarningsShown)
            warn(format(tr(kMoreWarnings), m_outside - kWarningsShown), false);
        if (m_o.json) {
            nlohmann::json warnings = m_warnings, errors = m_failures;
            m_out << "],\"warnings\":" << warnings.dump() << ",\"errors\":" << errors.dump()
                  << "}\n";
        }
        m_out.flush();
        return m_failures.empty() ? kSuccess : kFailure;
    }

    std::vector<double> x, y, z;

private:
    void flushAndCopy(const std::string &line) {
        // Keeps comment lines in their place among the converted ones.
        flush();
        m_out << line << '\n';
    }

    void warn(const std::string &text, bool counted) {
        if (counted && ++m_outside > kWarningsShown)
            return;
        m_ctx.err << text << '\n';
        m_warnings.push_back(text);
    }

    void checkArea(std::size_t i) {
        const CrsArea &area = m_transform.area();
        if (!area.known)
            return;
        const bool onSource = m_transform.areaOnSource();
        const double px = onSource ? m_inX[i] : x[i], py = onSource ? m_inY[i] : y[i];
        if (px >= area.xMin && px <= area.xMax && py >= area.yMin && py <= area.yMax)
            return;
        double latitude = m_inY[i], longitude = 0;
        const bool known = m_transform.sourceUnit().geographic ||
                           m_transform.toGeographic(m_inX[i], m_inY[i], latitude, longitude);
        if (area.northernOnly && known && latitude < 0.0)
            warn(format(tr(kSouthernPoint), m_numbers[i]), true);
        else
            warn(format(tr(kOutsideArea), m_numbers[i],
                        (area.name.empty() ? (onSource ? m_o.from : m_o.to) : area.name).c_str()),
                 true);
    }

    // orthometric = ellipsoidal - N, at the point's latitude and longitude.
    bool applyGeoid(std::size_t i, std::string &text) {
        const bool fromGeographic = m_transform.sourceUnit().geographic;
        const double latitude = fromGeographic ? m_inY[i] : y[i];
        const double longitude = fromGeographic ? m_inX[i] : x[i];
        double separation = 0;
        Status status;
        if (m_geoidFailure.empty())
            status = m_geoid->separation(m_geoidModel, latitude, longitude, separation);
        if (m_geoidFailure.empty() && status) {
            z[i] += fromGeographic ? -separation : separation;
            return true;
        }
        if (m_geoidFailure.empty() && status.code != StatusCode::OutOfRange) {
            // A grid that cannot be had fails every point alike: say how to
            // get it once, not a download attempt a line.
            reportGeoidFailure(m_ctx, status, m_geoidModel, m_geoid->folders());
            m_geoidFailure = status.message;
        }
        const std::string message =
            format(tr(kNoSeparation), m_numbers[i],
                   (m_geoidFailure.empty() ? status.message : m_geoidFailure).c_str());
        m_ctx.err << message << '\n';
        m_failures.push_back(message);
        if (!m_o.json && !m_o.csv) {
            text += "*\t*";
            if (!m_points[i].rest.empty())
                (text += '\t') += m_points[i].rest;
            text += '\n';
        }
        return false;
    }

    void write(std::size_t i, std::string &text) {
        const CoordinateLine &p = m_points[i];
        if (x[i] == HUGE_VAL) {
            const std::string message = format(tr(kNotConverted), m_numbers[i]);
            m_ctx.err << message << '\n';
            m_failures.push_back(message);
            if (!m_o.json && !m_o.csv) {
                text += "*\t*";
                if (!p.rest.empty())
                    (text += '\t') += p.rest;
                text += '\n';
            }
            return;
        }
        checkArea(i);
        if (m_geoid && p.hasThird && !applyGeoid(i, text))
            return;
        const double first = y[i] * m_outScale, second = x[i] * m_outScale;
        double scale = 0, convergence = 0;
        const bool factors =
            m_o.factors && m_transform.factors(m_inX[i], m_inY[i], scale, convergence);
        if (m_o.json) {
            nlohmann::json point{{"line", m_numbers[i]}, {m_names[0], first}, {m_names[1], second}};
            point[m_names[2]] = p.hasThird ? nlohmann::json(z[i]) : nlohmann::json();
            if (m_o.factors) {
                point["scale_factor"] = factors ? nlohmann::json(scale) : nlohmann::json();
                point["convergence"] = factors ? nlohmann::json(convergence) : nlohmann::json();
            }
            point["rest"] = std::string(p.rest);
            text += m_written++ ? "," : "";
            text += point.dump();
            return;
        }
        std::string number;
        const auto column = [&](double value, int decimals, bool present) {
            number.clear();
            if (present)
                appendFixed(number, value, decimals);
            return number;
        };
        if (m_o.csv) {
            std::ostringstream row;
            CsvWriter csv(row);
            csv.field(column(first, m_decimals, true));
            csv.field(column(second, m_decimals, true));
            csv.field(column(z[i], 4, p.hasThird));
            if (m_o.factors) {
                csv.field(column(scale, 8, factors));
                csv.field(column(convergence, 8, factors));
            }
            csv.field(p.rest).endRecord();
            text += row.str();
            return;
        }
        appendFixed(text, first, m_decimals);
        text += '\t';
        appendFixed(text, second, m_decimals);
        if (p.hasThird) {
            text += '\t';
            appendFixed(text, z[i], 4);
        }
        if (m_o.factors) {
            text += '\t';
            text += factors ? column(scale, 8, true) : "*";
            text += '\t';
            text += factors ? column(convergence, 8, true) : "*";
        }
        if (!p.rest.empty())
            (text += '\t') += p.rest;
        text += '\n';
    }

    const ConvertOptions &m_o;
    const CrsTransform &m_transform;
    CommandContext &m_ctx;
    std::ostream &m_out;
    CsvWriter m_csv;
    double m_inScale = 1.0, m_outScale = 1.0;
    int m_decimals = 4;
    std::array<const char *, 3> m_names{};
    std::vector<std::string> m_lines;
    std::vector<CoordinateLine> m_points;
    std::vector<std::size_t> m_numbers;
    std::vector<double> m_inX, m_inY;
    std::size_t m_count = 0, m_lineNumber = 0, m_outside = 0, m_written = 0;
    std::vector<std::string> m_warnings, m_failures;
    GeoidModels *m_geoid = nullptr;
    int m_geoidModel = 0;
    std::string m_geoidFailure;
};

} // namespace

void addGeoConvertCommands(CLI::App &geo, CommandContext &ctx) {
    auto *cmd = geo.add_subcommand(
        "convert", "Convert points from one system to another: lines \"N E [Z] [rest]\" or "
                   "\"lat lon [h] [rest]\" from a file or standard input");
    auto o = std::make_shared<ConvertOptions>();
    cmd->add_option("--from", o->from,
                    "Source system: EPSG:CODE, a PROJ string, FAMILY:ZONE, or latlon")
        ->required();
    cmd->add_option("--to", o->to, "Target system, named as --from")->required();
    cmd->add_option("FILE", o->input, "Input file; - or none for standard input");
    cmd->add_option("-o,--out", o->output, "Output file; - or none for standard output");
    auto *json = cmd->add_flag("--json", o->json, "Write one JSON object");
    cmd->add_flag("--csv", o->csv, "Write comma-separated values with a header")->excludes(json);
    cmd->add_flag("--factors", o->factors,
                  "Add the grid scale factor and the convergence (degrees) of the grid side");
    cmd->add_option("--units", o->units,
                    "Unit of the output grid coordinates: m, ft or us-ft (default: the "
                    "target system's own)");
    cmd->add_option("--from-units", o->fromUnits,
                    "Unit of the input grid coordinates: m, ft or us-ft (default: the source "
                    "system's own)");
    cmd->add_option("--geoid", o->geoid,
                    "Geoid model (code or name, see geoid list): heights on the latitude and "
                    "longitude side are ellipsoidal, on the grid side above the geoid");
    cmd->add_option("--geoid-data", o->geoidData,
                    "The folder holding the geoid grids (default: the settings folder)");
    cmd->callback([&ctx, o] {
        CrsTransform transform;
        if (Status status = openTransform(o->from, o->to, transform); !status) {
            ctx.err << status.message << '\n';
            ctx.exitCode = kFailure;
            return;
        }
        int geoidModel = 0;
        if (!o->geoid.empty()) {
            geoidModel = geoidModelFromText(o->geoid);
            if (geoidModel == 0)
                throw CLI::ValidationError("--geoid",
                                           "no geoid model " + o->geoid + " (see geoid list)");
            if (transform.sourceUnit().geographic == transform.targetUnit().geographic) {
                ctx.err << tr(kGeoidNeedsLatLon) << '\n';
                ctx.exitCode = kFailure;
                return;
            }
        }
        GeoidModels geoid(GeoidFolders{o->geoidData.empty() ? settingsFolder()
                                                            : std::filesystem::path(o->geoidData)});
        InputFile input;
        OutputFile output;
        if (!input.open(o->input, ctx) || !output.open(o->output, ctx))
            return;
        Converter converter(*o, transform, ctx, output.stream());
        if (geoidModel != 0)
            converter.useGeoid(&geoid, geoidModel);
        converter.header();
        Progress progress(ctx.err, !ctx.quiet);
        std::string line;
        for (std::size_t count = 1; std::getline(input.stream(), line); ++count) {
            converter.add(std::move(line));
            if (count % kBatch == 0)
                progress.update(count);
        }
        ctx.exitCode = std::max(ctx.exitCode, converter.finish());
        output.close(ctx);
    });
}

} // namespace tramline::cli

// tramline-cli crd transform: every point of a coordinate file into
// another system, written to a new file in one bulk write.
#include "base/format.h"
#include "base/translation.h"
#include "base/unset.h"
#include "cli/command_context.h"
#include "cli/console_interaction.h"
#include "cli/progress.h"
#include "cli/stream_files.h"
#include "cli/system_definition.h"
#include "crd/coordinate_file.h"
#include "geodesy/crs_transform.h"

#include <cmath>
#include <filesystem>
#include <memory>
#include <vector>

namespace tramline::cli {

namespace {

constexpr const char *kPointNotConverted = trNoop("Error: point %s cannot be converted");
constexpr const char *kTransformed = trNoop("Transformed %ld points");
constexpr const char *kSameFile = trNoop("Error: the output must be another file than the input");

struct TransformOptions {
    std::string input, output, from, to;
};

void fail(CommandContext &ctx, const std::string &message) {
    const std::size_t first = message.find_first_not_of('\n');
    ctx.err << (first == std::string::npos ? message : message.substr(first)) << '\n';
    ctx.exitCode = kFailure;
}

} // namespace

void addCrdTransformCommand(CLI::App &crdApp, CommandContext &ctx) {
    auto *cmd = crdApp.add_subcommand(
        "transform", "Convert every point of a coordinate file to another system into a new file");
    auto o = std::make_shared<TransformOptions>();
    cmd->add_option("IN", o->input, "Coordinate file to read")->required();
    cmd->add_option("--from", o->from,
                    "System of the file: EPSG:CODE, a PROJ string, FAMILY:ZONE, or latlon "
                    "(northing is latitude)")
        ->required();
    cmd->add_option("--to", o->to, "System to convert to, named as --from")->required();
    cmd->add_option("-o,--out", o->output, "Coordinate file to write (made when missing)")
        ->required();
    cmd->callback([&ctx, o] {
        if (!coordinateFilePath(o->input, ctx) || !coordinateFilePath(o->output, ctx))
            return;
        std::error_code ec;
        if (std::filesystem::equivalent(o->input, o->output, ec))
            return fail(ctx, tr(kSameFile));
        geodesy::CrsTransform transform;
        if (Status status = openTransform(o->from, o->to, transform); !status)
            return fail(ctx, status.message);

        ConsoleInteraction ui(ctx.err);
        Progress progress(ctx.err, !ctx.quiet);
        crd::CrdContext context;
        context.messages = &ui;
        crd::CoordinateFile source(context);
        if (!source.openForReading(o->input))
            return fail(ctx, crd::CoordinateFile::errorText(source.lastError()));
        std::vector<crd::CrdPoint> points;
        crd::CrdPoint p;
        for (source.setCurrentIndex(-1); source.readNext(p);) {
            points.push_back(p);
            if (points.size() % 4096 == 0)
                progress.update(points.size());
        }
        if (source.lastError() != crd::kPointNotFound)
            return fail(ctx, crd::CoordinateFile::errorText(source.lastError()));
        source.close();

        std::vector<double> x(points.size()), y(points.size()), z(points.size());
        for (std::size_t i = 0; i < points.size(); ++i) {
            x[i] = points[i].easting;
            y[i] = points[i].northing;
            z[i] = isUnset(points[i].elevation) ? 0.0 : points[i].elevation;
        }
        progress.show(tr("Converting"));
        transform.transform(x.data(), y.data(), z.data(), points.size());
        std::vector<crd::CrdPoint> converted;
        converted.reserve(points.size());
        for (std::size_t i = 0; i < points.size(); ++i) {
            if (x[i] == HUGE_VAL) {
                fail(ctx, format(tr(kPointNotConverted), points[i].name.c_str()));
                continue;
            }
            crd::CrdPoint point = points[i];
            point.easting = x[i];
            point.northing = y[i];
            if (!isUnset(point.elevation))
                point.elevation = z[i];
            converted.push_back(std::move(point));
        }
        // A point without a height keeps none: the marker is copied, not
        // converted, and the store must not turn it into 0.
        context.keepUnsetElevation = true;
        crd::CoordinateFile target(context);
        if (!target.open(o->output))
            return fail(ctx, crd::CoordinateFile::errorText(target.lastError()));
        progress.show(tr("Storing points"));
        const long stored = target.writePoints(converted, crd::Verbosity::Messages);
        target.close();
        progress.clear();
        ctx.out << format(tr(kTransformed), stored) << '\n';
        if (stored != static_cast<long>(converted.size()))
            ctx.exitCode = kFailure;
    });
}

} // namespace tramline::cli

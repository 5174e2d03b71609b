// tramline-cli formats, import, export and points: the converters from the
// command line. Each import ends with a summary line: records read,
// observations, points stored, lines skipped and why.
#include "base/atomic_save.h"
#include "base/format.h"
#include "base/point_names.h"
#include "base/text.h"
#include "base/translation.h"
#include "cli/command_context.h"
#include "cli/console_interaction.h"
#include "cli/ipc_progress.h"
#include "cli/progress.h"
#include "cli/stream_files.h"
#include "convert/export_flow.h"
#include "convert/geodimeter_options.h"
#include "convert/import_flow.h"
#include "convert/point_flow.h"
#include "convert/registry.h"
#include "convert/text_points_flow.h"
#include "crd/coordinate_file.h"

namespace tramline::cli {

namespace {

using convert::FormatKind;

// The registry entry for a command, or an exit status when there is none
// (2 for a name nobody knows, 1 for one not built yet).
const convert::FormatEntry *builtFormat(FormatKind kind, const std::string &id,
                                        CommandContext &ctx) {
    const convert::FormatEntry *entry = convert::findFormat(kind, id);
    if (!entry) {
        ctx.err << format(tr("Error: unknown format %s (see tramline-cli formats)"), id.c_str())
                << '\n';
        ctx.exitCode = kUsage;
        return nullptr;
    }
    if (!entry->built) {
        ctx.err << format(tr("Error: %s is not available yet"), entry->menuName) << '\n';
        ctx.exitCode = kFailure;
        return nullptr;
    }
    return entry;
}

void addFormats(CLI::App &app, CommandContext &ctx) {
    app.add_subcommand("formats", "List the converters: kind, name, menu entry, file dialog "
                                  "title and extensions, tab-separated")
        ->callback([&ctx] {
            for (const auto &entry : convert::formatRegistry()) {
                ctx.out << tr(convert::kindName(entry.kind)) << '\t' << entry.id << '\t'
                        << entry.menuName << '\t'
                        << (entry.built ? tr(entry.dialogTitle) : entry.dialogTitle) << '\t'
                        << entry.extensions;
                if (!entry.built)
                    ctx.out << '\t' << tr("not available yet");
                ctx.out << '\n';
            }
        });
}

struct ImportOptions {
    std::string format, file, output, crd, backsight = "sideshots", layout;
    std::string coding = "wildsoft", order = "bffb";
    bool stripDecimal = false, infoCodes = false;
};

void addImport(CLI::App &app, CommandContext &ctx) {
    auto *cmd = app.add_subcommand("import", "Import Raw Data: convert a field file to RW5, "
                                             "its coordinates into a coordinate file");
    auto o = std::make_shared<ImportOptions>();
    cmd->add_option("FORMAT", o->format, "Converter name (tramline-cli formats)")->required();
    cmd->add_option("FILE", o->file, "Field file")->required();
    cmd->add_option("-o,--output", o->output, "RW5 file to write")->required();
    cmd->add_option("--crd", o->crd, "Coordinate file for the points (made when missing)");
    cmd->add_option("--backsight", o->backsight, "Backsight measurements as sideshots or notes")
        ->check(CLI::IsMember({"sideshots", "notes"}, CLI::ignore_case));
    cmd->add_option("--format", o->layout, "Layout of a file without header: sdr33 or sdr2x")
        ->check(CLI::IsMember({"sdr33", "sdr2x"}, CLI::ignore_case));
    cmd->add_option("--coding", o->coding, "GSI coding system: wildsoft, liscad or 10-20-30-40")
        ->check(CLI::IsMember({"wildsoft", "liscad", "10-20-30-40"}, CLI::ignore_case));
    cmd->add_option("--order", o->order, "GSI direct-reverse order: bffb or bfbf")
        ->check(CLI::IsMember({"bffb", "bfbf"}, CLI::ignore_case));
    cmd->add_flag("--strip-decimal", o->stripDecimal,
                  "Geodimeter: strip the decimal point from point codes");
    cmd->add_flag("--info-codes", o->infoCodes, "Geodimeter: use info codes in point descriptions");
    cmd->callback([&ctx, o] {
        const auto *entry = builtFormat(FormatKind::RawImport, o->format, ctx);
        if (!entry || (!o->crd.empty() && !coordinateFilePath(o->crd, ctx)))
            return;
        ConsoleInteraction ui(ctx.err);
        ui.answers[tr("Backsight Measurements")] =
            equalsIgnoreCase(o->backsight, "notes") ? tr("Notes") : tr("Sideshots");
        if (!o->layout.empty())
            ui.answers[tr("File Format")] =
                equalsIgnoreCase(o->layout, "sdr2x") ? tr("All Others") : tr("SDR-33");
        ui.hints[tr("File Format")] = "--format sdr33|sdr2x";
        const std::string coding = equalsIgnoreCase(o->coding, "liscad") ? "Liscad"
                                   : o->coding == "10-20-30-40"          ? "10-20-30-40"
                                                                         : "WildSoft";
        ui.answers[tr("Leica Options")] = toUpper(o->order) + "|" + coding;
        ui.answers[tr("Leica 10-20-30-40 Format")] =
            std::string("10-20-30-40|") + tr("Angle Right");
        Progress progress(ctx.err, !ctx.quiet);
        ui.progressLine = &progress;
        convert::GeodimeterOptionsAnswered answered(ui, {o->stripDecimal, o->infoCodes});
        convert::ImportSummary summary;
        const Status status =
            convert::runImport(entry->import, {o->file, o->output, o->crd}, answered, summary);
        if (!status) {
            if (status.code == StatusCode::Format || status.code == StatusCode::Cancelled)
                ctx.err << status.message << '\n';
            explainFileFailure(ctx, {o->file}, o->output);
            ctx.exitCode = kFailure;
            return;
        }
        if (!summary.report.empty())
            ctx.out << summary.report.substr(summary.report.front() == '\n' ? 1 : 0) << '\n';
        ctx.out << convert::summaryLine(summary) << '\n';
        if (summary.pointsRefused > 0)
            ctx.exitCode = kFailure;
    });
}

struct ExportOptions {
    std::string format, file, output, layout, angle = "dms", distance = "m";
    bool ipc = false;
};

void addExport(CLI::App &app, CommandContext &ctx) {
    auto *cmd = app.add_subcommand("export", "Export Raw Data: write an RW5 job in a field format");
    auto o = std::make_shared<ExportOptions>();
    cmd->add_option("FORMAT", o->format, "Converter name (tramline-cli formats)")->required();
    cmd->add_option("FILE", o->file, "RW5 file")->required();
    cmd->add_option("-o,--output", o->output, "File to write, - for standard output")->required();
    cmd->add_option("--format", o->layout, "sdr33 (default) or sdr2x")
        ->check(CLI::IsMember({"sdr33", "sdr2x"}, CLI::ignore_case));
    cmd->add_flag("--ipc", o->ipc,
                  "Write \"$IPC:\" progress lines for a controlling process (also "
                  "TRAMLINE_IPC=1)");
    cmd->add_option("--angle", o->angle, "GSI angle unit: dms (default) or gon")
        ->check(CLI::IsMember({"dms", "gon"}, CLI::ignore_case));
    cmd->add_option("--distance", o->distance, "GSI distance unit: m (default) or ft")
        ->check(CLI::IsMember({"m", "ft"}, CLI::ignore_case));
    cmd->callback([&ctx, o] {
        const auto *entry = builtFormat(FormatKind::RawExport, o->format, ctx);
        if (!entry)
            return;
        ConsoleInteraction console(ctx.err);
        console.answers[tr("Raw File Units")] =
            std::string(equalsIgnoreCase(o->angle, "gon") ? tr("Gon") : tr("Deg/Min/Sec")) + "|" +
            (equalsIgnoreCase(o->distance, "ft") ? tr("Feet") : tr("Meters"));
        const bool toOutput = isStandardStream(o->output);
        if (toOutput && o->ipc) {
            ctx.err << tr("Error: --ipc writes its lines to standard output; give -o a file")
                    << '\n';
            ctx.exitCode = kUsage;
            return;
        }
        IpcProgress ipc(console, ctx.out);
        // The file itself goes to standard output: no progress lines in it.
        const bool withIpc = o->ipc || (ipcRequestedByEnvironment() && !toOutput);
        Interaction &ui = withIpc ? static_cast<Interaction &>(ipc) : console;
        convert::ExportOptions options;
        options.format = o->layout.empty() ? "sdr33" : o->layout;
        convert::ExportOutput out;
        if (entry->readError)
            out.readError = tr(entry->readError);
        FileOutput destination = outputFor(o->output, ctx);
        const bool ok =
            bool(convert::runExport(entry->exporter, o->file, destination, options, ui, out));
        if (withIpc)
            ipc.finish(ok ? kSuccess : kFailure);
        if (!ok) {
            // The export's message cannot name the stream, nor say why.
            if (destination.isStream() && !destination.error().empty())
                ctx.err << destination.error() << '\n';
            else
                explainFileFailure(ctx, {o->file}, o->output);
            ctx.exitCode = kFailure;
            return;
        }
        long skipped = 0;
        for (const auto &[reason, count] : out.skipped)
            skipped += count;
        summaryStream(o->output, ctx)
            << format(tr("Wrote %ld records, %ld lines skipped"), out.records, skipped) << '\n';
    });
}

struct PointOptions {
    std::string format, file, crd, output, order, delimiter = "comma", range, unit = "m";
    int decimals = 5;
    bool gsi8 = false, gsi16 = false;
};

bool openCoordinateFile(crd::CoordinateFile &file, const std::string &path, bool forWriting,
                        CommandContext &ctx) {
    if (!coordinateFilePath(path, ctx))
        return false;
    const bool ok = forWriting ? file.open(path) : file.openForReading(path);
    if (!ok) {
        ctx.err << format(tr("Error: unable to open coordinate file %s"), path.c_str()) << '\n';
        ctx.exitCode = kFailure;
    }
    return ok;
}

// The point imports behind the registry's function type (all but text).
void importPoints(const convert::FormatEntry &entry, const PointOptions &options,
                  CommandContext &ctx) {
    ConsoleInteraction ui(ctx.err);
    Progress progress(ctx.err, !ctx.quiet);
    ui.progressLine = &progress;
    crd::CoordinateFile file(crd::CrdContext{&ui, {}, {}});
    if (!openCoordinateFile(file, options.crd, true, ctx))
        return;
    convert::ImportSummary summary;
    if (!convert::runPointImport(entry.pointImport, options.file, file, ui, summary)) {
        explainFileFailure(ctx, {options.file});
        ctx.exitCode = kFailure;
        return;
    }
    if (!summary.report.empty())
        ctx.out << summary.report.substr(summary.report.front() == '\n' ? 1 : 0) << '\n';
    ctx.out << convert::summaryLine(summary) << '\n';
    if (summary.pointsRefused > 0)
        ctx.exitCode = kFailure;
}

// The point exports behind the registry's function type (all but text).
void exportPoints(const convert::FormatEntry &entry, const PointOptions &options,
                  CommandContext &ctx) {
    ConsoleInteraction ui(ctx.err);
    crd::CoordinateFile file(crd::CrdContext{&ui, {}, {}});
    if (!openCoordinateFile(file, options.crd, false, ctx))
        return;
    convert::PointExportOptions exportOptions;
    exportOptions.variant = options.gsi8 ? "gsi8" : "gsi16";
    exportOptions.unit = toLower(options.unit);
    convert::ExportOutput out;
    FileOutput destination = outputFor(options.output, ctx);
    if (!convert::runPointExport(entry.pointExport, file, destination, exportOptions, ui, out)) {
        if (destination.isStream() && !destination.error().empty())
            ctx.err << destination.error() << '\n';
        else
            explainFileFailure(ctx, {}, options.output);
        ctx.exitCode = kFailure;
        return;
    }
    summaryStream(options.output, ctx) << format(tr("Wrote %ld points"), out.records) << '\n';
    // The file is whole, but a GSI-8 reader cannot take it.
    if (out.completion.starts_with("Error"))
        ctx.exitCode = kFailure;
}

void addPoints(CLI::App &app, CommandContext &ctx) {
    auto *points = app.add_subcommand("points", "Import Point Data and Export Point Data");
    points->require_subcommand(1);

    auto *in = points->add_subcommand("import", "Read points from a file into a coordinate file");
    auto i = std::make_shared<PointOptions>();
    in->add_option("FORMAT", i->format, "Converter name (tramline-cli formats)")->required();
    in->add_option("FILE", i->file, "Point file")->required();
    in->add_option("--crd", i->crd, "Coordinate file (made when missing)")->required();
    in->add_option("--order", i->order, "Coordinate order, default \"P,N,E,Z,D\"");
    in->callback([&ctx, i] {
        const auto *entry = builtFormat(FormatKind::PointImport, i->format, ctx);
        if (!entry)
            return;
        if (entry->pointImport) {
            importPoints(*entry, *i, ctx);
            return;
        }
        convert::PointColumns columns;
        if (Status s =
                convert::parseCoordinateOrder(i->order.empty() ? "P,N,E,Z,D" : i->order, columns);
            !s) {
            ctx.err << s.message << '\n';
            ctx.exitCode = kUsage;
            return;
        }
        ConsoleInteraction ui(ctx.err);
        Progress progress(ctx.err, !ctx.quiet);
        ui.progressLine = &progress;
        crd::CoordinateFile file(crd::CrdContext{&ui, {}, {}});
        if (!openCoordinateFile(file, i->crd, true, ctx))
            return;
        convert::TextImportSummary summary;
        if (!convert::importTextPointsFile(i->file, file, columns, ui, summary)) {
            ctx.exitCode = kFailure;
            return;
        }
        if (!summary.report.empty())
            ctx.out << summary.report.substr(1) << '\n';
        ctx.out << format(tr("Read %ld lines: %ld points stored, %ld lines without a point"),
                          summary.lines, summary.pointsStored, summary.notPoints)
                << '\n';
        if (summary.pointsStored < summary.lines - summary.notPoints)
            ctx.exitCode = kFailure;
    });

    auto *out = points->add_subcommand("export", "Write points of a coordinate file to a file");
    auto e = std::make_shared<PointOptions>();
    out->add_option("FORMAT", e->format, "Converter name (tramline-cli formats)")->required();
    out->add_option("CRD", e->crd, "Coordinate file")->required();
    out->add_option("-o,--output", e->output, "File to write, - for standard output")->required();
    out->add_option("--order", e->order, "PNEZD (default), PENZD, NEZD or ENZD");
    out->add_option("--delimiter", e->delimiter, "comma (default) or space")
        ->check(CLI::IsMember({"comma", "space"}, CLI::ignore_case));
    out->add_option("--decimals", e->decimals, "Decimals of the coordinates (default 5)")
        ->check(CLI::Range(0, 12));
    out->add_option("--range", e->range, "Points to write, \"A-B\" (default all)");
    auto *gsi8 = out->add_flag("--gsi8", e->gsi8, "GSI: write GSI-8 words");
    out->add_flag("--gsi16", e->gsi16, "GSI: write GSI-16 words (default)")->excludes(gsi8);
    out->add_option("--unit", e->unit, "GSI: coordinate unit, m (default) or ft")
        ->check(CLI::IsMember({"m", "ft"}, CLI::ignore_case));
    out->callback([&ctx, e] {
        const auto *entry = builtFormat(FormatKind::PointExport, e->format, ctx);
        if (!entry)
            return;
        if (entry->pointExport) {
            exportPoints(*entry, *e, ctx);
            return;
        }
        convert::TextExportOptions options;
        if (!e->order.empty() && !convert::exportColumnsFrom(e->order, options.columns)) {
            ctx.err << format(tr("Error: unknown column order %s"), e->order.c_str()) << '\n';
            ctx.exitCode = kUsage;
            return;
        }
        options.delimiter = equalsIgnoreCase(e->delimiter, "space") ? ' ' : ',';
        options.decimals = e->decimals;
        ConsoleInteraction ui(ctx.err);
        crd::CoordinateFile file(crd::CrdContext{&ui, {}, {}});
        if (!openCoordinateFile(file, e->crd, false, ctx))
            return;
        long written = 0;
        FileOutput destination = outputFor(e->output, ctx);
        if (!convert::exportTextPointsFile(file, destination, options, e->range, ui, written)) {
            // The export's message cannot name the stream, nor say why.
            if (destination.isStream() && !destination.error().empty())
                ctx.err << destination.error() << '\n';
            ctx.exitCode = kFailure;
            return;
        }
        summaryStream(e->output, ctx) << format(tr("Wrote %ld points"), written) << '\n';
    });
}

} // namespace

void addConvertCommands(CLI::App &app, CommandContext &context) {
    addFormats(app, context);
    addImport(app, context);
    addExport(app, context);
    addPoints(app, context);
}

} // namespace tramline::cli

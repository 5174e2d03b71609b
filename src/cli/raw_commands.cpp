// tramline-cli raw ...: the raw file document from the command line.
#include "base/folders.h"
#include "base/format.h"
#include "base/status_text.h"
#include "base/translation.h"
#include "cli/command_context.h"
#include "cli/console_interaction.h"
#include "cli/stream_files.h"
#include "raw/classify.h"
#include "raw/document.h"
#include "raw/streaming_check.h"
#include "raw/text_scan.h"
#include "raw/validate.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <sstream>

#include <nlohmann/json.hpp>

namespace tramline::cli {

namespace {

// Options shared by the commands that read a file into the document.
struct RawFileOptions {
    std::string file;
    std::string output;
};

bool openDocument(const std::string &file, raw::RawDocument &doc, CommandContext &ctx) {
    ConsoleInteraction ui(ctx.err);
    if (!doc.open(file, ui)) {
        explainFileFailure(ctx, {file});
        ctx.exitCode = kFailure;
        return false;
    }
    return true;
}

// Saves to -o when given, else over the file itself (atomically); "-"
// writes the RW5 text to standard output.
bool saveDocument(raw::RawDocument &doc, const std::string &output, CommandContext &ctx) {
    if (isStandardStream(output)) {
        FileOutput out = outputFor(output, ctx);
        if (out.write(doc.text()) && out.commit())
            return true;
        ctx.err << tr("Error: failed to write rawfile") << '\n' << out.error() << '\n';
        ctx.exitCode = kFailure;
        return false;
    }
    ConsoleInteraction ui(ctx.err);
    const bool ok = output.empty() ? doc.save(ui) : doc.saveAs(output, ui);
    if (!ok) {
        explainFileFailure(ctx, {}, output);
        ctx.exitCode = kFailure;
    }
    return ok;
}

void notRawData(CommandContext &ctx, const std::string &file, const std::string &why) {
    ctx.err << tr("Error: not a raw data file") << '\n' << file << ": " << why << '\n';
    ctx.exitCode = kFailure;
}

void addClassify(CLI::App &raw, CommandContext &ctx) {
    auto *cmd = raw.add_subcommand("classify",
                                   "Classify RW5 lines: the record kind, then the field values, "
                                   "tab-separated, one line per input");
    auto lines = std::make_shared<std::vector<std::string>>();
    auto job = std::make_shared<bool>(false);
    cmd->add_flag("--job", *job, "Recognise JB job records (the job flag)");
    cmd->add_option("LINE", *lines, "Lines to classify")->required();
    cmd->callback([&ctx, lines, job] {
        raw::RawFields fields;
        for (const auto &line : *lines) {
            const int kind = raw::ClassifyRawLine(
                line, *job ? raw::JobRecords::Recognised : raw::JobRecords::Unrecognised, fields);
            // Trailing empty outputs are not printed; empty values inside are.
            size_t used = fields.size();
            while (used > 0 && fields[used - 1].empty())
                --used;
            ctx.out << kind;
            for (size_t i = 0; i < used; ++i)
                ctx.out << '\t' << fields[i];
            ctx.out << '\n';
        }
    });
}

void addShow(CLI::App &raw, CommandContext &ctx) {
    auto *cmd = raw.add_subcommand(
        "show", "Show the raw file as the grid shows it: row number, type and cells, "
                "tab-separated (zenith angles, slope distances, ddd.mmss)");
    auto opts = std::make_shared<RawFileOptions>();
    auto json = std::make_shared<bool>(false);
    cmd->add_option("FILE", opts->file, "RW5 file")->required();
    cmd->add_flag("--json", *json, "Write a JSON array of rows");
    cmd->add_option("-o,--output", opts->output, "Write here (default and -: standard output)");
    cmd->callback([&ctx, opts, json] {
        raw::RawDocument doc;
        if (!openDocument(opts->file, doc, ctx))
            return;
        std::string text;
        if (*json) {
            nlohmann::json rows = nlohmann::json::array();
            for (size_t i = 0; i < doc.rowCount(); ++i) {
                const auto &row = doc.row(i);
                rows.push_back({{"row", i + 1},
                                {"type", row.type},
                                {"captions", doc.captions(row.type)},
                                {"cells", row.cells}});
            }
            text = rows.dump(1, ' ', false, nlohmann::json::error_handler_t::replace) + '\n';
        } else {
            for (size_t i = 0; i < doc.rowCount(); ++i) {
                const auto &row = doc.row(i);
                text += std::to_string(i + 1) + '\t' + row.type;
                for (const auto &cell : row.cells)
                    text += '\t' + cell;
                text += '\n';
            }
        }
        FileOutput out = outputFor(opts->output.empty() ? "-" : opts->output, ctx);
        writeOutput(out, text, ctx);
    });
}

void addModify(CLI::App &raw, CommandContext &ctx) {
    auto *cmd = raw.add_subcommand(
        "modify", "Modify Measurements: add a delta to distances, angles or elevation "
                  "differences of the chosen observations");
    struct Options {
        std::string file, output, field, points, lines;
        double delta = 0.0;
    };
    auto o = std::make_shared<Options>();
    cmd->add_option("FILE", o->file, "RW5 file")->required();
    cmd->add_option("--field", o->field, "Field to modify")
        ->required()
        ->check(CLI::IsMember({"distance", "horizontal", "vertical", "elevdiff"}));
    cmd->add_option("--delta", o->delta,
                    "Delta: a length, or an angle in ddd.mmss (gons in a gon file)")
        ->required();
    auto *points = cmd->add_option("--points", o->points,
                                   "Range of points, like 1-5,7,A10 (foresight points)");
    auto *lines = cmd->add_option("--lines", o->lines, "Start and end line, like 4-20 (grid rows)");
    points->excludes(lines);
    cmd->add_option("-o,--output", o->output,
                    "Write here instead of over FILE (-: standard output)");
    cmd->callback([&ctx, o, cmd] {
        if (o->points.empty() && o->lines.empty())
            throw CLI::ValidationError("--points or --lines", "give the rows to modify");
        raw::ModifySelection selection;
        selection.points = o->points;
        if (!o->lines.empty()) {
            unsigned long first = 0, last = 0;
            char dash = 0;
            if (std::sscanf(o->lines.c_str(), "%lu%c%lu", &first, &dash, &last) != 3 ||
                dash != '-' || first == 0 || last < first)
                throw CLI::ValidationError("--lines",
                                           "give the start and end line as A-B, A from 1, B >= A");
            selection.firstLine = first;
            selection.lastLine = last;
        }
        (void)cmd;
        raw::RawDocument doc;
        raw::ModifyField field = raw::ModifyField::Distance;
        if (o->field == "horizontal")
            field = raw::ModifyField::HorizontalAngle;
        else if (o->field == "vertical")
            field = raw::ModifyField::VerticalAngle;
        else if (o->field == "elevdiff") {
            // Elevation differences are modified in the elevation-difference
            // display, and are written back as such.
            field = raw::ModifyField::ElevationDifference;
            raw::DisplayModes modes;
            modes.vertical = raw::VerticalMode::ElevationDifference;
            doc.setModes(modes);
        }
        if (!openDocument(o->file, doc, ctx))
            return;
        const int count = doc.modifyMeasurements(field, o->delta, selection);
        if (count < 0) {
            ctx.err << tr("Error: no elevation differences to modify") << '\n';
            ctx.exitCode = kFailure;
            return;
        }
        if (count > 0 || !o->output.empty())
            if (!saveDocument(doc, o->output, ctx))
                return;
        summaryStream(o->output, ctx) << format(tr("Modified %d values"), count) << '\n';
    });
}

void addAppend(CLI::App &raw, CommandContext &ctx) {
    auto *cmd = raw.add_subcommand(
        "append", "Import Raw Data: add the records of another raw file at the end");
    struct Options {
        std::string file, other, output;
        bool tds = false;
    };
    auto o = std::make_shared<Options>();
    cmd->add_option("FILE", o->file, "The open RW5 file")->required();
    cmd->add_option("OTHER", o->other, "The raw file to add")->required();
    cmd->add_flag("--tds", o->tds,
                  "OTHER is a TDS collector's raw file (its job and mode records are left out)");
    cmd->add_option("-o,--output", o->output,
                    "Write here instead of over FILE (-: standard output)");
    cmd->callback([&ctx, o] {
        raw::RawDocument doc;
        if (!openDocument(o->file, doc, ctx))
            return;
        const size_t before = doc.rowCount();
        ConsoleInteraction ui(ctx.err);
        if (!doc.append(o->other, o->tds ? raw::RawFlavour::Tds : raw::RawFlavour::Rw5, ui)) {
            ctx.exitCode = kFailure;
            return;
        }
        if (!saveDocument(doc, o->output, ctx))
            return;
        summaryStream(o->output, ctx)
            << format("Added %zu records", doc.rowCount() - before) << '\n';
    });
}

void addPrint(CLI::App &raw, CommandContext &ctx) {
    auto *cmd =
        raw.add_subcommand("print", "Print > Raw Data: the raw file report, also written to "
                                    "morvrprt.tmp in the working folder");
    struct Options {
        std::string file, workdir;
    };
    auto o = std::make_shared<Options>();
    cmd->add_option("FILE", o->file, "RW5 file")->required();
    cmd->add_option("--workdir", o->workdir,
                    "Working folder (default: Documents/Halvren Tramline)");
    cmd->callback([&ctx, o] {
        raw::RawDocument doc;
        if (!openDocument(o->file, doc, ctx))
            return;
        std::filesystem::path folder =
            o->workdir.empty() ? defaultWorkingFolder() : std::filesystem::path(o->workdir);
        std::error_code ec;
        std::filesystem::create_directories(folder, ec);
        ConsoleInteraction ui(ctx.err);
        if (!doc.print(folder, ui)) {
            ctx.exitCode = kFailure;
            return;
        }
        ctx.out << doc.printReport();
    });
}

const char *linearUnitText(LinearUnit unit) {
    switch (unit) {
    case LinearUnit::InternationalFeet:
        return "international feet";
    case LinearUnit::UsSurveyFeet:
        return "US survey feet";
    case LinearUnit::Metres:
        break;
    }
    return "metres";
}

// Lines kept in an anonymous temporary file until they are printed, each
// with a flag: whether it is printed also when flags are not wanted.
class ScratchText {
public:
    ScratchText() : m_file(std::tmpfile()) {}
    ~ScratchText() {
        if (m_file)
            std::fclose(m_file);
    }
    ScratchText(const ScratchText &) = delete;
    ScratchText &operator=(const ScratchText &) = delete;

    void add(const std::string &line, bool flagged) {
        ++m_counts[flagged ? 1 : 0];
        if (m_file) {
            std::fputc(flagged ? '1' : '0', m_file);
            std::fwrite(line.data(), 1, line.size(), m_file);
            std::fputc('\n', m_file);
        }
    }
    /// Lines printed by write(out, withFlagged).
    size_t count(bool withFlagged) const { return m_counts[0] + (withFlagged ? m_counts[1] : 0); }
    /// Prints every line, indented, leaving out the flagged ones unless asked.
    void write(std::ostream &out, bool withFlagged) const {
        if (!m_file)
            return;
        std::rewind(m_file);
        char buffer[4096];
        bool lineStart = true, keep = true;
        while (std::fgets(buffer, sizeof buffer, m_file)) {
            const char *text = buffer;
            if (lineStart) {
                keep = buffer[0] == '0' || withFlagged;
                ++text;
                if (keep)
                    out << "  ";
            }
            if (keep)
                out << text;
            lineStart = std::strchr(buffer, '\n') != nullptr;
        }
    }

private:
    std::FILE *m_file;
    size_t m_counts[2] = {0, 0};
};

void addCheck(CLI::App &raw, CommandContext &ctx) {
    auto *cmd =
        raw.add_subcommand("check", "Check a raw file: what it holds, lines that are not records, "
                                    "angles that are not ddd.mmss");
    auto file = std::make_shared<std::string>();
    cmd->add_option("FILE", *file, "RW5 file, - for standard input")->required();
    cmd->callback([&ctx, file] {
        std::ifstream fileIn;
        std::istringstream standardIn;
        std::istream *in = &fileIn;
        std::error_code ec;
        errno = 0;
        if (*file == "-") {
            // Read twice (the byte scan, then the check): keep it in memory.
            std::ostringstream whole;
            whole << std::cin.rdbuf();
            standardIn.str(whole.str());
            in = &standardIn;
        } else if (std::filesystem::is_directory(*file, ec)) {
            errno = EISDIR;
        } else {
            fileIn.open(*file, std::ios::binary);
        }
        if (in == &fileIn && !fileIn.is_open()) {
            const int error = errno ? errno : ENOENT;
            ctx.err << statusText(Status::failure(StatusCode::NotFound,
                                                  tr("Error: unable to read raw file")))
                    << '\n'
                    << fileReason(*file, error) << '\n';
            ctx.exitCode = kFailure;
            return;
        }
        const raw::TextScan scan = raw::scanText(*in);
        if (scan.hasNul)
            return notRawData(ctx, *file, tr("it holds NUL bytes"));
        for (const std::size_t line : scan.longLines)
            ctx.err << format(tr("Warning: line %zu is longer than %zu characters and is read "
                                 "as several lines"),
                              line, raw::kLongestRawLine)
                    << '\n';
        in->clear();
        in->seekg(0);
        // One pass; what the report lists after the counts waits in
        // scratch files, so a file of any size checks in the same memory.
        ScratchText unrecognised, warnings;
        raw::StreamingCheck check;
        const Status status = raw::checkRawStream(
            *in, [&](const std::string &line) { unrecognised.add(line, false); },
            [&](const std::string &warning, bool dmsOnly) { warnings.add(warning, dmsOnly); },
            check);
        if (!status) {
            ctx.err << statusText(status) << '\n';
            ctx.exitCode = kFailure;
            return;
        }
        // Mostly lines that are not records: some other kind of file.
        if (unrecognised.count(true) * 2 > check.summary.lines)
            return notRawData(ctx, *file,
                              format(tr("%zu of its %zu lines are not raw data records"),
                                     unrecognised.count(true), check.summary.lines));
        const raw::RawSummary &summary = check.summary;
        const bool dms = check.units.angle == AngleUnit::DegreesMinutesSeconds;
        ctx.out << "File: " << *file << '\n';
        ctx.out << "Units: " << linearUnitText(check.units.linear)
                << (check.units.linearDeclared ? "" : " (not declared; metres assumed)") << ", "
                << (dms ? "degrees-minutes-seconds" : "gons") << '\n';
        ctx.out << format("Lines: %zu, records: %zu (set-ups %zu, observations %zu, store points "
                          "%zu, notes %zu)\n",
                          summary.lines, summary.records, summary.setups, summary.observations,
                          summary.storePoints, summary.notes);
        ctx.out << "Unrecognised lines: " << (unrecognised.count(true) == 0 ? "none" : "") << '\n';
        unrecognised.write(ctx.out, true);
        ctx.out << "Warnings: " << (warnings.count(dms) == 0 ? "none" : "") << '\n';
        warnings.write(ctx.out, dms);
    });
}

} // namespace

void addRawCommands(CLI::App &app, CommandContext &ctx) {
    auto *raw = app.add_subcommand(
        "raw", "RW5 raw data files: check, classify, show, modify, append, print");
    raw->require_subcommand(1);
    addCheck(*raw, ctx);
    addClassify(*raw, ctx);
    addShow(*raw, ctx);
    addModify(*raw, ctx);
    addAppend(*raw, ctx);
    addPrint(*raw, ctx);
}

} // namespace tramline::cli

// tramline-cli crd ...: coordinate files from the command line.
#include "base/csv_writer.h"
#include "base/folders.h"
#include "base/format.h"
#include "base/point_names.h"
#include "base/text.h"
#include "base/translation.h"
#include "base/unset.h"
#include "cli/command_context.h"
#include "cli/console_interaction.h"
#include "cli/progress.h"
#include "cli/stream_files.h"
#include "crd/coordinate_file.h"
#include "crd/coordinate_report.h"
#include "crd/history_file.h"
#include "crd/point_find_replace.h"
#include "crd/point_rename.h"

#include <fstream>
#include <functional>
#include <iostream>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>

namespace tramline::cli {

namespace {

using crd::CoordinateFile;
using crd::CrdPoint;

// The store's message lines begin (and some end) with a line feed, for a
// message window; on a terminal each becomes one plain line.
class StoreMessages : public ConsoleInteraction {
public:
    using ConsoleInteraction::ConsoleInteraction;
    void message(const std::string &text) override {
        const std::size_t first = text.find_first_not_of('\n');
        if (first == std::string::npos)
            return;
        ConsoleInteraction::message(text.substr(first, text.find_last_not_of('\n') - first + 1));
    }
};

// Commands that change points record the change in the history file when
// asked; a file that keeps history always gets it.
void addHistoryFlag(CLI::App *cmd, bool &history) {
    cmd->add_flag("--history", history,
                  "Record the change in the history file (always when it exists)");
}

// Everything a command needs to work on one coordinate file.
struct Store {
    explicit Store(CommandContext &context)
        : ctx(context), ui(context.err), file(makeContext(ui)) {}

    static crd::CrdContext makeContext(Interaction &ui) {
        crd::CrdContext c;
        c.messages = &ui;
        return c;
    }
    // Reports the failure of the last operation and sets exit code 1.
    void failed() { failed(CoordinateFile::errorText(file.lastError())); }
    void failed(const std::string &message) {
        const std::size_t first = message.find_first_not_of('\n');
        ctx.err << (first == std::string::npos ? message : message.substr(first)) << '\n';
        ctx.exitCode = kFailure;
    }
    bool openForUpdate(const std::string &path, bool history) {
        if (!coordinateFilePath(path, ctx))
            return false;
        if (!file.open(path)) {
            failed();
            return false;
        }
        std::error_code ec;
        file.setHistoryKeeping(history || std::filesystem::exists(file.historyPath(), ec));
        return true;
    }
    bool openForReading(const std::string &path) {
        if (!coordinateFilePath(path, ctx))
            return false;
        if (file.openForReading(path))
            return true;
        failed();
        return false;
    }

    CommandContext &ctx;
    StoreMessages ui;
    CoordinateFile file;
};

// A point as one CSV record: a comma or quote in a name or description is
// quoted, a missing elevation is an empty field.
std::string pointLine(const CrdPoint &p) {
    std::string line;
    appendCsvField(line, p.name);
    appendFormat(line, ",%.4f,%.4f,", p.northing, p.easting);
    if (!isUnset(p.elevation))
        appendFormat(line, "%.4f", p.elevation);
    line += ',';
    appendCsvField(line, p.description);
    return line;
}

const char *formatName(int format) {
    return format == crd::kFormatNumeric ? "numeric" : "alphanumeric";
}

void addNew(CLI::App &crdApp, CommandContext &ctx) {
    auto *cmd = crdApp.add_subcommand(
        "new", "Create an empty coordinate file (an existing one is replaced)");
    struct Options {
        std::string file;
        bool alpha = false, numeric = false;
    };
    auto o = std::make_shared<Options>();
    cmd->add_option("FILE", o->file, "Coordinate file (.crd)")->required();
    auto *alpha = cmd->add_flag("--alpha", o->alpha, "Alphanumeric point names (the default)");
    auto *numeric = cmd->add_flag("--numeric", o->numeric, "Numeric point numbers 1 to 99999");
    alpha->excludes(numeric);
    cmd->callback([&ctx, o] {
        Store store(ctx);
        const int layout = o->numeric ? crd::kFormatNumeric
                           : o->alpha ? crd::kFormatAlphanumeric
                                      : -1;
        if (!coordinateFilePath(o->file, ctx))
            return;
        if (!store.file.open(o->file, crd::Create::Always, layout))
            return store.failed();
        ctx.out << format("Created %s (%s)", o->file.c_str(), formatName(store.file.format()))
                << '\n';
    });
}

// Runs `each` on every line of FILE, or of standard input for "-"; false
// (with the message given) when the file cannot be opened.
bool forEachLine(const std::string &source, CommandContext &ctx,
                 const std::function<bool(std::string_view line, long number)> &each) {
    std::ifstream file;
    if (source != "-") {
        file.open(source, std::ios::binary);
        if (!file) {
            ctx.err << format(tr("Error: unable to open %s"), source.c_str()) << '\n';
            ctx.exitCode = kFailure;
            return false;
        }
    }
    std::istream &in = source == "-" ? std::cin : file;
    std::string line;
    for (long number = 1; std::getline(in, line); ++number) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (!each(line, number))
            return false;
    }
    return true;
}

// "name,northing,easting,elevation[,description]", the form get and list
// print; the description keeps any further commas.
bool parsePointLine(std::string_view line, CrdPoint &point) {
    thread_local std::vector<std::string_view> fields;
    splitAtMost(line, ',', 5, fields);
    double n = 0, e = 0, z = 0;
    if (fields.size() < 4 || trim(fields[0]).empty() || !parseNumber(fields[1], n) ||
        !parseNumber(fields[2], e) || !parseNumber(fields[3], z))
        return false;
    point.set(e, n, z, std::string(trim(fields[0])),
              fields.size() > 4 ? std::string(fields[4]) : std::string());
    return true;
}

// Many points at once go through the store's bulk write: one pass over
// the file instead of one per point.
void putFrom(Store &store, const std::string &source) {
    std::vector<CrdPoint> points;
    Progress progress(store.ctx.err, !store.ctx.quiet);
    bool ok = forEachLine(source, store.ctx, [&](std::string_view line, long number) {
        if (number % 4096 == 0)
            progress.update(static_cast<std::size_t>(number));
        if (trim(line).empty())
            return true;
        CrdPoint p;
        if (!parsePointLine(line, p)) {
            store.failed(
                format(tr("Error: line %ld is not name,northing,easting,elevation"), number));
            return false;
        }
        points.push_back(std::move(p));
        return true;
    });
    if (!ok)
        return;
    // The history wants each point's values before the write.
    std::vector<CrdPoint> before;
    if (store.file.historyKeeping()) {
        before.resize(points.size());
        for (size_t i = 0; i < points.size(); ++i)
            if (!store.file.readPoint(points[i].name, before[i], crd::PointSearch::Exact,
                                      crd::Verbosity::Quiet))
                before[i] = CrdPoint{};
    }
    std::vector<int> errors;
    progress.show(tr("Storing points"));
    const long stored = store.file.writePoints(points, crd::Verbosity::Messages, &errors);
    if (store.file.historyKeeping()) {
        // The file went from each name's old values straight to its last
        // line's: that is the change recorded, once a point.
        std::vector<CrdPoint> after(points.size());
        std::vector<bool> last(points.size(), false);
        std::set<std::string> seen;
        for (size_t i = points.size(); i-- > 0;)
            last[i] = (i >= errors.size() || errors[i] == 0) &&
                      store.file.readPoint(points[i].name, after[i], crd::PointSearch::Exact,
                                           crd::Verbosity::Quiet) &&
                      seen.insert(after[i].name).second;
        for (size_t i = 0; i < points.size(); ++i)
            if (last[i])
                store.file.addHistory(before[i].name.empty() ? nullptr : &before[i], &after[i],
                                      crd::kHistoryOperationInputEdit);
    }
    store.ctx.out << format("Stored %ld points", stored) << '\n';
    if (stored != static_cast<long>(points.size()))
        store.ctx.exitCode = kFailure;
}

void addPut(CLI::App &crdApp, CommandContext &ctx) {
    auto *cmd = crdApp.add_subcommand(
        "put", "Store a point, replacing one of the same name (the file is made when missing)");
    struct Options {
        std::string file, name, description, from;
        std::optional<double> northing, easting, elevation;
        bool history = false;
    };
    auto o = std::make_shared<Options>();
    cmd->add_option("FILE", o->file, "Coordinate file")->required();
    auto *name = cmd->add_option("NAME", o->name, "Point name");
    cmd->add_option("NORTHING", o->northing, "Northing");
    cmd->add_option("EASTING", o->easting, "Easting");
    cmd->add_option("ELEVATION", o->elevation, "Elevation (98765432.1: none)");
    cmd->add_option("DESCRIPTION", o->description, "Description (31 characters are kept)");
    cmd->add_option("--from", o->from,
                    "Store every point of this file (- for standard input), one a line as "
                    "name,northing,easting,elevation[,description]")
        ->excludes(name);
    addHistoryFlag(cmd, o->history);
    cmd->callback([&ctx, o] {
        if (o->from.empty()) {
            for (const auto &[value, label] :
                 {std::pair{o->name.empty() ? std::optional<double>() : 0.0, "NAME"},
                  {o->northing, "NORTHING"},
                  {o->easting, "EASTING"},
                  {o->elevation, "ELEVATION"}})
                if (!value)
                    throw CLI::RequiredError(label);
        }
        Store store(ctx);
        if (!store.openForUpdate(o->file, o->history))
            return;
        if (!o->from.empty())
            return putFrom(store, o->from);
        CrdPoint point, previous, stored;
        point.set(*o->easting, *o->northing, *o->elevation, o->name, o->description);
        if (!store.file.writePoint(point, crd::Verbosity::Messages, &previous))
            return store.failed();
        if (store.file.readPoint(point.name, stored, crd::PointSearch::Exact,
                                 crd::Verbosity::Quiet))
            store.file.addHistory(previous.name.empty() ? nullptr : &previous, &stored,
                                  crd::kHistoryOperationInputEdit);
        ctx.out << pointLine(stored) << '\n';
    });
}

void addGet(CLI::App &crdApp, CommandContext &ctx) {
    auto *cmd = crdApp.add_subcommand(
        "get", "Print a point as name,northing,easting,elevation,description");
    struct Options {
        std::string file, name, namesFrom;
        bool next = false, previous = false;
    };
    auto o = std::make_shared<Options>();
    cmd->add_option("FILE", o->file, "Coordinate file")->required();
    auto *name = cmd->add_option("NAME", o->name, "Point name");
    auto *next = cmd->add_flag("--next", o->next, "The point or the next stored one after it");
    auto *previous = cmd->add_flag("--previous", o->previous, "The point or the one before it");
    next->excludes(previous);
    cmd->add_option("--names-from", o->namesFrom,
                    "Print the points named in this file (- for standard input), one name a "
                    "line, in that order")
        ->excludes(name)
        ->excludes(next)
        ->excludes(previous);
    cmd->callback([&ctx, o] {
        if (o->namesFrom.empty() && o->name.empty())
            throw CLI::RequiredError("NAME");
        Store store(ctx);
        if (!store.openForReading(o->file))
            return;
        CrdPoint point;
        if (!o->namesFrom.empty()) {
            // Each name is one lookup in the store's index; a missing one
            // is said and the others still printed.
            forEachLine(o->namesFrom, ctx, [&](std::string_view line, long) {
                const std::string_view wanted = trim(line);
                if (wanted.empty())
                    return true;
                if (store.file.readPoint(wanted, point, crd::PointSearch::Exact,
                                         crd::Verbosity::Quiet))
                    ctx.out << pointLine(point) << '\n';
                else
                    store.failed(std::string(wanted) + ": " +
                                 CoordinateFile::errorText(store.file.lastError()));
                return true;
            });
            return;
        }
        if (!store.file.readPoint(o->name, point,
                                  o->next       ? crd::PointSearch::OrNext
                                  : o->previous ? crd::PointSearch::OrPrevious
                                                : crd::PointSearch::Exact))
            return store.failed();
        ctx.out << pointLine(point) << '\n';
    });
}

void addList(CLI::App &crdApp, CommandContext &ctx) {
    auto *cmd = crdApp.add_subcommand("list", "Print the points in the file's order");
    struct Options {
        std::string file, range, output = "-";
        bool json = false;
    };
    auto o = std::make_shared<Options>();
    cmd->add_option("FILE", o->file, "Coordinate file")->required();
    cmd->add_option("--range", o->range, "Only these points, like 1-20 or A1-A9,B4");
    cmd->add_flag("--json", o->json, "Write a JSON array of points");
    cmd->add_option("-o,--output", o->output, "Write here (default and -: standard output)");
    cmd->callback([&ctx, o] {
        PointList range;
        if (!o->range.empty() && !range.parse(o->range))
            throw CLI::ValidationError("--range", "give names and ranges like 1-20,A5");
        Store store(ctx);
        if (!store.openForReading(o->file))
            return;
        // Lines go out as they are read: a large file is never held whole.
        FileOutput out = outputFor(o->output, ctx);
        nlohmann::json points = nlohmann::json::array();
        CrdPoint p;
        bool written = true;
        for (store.file.setCurrentIndex(-1); written && store.file.readNext(p);) {
            if (!o->range.empty() && !range.contains(p.name))
                continue;
            if (o->json)
                points.push_back({{"name", p.name},
                                  {"northing", p.northing},
                                  {"easting", p.easting},
                                  {"elevation", isUnset(p.elevation) ? nlohmann::json()
                                                                     : nlohmann::json(p.elevation)},
                                  {"description", p.description}});
            else
                written = out.write(pointLine(p) + '\n');
        }
        if (o->json)
            written = out.write(
                points.dump(1, ' ', false, nlohmann::json::error_handler_t::replace) + '\n');
        if (!written)
            return reportOutputError(out, ctx);
        // A damaged record stopped the walk: a file keeps what it had.
        if (store.file.lastError() != crd::kPointNotFound)
            return store.failed();
        if (!out.commit())
            reportOutputError(out, ctx);
    });
}

void addDelete(CLI::App &crdApp, CommandContext &ctx) {
    auto *cmd = crdApp.add_subcommand("delete", "Delete points (their notes go with them)");
    struct Options {
        std::string file, list;
        bool history = false;
    };
    auto o = std::make_shared<Options>();
    cmd->add_option("FILE", o->file, "Coordinate file")->required();
    cmd->add_option("LIST", o->list, "Points to delete, like 1-5,7,A10")->required();
    addHistoryFlag(cmd, o->history);
    cmd->callback([&ctx, o] {
        PointList list;
        if (!list.parse(o->list))
            throw CLI::ValidationError("LIST", "give names and ranges like 1-5,7,A10");
        Store store(ctx);
        if (!store.openForUpdate(o->file, o->history))
            return;
        std::vector<CrdPoint> removed;
        const long count = store.file.deletePoints(
            [&](const CrdPoint &p) { return list.contains(p.name); }, &removed);
        if (count < 0)
            return store.failed();
        for (const auto &point : removed)
            store.file.addHistory(&point, nullptr, crd::kHistoryOperationDelete);
        ctx.out << format("Deleted %ld points", count) << '\n';
    });
}

void addInfo(CLI::App &crdApp, CommandContext &ctx) {
    auto *cmd = crdApp.add_subcommand("info", "Print the file's format, highest and lowest names, "
                                              "number of points, title and date");
    auto file = std::make_shared<std::string>();
    cmd->add_option("FILE", *file, "Coordinate file")->required();
    cmd->callback([&ctx, file] {
        Store store(ctx);
        if (!store.openForReading(*file))
            return;
        long count = 0;
        CrdPoint p;
        for (store.file.setCurrentIndex(-1); store.file.readNext(p);)
            ++count;
        if (store.file.lastError() != crd::kPointNotFound)
            return store.failed();
        const crd::CrdHeaderTexts header = store.file.headerTexts();
        ctx.out << "format: " << formatName(store.file.format()) << '\n'
                << "highest: " << store.file.highestName() << '\n'
                << "lowest: " << store.file.lowestName() << '\n'
                << "count: " << count << '\n'
                << "title: " << header.title << '\n'
                << "date: " << header.date << '\n';
    });
}

void addHistory(CLI::App &crdApp, CommandContext &ctx) {
    auto *cmd =
        crdApp.add_subcommand("history", "List the changes recorded in the file's history (.his)");
    auto file = std::make_shared<std::string>();
    cmd->add_option("FILE", *file, "Coordinate file")->required();
    cmd->callback([&ctx, file] {
        const auto path = crd::historyPathFor(*file);
        std::error_code ec;
        if (!std::filesystem::exists(path, ec)) {
            ctx.out << format(tr("No history is kept for %s"), file->c_str()) << '\n';
            return;
        }
        StoreMessages ui(ctx.err);
        std::vector<crd::HistoryEntry> entries;
        const bool whole = crd::readHistoryFile(path, entries, &ui);
        for (const auto &entry : entries)
            ctx.out << crd::describeHistoryEntry(entry) << '\n';
        if (!whole)
            ctx.exitCode = kFailure; // the reader has said why
    });
}

void addRename(CLI::App &crdApp, CommandContext &ctx) {
    auto *cmd = crdApp.add_subcommand(
        "rename", "Give a point a new name; its notes go with it (a name in use is refused)");
    struct Options {
        std::string file, from, to;
        bool history = false;
    };
    auto o = std::make_shared<Options>();
    cmd->add_option("FILE", o->file, "Coordinate file")->required();
    cmd->add_option("OLD", o->from, "The point's name")->required();
    cmd->add_option("NEW", o->to, "Its new name")->required();
    addHistoryFlag(cmd, o->history);
    cmd->callback([&ctx, o] {
        Store store(ctx);
        if (!store.openForUpdate(o->file, o->history))
            return;
        CrdPoint renamed;
        if (const Status status = crd::renamePoint(store.file, o->from, o->to, &renamed); !status)
            return store.failed(status.message);
        ctx.out << pointLine(renamed) << '\n';
    });
}

const std::map<std::string, crd::PointField> &fieldWords() {
    static const std::map<std::string, crd::PointField> words = {
        {"name", crd::PointField::Name},
        {"northing", crd::PointField::Northing},
        {"easting", crd::PointField::Easting},
        {"elevation", crd::PointField::Elevation},
        {"description", crd::PointField::Description}};
    return words;
}

void addReplace(CLI::App &crdApp, CommandContext &ctx) {
    auto *cmd = crdApp.add_subcommand(
        "replace", "Edit > Replace in CRD File: replace a text in the points' names, "
                   "coordinates, elevations and descriptions, as the grid shows them");
    struct Options {
        std::string file, find, replace;
        std::vector<std::string> fields;
        bool eastingFirst = false, confirm = false, history = false;
        std::vector<std::string> answers;
    };
    auto o = std::make_shared<Options>();
    cmd->add_option("FILE", o->file, "Coordinate file")->required();
    cmd->add_option("--find", o->find, "Find What")->required();
    cmd->add_option("--replace", o->replace, "Replace With")->required();
    cmd->add_option("--field", o->fields, "Only in these fields (default: all)")
        ->check(CLI::IsMember(fieldWords()));
    cmd->add_flag("--easting-first", o->eastingFirst,
                  "Easting before northing when columns are numbered");
    cmd->add_flag("--confirm", o->confirm,
                  "Replace (ask before each) rather than Replace All; answer with --answer");
    cmd->add_option("--answer", o->answers,
                    "\"Search and Replace=yes|no|cancel\": the answer to every question");
    addHistoryFlag(cmd, o->history);
    cmd->callback([&ctx, o] {
        Store store(ctx);
        for (const auto &answer : o->answers) {
            const auto eq = answer.find('=');
            if (eq == std::string::npos)
                throw CLI::ValidationError("--answer", "give DIALOG=BUTTON");
            store.ui.answers[answer.substr(0, eq)] = answer.substr(eq + 1);
        }
        if (!store.openForUpdate(o->file, o->history))
            return;
        crd::PointReplace replace;
        replace.find = o->find;
        replace.replace = o->replace;
        for (const auto &word : o->fields)
            replace.fields.push_back(fieldWords().at(word));
        replace.order = o->eastingFirst ? crd::CoordinateOrder::EastingNorthing
                                        : crd::CoordinateOrder::NorthingEasting;
        replace.confirmEach = o->confirm;
        const long count = crd::replaceInPoints(store.file, replace, store.ui);
        if (store.ui.unanswered) {
            ctx.exitCode = kFailure; // the question and the option to give are printed
            return;
        }
        if (count == 0)
            return store.failed(tr("String not found"));
        ctx.out << format("Replaced %ld", count) << '\n';
    });
}

void addPrint(CLI::App &crdApp, CommandContext &ctx) {
    auto *cmd = crdApp.add_subcommand(
        "print", "File > Print > Coordinates: the coordinate listing, also written to "
                 "morvrprt.tmp in the working folder");
    struct Options {
        std::string file, workdir;
        bool eastingFirst = false;
    };
    auto o = std::make_shared<Options>();
    cmd->add_option("FILE", o->file, "Coordinate file")->required();
    cmd->add_option("--workdir", o->workdir,
                    "Working folder (default: Documents/Halvren Tramline)");
    cmd->add_flag("--easting-first", o->eastingFirst, "Easting before northing");
    cmd->callback([&ctx, o] {
        Store store(ctx);
        if (!store.openForReading(o->file))
            return;
        const std::filesystem::path folder =
            o->workdir.empty() ? defaultWorkingFolder() : std::filesystem::path(o->workdir);
        std::error_code ec;
        std::filesystem::create_directories(folder, ec);
        std::string report;
        const Status status =
            crd::printCoordinates(store.file, o->file,
                                  o->eastingFirst ? crd::CoordinateOrder::EastingNorthing
                                                  : crd::CoordinateOrder::NorthingEasting,
                                  folder, report);
        if (!status)
            return store.failed(status.message);
        ctx.out << report;
    });
}

} // namespace

void addCrdCommands(CLI::App &app, CommandContext &ctx) {
    auto *crdApp = app.add_subcommand(
        "crd", "Coordinate files (.crd): new, put, get, list, delete, info, history, rename, "
               "replace, print, check, repair");
    crdApp->require_subcommand(1);
    addNew(*crdApp, ctx);
    addPut(*crdApp, ctx);
    addGet(*crdApp, ctx);
    addList(*crdApp, ctx);
    addDelete(*crdApp, ctx);
    addInfo(*crdApp, ctx);
    addHistory(*crdApp, ctx);
    addRename(*crdApp, ctx);
    addReplace(*crdApp, ctx);
    addPrint(*crdApp, ctx);
    addCrdRepairCommands(*crdApp, ctx);
    addCrdTransformCommand(*crdApp, ctx);
}

} // namespace tramline::cli

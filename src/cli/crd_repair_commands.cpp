// tramline-cli crd check / crd repair: what is wrong with a coordinate
// file, and a clean copy of it.
#include "base/format.h"
#include "base/translation.h"
#include "cli/command_context.h"
#include "crd/layout_repair.h"

namespace tramline::cli {

void addCrdRepairCommands(CLI::App &crdApp, CommandContext &ctx) {
    auto *check = crdApp.add_subcommand(
        "check", "Check a coordinate file: whole records, order, no name twice");
    auto checkFile = std::make_shared<std::string>();
    check->add_option("FILE", *checkFile, "Coordinate file")->required();
    check->callback([&ctx, checkFile] {
        crd::LayoutCheck result;
        bool journal = false;
        if (!crd::checkFile(*checkFile, result, journal)) {
            ctx.err << tramline::format(tr("Error: cannot read %s"), checkFile->c_str()) << '\n';
            ctx.exitCode = kFailure;
            return;
        }
        if (journal)
            ctx.out << tr("an interrupted update is undone the next time the file is opened")
                    << '\n';
        for (const std::string &line : result.problems)
            ctx.out << line << '\n';
        const long more = result.outOfOrder + result.doubled + (result.strayBytes ? 1 : 0) -
                          static_cast<long>(result.problems.size());
        if (more > 0)
            ctx.out << tramline::format(tr("and %ld more"), more) << '\n';
        if (result.whole()) {
            ctx.out << tramline::format(tr("%ld records, no damage found"), result.records) << '\n';
        } else {
            ctx.err << tr("Error: the file is damaged; \"crd repair FILE -o NEW\" writes a clean "
                          "copy")
                    << '\n';
            ctx.exitCode = kFailure;
        }
    });

    auto *repair = crdApp.add_subcommand(
        "repair", "Write a clean copy of a coordinate file, keeping every readable point");
    auto from = std::make_shared<std::string>();
    auto to = std::make_shared<std::string>();
    repair->add_option("FILE", *from, "Damaged coordinate file")->required();
    repair->add_option("-o,--output", *to, "The clean copy (a new file)")->required();
    repair->callback([&ctx, from, to] {
        const crd::RepairResult result = crd::repairFile(*from, *to);
        for (const std::string &line : result.notes)
            ctx.out << line << '\n';
        if (!result.ok) {
            ctx.err << result.error << '\n';
            ctx.exitCode = kFailure;
            return;
        }
        ctx.out << tramline::format(tr("%ld points written to %s"), result.pointsKept, to->c_str())
                << '\n';
    });
}

} // namespace tramline::cli

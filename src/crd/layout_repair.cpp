#include "crd/layout_repair.h"

#include "base/format.h"
#include "base/translation.h"
#include "crd/crd_errors.h"
#include "crd/crd_io_morvane.h"
#include "crd/file_kinds.h"
#include "crd/move_journal.h"

#include <algorithm>
#include <map>

namespace tramline::crd {

bool checkFile(const std::filesystem::path &path, LayoutCheck &check, bool &journalPending) {
    std::error_code ec;
    journalPending = std::filesystem::exists(journalPathFor(path), ec);
    FileOpenResult result{};
    std::unique_ptr<FileStore> file = FileStore::openForReading(path, result);
    if (!file)
        return false;
    check = checkLayout(*file);
    return true;
}

RepairResult repairFile(const std::filesystem::path &from, const std::filesystem::path &to,
                        CrdContext context) {
    RepairResult result;
    std::error_code ec;
    if (std::filesystem::equivalent(from, to, ec)) {
        result.error = tr("Error: the repaired copy must go to another file");
        return result;
    }
    CrdIOMorvane source(context);
    if (!source.open(from, CrdAccess::ReadOnly)) {
        result.error = errorText(source.lastError());
        return result;
    }
    // Every whole record, in file order; the walk stops at a cut record.
    std::vector<CrdPoint> points;
    std::map<std::string, int> seen;
    CrdPoint p;
    for (long i = 0; i < source.recordCount(); ++i) {
        if (!source.readByIndex(i, p, 0)) {
            if (source.lastError() == kPointNotFound)
                continue; // an empty numeric slot
            break;
        }
        if (++seen[p.name] == 2)
            result.notes.push_back(tramline::format(
                tr("point %s is stored more than once; the last copy is kept"), p.name.c_str()));
        points.push_back(p);
    }
    const int format = source.format();
    const CrdHeaderTexts header = source.headerTexts();
    source.close();

    CrdIOMorvane target(context);
    if (!target.create(to, format)) {
        result.error = errorText(target.lastError());
        return result;
    }
    target.setHeaderTexts(header);
    std::vector<int> errors;
    result.pointsKept = target.writePoints(points, Verbosity::Quiet, &errors);
    for (std::size_t i = 0; i < errors.size(); ++i)
        if (errors[i] != kNoError)
            result.notes.push_back(tramline::format(tr("point %s could not be kept: %s"),
                                                    points[i].name.c_str(),
                                                    errorText(errors[i]).c_str()));
    result.pointsKept = static_cast<long>(seen.size()) -
                        static_cast<long>(std::count_if(errors.begin(), errors.end(),
                                                        [](int e) { return e != kNoError; }));
    result.ok = target.flush();
    if (!result.ok)
        result.error = errorText(kReadWriteFailed);
    return result;
}

} // namespace tramline::crd

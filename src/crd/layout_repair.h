// Checking a coordinate file from outside (what is wrong with it) and
// writing a clean copy that keeps every point that can still be read.
#pragma once

#include "crd/crd_io.h"
#include "crd/layout_check.h"

#include <filesystem>
#include <string>
#include <vector>

namespace tramline::crd {

/// The layout check of the file at `path`, plus a line when an interrupted
/// update waits to be undone. False when the file cannot be read at all.
bool checkFile(const std::filesystem::path &path, LayoutCheck &check, bool &journalPending);

struct RepairResult {
    bool ok = false;
    long pointsKept = 0;
    std::vector<std::string> notes; ///< names stored more than once, which copy was kept
    std::string error;
};

/// Writes a fresh file `to` of the same layout and header as `from` with
/// every whole record of it: sorted, each name once (of doubled names the
/// copy furthest into the file, the one written last, is kept).
RepairResult repairFile(const std::filesystem::path &from, const std::filesystem::path &to,
                        CrdContext context = {});

} // namespace tramline::crd

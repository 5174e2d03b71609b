// The checks before processing that concern store point records: store
// points written after a shot to the same point, several store points with
// different coordinates for one point, and points the run would store that
// the coordinate file already holds (point protect). Each may turn records
// into notes or send the user back to the editor.
#pragma once

#include "base/interaction.h"
#include "base/report.h"
#include "crd/coordinate_file.h"
#include "raw/reader.h"

#include <string>

namespace tramline::reduce {

enum class CheckOutcome {
    Continue,       ///< go on processing
    ReturnToEditor, ///< the user went back to the editor (a report tab may say why)
};

/// What the checks work on and where they answer.
struct CheckContext {
    raw::RawFile &file;
    const std::string &rawFileName;
    Interaction &ui;
    Report &report;
    bool rawChanged = false; ///< records were turned into notes
};

/// "Store Point Check": store point records after a shot to the same point.
CheckOutcome storePointCheck(CheckContext &context);

/// "Store Point Conflicts": store point records to one point with coordinates
/// differing by 0.00005 or more in any of north, east and elevation.
CheckOutcome storePointConflicts(CheckContext &context);

/// "Point Protect": points stored by the run that `coordinates` already holds.
CheckOutcome pointProtect(CheckContext &context, crd::CoordinateFile &coordinates);

/// The note a store point record becomes: "SP%s,N %.4f,E %.4f,EL%.4f,--%s",
/// cut to 256 characters.
std::string storePointNote(const raw::RawNode &storePoint);

} // namespace tramline::reduce

// Direct-reverse reduction: shots measured in both faces of the instrument
// come as sets of four records (backsight direct BD, foresight direct FD,
// foresight reverse FR, backsight reverse BR). Each set is reduced to one
// mean shot, the faces are checked against three tolerances, and a report
// of the reduction is written.
#pragma once

#include "base/report.h"
#include "raw/reader.h"

#include <string>
#include <vector>

namespace tramline::reduce {

/// Tolerances of the face checks. The defaults suit a 5-second total
/// station measuring to a prism: two faces of one pointing rarely differ by
/// more than 15 seconds, two distances by more than 0.02 of a foot or metre.
struct DirectReverseTolerances {
    double distance = 0.02;          ///< file's linear unit
    double horizontalSeconds = 15.0; ///< seconds of arc
    double verticalSeconds = 15.0;   ///< seconds of arc
};

/// What one set reduced to, for the report and for tests.
struct ReducedSet {
    std::string occupied, backsight, foresight;
    size_t lineNumber = 0;            ///< line of the set's first record
    double backsightDifference = 0;   ///< BD - turned BR, seconds
    double foresightDifference = 0;   ///< FD - turned FR, seconds
    double turnedDifference = 0;      ///< |direct turned angle - reverse turned angle|, seconds
    double horizontalResidual = 0;    ///< half the turned difference, seconds
    double horizontalAngle = 0;       ///< mean turned angle, decimal degrees 0..360
    bool elevationDifference = false; ///< vertical values are elevation differences
    double vertical = 0;              ///< mean zenith (decimal degrees) or elevation difference
    double verticalDifference = 0;    ///< seconds for zeniths, length for elevation differences
    double verticalResidual = 0;      ///< half the difference
    double distance = 0;              ///< mean foresight slope distance
    double distanceDifference = 0;    ///< FD - FR distance
    double distanceResidual = 0;      ///< half the difference
};

struct DirectReverseResult {
    bool ok = true;    ///< false: an incomplete set stopped the reduction
    std::string error; ///< "Error: incomplete direct-reverse set"
    std::vector<ReducedSet> sets;
    std::vector<std::string> warnings;
    raw::RawFile reduced; ///< the records with each set replaced by one shot
    std::string report;   ///< the "Direct-Reverse Report" text
};

/// True when the file holds any BD, FD, FR or BR record.
bool hasDirectReverseSets(const raw::RawFile &file);

/// Reduces every set of `file`. `rawFileName` heads the report. The
/// reduced shot takes the place of the set's first record; it is a
/// traverse shot ("TR") when its foresight is occupied later in the file,
/// else a sideshot ("SS"), with the mean angle right, zenith and distance.
DirectReverseResult reduceDirectReverse(const raw::RawFile &file, const std::string &rawFileName,
                                        const DirectReverseTolerances &tolerances = {});

} // namespace tramline::reduce

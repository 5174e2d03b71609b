// Is a coordinate file whole? Whole records only, and in an alphanumeric
// file names in strictly ascending order (so no name twice). A file that
// fails this is read as it is but never written into: a write would act on
// a wrong lookup or turn a torn record into a point.
#pragma once

#include "crd/byte_store.h"

#include <string>
#include <vector>

namespace tramline::crd {

struct LayoutCheck {
    int format = -1;                   ///< 0 numeric, 1 alphanumeric, -1 no header
    long records = 0;                  ///< whole records after the header
    long long strayBytes = 0;          ///< bytes of a record cut short at the end
    long outOfOrder = 0;               ///< records whose name is not above the one before
    long doubled = 0;                  ///< records whose name equals the one before
    bool firstRevision = false;        ///< unsorted by design: sorted on the next open
    std::vector<std::string> problems; ///< the first few, one line each

    bool whole() const { return format >= 0 && strayBytes == 0 && outOfOrder == 0 && doubled == 0; }
};

/// Reads the whole store once, in pieces.
LayoutCheck checkLayout(ByteStore &store);

} // namespace tramline::crd

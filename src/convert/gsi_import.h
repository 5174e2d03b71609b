// Import of Leica GSI-8 and GSI-16 files into RW5 lines and points, in the
// coding systems WildSoft, Liscad and 10-20-30-40.
//
// Usage from the command line:
//   tramline-cli import gsi FILE.gsi -o JOB.rw5 --crd JOB.crd
//       [--coding wildsoft|liscad|10-20-30-40] [--order bffb|bfbf]
#pragma once

#include "convert/format.h"
#include "convert/gsi_face_sets.h"

namespace tramline::convert {

enum class GsiCoding { WildSoft, Liscad, TenTwentyThirtyForty, GeoComp };

struct GsiImportOptions {
    GsiCoding coding = GsiCoding::WildSoft;
    gsi::FaceOrder order = gsi::FaceOrder::BFFB;
    bool withThirty = true; ///< 10-20-30-40: "10-20-30-40", else "10-20-40"
    bool azimuths = false;  ///< 10-20-30-40: angles are azimuths ("AZ"), else "AR"
};

/// Asks "Leica Options" (and "Leica 10-20-30-40 Format" for that coding),
/// then turns the file. Cancelled when a question was cancelled; Format for
/// GeoComp (not available yet) and for a file without a single GSI line.
Status importGsi(const SourceLines &source, Interaction &ui, ImportOutput &out);

/// The same with the answers given.
Status importGsiWith(const SourceLines &source, const GsiImportOptions &options, ImportOutput &out);

/// The point imports "Leica Wildsoft File", "Leica Liscad File" and "Leica
/// 10-20-30-40 File": the points of the same conversion, completion "Done".
Status importGsiPointsWildsoft(const SourceLines &source, Interaction &ui, ImportOutput &out);
Status importGsiPointsLiscad(const SourceLines &source, Interaction &ui, ImportOutput &out);
Status importGsiPointsTenTwenty(const SourceLines &source, Interaction &ui, ImportOutput &out);

} // namespace tramline::convert

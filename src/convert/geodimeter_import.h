// Import of Geodimeter job and area files ("label=value" lines) into RW5
// lines and points.
//
// Usage from the command line:
//   tramline-cli import geodimeter FILE -o JOB.rw5 --crd JOB.crd [--strip-decimal] [--info-codes]
#pragma once

#include "convert/format.h"
#include "convert/geodimeter_options.h"

namespace tramline::convert {

/// Asks "Geodimeter Process Options", then turns every line. Fails with
/// Format ("Error: not a Geodimeter file") when no line holds a label,
/// with Cancelled when the form was cancelled.
Status importGeodimeter(const SourceLines &source, Interaction &ui, ImportOutput &out);

/// The same with the options given.
Status importGeodimeterWith(const SourceLines &source, const GeodimeterOptions &options,
                            ImportOutput &out);

} // namespace tramline::convert

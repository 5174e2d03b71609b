// Reads an RW5 file into its list of records, in file order, for the raw
// document, point computation and the exports.
//
// Lines are read into a 222-character buffer (longer lines come in pieces);
// lines shorter than three characters are skipped. Observations are taken
// by position and normalised so that every one holds a vertical angle and a
// slope distance.
#pragma once

#include "base/bulk_allocator.h"
#include "base/status.h"
#include "raw/record.h"

#include <filesystem>
#include <istream>
#include <string>
#include <vector>

namespace tramline::raw {

/// Line buffer of RW5 files, terminating zero included.
inline constexpr size_t kRawLineBuffer = 222;
/// Text rows keep at most this many characters of their line.
inline constexpr size_t kTextRowLimit = 64;

struct RawFile {
    std::vector<RawNode, BulkAllocator<RawNode>> nodes;
    RawUnits units;                                 ///< as the file declared them (last seen)
    VerticalKind verticalMode = VerticalKind::None; ///< the last vertical kind read
};

/// Parses one line into a node. `units` gives the angle unit for the
/// normalisation of observations. False for lines under three characters.
bool parseRawLine(std::string_view line, const RawUnits &units, RawNode &node);

/// Reads a whole stream. Never fails on content: what does not parse is
/// kept as text. Fails (Io, "Error: unable to read raw file") only when
/// the stream itself failed, with the line where the reading stopped.
Status readRaw(std::istream &in, RawFile &file);

/// Opens and reads a file. Fails with NotFound when it cannot be opened (a
/// missing file, a folder; no line then), or as readRaw() does.
Status readRawFile(const std::filesystem::path &path, RawFile &file);

} // namespace tramline::raw

// The strict classifier of RW5 lines: one line in, its record kind and its
// field values (codes removed) out. Fields are taken strictly by position:
// a record with a field missing, out of order or under another code is not
// accepted (kind 0), and there is never a search for a code in the line.
#pragma once

#include <array>
#include <string>
#include <string_view>

namespace tramline::raw {

/// Record kinds returned by ClassifyRawLine.
enum RawLineKind : int {
    kEmptyNote = -1,     ///< "--" with nothing after it
    kUnrecognised = 0,   ///< anything else, or a known record not complete in order
    kNote = 1,           ///< "--" and text
    kJob = 2,            ///< JB with NM, DT, TM (only looked for with the job flag)
    kHeightsHi = 3,      ///< LS with HI only
    kHeightsHiHr = 4,    ///< LS with HI and HR
    kHeightsHr = 5,      ///< LS with HR only
    kOccupy = 6,         ///< OC (first code OP or PN)
    kBacksight = 7,      ///< BK
    kStorePoint = 8,     ///< SP
    kObservation = 9,    ///< TR, SS, CL, AB, CL+AB, FD, FR, BD, BR
    kBasePointNote = 10, ///< BP ending in a note
    kBasePointSr = 11,   ///< BP ending in SR
    kGps = 12,           ///< GPS
    kGps1 = 13,          ///< G1
    kGps2 = 14,          ///< G2
    kGps3 = 15,          ///< G3
    kGps0 = 16,          ///< G0
    kMode = 17,          ///< MO
};

using RawFields = std::array<std::string, 10>;

/// Whether a "JB" line counts as a job record (a whole file is read with
/// them; single lines of a job's body are not).
enum class JobRecords { Unrecognised, Recognised };

/// Classifies one line (without its line end). With JobRecords::
/// Unrecognised a JB line is kind 0. Up to
/// ten field values are written to `fields` in the record's field order;
/// the others are cleared. For an observation the first value is the
/// record type itself ("SS", "FD", ...). For a note the first value is the
/// text after the dashes; for G0 the whole content after "G0,".
int ClassifyRawLine(std::string_view line, JobRecords jobRecords, RawFields &fields);

/// True for the record types that hold an observation.
bool isObservationType(std::string_view type);

} // namespace tramline::raw

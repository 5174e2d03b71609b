// One record of a raw file as the reader holds it: the record type, its
// field values by position (codes removed), and for observations the
// values parsed and brought into one form (vertical angle and slope
// distance) for computation.
//
// Values nobody here interprets are carried, never dropped: the mode
// record's AD, EC and EO (only their written "0" is known), the base
// point's AG, PA, AT and SR (kept as one text), G0 content and CC fields
// (kept as text), and the GN angle kind (kept as its own kind, computed by
// nobody). A gon file's angles are plain decimal gons.
#pragma once

#include "base/compact_string.h"
#include "base/units.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tramline::raw {

/// Horizontal angle kinds, numbered as the reader numbers them.
enum class HorizontalKind : std::uint8_t {
    None = 0,
    NE = 1, ///< bearing north-east, written "BRN" value "E"
    SE = 2,
    SW = 3,
    NW = 4,
    AZ = 5, ///< azimuth
    AL = 6, ///< angle left
    AR = 7, ///< angle right
    DL = 8, ///< deflection left
    DR = 9, ///< deflection right
    GN = 10,
};

/// Vertical kinds: vertical angle, zenith angle, elevation difference.
enum class VerticalKind : std::uint8_t { None = 0, VA = 1, ZE = 2, CE = 3 };

enum class DistanceKind : std::uint8_t { Slope = 0, Horizontal = 1 };

/// The editor's name of an angle kind ("NE", "AR", ...); empty for None.
const char *horizontalKindName(HorizontalKind kind);
/// The kind for an editor name; None when unknown.
HorizontalKind horizontalKindFromName(std::string_view name);

/// What an observation record says, in numbers. Angles are in the file's
/// angle unit (ddd.mmss, or decimal gons in a gon file); lengths in the
/// file's linear unit.
struct Observation {
    CompactString type; ///< "SS", "TR", "CL", "AB", "CL+AB", "FD", "FR", "BD", "BR"
    CompactString occupied;
    CompactString foresight;
    /// The backsight a reduced direct-reverse set was turned from (its
    /// BD/BR target); empty for a shot turned from its set-up's backsight.
    CompactString backsight;
    CompactString description;
    // Numbers first, then the small members together: a large job holds a
    // million of these.
    double horizontal = 0.0;
    double verticalAngle = 0.0; ///< vertical angle after normalisation
    /// The vertical value as written (angle, or CE's elevation difference).
    double writtenVertical = 0.0;
    double slopeDistance = 0.0; ///< slope distance after normalisation
    HorizontalKind horizontalKind = HorizontalKind::None;
    VerticalKind verticalKind = VerticalKind::None;  ///< as written in the file
    DistanceKind distanceKind = DistanceKind::Slope; ///< as written in the file
    bool hasHorizontal = false;
    bool hasVertical = false;
    bool hasWrittenVertical = false;
    bool hasDistance = false;

    bool isSideshot() const { return type == "SS"; }
    bool isTraverse() const { return type == "TR"; }
    /// A side of the traverse: TR, or a closing shot (CL, CL+AB).
    bool isTraverseSide() const { return isTraverse() || isClosing(); }
    bool isClosing() const { return type == "CL" || type == "CL+AB"; }
    bool isAngleBalance() const { return type == "AB" || type == "CL+AB"; }
    bool isClosingAndBalance() const { return type == "CL+AB"; }
    bool isForesightDirect() const { return type == "FD"; }
    bool isForesightReverse() const { return type == "FR"; }
    bool isBacksightDirect() const { return type == "BD"; }
    bool isBacksightReverse() const { return type == "BR"; }
    /// One of the four records of a direct-reverse set.
    bool isFaceRecord() const {
        return isForesightDirect() || isForesightReverse() || isBacksightDirect() ||
               isBacksightReverse();
    }
};

/// Record types of the reader. Lines of any other type (notes, MO, JB,
/// CC, unrecognised text) are kept whole as Text.
enum class RecordType : std::uint8_t {
    Text,
    Occupy, ///< OC: OP (or PN), N, E, EL, note; the line also kept whole as text
    Observation,
    StorePoint,        ///< SP: PN, N, E, EL, description
    Backsight,         ///< BK: OP, BP, BS, BC
    Heights,           ///< LS: HI, HR (either may be absent)
    TraverseName,      ///< NAME: text
    GpsPosition,       ///< GPS: PN, LA, LN, EL, description
    BasePoint,         ///< BP: PN, LA, LN, EL, then the rest as one text
    ControlErrors,     ///< CSE: N, E, EL, AZ
    SetupErrors,       ///< SSE: TE, IE, HI, RD
    MeasurementErrors, ///< MSE: PE, RE, VP, VR, DT, PP
    ReferenceAzimuth,  ///< AZ: OP, FP, BS
    Elevation,         ///< EL: PN, EL
    GpsVector,         ///< G0 to G3: the text after the first comma
    DataOnOff,         ///< DO
};

struct RawNode {
    CompactString name; ///< record name as in the file: "SP", "G1", "LS", ...
    /// Values by position, codes removed. An observation keeps them only
    /// when one of its angle or distance values is not a number: otherwise
    /// `observation` holds everything the line said, and a million shots
    /// need not carry every value twice.
    std::vector<std::string> fields;
    Observation observation; ///< for observations
    CompactString text;      ///< for Text and Occupy: the line itself (at most 64 characters)
    size_t lineNumber = 0;   ///< 1-based line (piece) in the file
    RecordType type = RecordType::Text;
    bool hasHi = false, hasHr = false; ///< for heights: which of the two the line held
};

/// The occupied point of an occupy line ("OC,OP12,N ..." or "OC,PN12,..."):
/// the value after the first field's code, up to the next comma. Empty when
/// the line is not that long.
std::string occupiedPointOf(std::string_view occupyLine);

/// Field positions of an Occupy record's fields.
enum OccupyField : size_t {
    kOccupiedPoint = 0,
    kOccupyNorth = 1,
    kOccupyEast = 2,
    kOccupyElevation = 3,
    kOccupyNote = 4,
};

/// Units as a file declares them through its mode record or "--UNITS" notes.
struct RawUnits {
    LinearUnit linear = LinearUnit::Metres;
    AngleUnit angle = AngleUnit::DegreesMinutesSeconds;
    bool linearDeclared = false;
    bool angleDeclared = false;
};

/// Updates `units` from one line when it is a mode record ("MO," with
/// ",UN" and ",AU") or a "--UNITS METERS|FOOT|GONS" note. True when the
/// line set anything.
bool applyUnitsLine(std::string_view line, RawUnits &units);

} // namespace tramline::raw

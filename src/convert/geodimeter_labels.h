// The labels of Geodimeter job and area files ("label=value" lines): what
// each label means to the import, and the note it turns into where it
// only carries information.
#pragma once

namespace tramline::convert::geodimeter {

/// Labels above this are skipped.
inline constexpr int kHighestLabel = 74;

enum class LabelRole {
    Unused,             ///< read and ignored
    Remark,             ///< 0: a remark, or the REDUCED / RESULT markers
    Station,            ///< 2: starts a set-up on this point
    InstrumentHeight,   ///< 3
    Code,               ///< 4: the description of the current point
    PointNumber,        ///< 5: starts a new point
    TargetHeight,       ///< 6
    HorizontalAngle,    ///< 7
    VerticalAngle,      ///< 8
    SlopeDistance,      ///< 9
    HorizontalDistance, ///< 11
    FaceOneAngle,       ///< 24: face-one horizontal angle, used when 7 is absent
    ReferenceAngle,     ///< 21: the backsight circle reading
    Northing,           ///< 37
    Easting,            ///< 38
    Elevation,          ///< 39
    Info,               ///< 60, 61: information, a note or part of the description
    ReferenceObject,    ///< 62: the backsight point
    Note,               ///< written as the label's note
};

struct LabelInfo {
    LabelRole role = LabelRole::Unused;
    const char *note = nullptr; ///< for Note: the RW5 note, "%s" the value
};

/// What `label` (0 to kHighestLabel) means; Unused for anything else.
LabelInfo geodimeterLabel(int label);

} // namespace tramline::convert::geodimeter

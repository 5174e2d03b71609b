// The kinds of coordinate file the program knows by extension. Only ".crd"
// files (numeric or alphanumeric) are opened; the others are recognised so
// that they can be refused with a clear error rather than misread.
#pragma once

#include <filesystem>

namespace tramline::crd {

enum CrdFormat : int {
    kFormatUnknown = -1,
    kFormatNumeric = 0,      ///< ".crd", point numbers are record indexes
    kFormatAlphanumeric = 1, ///< ".crd", records sorted by point name
    kFormatCandG = 3,        ///< ".cgc", refused
    kFormatCrdOther = 4,     ///< a ".crd" kind of the default-format setting, refused
    kFormatSight = 5,        ///< ".zak", refused
    kFormatLandDesktop = 6,  ///< ".mdb", refused
    kFormatDrawing = 7,      ///< ".dwg", refused
    kFormatSqlite = 8,       ///< ".crdb", refused
};

/// The file filter of the open and save dialogs.
inline constexpr const char *kCoordinateFileFilter = "crd;crdb;cgc;mdb;zak";

/// The format code of a path's extension (case-blind), or -1. A ".crd"
/// path gets the default-format setting: 0, 1 or 4 as set, any other
/// setting makes it 1 (alphanumeric).
int formatFromExtension(const std::filesystem::path &path, int defaultCrdFormat);

/// The short extension text of a format code ("crd", "cgc", ...), or ""
/// for a code that has none.
const char *extensionText(int format);

/// True for the formats this program reads and writes (0 and 1).
inline bool isHandledFormat(int format) {
    return format == kFormatNumeric || format == kFormatAlphanumeric;
}

} // namespace tramline::crd

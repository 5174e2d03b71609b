// The one explicit list of converters, in menu order. It feeds the file
// dialogs of the desktop program, the format names of tramline-cli and
// the tests. Converters the menus name but nobody has built yet stay in
// the list with no function, so that the menus can say "not available yet".
#pragma once

#include "convert/format.h"

#include <span>
#include <string_view>

namespace tramline::convert {

enum class FormatKind {
    RawImport,   ///< Import Raw Data: foreign file to RW5 lines and points
    RawExport,   ///< Export Raw Data: RW5 file to foreign file
    PointImport, ///< Import Point Data: foreign file to the coordinate file
    PointExport, ///< Export Point Data: coordinate file to foreign file
};

struct FormatEntry {
    FormatKind kind;
    const char *id;                    ///< the command line's name ("sdr", "text")
    const char *menuName;              ///< the menu entry ("Sokkia/SDR")
    const char *dialogTitle;           ///< the file dialog's title (English; tr() it)
    const char *extensions;            ///< the filter: extensions separated by ';', "*" for any
    ImportFunction import = nullptr;   ///< raw imports that are built
    ExportFunction exporter = nullptr; ///< raw exports that are built
    bool built = false;                ///< false: "not available yet"
    PointImportFunction pointImport = nullptr; ///< point imports that are built
    PointExportFunction pointExport = nullptr; ///< point exports that are built
    /// A raw export's own message for an unreadable RW5 file (English;
    /// tr() it); null: the frame's.
    const char *readError = nullptr;
};

/// Every converter, in menu order within each kind.
std::span<const FormatEntry> formatRegistry();

/// The entry of `kind` with command-line name `id` (any case), or null.
const FormatEntry *findFormat(FormatKind kind, std::string_view id);

/// The entry of `kind` with menu name `menuName`, or null.
const FormatEntry *findFormatByMenu(FormatKind kind, std::string_view menuName);

/// The extensions as a file-dialog filter text: "sdr;raw" gives
/// "*.sdr *.raw"; "*" gives "*".
std::string dialogFilter(const FormatEntry &entry);

/// "Import Raw Data", "Export Raw Data", ... (English; tr() it).
const char *kindName(FormatKind kind);

} // namespace tramline::convert

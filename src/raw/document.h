// The open raw file as the user edits it: one row per record, each row a
// type from the grid's Type list and its cells as text, written back as
// RW5 by row type. The desktop grid and the command line both work on it.
//
// Row types and text rows. "OC", "MO", "JB", "CC" and any line that is not
// a record the grid has a type for are held whole in a "DS" (data string)
// row and written back exactly as they stand. Notes are rows without a
// type whose one cell is the note text after "--"; a note text that begins
// "OC,", "MO," or "JB," (with or without its own "--") is written as that
// record, so that such a line can be typed as a note.
//
// Number formats. Angles and coordinates are shown with four decimals
// (ddd.mmss angles rounded to the whole second with carry), distances and
// heights with three, latitudes and longitudes with nine. Observations are
// shown in the display modes (zenith angle and slope distance by default),
// so a file written with vertical angles, elevation differences or
// horizontal distances comes back as zenith angles and slope distances,
// and a value with more decimals than its format is rounded when saved.
// Empty values stay empty and values that are not numbers are kept as text.
//
// Angle unit. A gon file (mode record AU other than 0, or "--UNITS GONS")
// keeps its angles in gons: the document never converts angles on opening,
// so its mode record stays true; angleUnit() tells which unit the cells hold.
#pragma once

#include "base/interaction.h"
#include "raw/display_modes.h"
#include "raw/reader.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace tramline::raw {

/// The grid's row types, in the order of its Type list. A note row has the
/// empty type.
const std::vector<std::string> &rowTypes();
/// The angle kinds offered in an observation's "Code" column, in order.
const std::vector<std::string> &angleCodes();

/// A row's cells as they were before the first display change touched
/// them, with the modes they were in. Every later change converts from
/// these, so looking at the data in other forms never rounds it twice, and
/// coming back to these modes gives back these texts exactly.
struct RowOrigin {
    std::vector<std::string> cells;
    VerticalMode vertical = VerticalMode::Zenith;
    DistanceMode distance = DistanceMode::Slope;
    AngleUnit angle = AngleUnit::DegreesMinutesSeconds;
};

struct RawRow {
    std::string type;               ///< one of rowTypes(), or "" for a note
    std::vector<std::string> cells; ///< the cells after the Type column
    /// Set by display changes; any edit of the row drops it (the typed
    /// text is then the record).
    std::optional<RowOrigin> origin;
};

/// Cell indexes of an observation row.
enum ObservationCell : int {
    kOccupiedCell = 0,
    kForesightCell = 1,
    kCodeCell = 2,
    kHorizontalCell = 3,
    kVerticalCell = 4,
    kDistanceCell = 5,
    kDescriptionCell = 6,
};

enum class ModifyField { Distance, HorizontalAngle, VerticalAngle, ElevationDifference };

/// Which rows Modify Measurements touches: those whose foresight point is
/// in the point list, or the rows (1-based, inclusive) of a line range.
struct ModifySelection {
    std::string points; ///< a list like "1-5,7,A10"; used when not empty
    size_t firstLine = 0, lastLine = 0;
};

/// Whether Replace asks before each hit or replaces them all.
enum class ReplaceScope { AskEach, All };

/// The kind of raw file that Import Raw Data adds.
enum class RawFlavour { Rw5, Tds };

struct CellPosition {
    size_t row = 0;    ///< 0-based row
    size_t column = 0; ///< 0 is the Type column, 1.. the cells
};

class RawDocument {
public:
    RawDocument();

    // --- the file -------------------------------------------------------
    /// New RW5 File: no rows, no file name, not modified.
    void clear();
    /// Reads a file into the rows. On failure shows "Error: unable to read
    /// raw file" and keeps the document as it was.
    bool open(const std::filesystem::path &path, Interaction &ui);
    /// Fills the rows from records already read.
    void load(const RawFile &file);
    /// Writes the rows to the current file (Save RW5 File). Without a file
    /// name it fails; the shell asks for one and calls saveAs().
    bool save(Interaction &ui);
    /// Writes to `path` and makes it the current file. On failure shows
    /// "Error: failed to write rawfile" and changes nothing, on disk or here.
    bool saveAs(const std::filesystem::path &path, Interaction &ui);
    /// The RW5 text of all rows, in grid order.
    std::string text() const;
    /// The RW5 line of one row.
    std::string lineFor(const RawRow &row) const;

    /// The current file, or "NONE".
    std::string fileName() const;
    const std::filesystem::path &path() const { return m_path; }
    bool modified() const { return m_modified; }
    void setModified(bool modified) { m_modified = modified; }
    const RawUnits &units() const { return m_units; }
    AngleUnit angleUnit() const { return m_units.angle; }

    // --- rows -----------------------------------------------------------
    size_t rowCount() const { return m_rows.size(); }
    const RawRow &row(size_t index) const { return m_rows.at(index); }
    const std::vector<RawRow> &rows() const { return m_rows; }
    /// Column captions of a row type, after the Type column.
    std::vector<std::string> captions(const std::string &type) const;
    /// Sets a cell (column 0 is the type). False when out of range.
    bool setCell(size_t row, size_t column, const std::string &text);
    /// Changes a row's type; the cells are kept as far as they go.
    bool setRowType(size_t row, const std::string &type);
    /// Inserts an empty row of `type` after `afterRow` (at the end when
    /// `afterRow` is past the last row, at the top of an empty grid) and
    /// returns its index. Observation rows start with the code "AR", a
    /// "DO" row with the text "Data On/Off".
    size_t addRow(const std::string &type, size_t afterRow);
    bool deleteRow(size_t row);

    const DisplayModes &modes() const { return m_modes; }
    /// Sets the modes used when rows are filled and written. Existing rows
    /// are not converted (the change... functions below do that).
    void setModes(const DisplayModes &modes) { m_modes = modes; }

    // --- display commands (display_conversion.cpp) ----------------------
    // Each rewrites the affected cells of every row in place, from the old
    // form to the new, and returns how many cells it rewrote. A corrupt
    // vertical mode is read as zenith and reset to it. The modified flag is
    // left alone: the values mean what they meant.

    /// New vertical mode (None shows vertical angles, the grid hides them);
    /// a value no enumerator names means zenith.
    int changeVerticalMode(VerticalMode mode);
    int changeDistanceMode(DistanceMode mode);
    /// New angle unit. The cells then hold angles in that unit, and the
    /// mode record (or a "--UNITS GONS" note when there is none) says so,
    /// so that the saved file stays true.
    int changeAngleMode(AngleUnit unit);
    /// Nothing is rewritten; grids show the order when next filled.
    void setCoordinateOrder(CoordinateOrder order) { m_modes.order = order; }

    /// Puts back rows saved earlier (undo), with the modes they were shown
    /// in; they are converted to the modes of now. Marks the document
    /// modified.
    void restoreRows(std::vector<RawRow> rows, const DisplayModes &shownIn, AngleUnit unit);

    /// The rows read back as records, as processing and exports take them.
    bool records(RawFile &file) const;

    // --- edit commands --------------------------------------------------
    /// Adds `delta` to the field of every selected observation row and
    /// returns how many values changed, or -1 when the field does not fit
    /// the vertical display (elevation differences need that display).
    /// Angles and the delta are ddd.mmss (gons in a gon file) and results
    /// are brought into 0 to 360 (400).
    int modifyMeasurements(ModifyField field, double delta, const ModifySelection &selection);

    /// Finds `what` in the cells, row by row and left to right, starting
    /// after `from` and wrapping round once. Empty when not found.
    std::optional<CellPosition> find(const std::string &what, CellPosition from) const;
    /// Replaces every occurrence of `what` by `with`. With AskEach, asks
    /// "Replace in row %ld column %ld?" (1-based, Type column 1) for each
    /// hit: Yes replaces, No skips, Cancel stops. Returns the count.
    int replace(const std::string &what, const std::string &with, ReplaceScope scope,
                Interaction &ui);

    /// Adds the records of another raw file at the end. A TDS collector's
    /// raw file has its own job and mode records left out, as the open job
    /// already has them. On failure shows "Error: unable to read raw file"
    /// (with the line where the reading stopped).
    bool append(const std::filesystem::path &path, RawFlavour flavour, Interaction &ui);

    /// The Print > Raw Data report ("Edit-Process Raw File").
    std::string printReport() const;
    /// Writes the report to "morvrprt.tmp" in `workingFolder`; shows "Can't
    /// open output file %s" on failure.
    bool print(const std::filesystem::path &workingFolder, Interaction &ui) const;

private:
    RawRow rowFromNode(const RawNode &node) const;
    void resetCorruptVerticalMode();
    void markAngleUnit(AngleUnit unit, const DisplayModes &before, AngleUnit from);
    std::vector<RawRow> rowsFromFile(const RawFile &file, RawFlavour flavour) const;

    std::vector<RawRow> m_rows;
    std::filesystem::path m_path;
    RawUnits m_units;
    DisplayModes m_modes;
    bool m_modified = false;
};

} // namespace tramline::raw

// Geoid separation grids in the program's ".grd" text layout:
//
//   south latitude            "%.4f"  four bound lines, degrees,
//   west longitude            "%.4f"  longitudes counted east from 0 to
//   north latitude            "%.4f"  360 (a few national grids give
//   east longitude            "%.4f"  them negative, west of Greenwich)
//   latitude intervals        "%.1f"  extent over spacing, rows - 1
//   longitude intervals       "%.1f"  extent over spacing, columns - 1
//   separation                "%.4f"  metres, one line per node: rows
//   ...                               from south to north, each row from
//                                     west to east
//
// Shift grids of datum transformations use the same layout (see
// grid_shift.h). Each header line is read with a limit of 128 characters.
#pragma once

#include "geodesy/status.h"

#include <filesystem>
#include <istream>
#include <ostream>
#include <vector>

namespace tramline::geodesy {

/// The area a grid covers, decimal degrees.
struct GridBounds {
    double south = 0.0;
    double west = 0.0;
    double north = 0.0;
    double east = 0.0;

    /// True when the point lies inside or on the edge. Longitudes are tried
    /// as given and a turn (360 degrees) either way.
    bool contains(double latitude, double longitude) const;
};

/// Reads the four bound lines. Fails with Format for missing or
/// non-numeric lines, or bounds that enclose no area.
Status readGridBounds(std::istream &in, GridBounds &bounds);

class GeoidGrid {
public:
    /// Node value that marks a node without data (as in GTX files).
    static constexpr double kNoData = -88.8888;

    GeoidGrid() = default;
    /// A grid of `rows` x `columns` nodes over `bounds`, all zero.
    GeoidGrid(const GridBounds &bounds, int rows, int columns);

    /// Reads a whole grid. Fails with Format for a bad header, a node
    /// count the file does not hold (truncated) or a node that is not a
    /// number; `name` goes into the message.
    static Status read(std::istream &in, const std::string &name, GeoidGrid &grid);
    /// Reads a grid file. A grid read once is kept in binary in the cache
    /// folder, and later loads take that copy while the file keeps its size
    /// and modification time: a separation then costs microseconds instead
    /// of a parse of several megabytes of text.
    static Status load(const std::filesystem::path &path, GeoidGrid &grid);

    /// Where load() keeps its binary copies; empty keeps none. The default
    /// is "grid-cache" in the settings folder.
    static void setCacheFolder(std::filesystem::path folder);
    static std::filesystem::path cacheFolder();

    /// Writes the grid in the layout above.
    bool write(std::ostream &out) const;
    /// Writes the grid to `path`, replacing any old file whole.
    Status save(const std::filesystem::path &path) const;

    const GridBounds &bounds() const { return m_bounds; }
    int rows() const { return m_rows; }
    int columns() const { return m_columns; }
    double latitudeSpacing() const { return m_latitudeStep; }
    double longitudeSpacing() const { return m_longitudeStep; }

    /// The node at `row` (0 is the southernmost) and `column` (0 is the
    /// westernmost), metres.
    double node(int row, int column) const;
    void setNode(int row, int column, double value);

    /// The separation at a point by bilinear interpolation between the four
    /// nodes around it, metres. False outside the grid or next to a node
    /// without data.
    bool separation(double latitude, double longitude, double &separation) const;

private:
    GridBounds m_bounds;
    int m_rows = 0;
    int m_columns = 0;
    double m_latitudeStep = 0.0;
    double m_longitudeStep = 0.0;
    std::vector<float> m_nodes; // 0.1 mm resolution needs no more than a float

    static bool readCached(const std::filesystem::path &path, GeoidGrid &grid);
    void writeCached(const std::filesystem::path &path) const;
};

} // namespace tramline::geodesy

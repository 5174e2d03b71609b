// The British OSTN02 transformation as a pair of binary shift grids,
// "ostn02_x.bin" (easting shifts) and "ostn02_y.bin" (northing shifts), in
// the data folder. A position on ETRS89 is projected onto the National
// Grid's transverse Mercator (on GRS 1980), and the shifts interpolated
// there turn it into OSGB36 National Grid coordinates.
//
// Layout of each file (this program's own; all numbers little-endian):
//
//   offset  size  content
//        0     8  "TRLOSTN1"
//        8     4  int32 columns (eastward)
//       12     4  int32 rows (northward)
//       16     8  float64 easting of the first node, metres
//       24     8  float64 northing of the first node, metres
//       32     8  float64 node spacing, metres (both ways)
//       40  4·n   float32 shifts, metres, rows from south to north, each
//                 row from west to east (n = columns x rows)
//
// The official data (a 1 km grid of 701 x 1251 nodes from the origin of
// the National Grid) fits it as it is; the program's data folder carries
// the converted pair.
#pragma once

#include "geodesy/status.h"

#include <filesystem>
#include <istream>
#include <ostream>
#include <vector>

namespace tramline::geodesy {

/// One binary shift grid of the pair.
class OstnGrid {
public:
    static constexpr char kMagic[9] = "TRLOSTN1";

    OstnGrid() = default;
    OstnGrid(int columns, int rows, double originEasting, double originNorthing, double spacing);

    /// Reads one file; fails with Format for a short file or a bad header.
    static Status read(std::istream &in, const std::string &name, OstnGrid &grid);
    bool write(std::ostream &out) const;

    void setNode(int row, int column, float value);
    /// The bilinear shift at a grid position (metres); false outside.
    bool shiftAt(double easting, double northing, double &shift) const;

    bool sameLayout(const OstnGrid &other) const;

private:
    int m_columns = 0, m_rows = 0;
    double m_originEasting = 0, m_originNorthing = 0, m_spacing = 0;
    std::vector<float> m_nodes;
};

class Ostn02 {
public:
    /// Opens the pair from the data folder: "Error: missing OSTN file %s"
    /// when either is missing.
    Status open(const std::filesystem::path &dataFolder);

    /// Turns ETRS89 transverse Mercator coordinates (metres, National Grid
    /// projection on GRS 1980) into OSGB36 National Grid coordinates.
    /// Fails with "Error: outside transformation boundary" outside the
    /// grids.
    Status toNationalGrid(double &easting, double &northing) const;

    /// The inverse: National Grid coordinates back to ETRS89 transverse
    /// Mercator coordinates, by iterating on the forward shift.
    Status fromNationalGrid(double &easting, double &northing) const;

private:
    OstnGrid m_x, m_y;
};

} // namespace tramline::geodesy

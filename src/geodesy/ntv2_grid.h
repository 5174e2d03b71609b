// NTv2 grid shift files in their ASCII form: an overview header, one sub
// grid header, and the node records. Only single-grid files with shifts in
// seconds of arc are taken. Node records hold the latitude and longitude
// shifts as two 10-character numbers ("%10f%10f"); any accuracies after
// them are not used.
#pragma once

#include "geodesy/status.h"

#include <istream>
#include <string>
#include <vector>

namespace tramline::geodesy {

class Ntv2Grid {
public:
    /// Reads a whole file. Fails with the message of the first check that
    /// fails: "Grid file truncated - header incomplete", "Missing GS_TYPE
    /// record in grid file header", "Unsupported GS_TYPE in grid file -
    /// must be SECONDS", "Grid file contains multiple grids - not
    /// supported", "Invalid NUM_SREC record", "Invalid LAT_INC record in
    /// sub grid header" (and the like for the other sub grid values), or
    /// a truncated node list.
    static Status read(std::istream &in, Ntv2Grid &grid);

    /// The shift at a point (decimal degrees, north and east positive):
    /// latitude and longitude shifts in arc-seconds, north and east
    /// positive (the file counts longitude west; this turns it round).
    /// Bilinear between the four nodes around the point. Fails with "Point
    /// is outside the range of the grid".
    Status shiftAt(double latitude, double longitude, double &latitudeSeconds,
                   double &longitudeSeconds) const;

    /// Applies the shift to a position in decimal degrees.
    Status apply(double &latitude, double &longitude) const;

    const std::string &name() const { return m_name; }
    /// Extent in arc-seconds as the file gives it (longitudes west positive).
    double southSeconds() const { return m_south; }
    double northSeconds() const { return m_north; }
    double eastSeconds() const { return m_east; }
    double westSeconds() const { return m_west; }

private:
    std::string m_name;
    double m_south = 0, m_north = 0, m_east = 0, m_west = 0, m_latitudeStep = 0,
           m_longitudeStep = 0;
    int m_rows = 0, m_columns = 0;
    std::vector<float> m_latitudeShift,
        m_longitudeShift; // rows south to north, columns east to west
};

} // namespace tramline::geodesy

#include "geodesy/gtx_import.h"

#include "base/format.h"
#include "base/translation.h"
#include "geodesy/messages.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <fstream>

namespace tramline::geodesy {

namespace {

std::uint64_t bigEndian(const unsigned char *p, int bytes) {
    std::uint64_t v = 0;
    for (int i = 0; i < bytes; ++i)
        v = (v << 8) | p[i];
    return v;
}

double readDouble(const unsigned char *p) {
    const std::uint64_t bits = bigEndian(p, 8);
    double v;
    std::memcpy(&v, &bits, sizeof v);
    return v;
}

float readFloat(const unsigned char *p) {
    const auto bits = static_cast<std::uint32_t>(bigEndian(p, 4));
    float v;
    std::memcpy(&v, &bits, sizeof v);
    return v;
}

std::int32_t readInt(const unsigned char *p) {
    return static_cast<std::int32_t>(bigEndian(p, 4));
}

Status bad(const std::string &name) {
    return Status::failure(StatusCode::Format, format(tr(messages::kGridFileBad), name.c_str()));
}

} // namespace

Status readGtx(std::istream &in, const std::string &name, GeoidGrid &grid) {
    unsigned char header[40];
    if (!in.read(reinterpret_cast<char *>(header), sizeof header))
        return bad(name);
    double south = readDouble(header), west = readDouble(header + 8);
    const double latitudeStep = readDouble(header + 16), longitudeStep = readDouble(header + 24);
    const std::int32_t rows = readInt(header + 32), columns = readInt(header + 36);
    if (!std::isfinite(south) || !std::isfinite(west) || !(latitudeStep > 0) ||
        !(longitudeStep > 0) || rows < 2 || columns < 2 || columns > 1 << 24 ||
        static_cast<double>(rows) * columns > 3e8)
        return bad(name);

    // Row by row, so that a header promising more than the file holds
    // costs no more memory than the file does.
    std::vector<float> values;
    std::vector<unsigned char> row(static_cast<std::size_t>(columns) * 4);
    for (std::int32_t r = 0; r < rows; ++r) {
        if (!in.read(reinterpret_cast<char *>(row.data()),
                     static_cast<std::streamsize>(row.size())))
            return Status::failure(StatusCode::Format,
                                   format(tr(messages::kGridFileTruncated), name.c_str()));
        for (std::int32_t c = 0; c < columns; ++c)
            values.push_back(readFloat(&row[static_cast<std::size_t>(c) * 4]));
    }

    const bool global = std::fabs(columns * longitudeStep - 360.0) < longitudeStep * 1e-6;
    GridBounds bounds;
    bounds.south = south;
    bounds.north = south + (rows - 1) * latitudeStep;
    int outColumns = columns;
    if (global) {
        // Nodes from 0 to 360 inclusive: the last column repeats the first.
        bounds.west = 0.0;
        bounds.east = 360.0;
        outColumns = columns + 1;
    } else {
        double east = west + (columns - 1) * longitudeStep;
        if (west < 0 && east < 0) {
            west += 360.0;
            east += 360.0;
        } else if (west >= 360.0) {
            west -= 360.0;
            east -= 360.0;
        }
        bounds.west = west;
        bounds.east = east;
    }
    GeoidGrid g(bounds, rows, outColumns);
    for (std::int32_t r = 0; r < rows; ++r) {
        for (int c = 0; c < outColumns; ++c) {
            int source = c;
            if (global) {
                // Output column c lies at longitude c * step east; find it in
                // the source, whose first column lies at `west`.
                const double offset =
                    std::fmod((c * longitudeStep - west) / longitudeStep, columns);
                source =
                    static_cast<int>(std::lround(offset < 0 ? offset + columns : offset)) % columns;
            }
            const float v = values[static_cast<std::size_t>(r) * static_cast<std::size_t>(columns) +
                                   static_cast<std::size_t>(source)];
            g.setNode(r, c, std::isfinite(v) ? v : GeoidGrid::kNoData);
        }
    }
    grid = std::move(g);
    return Status::success();
}

Status importGtx(const std::filesystem::path &source, const std::filesystem::path &destination) {
    std::ifstream in(source, std::ios::binary);
    if (!in)
        return Status::failure(StatusCode::Io,
                               format(tr(messages::kCannotOpen), source.string().c_str()));
    GeoidGrid grid;
    if (Status status = readGtx(in, source.filename().string(), grid); !status)
        return status;
    return grid.save(destination);
}

} // namespace tramline::geodesy

#include "geodesy/ostn_grid.h"

#include "base/format.h"
#include "base/translation.h"
#include "geodesy/messages.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <fstream>

namespace tramline::geodesy {

namespace {

template <typename T> T littleEndian(const unsigned char *p) {
    std::uint64_t bits = 0;
    for (int i = static_cast<int>(sizeof(T)) - 1; i >= 0; --i)
        bits = (bits << 8) | p[i];
    T value;
    if constexpr (sizeof(T) == 4) {
        const auto b = static_cast<std::uint32_t>(bits);
        std::memcpy(&value, &b, 4);
    } else {
        std::memcpy(&value, &bits, 8);
    }
    return value;
}

template <typename T> void putLittleEndian(std::ostream &out, T value) {
    unsigned char bytes[sizeof(T)];
    std::memcpy(bytes, &value, sizeof(T));
    // The layout is little-endian whatever the machine.
    std::uint16_t probe = 1;
    if (*reinterpret_cast<unsigned char *>(&probe) != 1)
        for (std::size_t i = 0; i < sizeof(T) / 2; ++i)
            std::swap(bytes[i], bytes[sizeof(T) - 1 - i]);
    out.write(reinterpret_cast<const char *>(bytes), sizeof(T));
}

Status bad(const std::string &name) {
    return Status::failure(StatusCode::Format, format(tr(messages::kGridFileBad), name.c_str()));
}

} // namespace

OstnGrid::OstnGrid(int columns, int rows, double originEasting, double originNorthing,
                   double spacing)
    : m_columns(columns), m_rows(rows), m_originEasting(originEasting),
      m_originNorthing(originNorthing), m_spacing(spacing),
      m_nodes(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows), 0.0f) {}

Status OstnGrid::read(std::istream &in, const std::string &name, OstnGrid &grid) {
    unsigned char header[40];
    if (!in.read(reinterpret_cast<char *>(header), sizeof header) ||
        std::memcmp(header, kMagic, 8) != 0)
        return bad(name);
    const auto columns = littleEndian<std::int32_t>(header + 8),
               rows = littleEndian<std::int32_t>(header + 12);
    const double e0 = littleEndian<double>(header + 16), n0 = littleEndian<double>(header + 24),
                 spacing = littleEndian<double>(header + 32);
    if (columns < 2 || rows < 2 || columns > 1 << 20 || static_cast<double>(columns) * rows > 5e7 ||
        !std::isfinite(e0) || !std::isfinite(n0) || !(spacing > 0) || !std::isfinite(spacing))
        return bad(name);
    // Row by row, so that a header promising more than the file holds
    // costs no more memory than the file does.
    std::vector<float> nodes;
    std::vector<unsigned char> bytes(static_cast<std::size_t>(columns) * 4);
    for (std::int32_t r = 0; r < rows; ++r) {
        if (!in.read(reinterpret_cast<char *>(bytes.data()),
                     static_cast<std::streamsize>(bytes.size())))
            return Status::failure(StatusCode::Format,
                                   format(tr(messages::kGridFileTruncated), name.c_str()));
        for (std::int32_t c = 0; c < columns; ++c) {
            nodes.push_back(littleEndian<float>(&bytes[static_cast<std::size_t>(c) * 4]));
            if (!std::isfinite(nodes.back()))
                return bad(name);
        }
    }
    OstnGrid g;
    g.m_columns = columns;
    g.m_rows = rows;
    g.m_originEasting = e0;
    g.m_originNorthing = n0;
    g.m_spacing = spacing;
    g.m_nodes = std::move(nodes);
    grid = std::move(g);
    return Status::success();
}

bool OstnGrid::write(std::ostream &out) const {
    out.write(kMagic, 8);
    putLittleEndian<std::int32_t>(out, m_columns);
    putLittleEndian<std::int32_t>(out, m_rows);
    putLittleEndian<double>(out, m_originEasting);
    putLittleEndian<double>(out, m_originNorthing);
    putLittleEndian<double>(out, m_spacing);
    for (float v : m_nodes)
        putLittleEndian<float>(out, v);
    return static_cast<bool>(out);
}

void OstnGrid::setNode(int row, int column, float value) {
    m_nodes[static_cast<std::size_t>(row) * static_cast<std::size_t>(m_columns) +
            static_cast<std::size_t>(column)] = value;
}

bool OstnGrid::shiftAt(double easting, double northing, double &shift) const {
    if (m_nodes.empty() || !std::isfinite(easting) || !std::isfinite(northing))
        return false;
    const double x = (easting - m_originEasting) / m_spacing,
                 y = (northing - m_originNorthing) / m_spacing;
    if (!(x >= 0 && x <= m_columns - 1 && y >= 0 && y <= m_rows - 1))
        return false;
    const int column = std::min(static_cast<int>(x), m_columns - 2),
              row = std::min(static_cast<int>(y), m_rows - 2);
    const double fx = x - column, fy = y - row;
    auto at = [this](int r, int c) {
        return static_cast<double>(
            m_nodes[static_cast<std::size_t>(r) * static_cast<std::size_t>(m_columns) +
                    static_cast<std::size_t>(c)]);
    };
    shift = (1 - fy) * ((1 - fx) * at(row, column) + fx * at(row, column + 1)) +
            fy * ((1 - fx) * at(row + 1, column) + fx * at(row + 1, column + 1));
    return true;
}

bool OstnGrid::sameLayout(const OstnGrid &o) const {
    return m_columns == o.m_columns && m_rows == o.m_rows && m_originEasting == o.m_originEasting &&
           m_originNorthing == o.m_originNorthing && m_spacing == o.m_spacing;
}

Status Ostn02::open(const std::filesystem::path &dataFolder) {
    OstnGrid grids[2];
    const char *names[2] = {"ostn02_x.bin", "ostn02_y.bin"};
    for (int i = 0; i < 2; ++i) {
        const auto path = dataFolder / names[i];
        std::ifstream in(path, std::ios::binary);
        if (!in)
            return Status::failure(StatusCode::NotFound,
                                   format(tr(messages::kMissingOstnFile), path.string().c_str()));
        if (Status status = OstnGrid::read(in, names[i], grids[i]); !status)
            return status;
    }
    if (!grids[0].sameLayout(grids[1]))
        return bad(names[1]);
    m_x = std::move(grids[0]);
    m_y = std::move(grids[1]);
    return Status::success();
}

Status Ostn02::toNationalGrid(double &easting, double &northing) const {
    double se = 0, sn = 0;
    if (!m_x.shiftAt(easting, northing, se) || !m_y.shiftAt(easting, northing, sn))
        return Status::failure(StatusCode::OutOfRange,
                               tr(messages::kOutsideTransformationBoundary));
    easting += se;
    northing += sn;
    return Status::success();
}

Status Ostn02::fromNationalGrid(double &easting, double &northing) const {
    // The shifts change by millimetres over a kilometre: a few rounds of
    // subtracting the shift found at the current estimate converge.
    double e = easting, n = northing;
    for (int i = 0; i < 10; ++i) {
        double se = 0, sn = 0;
        if (!m_x.shiftAt(e, n, se) || !m_y.shiftAt(e, n, sn))
            return Status::failure(StatusCode::OutOfRange,
                                   tr(messages::kOutsideTransformationBoundary));
        const double nextE = easting - se, nextN = northing - sn;
        const bool done = std::fabs(nextE - e) < 1e-5 && std::fabs(nextN - n) < 1e-5;
        e = nextE;
        n = nextN;
        if (done)
            break;
    }
    easting = e;
    northing = n;
    return Status::success();
}

} // namespace tramline::geodesy

#include "geodesy/geoid_grid.h"

#include "base/atomic_save.h"
#include "base/folders.h"
#include "base/format.h"
#include "base/line_reader.h"
#include "base/translation.h"
#include "geodesy/messages.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <mutex>
#include <optional>

namespace tramline::geodesy {

namespace {

constexpr std::size_t kHeaderLine = 129; // 128 characters and the terminator
// A grid of more nodes than this is not a geoid grid (a world grid at one
// minute has 233 million); refusing it keeps garbage from allocating.
constexpr double kMostNodes = 3e8;
constexpr double kLargestNode = 1e6; // metres; room for "no data" marks such as -9999

Status badGrid(const std::string &name) {
    return Status::failure(StatusCode::Format, format(tr(messages::kGridFileBad), name.c_str()));
}

bool nextNumber(LineReader &reader, double &value) {
    std::string line;
    return reader.next(line) && parseNumber(line, value) && std::isfinite(value);
}

bool isNoData(double v) {
    return std::fabs(v - GeoidGrid::kNoData) < 1e-3;
}

} // namespace

bool GridBounds::contains(double latitude, double longitude) const {
    if (!(latitude >= south && latitude <= north))
        return false;
    for (double lon : {longitude, longitude + 360.0, longitude - 360.0})
        if (lon >= west && lon <= east)
            return true;
    return false;
}

Status readGridBounds(std::istream &in, GridBounds &bounds) {
    LineReader reader(in, kHeaderLine);
    GridBounds b;
    if (!nextNumber(reader, b.south) || !nextNumber(reader, b.west) ||
        !nextNumber(reader, b.north) || !nextNumber(reader, b.east) || !(b.north > b.south) ||
        !(b.east > b.west))
        return Status::failure(StatusCode::Format, tr(messages::kGridFileBad));
    bounds = b;
    return Status::success();
}

GeoidGrid::GeoidGrid(const GridBounds &bounds, int rows, int columns)
    : m_bounds(bounds), m_rows(rows), m_columns(columns),
      m_latitudeStep(rows > 1 ? (bounds.north - bounds.south) / (rows - 1) : 0.0),
      m_longitudeStep(columns > 1 ? (bounds.east - bounds.west) / (columns - 1) : 0.0),
      m_nodes(static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns), 0.0f) {}

Status GeoidGrid::read(std::istream &in, const std::string &name, GeoidGrid &grid) {
    LineReader reader(in, kHeaderLine);
    GridBounds b;
    double latitudeIntervals = 0, longitudeIntervals = 0;
    if (!nextNumber(reader, b.south) || !nextNumber(reader, b.west) ||
        !nextNumber(reader, b.north) || !nextNumber(reader, b.east) ||
        !nextNumber(reader, latitudeIntervals) || !nextNumber(reader, longitudeIntervals))
        return badGrid(name);
    const double rows = std::round(latitudeIntervals) + 1,
                 columns = std::round(longitudeIntervals) + 1;
    if (!(b.north > b.south) || !(b.east > b.west) || rows < 2 || columns < 2 ||
        rows * columns > kMostNodes || std::fabs(latitudeIntervals + 1 - rows) > 1e-6 ||
        std::fabs(longitudeIntervals + 1 - columns) > 1e-6)
        return badGrid(name);
    // Nodes are kept as they come, so that a header promising more than
    // the file holds costs no more memory than the file does.
    const auto count = static_cast<std::size_t>(rows * columns);
    std::vector<float> nodes;
    nodes.reserve(std::min<std::size_t>(count, std::size_t{1} << 20));
    std::string line;
    while (nodes.size() < count) {
        if (!reader.next(line))
            return Status::failure(StatusCode::Format,
                                   format(tr(messages::kGridFileTruncated), name.c_str()));
        // Nodes are kept as floats: a value beyond any geoid (the largest
        // separations are about 110 m) would turn into infinity there.
        double v = 0;
        if (!parseNumber(line, v) || !std::isfinite(v) || std::fabs(v) > kLargestNode) {
            Status status = badGrid(name);
            status.lineNumber = reader.lineNumber();
            return status;
        }
        nodes.push_back(static_cast<float>(v));
    }
    GeoidGrid g(b, static_cast<int>(rows), static_cast<int>(columns));
    g.m_nodes = std::move(nodes);
    grid = std::move(g);
    return Status::success();
}

namespace {

std::mutex cacheMutex;
std::optional<std::filesystem::path> cacheFolderSetting;

constexpr char kCacheMagic[8] = {'T', 'R', 'L', 'G', 'R', 'I', 'D', '1'};

// What a cached copy was made from: the grid's size and modification time.
struct CacheStamp {
    std::uint64_t size = 0;
    std::int64_t modified = 0;
};

bool stampOf(const std::filesystem::path &path, CacheStamp &stamp) {
    std::error_code ec;
    stamp.size = std::filesystem::file_size(path, ec);
    if (ec)
        return false;
    const auto time = std::filesystem::last_write_time(path, ec);
    stamp.modified = static_cast<std::int64_t>(time.time_since_epoch().count());
    return !ec;
}

// One file a grid, named by a hash of its absolute path.
std::filesystem::path cachePathFor(const std::filesystem::path &grid) {
    const std::filesystem::path folder = GeoidGrid::cacheFolder();
    if (folder.empty())
        return {};
    std::error_code ec;
    const auto absolute = std::filesystem::absolute(grid, ec);
    const std::size_t key = std::hash<std::string>{}((ec ? grid : absolute).string());
    return folder / (format("%016zx", key) + "-" + grid.filename().string() + ".bin");
}

template <typename T> bool readValue(std::istream &in, T &value) {
    return static_cast<bool>(in.read(reinterpret_cast<char *>(&value), sizeof value));
}

template <typename T> void writeValue(std::ostream &out, const T &value) {
    out.write(reinterpret_cast<const char *>(&value), sizeof value);
}

} // namespace

void GeoidGrid::setCacheFolder(std::filesystem::path folder) {
    std::lock_guard<std::mutex> guard(cacheMutex);
    cacheFolderSetting = std::move(folder);
}

std::filesystem::path GeoidGrid::cacheFolder() {
    std::lock_guard<std::mutex> guard(cacheMutex);
    if (!cacheFolderSetting)
        cacheFolderSetting = settingsFolder() / "grid-cache";
    return *cacheFolderSetting;
}

bool GeoidGrid::readCached(const std::filesystem::path &path, GeoidGrid &grid) {
    CacheStamp stamp, cached;
    const auto cachePath = cachePathFor(path);
    if (cachePath.empty() || !stampOf(path, stamp))
        return false;
    std::ifstream in(cachePath, std::ios::binary);
    char magic[sizeof kCacheMagic];
    GridBounds b;
    std::int32_t rows = 0, columns = 0;
    if (!in.read(magic, sizeof magic) || std::memcmp(magic, kCacheMagic, sizeof magic) != 0 ||
        !readValue(in, cached.size) || !readValue(in, cached.modified) ||
        cached.size != stamp.size || cached.modified != stamp.modified || !readValue(in, b) ||
        !readValue(in, rows) || !readValue(in, columns) || rows < 2 || columns < 2 ||
        static_cast<double>(rows) * columns > kMostNodes)
        return false;
    // The nodes must be in the copy before room is made for them: size
    // fields of a damaged copy could ask for terabytes.
    const std::streamoff nodesAt = in.tellg();
    std::error_code ec;
    const auto copySize = std::filesystem::file_size(cachePath, ec);
    const auto bytes =
        static_cast<std::uint64_t>(rows) * static_cast<std::uint64_t>(columns) * sizeof(float);
    if (ec || nodesAt < 0 || copySize != static_cast<std::uint64_t>(nodesAt) + bytes)
        return false;
    GeoidGrid g(b, rows, columns);
    if (!in.read(reinterpret_cast<char *>(g.m_nodes.data()), static_cast<std::streamsize>(bytes)))
        return false;
    grid = std::move(g);
    return true;
}

void GeoidGrid::writeCached(const std::filesystem::path &path) const {
    CacheStamp stamp;
    const auto cachePath = cachePathFor(path);
    if (cachePath.empty() || !stampOf(path, stamp))
        return;
    std::error_code ec;
    std::filesystem::create_directories(cachePath.parent_path(), ec);
    // A copy that cannot be written is no loss: the next load parses again.
    saveAtomically(cachePath, [&](std::ostream &out) {
        out.write(kCacheMagic, sizeof kCacheMagic);
        writeValue(out, stamp.size);
        writeValue(out, stamp.modified);
        writeValue(out, m_bounds);
        writeValue(out, static_cast<std::int32_t>(m_rows));
        writeValue(out, static_cast<std::int32_t>(m_columns));
        out.write(reinterpret_cast<const char *>(m_nodes.data()),
                  static_cast<std::streamsize>(m_nodes.size() * sizeof(float)));
        return static_cast<bool>(out);
    });
}

Status GeoidGrid::load(const std::filesystem::path &path, GeoidGrid &grid) {
    if (readCached(path, grid))
        return Status::success();
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return Status::failure(StatusCode::Io,
                               format(tr(messages::kCannotOpen), path.string().c_str()));
    if (Status status = read(in, path.filename().string(), grid); !status)
        return status;
    grid.writeCached(path);
    return Status::success();
}

bool GeoidGrid::write(std::ostream &out) const {
    std::string text;
    appendFormat(text, "%.4f\n%.4f\n%.4f\n%.4f\n", m_bounds.south, m_bounds.west, m_bounds.north,
                 m_bounds.east);
    appendFormat(text, "%.1f\n%.1f\n", static_cast<double>(m_rows - 1),
                 static_cast<double>(m_columns - 1));
    out << text;
    char buffer[64];
    for (float node : m_nodes) {
        const int n = std::snprintf(buffer, sizeof buffer, "%.4f\n", static_cast<double>(node));
        out.write(buffer, n);
    }
    return static_cast<bool>(out);
}

Status GeoidGrid::save(const std::filesystem::path &path) const {
    std::string error;
    if (saveAtomically(
            path, [this](std::ostream &out) { return write(out); }, &error))
        return Status::success();
    return Status::failure(StatusCode::Io,
                           format(tr(messages::kCannotWrite), path.string().c_str()));
}

double GeoidGrid::node(int row, int column) const {
    return m_nodes[static_cast<std::size_t>(row) * static_cast<std::size_t>(m_columns) +
                   static_cast<std::size_t>(column)];
}

void GeoidGrid::setNode(int row, int column, double value) {
    m_nodes[static_cast<std::size_t>(row) * static_cast<std::size_t>(m_columns) +
            static_cast<std::size_t>(column)] = static_cast<float>(value);
}

bool GeoidGrid::separation(double latitude, double longitude, double &separation) const {
    if (m_nodes.empty() || !std::isfinite(latitude) || !std::isfinite(longitude) ||
        !(latitude >= m_bounds.south && latitude <= m_bounds.north))
        return false;
    double lon = longitude;
    if (!(lon >= m_bounds.west && lon <= m_bounds.east)) {
        lon = longitude + 360.0;
        if (!(lon >= m_bounds.west && lon <= m_bounds.east))
            lon = longitude - 360.0;
        if (!(lon >= m_bounds.west && lon <= m_bounds.east))
            return false;
    }
    const double y = (latitude - m_bounds.south) / m_latitudeStep;
    const double x = (lon - m_bounds.west) / m_longitudeStep;
    const int row = std::min(static_cast<int>(y), m_rows - 2);
    const int column = std::min(static_cast<int>(x), m_columns - 2);
    const double fy = y - row, fx = x - column;
    const double weights[4] = {(1 - fy) * (1 - fx), (1 - fy) * fx, fy * (1 - fx), fy * fx};
    const double values[4] = {node(row, column), node(row, column + 1), node(row + 1, column),
                              node(row + 1, column + 1)};
    double sum = 0.0;
    for (int i = 0; i < 4; ++i) {
        if (weights[i] == 0.0)
            continue; // a node that does not count may lack data
        if (isNoData(values[i]))
            return false;
        sum += weights[i] * values[i];
    }
    separation = sum;
    return true;
}

} // namespace tramline::geodesy

#include "geodesy/ntv2_grid.h"

#include "base/format.h"
#include "base/line_reader.h"
#include "base/text.h"
#include "base/translation.h"
#include "geodesy/messages.h"

#include <cmath>
#include <cstdio>
#include <map>

namespace tramline::geodesy {

namespace {

constexpr int kHeaderRecords = 11;

Status fail(const char *message) {
    return Status::failure(StatusCode::Format, tr(message));
}

// A header record: an eight-character keyword, then its value.
void splitRecord(std::string_view line, std::string &key, std::string &value) {
    const std::size_t width = std::min<std::size_t>(8, line.size());
    key = trim(line.substr(0, width));
    value = trim(line.substr(width));
}

bool numberOf(const std::map<std::string, std::string> &records, const char *key, double &value) {
    const auto it = records.find(key);
    return it != records.end() && parseNumber(it->second, value) && std::isfinite(value);
}

} // namespace

Status Ntv2Grid::read(std::istream &in, Ntv2Grid &grid) {
    LineReader reader(in, 256);
    std::string line, key, value;

    // The overview: NUM_OREC records, NUM_OREC itself first.
    std::map<std::string, std::string> overview;
    int overviewCount = kHeaderRecords;
    for (int i = 0; i < overviewCount; ++i) {
        if (!reader.next(line))
            return fail(messages::kGridHeaderIncomplete);
        splitRecord(line, key, value);
        overview[key] = value;
        double n = 0;
        if (i == 0 && key == "NUM_OREC" && parseNumber(value, n) && n >= 4 && n <= 64)
            overviewCount = static_cast<int>(n);
    }
    const auto type = overview.find("GS_TYPE");
    if (type == overview.end())
        return fail(messages::kMissingGsType);
    if (type->second != "SECONDS")
        return fail(messages::kUnsupportedGsType);
    double files = 0;
    if (numberOf(overview, "NUM_FILE", files) && files != 1)
        return fail(messages::kMultipleGrids);
    double subRecords = 0;
    if (!numberOf(overview, "NUM_SREC", subRecords) || subRecords < kHeaderRecords ||
        subRecords > 64 || subRecords != std::floor(subRecords))
        return fail(messages::kInvalidNumSrec);

    std::map<std::string, std::string> sub;
    for (int i = 0; i < static_cast<int>(subRecords); ++i) {
        if (!reader.next(line))
            return fail(messages::kGridHeaderIncomplete);
        splitRecord(line, key, value);
        sub[key] = value;
    }
    Ntv2Grid g;
    g.m_name = sub.count("SUB_NAME") ? sub["SUB_NAME"] : std::string();
    double count = 0;
    if (!numberOf(sub, "LAT_INC", g.m_latitudeStep) || !(g.m_latitudeStep > 0))
        return fail(messages::kInvalidLatInc);
    if (!numberOf(sub, "LONG_INC", g.m_longitudeStep) || !(g.m_longitudeStep > 0))
        return fail(messages::kInvalidLongInc);
    if (!numberOf(sub, "S_LAT", g.m_south) || !numberOf(sub, "N_LAT", g.m_north) ||
        !numberOf(sub, "E_LONG", g.m_east) || !numberOf(sub, "W_LONG", g.m_west) ||
        !(g.m_north > g.m_south) || !(g.m_west > g.m_east))
        return fail(messages::kInvalidExtent);
    const double rows = std::round((g.m_north - g.m_south) / g.m_latitudeStep) + 1;
    const double columns = std::round((g.m_west - g.m_east) / g.m_longitudeStep) + 1;
    if (!numberOf(sub, "GS_COUNT", count) || count != rows * columns || count > 5e7)
        return fail(messages::kInvalidGsCount);
    g.m_rows = static_cast<int>(rows);
    g.m_columns = static_cast<int>(columns);
    const auto nodes = static_cast<std::size_t>(count);
    g.m_latitudeShift.reserve(std::min<std::size_t>(nodes, std::size_t{1} << 20));
    g.m_longitudeShift.reserve(std::min<std::size_t>(nodes, std::size_t{1} << 20));
    for (std::size_t i = 0; i < nodes; ++i) {
        double latitudeShift = 0, longitudeShift = 0;
        if (!reader.next(line))
            return fail(messages::kNodesTruncated);
        if (std::sscanf(line.c_str(), "%10lf%10lf", &latitudeShift, &longitudeShift) != 2 ||
            !std::isfinite(latitudeShift) || !std::isfinite(longitudeShift))
            return fail(messages::kBadNode);
        g.m_latitudeShift.push_back(static_cast<float>(latitudeShift));
        g.m_longitudeShift.push_back(static_cast<float>(longitudeShift));
    }
    grid = std::move(g);
    return Status::success();
}

Status Ntv2Grid::shiftAt(double latitude, double longitude, double &latitudeSeconds,
                         double &longitudeSeconds) const {
    const double lat = latitude * 3600.0, west = -longitude * 3600.0;
    if (m_rows < 2 || m_columns < 2 || !(lat >= m_south && lat <= m_north) ||
        !(west >= m_east && west <= m_west))
        return Status::failure(StatusCode::OutOfRange, tr(messages::kOutsideShiftGrid));
    const double y = (lat - m_south) / m_latitudeStep, x = (west - m_east) / m_longitudeStep;
    const int row = std::min(static_cast<int>(y), m_rows - 2),
              column = std::min(static_cast<int>(x), m_columns - 2);
    const double fy = y - row, fx = x - column;
    auto at = [this](const std::vector<float> &v, int r, int c) {
        return static_cast<double>(
            v[static_cast<std::size_t>(r) * static_cast<std::size_t>(m_columns) +
              static_cast<std::size_t>(c)]);
    };
    auto interpolate = [&](const std::vector<float> &v) {
        return (1 - fy) * ((1 - fx) * at(v, row, column) + fx * at(v, row, column + 1)) +
               fy * ((1 - fx) * at(v, row + 1, column) + fx * at(v, row + 1, column + 1));
    };
    latitudeSeconds = interpolate(m_latitudeShift);
    longitudeSeconds = -interpolate(m_longitudeShift);
    return Status::success();
}

Status Ntv2Grid::apply(double &latitude, double &longitude) const {
    double dLat = 0, dLon = 0;
    if (Status status = shiftAt(latitude, longitude, dLat, dLon); !status)
        return status;
    latitude += dLat / 3600.0;
    longitude += dLon / 3600.0;
    return Status::success();
}

} // namespace tramline::geodesy

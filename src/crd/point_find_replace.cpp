#include "crd/point_find_replace.h"

#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"
#include "crd/point_edit.h"

#include <algorithm>

namespace tramline::crd {

namespace {

int rowOf(const std::vector<CrdPoint> &points, const std::string &name) {
    for (std::size_t i = 0; i < points.size(); ++i)
        if (points[i].name == name)
            return static_cast<int>(i);
    return -1;
}

bool wanted(const PointReplace &replace, PointField field) {
    return replace.fields.empty() ||
           std::find(replace.fields.begin(), replace.fields.end(), field) != replace.fields.end();
}

} // namespace

std::optional<PointCell> findInPoints(const std::vector<CrdPoint> &points, CoordinateOrder order,
                                      std::string_view what, int row, int column) {
    const int rows = static_cast<int>(points.size());
    if (what.empty() || rows == 0)
        return std::nullopt;
    const auto columns = pointColumns(order);
    const int width = static_cast<int>(columns.size());
    const int startRow = std::clamp(row, 0, rows - 1);
    for (int step = 0; step <= rows; ++step) {
        const int r = (startRow + step) % rows;
        const int first = step == 0 ? column + 1 : 0;
        const int end = step == rows ? std::min(column + 1, width) : width;
        for (int c = std::max(first, 0); c < end; ++c)
            if (pointFieldText(points[static_cast<std::size_t>(r)], columns[c]).find(what) !=
                std::string::npos)
                return PointCell{r, c};
    }
    return std::nullopt;
}

long replaceInPoints(CoordinateFile &file, const PointReplace &replace, Interaction &ui) {
    std::vector<CrdPoint> points;
    if (replace.find.empty() || !readAllPoints(file, points))
        return 0;
    const auto columns = pointColumns(replace.order);
    long count = 0;
    // Points are followed by name: a renamed point moves to its place in
    // the file's order, and must neither be skipped nor met twice.
    const std::vector<CrdPoint> snapshot = points;
    for (const auto &start : snapshot) {
        std::string name = start.name;
        for (std::size_t c = 0; c < columns.size(); ++c) {
            const int r = rowOf(points, name);
            if (r < 0)
                break;
            if (!wanted(replace, columns[c]))
                continue;
            const CrdPoint &point = points[static_cast<std::size_t>(r)];
            const std::string text = pointFieldText(point, columns[c]);
            if (text.find(replace.find) == std::string::npos)
                continue;
            if (replace.confirmEach) {
                const ReplaceAnswer answer =
                    askReplace(ui, static_cast<long>(r + 1), static_cast<long>(c + 1));
                if (answer == ReplaceAnswer::Skip)
                    continue;
                if (answer == ReplaceAnswer::Stop)
                    return count;
            }
            long hits = 0;
            const std::string changed = replaceAll(text, replace.find, replace.replace, hits);
            if (changed == text)
                continue;
            CrdPoint stored;
            if (Status status = editPointField(file, point, columns[c], changed, stored); !status) {
                ui.message(status.message);
                continue;
            }
            count += hits;
            if (columns[c] == PointField::Name) {
                name = stored.name;
                readAllPoints(file, points);
            } else {
                points[static_cast<std::size_t>(r)] = stored;
            }
        }
    }
    return count;
}

} // namespace tramline::crd

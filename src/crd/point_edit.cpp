#include "crd/point_edit.h"

#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"
#include "base/unset.h"
#include "crd/point_rename.h"

namespace tramline::crd {

namespace {

Status writeAndReadBack(CoordinateFile &file, const CrdPoint &point, CrdPoint &stored) {
    if (!file.writePoint(point, Verbosity::Quiet))
        return Status::failure(StatusCode::InvalidInput, errorText(file.lastError()));
    // The file may have cut the description or normalised the name.
    stored = point;
    file.readPoint(point.name, stored, PointSearch::Exact, Verbosity::Quiet);
    return Status::success();
}

} // namespace

Status editPointField(CoordinateFile &file, const CrdPoint &point, PointField field,
                      std::string_view text, CrdPoint &stored) {
    if (field == PointField::Description) {
        CrdPoint changed = point;
        changed.description = std::string(text);
        Status status = writeAndReadBack(file, changed, stored);
        if (status)
            file.addHistory(&point, &stored, kHistoryOperationEditPoints);
        return status;
    }
    const std::string_view trimmed = trim(text);
    if (field == PointField::Name)
        return renamePoint(file, point.name, trimmed, &stored);
    double number = kUnsetPositive;
    if (!(field == PointField::Elevation && trimmed.empty()) && !parseNumber(trimmed, number))
        return Status::failure(StatusCode::InvalidInput, format(tr("Error: %s is not a number"),
                                                                std::string(trimmed).c_str()));
    CrdPoint changed = point;
    (field == PointField::Northing  ? changed.northing
     : field == PointField::Easting ? changed.easting
                                    : changed.elevation) = number;
    Status status = writeAndReadBack(file, changed, stored);
    if (status)
        file.addHistory(&point, &stored, kHistoryOperationEditPoints);
    return status;
}

std::string nextPointName(const CoordinateFile &file) {
    const std::string highest = file.highestName();
    if (highest.empty())
        return "1";
    // Nine digits or more could pass the largest number a name holds.
    if (highest.find_first_not_of("0123456789") == std::string::npos && highest.size() < 9)
        return std::to_string(std::stol(highest) + 1);
    return {};
}

Status addPoint(CoordinateFile &file, const CrdPoint &point, CrdPoint *stored) {
    if (Status free = checkNameFree(file, point.name); !free)
        return free;
    CrdPoint kept;
    Status status = writeAndReadBack(file, point, kept);
    if (!status)
        return status;
    file.addHistory(nullptr, &kept, kHistoryOperationInputEdit);
    if (stored)
        *stored = kept;
    return status;
}

} // namespace tramline::crd

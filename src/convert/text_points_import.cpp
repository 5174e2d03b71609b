#include "convert/text_points_import.h"

#include "base/line_reader.h"
#include "base/text.h"
#include "base/translation.h"

#include <charconv>
#include <cmath>

namespace tramline::convert {

namespace {

constexpr bool isIdentifier(char c) {
    const char u = toUpperAscii(c);
    return u == 'P' || u == 'N' || u == 'E' || u == 'Z' || u == 'D' || u == 'S';
}

// Reads a number the way the C library does: leading blanks, a sign,
// digits; what follows is ignored. False when no number starts the text.
bool leadingNumber(std::string_view text, double &value) {
    text = trimLeft(text);
    if (!text.empty() && text.front() == '+')
        text.remove_prefix(1);
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end != text.data() && std::isfinite(value);
}

// The next field of the line: up to the delimiter, or, for a blank
// delimiter, the next word (runs of blanks count as one).
std::string_view nextField(std::string_view &rest, char delimiter, bool &present) {
    if (delimiter == ' ')
        rest = trimLeft(rest);
    present = !rest.empty();
    const std::size_t end = rest.find(delimiter);
    const std::string_view field = rest.substr(0, end);
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    return field;
}

} // namespace

const std::vector<std::string> &commonPointFormats() {
    static const std::vector<std::string> formats = {
        "P N E Z D", "P,N,E,Z,D", "P E N Z D", "P,E,N,Z,D", "P N E Z", "P,N,E,Z",
        "P E N Z",   "P,E,N,Z",   "N E Z D",   "N,E,Z,D",   "E N Z D", "E,N,Z,D",
        "N E Z",     "N,E,Z",     "E N Z",     "E,N,Z"};
    return formats;
}

Status parseCoordinateOrder(std::string_view text, PointColumns &columns) {
    columns = PointColumns{};
    bool previousLetter = false;
    bool delimiterSet = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (isIdentifier(c)) {
            if (previousLetter)
                return Status::failure(
                    StatusCode::InvalidInput,
                    tr("Invalid Coordinate Order - no delimiter between identifiers"));
            columns.letters += toUpperAscii(c);
            previousLetter = true;
            if (!delimiterSet && i + 1 < text.size()) {
                columns.delimiter = text[i + 1] == ',' ? ',' : ' ';
                delimiterSet = true;
            }
        } else {
            previousLetter = false;
        }
    }
    if (columns.letters.empty())
        return Status::failure(StatusCode::InvalidInput,
                               tr("Invalid Coordinate Order - no identifiers found"));
    return Status::success();
}

bool readPointLine(std::string_view line, const PointColumns &columns, PointNames names,
                   crd::CrdPoint &point) {
    // Most lines need neither change: they are read where they lie.
    std::string changed;
    if (line.find('\t') != std::string_view::npos ||
        (columns.delimiter == ',' && line.find(",,") != std::string_view::npos)) {
        changed.assign(line);
        for (char &c : changed)
            if (c == '\t')
                c = columns.delimiter;
        if (columns.delimiter == ',') {
            // Empty fields keep their place.
            for (std::size_t at; (at = changed.find(",,")) != std::string::npos;)
                changed.insert(at + 1, " ");
        }
        line = changed;
    }
    point.name.clear();
    point.description.clear();
    point.code.clear();
    point.locked = 0;
    point.northing = point.easting = point.elevation = 0.0;
    std::string_view rest = line;
    bool named = false, hasCoordinate = false;
    for (const char letter : columns.letters) {
        if (letter == 'D') {
            point.description.assign(trim(rest));
            rest = {};
            continue;
        }
        bool present = false;
        const std::string_view field = nextField(rest, columns.delimiter, present);
        if (!present)
            continue;
        if (letter == 'P') {
            if (names == PointNames::Alphanumeric) {
                point.name.assign(trim(field).substr(0, crd::kMaxPointText));
            } else {
                double number = 0.0;
                if (leadingNumber(field, number) && number >= 1.0 && number < 2147483648.0)
                    point.name = std::to_string(long(number));
            }
            named = true;
            if (point.name.empty())
                return false;
        } else if (letter == 'N' || letter == 'E' || letter == 'Z') {
            double value = 0.0;
            if (!trim(field).empty() && !leadingNumber(field, value))
                return false;
            (letter == 'N'   ? point.northing
             : letter == 'E' ? point.easting
                             : point.elevation) = value;
            hasCoordinate = true;
        }
    }
    (void)named;
    return hasCoordinate;
}

Status readTextPoints(std::istream &in, const PointColumns &columns, PointNames names,
                      TextPointsRead &read) {
    LineReader reader(in, 124);
    std::string line;
    crd::CrdPoint point;
    while (reader.next(line)) {
        if (line.size() < 3)
            continue;
        ++read.lines;
        if (readPointLine(line, columns, names, point))
            read.points.push_back(point);
        else
            ++read.notPoints;
    }
    if (reader.failed())
        return Status::failure(StatusCode::Io, tr("Error: unable to read file"),
                               reader.lineNumber());
    return Status::success();
}

void numberUnnamedPoints(std::vector<crd::CrdPoint> &points, std::string_view existingHighest) {
    long next = 1;
    double highest = 0.0;
    if (leadingNumber(existingHighest, highest) && highest >= 1.0 && highest < 2147483647.0)
        next = long(highest) + 1;
    for (auto &point : points)
        if (point.name.empty())
            point.name = std::to_string(next++);
}

} // namespace tramline::convert

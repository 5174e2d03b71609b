#include "cli/coordinate_line.h"

#include <charconv>

namespace tramline::cli {

namespace {

bool isSeparator(char c) {
    return c == ' ' || c == '\t' || c == ',' || c == '\r';
}

std::size_t skipSeparators(std::string_view s, std::size_t at) {
    while (at < s.size() && isSeparator(s[at]))
        ++at;
    return at;
}

// A number that fills its whole field ("12.5x" is not one).
bool readNumber(std::string_view s, std::size_t &at, double &value) {
    const char *begin = s.data() + at;
    const char *end = s.data() + s.size();
    if (begin != end && *begin == '+')
        ++begin;
    const auto [ptr, ec] = std::from_chars(begin, end, value);
    if (ec != std::errc() || (ptr != end && !isSeparator(*ptr)))
        return false;
    at = static_cast<std::size_t>(ptr - s.data());
    return true;
}

} // namespace

LineKind parseCoordinateLine(std::string_view line, CoordinateLine &out) {
    std::size_t at = skipSeparators(line, 0);
    if (at == line.size() || line[at] == '#')
        return LineKind::Skip;
    out = CoordinateLine{};
    if (!readNumber(line, at, out.first))
        return LineKind::Bad;
    at = skipSeparators(line, at);
    if (!readNumber(line, at, out.second))
        return LineKind::Bad;
    at = skipSeparators(line, at);
    std::size_t third = at;
    if (readNumber(line, third, out.third)) {
        out.hasThird = true;
        at = skipSeparators(line, third);
    }
    std::size_t end = line.size();
    while (end > at && isSeparator(line[end - 1]))
        --end;
    out.rest = line.substr(at, end - at);
    return LineKind::Point;
}

} // namespace tramline::cli

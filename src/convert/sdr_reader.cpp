#include "convert/sdr_reader.h"

#include "base/text.h"

#include <charconv>
#include <cmath>

namespace tramline::convert::sdr {

namespace {

constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

constexpr bool isLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

} // namespace

std::string_view recordText(std::string_view line) {
    while (!line.empty() && (line.front() == '\x02' || line.front() == '\x03'))
        line.remove_prefix(1);
    return line;
}

int recordType(std::string_view record) {
    if (record.size() < 2 || !isDigit(record[0]) || !isDigit(record[1]))
        return -1;
    return (record[0] - '0') * 10 + (record[1] - '0');
}

std::string_view field(std::string_view record, std::size_t start, std::size_t width) {
    if (start >= record.size())
        return {};
    return record.substr(start, width);
}

std::string name(std::string_view record, std::size_t start, std::size_t width) {
    return std::string(trim(field(record, start, width)));
}

double number(std::string_view record, std::size_t start, std::size_t width, bool *present) {
    std::string_view text = trimLeft(field(record, start, width));
    if (!text.empty() && text.front() == '+')
        text.remove_prefix(1);
    double value = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    // "nan" and "inf" are no field values: a broken record reads as empty.
    const bool ok = error == std::errc() && end != text.data() && std::isfinite(value);
    if (present)
        *present = ok;
    return ok ? value : 0.0;
}

bool findHeader(const SourceLines &lines, Header &header) {
    for (const auto &line : lines) {
        const std::string_view record = recordText(line.text);
        if (!record.starts_with("00"))
            continue;
        header = Header{};
        header.layout = field(record, 7, 1) == "2" ? Layout::Sdr2x : Layout::Sdr33;
        header.gons = field(record, 40, 1) == "2";
        header.metres = field(record, 41, 1) == "1";
        header.northingFirst = field(record, 44, 1) != "2";
        header.program = std::string(trim(field(record, 4, 20)));
        header.date = std::string(trim(field(record, 24, 9)));
        header.time = std::string(trim(field(record, 34, 5)));
        return true;
    }
    return false;
}

Header substituteHeader(Layout layout) {
    Header header;
    header.layout = layout;
    return header;
}

bool looksLikeSdr(const SourceLines &lines) {
    for (const auto &line : lines) {
        const std::string_view record = recordText(line.text);
        if (recordType(record) >= 0 && record.size() >= 4 && isLetter(record[2]) &&
            isLetter(record[3]))
            return true;
    }
    return false;
}

} // namespace tramline::convert::sdr

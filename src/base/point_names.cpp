#include "base/point_names.h"

#include "base/text.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace tramline {

namespace {
bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

char upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
unsigned char lower(char c) {
    return static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
}

// Case-blind comparison by lower-case bytes, as the C library's own does:
// it decides where '_' stands against letters, and so the order on disk.
int compareIgnoringCase(std::string_view a, std::string_view b) {
    const size_t n = std::min(a.size(), b.size());
    for (size_t i = 0; i < n; ++i)
        if (lower(a[i]) != lower(b[i]))
            return lower(a[i]) < lower(b[i]) ? -1 : 1;
    return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
}

// The leading digits as a whole number; too many digits give the largest
// long, as strtol does.
long leadingLong(std::string_view s) {
    long value = 0;
    const auto r = std::from_chars(s.data(), s.data() + s.size(), value);
    if (r.ec == std::errc::result_out_of_range)
        return std::numeric_limits<long>::max();
    return value;
}

// The leading decimal number (fraction and exponent allowed), read the
// same way whatever the locale's decimal point.
double leadingDouble(std::string_view s) {
    double value = 0.0;
    const auto r = std::from_chars(s.data(), s.data() + s.size(), value);
    if (r.ec == std::errc::result_out_of_range) {
        // Too large is infinite, too small is zero, as strtod rounds them.
        const std::string_view number = s.substr(0, static_cast<size_t>(r.ptr - s.data()));
        const size_t e = number.find_first_of("eE");
        return e != std::string_view::npos && e + 1 < number.size() && number[e + 1] == '-'
                   ? 0.0
                   : std::numeric_limits<double>::infinity();
    }
    return value;
}

template <typename T> int compareValues(T x, T y) {
    return x < y ? -1 : (x > y ? 1 : 0);
}

} // namespace

std::int64_t plainPointNumber(std::string_view name) {
    if (name.empty() || name.size() > 18 || (name.size() > 1 && name.front() == '0'))
        return -1;
    std::int64_t value = 0;
    for (const char c : name) {
        if (!isDigit(c))
            return -1;
        value = value * 10 + (c - '0');
    }
    return value;
}

int comparePointNames(std::string_view a, std::string_view b) {
    if (a.empty() && b.empty())
        return 0;
    // Numbered points are most of every file: settle them without parsing.
    if (const std::int64_t x = plainPointNumber(a), y = plainPointNumber(b); x >= 0 && y >= 0)
        return (x > y) - (x < y);
    const size_t shorter = std::min(a.size(), b.size());
    for (size_t i = 0; i < shorter; ++i) {
        if (isDigit(a[i]) && isDigit(b[i])) {
            // A '.' anywhere in the rest means the number may have a
            // fraction (1.5 after 1.10), else whole numbers decide.
            const std::string_view ra = a.substr(i), rb = b.substr(i);
            const bool fractional =
                ra.find('.') != std::string_view::npos || rb.find('.') != std::string_view::npos;
            const int c = fractional ? compareValues(leadingDouble(ra), leadingDouble(rb))
                                     : compareValues(leadingLong(ra), leadingLong(rb));
            if (c != 0)
                return c;
            continue; // equal values: go on one character at a time
        }
        if (upper(a[i]) != upper(b[i]))
            return compareIgnoringCase(a.substr(i), b.substr(i));
    }
    return compareIgnoringCase(a, b);
}

bool PointList::parse(std::string_view text) {
    m_items.clear();
    while (true) {
        const size_t comma = text.find(',');
        const std::string_view item = trim(text.substr(0, comma));
        if (item.empty())
            return false;
        // A dash inside the item (not at its start) splits a range.
        const size_t dash = item.find('-', 1);
        if (dash == std::string_view::npos) {
            m_items.push_back({std::string(item), {}});
        } else {
            const std::string_view first = trim(item.substr(0, dash));
            const std::string_view last = trim(item.substr(dash + 1));
            if (first.empty() || last.empty())
                return false;
            if (comparePointNames(first, last) <= 0)
                m_items.push_back({std::string(first), std::string(last)});
            else
                m_items.push_back({std::string(last), std::string(first)});
        }
        if (comma == std::string_view::npos)
            break;
        text.remove_prefix(comma + 1);
    }
    return true;
}

bool PointList::contains(std::string_view name) const {
    for (const auto &item : m_items) {
        if (item.last.empty()) {
            if (comparePointNames(name, item.first) == 0)
                return true;
        } else if (comparePointNames(item.first, name) <= 0 &&
                   comparePointNames(name, item.last) <= 0) {
            return true;
        }
    }
    return false;
}

} // namespace tramline

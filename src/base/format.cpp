#include "base/format.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <vector>

namespace tramline {

std::string vformat(const char *pattern, va_list args) {
    char small[256];
    va_list copy;
    va_copy(copy, args);
    const int needed = std::vsnprintf(small, sizeof small, pattern, copy);
    va_end(copy);
    if (needed < 0)
        return {};
    if (static_cast<size_t>(needed) < sizeof small)
        return std::string(small, static_cast<size_t>(needed));
    std::string out(static_cast<size_t>(needed) + 1, '\0');
    std::vsnprintf(out.data(), out.size(), pattern, args);
    out.resize(static_cast<size_t>(needed));
    return out;
}

std::string format(const char *pattern, ...) {
    va_list args;
    va_start(args, pattern);
    std::string out = vformat(pattern, args);
    va_end(args);
    return out;
}

void appendFormat(std::string &out, const char *pattern, ...) {
    va_list args;
    va_start(args, pattern);
    out += vformat(pattern, args);
    va_end(args);
}

namespace {

// "%*.*f" for the common case: a value that, scaled to an integer of
// decimal places, is inside the exact range of a double and not on a
// rounding tie. Then the rounded integer is the correctly rounded result
// of the exact value, and its digits with a decimal point are what printf
// writes. The text is built from its last digit backwards, padding
// included, and ends at `end`; false (nothing written) for the rest, which
// takes the general route. Listings write millions of these.
bool fixedByInteger(char *end, double value, int decimals, int width, char *&begin) {
    static constexpr double kPowers[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};
    if (decimals < 0 || decimals > 9 || !std::isfinite(value) || width > 32)
        return false;
    const double scaled = std::fabs(value) * kPowers[decimals];
    if (scaled >= 0x1p52)
        return false;
    const double whole = std::floor(scaled);
    const double fraction = scaled - whole; // exact
    // Rounding the product to nearest never carries it past a tie, which
    // is a double here: only a product that lands on one may have come
    // from either side of it.
    if (fraction == 0.5)
        return false;
    auto digits = static_cast<unsigned long long>(whole) + (fraction > 0.5 ? 1 : 0);
    char *p = end;
    for (int i = 0; i < decimals; ++i) {
        *--p = char('0' + digits % 10);
        digits /= 10;
    }
    if (decimals > 0)
        *--p = '.';
    do {
        *--p = char('0' + digits % 10);
        digits /= 10;
    } while (digits != 0);
    if (std::signbit(value))
        *--p = '-'; // printf keeps the sign of a negative zero
    while (end - p < width)
        *--p = ' ';
    begin = p;
    return true;
}

} // namespace

void appendFixed(std::string &out, double value, int decimals, int width) {
    char buffer[400];
    char *const end = buffer + sizeof buffer;
    char *begin = nullptr;
    if (fixedByInteger(end, value, decimals, width, begin)) {
        out.append(begin, static_cast<size_t>(end - begin));
        return;
    }
    const auto [last, ec] = std::to_chars(buffer, end, value, std::chars_format::fixed, decimals);
    if (ec != std::errc()) {
        out += format("%*.*f", width, decimals, value);
        return;
    }
    const auto length = static_cast<size_t>(last - buffer);
    if (width > 0 && length < static_cast<size_t>(width))
        out.append(static_cast<size_t>(width) - length, ' ');
    out.append(buffer, length);
}

void appendPadded(std::string &out, std::string_view text, size_t width, bool right, bool cut) {
    if (cut && text.size() > width)
        text = text.substr(0, width);
    const size_t pad = text.size() < width ? width - text.size() : 0;
    if (right)
        out.append(pad, ' ');
    out.append(text);
    if (!right)
        out.append(pad, ' ');
}

bool parseNumber(std::string_view text, double &value) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t'))
        text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t' || text.back() == '\r'))
        text.remove_suffix(1);
    if (!text.empty() && text.front() == '+')
        text.remove_prefix(1);
    if (text.empty())
        return false;
    // from_chars: locale-free and several times faster than strtod, which
    // matters when a million records are read. It takes no "nan", "inf" or
    // hex without being asked to, and no survey value is any of those.
    double v = 0.0;
    const auto [end, ec] =
        std::from_chars(text.data(), text.data() + text.size(), v, std::chars_format::general);
    if (ec != std::errc() || end != text.data() + text.size())
        return false;
    if (!std::isfinite(v))
        return false;
    value = v;
    return true;
}

} // namespace tramline

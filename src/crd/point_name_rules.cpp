#include "crd/point_name_rules.h"

#include "base/text.h"
#include "crd/crd_errors.h"
#include "crd/record_layout.h"

#include <charconv>
#include <limits>

namespace tramline::crd {

namespace {
bool isSpaceOrTab(char c) {
    return c == ' ' || c == '\t';
}
bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// Narrower than trim(): names keep a leading line end or form feed, which
// the name rules then refuse, as other programs reading the file do.
std::string_view trimBlanks(std::string_view s) {
    while (!s.empty() && isSpaceOrTab(s.front()))
        s.remove_prefix(1);
    while (!s.empty() && isSpaceOrTab(s.back()))
        s.remove_suffix(1);
    return s;
}
} // namespace

std::string normaliseAlphanumericName(std::string_view name) {
    while (!name.empty() &&
           (isSpaceOrTab(name.back()) || name.back() == '\r' || name.back() == '\n'))
        name.remove_suffix(1);
    std::string out(trimBlanks(name));
    for (char &c : out) {
        if (c == '-' || c == ',')
            c = '_';
        else
            c = toUpperAscii(c);
    }
    return out;
}

int checkAlphanumericName(std::string_view normalised) {
    if (normalised.empty())
        return kNameBlank;
    if (normalised.size() > layout::kMaxAlphaName)
        return kNameTooLong;
    for (char c : normalised)
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f)
            return kNameInvalidCharacter;
    return kNoError;
}

int parseNumericName(std::string_view name, long &number) {
    std::string_view digits = trimBlanks(name);
    if (digits.empty())
        return kNameNotNumeric;
    for (char c : digits)
        if (!isDigit(c))
            return kNameNotNumeric;
    while (digits.size() > 1 && digits.front() == '0')
        digits.remove_prefix(1);
    long value = 0;
    const auto r = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (r.ec != std::errc() || r.ptr != digits.data() + digits.size())
        return kNameNotNumeric; // too long to come back from "%ld"
    if (value < 1)
        return kNameTooLow;
    if (value >= kNumericNameLimit)
        return kNameTooHigh;
    number = value;
    return kNoError;
}

long leadingPointNumber(std::string_view name) {
    while (!name.empty() &&
           (isSpaceOrTab(name.front()) || name.front() == '\n' || name.front() == '\r'))
        name.remove_prefix(1);
    bool negative = false;
    if (!name.empty() && (name.front() == '+' || name.front() == '-')) {
        negative = name.front() == '-';
        name.remove_prefix(1);
    }
    long value = 0;
    const auto r = std::from_chars(name.data(), name.data() + name.size(), value);
    if (r.ec == std::errc::result_out_of_range)
        return negative ? std::numeric_limits<long>::min() : std::numeric_limits<long>::max();
    if (r.ec != std::errc())
        return 0;
    return negative ? -value : value;
}

} // namespace tramline::crd

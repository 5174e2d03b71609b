// printf-style formatting into std::string. The file formats of the field
// are defined by printf patterns ("SD%.4f", "N %s"), so we keep them as
// they are rather than translating them into another formatting language.
#pragma once

#include <cstdarg>
#include <string>
#include <string_view>

namespace tramline {

#if defined(__GNUC__)
#define TRAMLINE_PRINTF(fmt, args) __attribute__((format(printf, fmt, args)))
#else
#define TRAMLINE_PRINTF(fmt, args)
#endif

/// Formats like snprintf and returns the whole text, however long.
std::string format(const char *pattern, ...) TRAMLINE_PRINTF(1, 2);
std::string vformat(const char *pattern, va_list args);

/// Appends formatted text to `out`.
void appendFormat(std::string &out, const char *pattern, ...) TRAMLINE_PRINTF(2, 3);

/// Appends `value` with `decimals` places, right-aligned in `width`
/// characters: what "%*.*f" gives, without printf's cost, for reports
/// that list a million points.
void appendFixed(std::string &out, double value, int decimals, int width = 0);

/// Appends `text` padded with blanks to `width`; left-aligned unless
/// `right`. Longer text is cut when `cut` (like "%-9.9s").
void appendPadded(std::string &out, std::string_view text, size_t width, bool right = false,
                  bool cut = false);

/// Parses a whole text as a number (leading and trailing blanks allowed).
/// False for empty text, trailing garbage, or a value out of range.
bool parseNumber(std::string_view text, double &value);

} // namespace tramline

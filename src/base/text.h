// Small text helpers that every reader of field files needs: trimming,
// case folding (ASCII only: instrument formats are ASCII, and a locale must
// never change how a field code compares), splitting and prefix tests.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tramline {

/// True for blank, tab, CR, LF, FF and VT.
constexpr bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f' || c == '\v';
}

/// `text` without leading and trailing blanks.
std::string_view trim(std::string_view text);
std::string_view trimLeft(std::string_view text);
std::string_view trimRight(std::string_view text);

constexpr char toLowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c;
}
constexpr char toUpperAscii(char c) {
    return c >= 'a' && c <= 'z' ? char(c - 'a' + 'A') : c;
}

std::string toLower(std::string_view text);
std::string toUpper(std::string_view text);

/// Equal when folded to one case.
bool equalsIgnoreCase(std::string_view a, std::string_view b);

/// Prefix tests; the case-sensitive one is string_view::starts_with.
bool startsWithIgnoreCase(std::string_view text, std::string_view prefix);

/// Splits at every `separator`: "a,,b" gives "a", "", "b"; an empty text
/// gives one empty field. The pieces point into `text`.
std::vector<std::string_view> split(std::string_view text, char separator);

/// Splits at `separator` into at most `maxFields` pieces; the last piece
/// keeps the rest of the text, separators and all (a note after the last
/// field may hold commas). `out` is cleared first and reused.
void splitAtMost(std::string_view text, char separator, std::size_t maxFields,
                 std::vector<std::string_view> &out);

/// `text` with every `what` replaced by `with`, left to right without
/// overlaps; `count` says how many were replaced. An empty `what` replaces
/// nothing.
std::string replaceAll(std::string_view text, std::string_view what, std::string_view with,
                       long &count);

/// Splits "key=value" at the first `separator`, both sides trimmed. False
/// when there is no separator.
bool splitKeyValue(std::string_view text, char separator, std::string_view &key,
                   std::string_view &value);

/// At most `maxBytes` bytes of `text`, cut before a UTF-8 character that
/// would not fit whole (a description must not end in half a character).
std::string_view cutAtCharacter(std::string_view text, std::size_t maxBytes);

/// `text` as XML character data or an attribute value, whichever quote the
/// attribute takes: &, <, >, ' and " as entities, control characters other
/// than tab and line end (which XML forbids) dropped.
std::string xmlEscaped(std::string_view text);

/// As xmlEscaped(), appended to `out`: text that needs nothing, the most,
/// is copied whole.
void appendXmlEscaped(std::string &out, std::string_view text);

} // namespace tramline

// What makes a point name acceptable to each layout of ".crd" file.
#pragma once

#include <string>
#include <string_view>

namespace tramline::crd {

/// Point numbers of numeric files run from 1 to 99999.
inline constexpr long kNumericNameLimit = 100000;

/// The name as alphanumeric files keep it: blanks cut at both ends (and CR
/// and LF at the end), '-' and ',' turned into '_', a-z into A-Z.
std::string normaliseAlphanumericName(std::string_view name);

/// 0 when a normalised name can be stored in an alphanumeric file; else 2
/// (empty), 1 (more than 9 characters) or 5 (a control character, which
/// the fixed name field could not keep faithfully).
int checkAlphanumericName(std::string_view normalised);

/// The point number of a name written to a numeric file: 0 and `number`
/// set, or 52 (not a plain number once blanks are cut: 12A, 1.5, -3), 3
/// (below 1) or 4 (100000 or above). Leading zeros are allowed: 007 is 7.
int parseNumericName(std::string_view name, long &number);

/// The number a name asks for when reading a numeric file: its leading
/// whole number as atol reads it (0 when there is none, the largest long
/// when too long).
long leadingPointNumber(std::string_view name);

} // namespace tramline::crd

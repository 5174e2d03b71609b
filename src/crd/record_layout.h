// The byte layouts of ".crd" files: little-endian IEEE doubles and
// NUL-terminated text fields whose bytes after the NUL are zero.
//
// Numeric layout: 56-byte records; record 0 is the header (highest point
// number, header number, date as YYYY.MMDD, title[32]); record n is point
// n (northing, easting, elevation, description[32]).
//
// Alphanumeric layout: a 104-byte header (header number, date text[32],
// title[32], format mark[32]) and then 66-byte records sorted by name
// (northing, easting, elevation, description[32], name[10]).
#pragma once

#include "crd/crd_point.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tramline::crd::layout {

inline constexpr std::size_t kNumericRecordSize = 56;
inline constexpr std::size_t kAlphaHeaderSize = 104;
inline constexpr std::size_t kAlphaRecordSize = 66;

inline constexpr std::size_t kTextField = 32;      // title, date, description, mark
inline constexpr std::size_t kNameField = 10;      // alphanumeric point name
inline constexpr std::size_t kMaxDescription = 31; // characters that reach the file
inline constexpr std::size_t kMaxAlphaName = 9;

// Offsets inside the numeric header and records.
inline constexpr std::size_t kNumHighest = 0, kNumNumber = 8, kNumDate = 16, kNumTitle = 24;
// Offsets inside the alphanumeric header.
inline constexpr std::size_t kAlphaNumber = 0, kAlphaDate = 8, kAlphaTitle = 40, kAlphaMark = 72;
// Offsets inside a point record (both layouts).
inline constexpr std::size_t kNorthing = 0, kEasting = 8, kElevation = 16, kDescription = 24,
                             kName = 56;

inline constexpr std::string_view kMarkPrefix = "New CRD Format"; // 14 characters
inline constexpr std::string_view kMarkSorted = "New CRD Format2";

/// Numeric-layout marker of a point at 0, 0, 0: an elevation of 1e-6 keeps
/// its record from reading as an empty slot.
inline constexpr double kZeroPointElevation = 1e-6;

void putDouble(unsigned char *at, double value);
double getDouble(const unsigned char *at);

/// Writes `text` into a field of `fieldSize` bytes: at most fieldSize - 1
/// characters, then zeros to the end of the field.
void putText(unsigned char *at, std::size_t fieldSize, std::string_view text);
/// The text of a field: up to its first NUL, at most `maxChars` characters.
std::string getText(const unsigned char *at, std::size_t fieldSize, std::size_t maxChars);

/// True when the 104 header bytes carry the alphanumeric mark: the text at
/// offset 72 (at most 31 characters) is longer than 5 characters and begins
/// with "New CRD Format".
bool hasAlphaMark(const unsigned char *header);
/// True when the mark is of the first, unsorted revision (its 15th
/// character is not '2').
bool isFirstRevisionMark(const unsigned char *header);

/// The tail of an alphanumeric file moves through at most 1000 records
/// (66,000 bytes) at a time.
inline constexpr long kMaxMoveRecords = 1000;

using NumericRecord = std::array<unsigned char, kNumericRecordSize>;
using AlphaRecord = std::array<unsigned char, kAlphaRecordSize>;

inline std::uint64_t numericOffset(long record) {
    return static_cast<std::uint64_t>(record) * kNumericRecordSize;
}
inline std::uint64_t alphaOffset(long index) {
    return kAlphaHeaderSize + static_cast<std::uint64_t>(index) * kAlphaRecordSize;
}

/// The name in an alphanumeric record.
std::string alphaName(const unsigned char *record);
/// Coordinates and description of a record (either layout); no name.
void fillPoint(const unsigned char *record, CrdPoint &point);
/// A numeric record whose three doubles are all 0.0: an unused number.
bool isEmptySlot(const unsigned char *record);
/// The description as it reaches the file: up to an embedded NUL, which
/// would end it there anyway.
inline std::string_view fileDescription(const std::string &description) {
    return std::string_view(description.c_str());
}
/// Names holding '.' may compare inconsistently (their digits are read as
/// decimals), so sorting shortcuts do not apply to them.
/// No NaN or infinity ever reaches a file (an unset elevation is finite).
inline bool hasFiniteCoordinates(const CrdPoint &point) {
    return std::isfinite(point.northing) && std::isfinite(point.easting) &&
           std::isfinite(point.elevation);
}

inline bool hasDot(const std::string &name) {
    return name.find('.') != std::string::npos;
}

} // namespace tramline::crd::layout

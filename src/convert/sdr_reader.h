// Reading SDR records: the header, the record type and fields taken by
// byte column. Real files run right-aligned point names straight into the
// next value and carry Windows-1251 text, so nothing here splits on blanks
// or decodes characters.
#pragma once

#include "convert/source_lines.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace tramline::convert::sdr {

enum class Layout {
    Sdr33, ///< 16-byte fields at columns 4, 20, 36, 52, 68, 84
    Sdr2x, ///< 4-byte point names, 10-byte numbers
};

struct Header {
    Layout layout = Layout::Sdr33;
    bool gons = false;         ///< angle digit '2' at column 40
    bool metres = true;        ///< distance digit '1' at column 41
    bool northingFirst = true; ///< cleared by '2' at column 44 (easting first)
    std::string program;       ///< columns 4-23: "SDR33 V04-04.02"
    std::string date;          ///< columns 24-32
    std::string time;          ///< columns 34-38
};

/// The record without the comms framing bytes (STX, ETX) some downloads
/// put in front of it.
std::string_view recordText(std::string_view line);

/// The record type: the value of the first two bytes, -1 when they are not
/// two digits.
int recordType(std::string_view record);

/// The bytes from `start`, at most `width` of them (`std::string_view::npos`:
/// to the end), stopped by the record's end.
std::string_view field(std::string_view record, std::size_t start, std::size_t width);

/// A point name: the field without blanks around it.
std::string name(std::string_view record, std::size_t start, std::size_t width);

/// A number read the way the C library reads one: leading blanks, a sign,
/// digits, and whatever follows ignored. `present` says whether a number
/// was there at all (an empty field reads as 0).
double number(std::string_view record, std::size_t start, std::size_t width,
              bool *present = nullptr);

/// Reads the header from the first "00" record. False when there is none.
bool findHeader(const SourceLines &lines, Header &header);

/// The header the "File Format" question stands in for: only the layout.
Header substituteHeader(Layout layout);

/// True when at least one line is an SDR record of a known type (two digits,
/// then two letters), so that a file of another format is refused instead
/// of being read as noise.
bool looksLikeSdr(const SourceLines &lines);

} // namespace tramline::convert::sdr

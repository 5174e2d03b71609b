// One GSI data word: a two-digit word index (what the value is), a
// four-character information field (input mode and unit code in
// measurement words, the block number in the block word), a sign and the
// data. Words are views into the line they were read from.
#pragma once

#include <string>
#include <string_view>

namespace tramline::convert::gsi {

struct Word {
    int index = -1;        ///< the word index, 0 to 99
    std::string_view info; ///< the information field, up to four characters
    char sign = '+';
    std::string_view data; ///< the data as written, without the blank after it
};

/// The unit code (last character of the information field), '.' when none.
char unitCode(const Word &word);

/// True for the word indices that carry angles (21 to 29).
bool isAngleWord(int index);

/// The value of a numeric word with its sign. Data with a decimal point is
/// read as it stands; data without one has as many decimals as its unit
/// code gives (angles: 5 for codes 2, 3 and 4, 4 for code 5; lengths: 3 for
/// 0 and 1, 4 for 6 and 7, 5 for 8), three when the code says nothing.
/// False when the value is missing: dashes, no digits, or other text.
bool numberOf(const Word &word, double &value);

/// An angle word in decimal degrees, by its unit code: 2 gons, 3 decimal
/// degrees, 4 degrees-minutes-seconds (ddd.mmsss), 5 mils; anything else
/// is taken as degrees-minutes-seconds. False when the value is missing.
bool angleDegrees(const Word &word, double &degrees);

/// True when a length word is in feet (unit codes 1 and 7).
bool inFeet(const Word &word);

/// A point number or text word as a name: the data without its leading
/// zeros and blanks ("00000000GDEM5415" gives "GDEM5415"); "0" when the
/// data holds nothing else.
std::string nameOf(const Word &word);

/// A text word (remark, description): as nameOf(), but empty when the data
/// holds only zeros.
std::string textOf(const Word &word);

} // namespace tramline::convert::gsi

// Reading a GSI line into its words. A line that begins with "*" is GSI-16
// (words of 24 characters from column 1), else GSI-8 (16 characters from
// column 0). Real files do not keep to the stride: words of 21 or 22
// characters, no blank after the last word, remarks with blanks in them.
// So each word's start is found from the shape of a word (two digits of
// word index, four of information, a sign), not counted.
#pragma once

#include "convert/gsi_word.h"

#include <string_view>
#include <vector>

namespace tramline::convert::gsi {

/// The data width of a line's words: 16 when the line begins with "*".
bool isGsi16(std::string_view line);

/// True when a word starts at `pos`: two digits, four information
/// characters without blanks, and a sign.
bool wordStartsAt(std::string_view line, std::size_t pos);

/// Splits `line` into `words` (cleared first). Leading blanks are skipped;
/// reading stops at the first place where no word starts. False when the
/// line holds no word at all.
bool readWords(std::string_view line, std::vector<Word> &words);

/// The first word of `words` with `index`, or null.
const Word *findWord(const std::vector<Word> &words, int index);

} // namespace tramline::convert::gsi

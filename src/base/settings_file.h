// Settings files ("tramline.ini" and the small ini files of the option
// dialogs): one setting a line, key "=" value. They are read in pieces of
// 221 characters like every text file of the program, so an overlong line
// reads as several lines and none of them can overflow a setting.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <istream>
#include <optional>
#include <string>
#include <string_view>

namespace tramline {

/// The settings reader's buffer, its terminating zero included.
inline constexpr std::size_t kSettingsLineBuffer = 222;

/// Splits a line at its first "=" into key and value, both as they stand
/// (blanks are the caller's to trim). False when there is no "=" or nothing
/// after it: such a line sets nothing.
bool splitSettingsLine(std::string_view line, std::string_view &key, std::string_view &value);

/// Hands every line (or piece of an overlong line) of `in` to `apply`.
void readSettingsLines(std::istream &in, const std::function<void(std::string_view)> &apply);
/// The same from a file; false when it cannot be opened.
bool readSettingsLines(const std::filesystem::path &path,
                       const std::function<void(std::string_view)> &apply);

/// A decimal integer as atoi reads it (leading blanks, a sign, digits, then
/// anything), but empty when there are no digits, so that such a value
/// leaves its setting alone instead of making it 0.
std::optional<int> parseSettingsInteger(std::string_view text);

/// The whole lines of the file whose key `owned` does not claim, each with
/// "\n", for a rewrite that keeps what other parts of the program (or other
/// versions) wrote. Empty lines go; "\r\n" ends become "\n". Empty when the
/// file cannot be read.
std::string otherSettingsLines(const std::filesystem::path &path,
                               const std::function<bool(std::string_view key)> &owned);
/// The same from a stream.
std::string otherSettingsLines(std::istream &in,
                               const std::function<bool(std::string_view key)> &owned);

} // namespace tramline

// The settings file "tramline.ini": one line a setting, key "=" value,
// read at start-up and written at exit. Only four keys are known; any other
// line is skipped, so a file from a newer or older version still reads.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace tramline::app {

inline constexpr const char *kSettingsFileName = "tramline.ini";

struct ShellSettings {
    std::string tmpdir;     ///< working folder, ending in a separator; empty: not set
    int angDisplayMode = 1; ///< 1 ddd.mmss, 0 gons
    int neOrder = 0;        ///< 0 northing first, 1 easting first
    int langMode = 0;       ///< 0 English, 1 the system's language
};

/// Applies one line (or one piece of an overlong line): split at the first
/// "=", the key compared exactly, numbers decimal. A line without a value,
/// an unknown key or a number that does not parse changes nothing.
void applySettingsLine(std::string_view line, ShellSettings &settings);

/// Reads the file in pieces of at most 221 characters (a longer line is
/// read as several lines). False when it cannot be opened; the settings
/// keep their values then.
bool readSettingsFile(const std::filesystem::path &path, ShellSettings &settings);

/// The file's text, always in the same order: tmpdir, ang_display_mode,
/// ne_order, lang_mode.
std::string settingsText(const ShellSettings &settings);

/// Writes the file whole or not at all. False when it cannot be written.
bool writeSettingsFile(const std::filesystem::path &path, const ShellSettings &settings);

} // namespace tramline::app

// The settings file "tramline.ini": one line a setting, key "=" value,
// read at start-up and written at exit. Only these keys are known; any other
// line is skipped, so a file from a newer or older version still reads, and
// kept when the file is written again.
#pragma once

#include "base/units.h"
#include "raw/display_modes.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace tramline::app {

inline constexpr const char *kSettingsFileName = "tramline.ini";

/// Which language the program shows: English, or the system's.
enum class LanguageMode : int { English, System };

/// Where the main window was when the program last ended (the frame's
/// normal geometry); width 0: never saved.
struct WindowPlace {
    int x = 0, y = 0, width = 0, height = 0;
    bool valid() const { return width > 0 && height > 0; }
};

/// The settings as the program uses them. In the file they are integers:
/// `ang_display_mode` 1 ddd.mmss and 0 gons, `ne_order` 0 northing first
/// and 1 easting first, `lang_mode` 0 English and 1 the system's language.
struct ShellSettings {
    std::string tmpdir; ///< working folder, ending in a separator; empty: not set
    AngleUnit angleDisplay = AngleUnit::DegreesMinutesSeconds;
    raw::CoordinateOrder coordinateOrder = raw::CoordinateOrder::NorthingEasting;
    LanguageMode language = LanguageMode::English;
    WindowPlace window; ///< `window` in the file: "x,y,width,height"
};

/// Applies one line (or one piece of an overlong line): split at the first
/// "=", the key compared exactly, numbers decimal. A line without a value,
/// an unknown key or a number that does not parse changes nothing; a number
/// other than the ones above means the default (ddd.mmss, northing first,
/// English) but for `ang_display_mode`, where anything but 0 is ddd.mmss.
void applySettingsLine(std::string_view line, ShellSettings &settings);

/// Reads the file in pieces of at most 221 characters (a longer line is
/// read as several lines). False when it cannot be opened; the settings
/// keep their values then.
bool readSettingsFile(const std::filesystem::path &path, ShellSettings &settings);

/// The file's text, always in the same order: tmpdir, ang_display_mode,
/// ne_order, lang_mode, and the window's place once it has one.
std::string settingsText(const ShellSettings &settings);

/// Writes the file whole or not at all, keeping the lines of keys the shell
/// does not own (the port settings) after its own. False when it cannot be
/// written.
bool writeSettingsFile(const std::filesystem::path &path, const ShellSettings &settings);

} // namespace tramline::app

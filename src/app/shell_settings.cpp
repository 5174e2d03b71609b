#include "app/shell_settings.h"

#include "base/atomic_save.h"
#include "base/format.h"
#include "base/settings_file.h"
#include "base/text.h"

namespace tramline::app {

namespace {

bool isShellKey(std::string_view key) {
    for (std::string_view shell : {"tmpdir", "ang_display_mode", "ne_order", "lang_mode", "window"})
        if (key == shell)
            return true;
    return false;
}

} // namespace

void applySettingsLine(std::string_view line, ShellSettings &settings) {
    std::string_view key, value;
    if (!splitSettingsLine(line, key, value))
        return;
    if (key == "tmpdir")
        settings.tmpdir.assign(value);
    else if (key == "ang_display_mode") {
        if (const auto n = parseSettingsInteger(value))
            settings.angleDisplay = *n == 0 ? AngleUnit::Gons : AngleUnit::DegreesMinutesSeconds;
    } else if (key == "ne_order") {
        if (const auto n = parseSettingsInteger(value))
            settings.coordinateOrder = *n == 1 ? raw::CoordinateOrder::EastingNorthing
                                               : raw::CoordinateOrder::NorthingEasting;
    } else if (key == "lang_mode") {
        if (const auto n = parseSettingsInteger(value))
            settings.language = *n == 1 ? LanguageMode::System : LanguageMode::English;
    } else if (key == "window") {
        const auto parts = split(value, ',');
        if (parts.size() != 4)
            return;
        int numbers[4];
        for (size_t i = 0; i < 4; ++i) {
            const auto n = parseSettingsInteger(trim(parts[i]));
            if (!n)
                return;
            numbers[i] = static_cast<int>(*n);
        }
        const WindowPlace place{numbers[0], numbers[1], numbers[2], numbers[3]};
        if (place.valid())
            settings.window = place;
    }
}

bool readSettingsFile(const std::filesystem::path &path, ShellSettings &settings) {
    return readSettingsLines(path,
                             [&](std::string_view line) { applySettingsLine(line, settings); });
}

std::string settingsText(const ShellSettings &settings) {
    std::string out;
    appendFormat(out, "tmpdir=%s\n", settings.tmpdir.c_str());
    appendFormat(out, "ang_display_mode=%d\n", settings.angleDisplay == AngleUnit::Gons ? 0 : 1);
    appendFormat(out, "ne_order=%d\n",
                 settings.coordinateOrder == raw::CoordinateOrder::EastingNorthing ? 1 : 0);
    appendFormat(out, "lang_mode=%d\n", settings.language == LanguageMode::System ? 1 : 0);
    if (settings.window.valid())
        appendFormat(out, "window=%d,%d,%d,%d\n", settings.window.x, settings.window.y,
                     settings.window.width, settings.window.height);
    return out;
}

bool writeSettingsFile(const std::filesystem::path &path, const ShellSettings &settings) {
    // Lines the shell does not own (the port dialog's, a newer version's)
    // stay, after the shell's own keys.
    std::string text = settingsText(settings) + otherSettingsLines(path, isShellKey);
    return saveTextAtomically(path, text);
}

} // namespace tramline::app

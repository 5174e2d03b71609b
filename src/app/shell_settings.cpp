#include "app/shell_settings.h"

#include "base/atomic_save.h"
#include "base/format.h"
#include "base/line_reader.h"
#include "base/text.h"

#include <charconv>
#include <fstream>
#include <optional>

namespace tramline::app {

namespace {

// Decimal, as atoi reads it (leading blanks, then digits), but a value
// without digits leaves the setting alone rather than making it 0.
std::optional<int> parseInteger(std::string_view text) {
    text = trimLeft(text);
    if (!text.empty() && text.front() == '+')
        text.remove_prefix(1);
    int parsed = 0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), parsed, 10);
    if (ec != std::errc() || end == text.data())
        return std::nullopt;
    return parsed;
}

bool isShellKeyLine(std::string_view line) {
    for (std::string_view key :
         {"tmpdir=", "ang_display_mode=", "ne_order=", "lang_mode=", "window="})
        if (line.starts_with(key))
            return true;
    return false;
}

} // namespace

void applySettingsLine(std::string_view line, ShellSettings &settings) {
    const size_t eq = line.find('=');
    if (eq == std::string_view::npos || eq + 1 >= line.size())
        return;
    const std::string_view key = line.substr(0, eq);
    const std::string_view value = line.substr(eq + 1);
    if (key == "tmpdir")
        settings.tmpdir.assign(value);
    else if (key == "ang_display_mode") {
        if (const auto n = parseInteger(value))
            settings.angleDisplay = *n == 0 ? AngleUnit::Gons : AngleUnit::DegreesMinutesSeconds;
    } else if (key == "ne_order") {
        if (const auto n = parseInteger(value))
            settings.coordinateOrder = *n == 1 ? raw::CoordinateOrder::EastingNorthing
                                               : raw::CoordinateOrder::NorthingEasting;
    } else if (key == "lang_mode") {
        if (const auto n = parseInteger(value))
            settings.language = *n == 1 ? LanguageMode::System : LanguageMode::English;
    } else if (key == "window") {
        const auto parts = split(value, ',');
        if (parts.size() != 4)
            return;
        int numbers[4];
        for (size_t i = 0; i < 4; ++i) {
            const auto n = parseInteger(trim(parts[i]));
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
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return false;
    LineReader reader(in, 222);
    std::string line;
    while (reader.next(line))
        applySettingsLine(line, settings);
    return true;
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
    std::string text = settingsText(settings);
    if (std::ifstream in(path, std::ios::binary); in) {
        std::string line;
        while (std::getline(in, line)) {
            if (line.ends_with('\r'))
                line.pop_back();
            if (!line.empty() && !isShellKeyLine(line))
                text += line + '\n';
        }
    }
    return saveTextAtomically(path, text);
}

} // namespace tramline::app

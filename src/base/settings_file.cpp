#include "base/settings_file.h"

#include "base/line_reader.h"
#include "base/text.h"

#include <charconv>
#include <fstream>

namespace tramline {

bool splitSettingsLine(std::string_view line, std::string_view &key, std::string_view &value) {
    const std::size_t eq = line.find('=');
    if (eq == std::string_view::npos || eq + 1 >= line.size())
        return false;
    key = line.substr(0, eq);
    value = line.substr(eq + 1);
    return true;
}

void readSettingsLines(std::istream &in, const std::function<void(std::string_view)> &apply) {
    LineReader reader(in, kSettingsLineBuffer);
    for (std::string line; reader.next(line);)
        apply(line);
}

bool readSettingsLines(const std::filesystem::path &path,
                       const std::function<void(std::string_view)> &apply) {
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return false;
    readSettingsLines(in, apply);
    return true;
}

std::optional<int> parseSettingsInteger(std::string_view text) {
    text = trimLeft(text);
    if (!text.empty() && text.front() == '+')
        text.remove_prefix(1);
    int parsed = 0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), parsed, 10);
    if (ec != std::errc() || end == text.data())
        return std::nullopt;
    return parsed;
}

std::string otherSettingsLines(const std::filesystem::path &path,
                               const std::function<bool(std::string_view key)> &owned) {
    std::ifstream in(path, std::ios::binary);
    return in ? otherSettingsLines(in, owned) : std::string();
}

std::string otherSettingsLines(std::istream &in,
                               const std::function<bool(std::string_view key)> &owned) {
    // Whole lines, not the reader's pieces: a line the program does not
    // understand must come back as it was, however long.
    std::string kept;
    for (std::string line; std::getline(in, line);) {
        if (line.ends_with('\r'))
            line.pop_back();
        if (line.empty())
            continue;
        const std::size_t eq = line.find('=');
        if (eq != std::string::npos && owned(std::string_view(line).substr(0, eq)))
            continue;
        kept += line;
        kept += '\n';
    }
    return kept;
}

} // namespace tramline

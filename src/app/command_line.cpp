#include "app/command_line.h"

#include "base/text.h"

#include <array>

namespace tramline::app {

namespace {

struct Extension {
    const char *text;
    bool raw;
};

// The order of the search: the raw file first, then the coordinate kinds.
constexpr std::array<Extension, 7> kExtensions = {{{".rw5", true},
                                                   {".RW5", true},
                                                   {".crd", false},
                                                   {".crdb", false},
                                                   {".cgc", false},
                                                   {".mdb", false},
                                                   {".zak", false}}};

std::string unquoted(std::string_view line) {
    std::string text(trim(line));
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"')
        text = text.substr(1, text.size() - 2);
    else if (!text.empty() && text.front() == '"') // the first of two quoted names
        text.erase(0, 1);
    else if (!text.empty() && text.back() == '"') // the second
        text.pop_back();
    return text;
}

// Where `ext` ends a name in `text`: at the end, a blank or a quote.
size_t findExtension(const std::string &text, const char *ext) {
    const std::string e(ext);
    for (size_t at = text.find(e); at != std::string::npos; at = text.find(e, at + 1)) {
        const size_t end = at + e.size();
        if (end == text.size() || text[end] == '"' || isBlank(text[end]))
            return at;
    }
    return std::string::npos;
}

} // namespace

CommandLineFiles parseCommandLine(const std::string &commandLine) {
    CommandLineFiles files;
    std::string text = unquoted(commandLine);
    // At most two names: a raw file and a coordinate file, in either order.
    for (int name = 0; name < 2 && !text.empty(); ++name) {
        const Extension *found = nullptr;
        size_t at = std::string::npos;
        for (const auto &ext : kExtensions) {
            const size_t hit = findExtension(text, ext.text);
            // The name that begins the text is the one whose extension
            // comes first; the table's order settles ties.
            if (hit != std::string::npos && (found == nullptr || hit < at)) {
                found = &ext;
                at = hit;
            }
        }
        if (!found)
            break;
        const size_t end = at + std::char_traits<char>::length(found->text);
        std::string &target = found->raw ? files.rawFile : files.coordinateFile;
        if (target.empty())
            target = unquoted(text.substr(0, end));
        text = text.size() - end > 1 ? text.substr(end + 1) : std::string{};
        text = std::string(trim(text));
    }
    return files;
}

std::string joinArguments(const std::vector<std::string> &arguments) {
    std::string text;
    for (const auto &a : arguments) {
        if (!text.empty())
            text += ' ';
        text += a;
    }
    return text;
}

} // namespace tramline::app

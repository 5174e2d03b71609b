#include "crd/notes_file.h"

#include "base/atomic_save.h"
#include "base/point_names.h"

#include <algorithm>
#include <fstream>

namespace tramline::crd {

namespace {

constexpr std::string_view kFirstLine = "Tramline point notes 1";

std::string escape(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (char c : text) {
        switch (c) {
        case '\\':
            out += "\\\\";
            break;
        case '\t':
            out += "\\t";
            break;
        case '\n':
            out += "\\n";
            break;
        case '\r':
            out += "\\r";
            break;
        default:
            out += c;
        }
    }
    return out;
}

std::string unescape(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size()) {
            out += text[i];
            continue;
        }
        const char next = text[++i];
        out += next == 't' ? '\t' : next == 'n' ? '\n' : next == 'r' ? '\r' : next;
    }
    return out;
}

} // namespace

bool NotesFile::load(const std::filesystem::path &path) {
    m_notes.clear();
    std::error_code ec;
    if (!std::filesystem::exists(path, ec))
        return true;
    std::ifstream in(path, std::ios::binary);
    std::string line;
    if (!in || !std::getline(in, line))
        return false;
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
    if (line != kFirstLine)
        return false;
    while (std::getline(in, line)) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        const std::size_t tab = line.find('\t');
        if (tab == std::string::npos)
            continue;
        m_notes.push_back({unescape(std::string_view(line).substr(0, tab)),
                           unescape(std::string_view(line).substr(tab + 1))});
    }
    return !in.bad();
}

bool NotesFile::save(const std::filesystem::path &path) const {
    if (m_notes.empty()) {
        std::error_code ec;
        std::filesystem::remove(path, ec);
        return !ec;
    }
    std::string text(kFirstLine);
    text += '\n';
    for (const auto &note : m_notes)
        text += escape(note.name) + '\t' + escape(note.text) + '\n';
    return saveTextAtomically(path, text);
}

void NotesFile::add(std::string_view name, std::string_view text) {
    m_notes.push_back({std::string(name), std::string(text)});
}

std::vector<std::string> NotesFile::notesFor(std::string_view name) const {
    std::vector<std::string> found;
    for (const auto &note : m_notes)
        if (comparePointNames(note.name, name) == 0)
            found.push_back(note.text);
    return found;
}

long NotesFile::rename(std::string_view from, std::string_view to) {
    long moved = 0;
    for (auto &note : m_notes)
        if (comparePointNames(note.name, from) == 0) {
            note.name = to;
            ++moved;
        }
    return moved;
}

long NotesFile::removeIf(const std::function<bool(std::string_view name)> &selected) {
    const auto end = std::remove_if(m_notes.begin(), m_notes.end(),
                                    [&](const PointNote &note) { return selected(note.name); });
    const long removed = static_cast<long>(m_notes.end() - end);
    m_notes.erase(end, m_notes.end());
    return removed;
}

long removeNotes(const std::filesystem::path &path,
                 const std::function<bool(std::string_view name)> &selected) {
    NotesFile notes;
    if (!notes.load(path))
        return -1;
    const long removed = notes.removeIf(selected);
    if (removed > 0 && !notes.save(path))
        return -1;
    return removed;
}

} // namespace tramline::crd

#include "base/report.h"

#include <fstream>
#include <system_error>

namespace tramline {

namespace {

std::uintmax_t fileSize(const std::filesystem::path &file) {
    std::error_code ec;
    const auto size = std::filesystem::file_size(file, ec);
    return ec ? 0 : size;
}

} // namespace

std::string Report::Tab::content() const {
    if (file.empty())
        return text;
    std::string out;
    std::ifstream in(file, std::ios::binary);
    if (in) {
        out.resize(static_cast<size_t>(fileSize(file)));
        in.read(out.data(), static_cast<std::streamsize>(out.size()));
        out.resize(static_cast<size_t>(in.gcount()));
    }
    out += text;
    return out;
}

void Report::Tab::writeContent(std::ostream &out) const {
    if (!file.empty()) {
        std::ifstream in(file, std::ios::binary);
        // An empty file sets failbit on the output through operator<<.
        if (in && fileSize(file) > 0)
            out << in.rdbuf();
    }
    out << text;
}

bool Report::Tab::contentEmpty() const {
    return text.empty() && (file.empty() || fileSize(file) == 0);
}

char Report::Tab::lastCharacter() const {
    if (!text.empty())
        return text.back();
    const auto size = file.empty() ? 0 : fileSize(file);
    if (size == 0)
        return '\0';
    std::ifstream in(file, std::ios::binary);
    char last = '\0';
    if (in.seekg(static_cast<std::streamoff>(size - 1)))
        in.get(last);
    return last;
}

Report::Tab &Report::tab(const std::string &title) {
    for (auto &t : m_tabs)
        if (t.title == title)
            return t;
    m_tabs.push_back({title, {}, {}});
    return m_tabs.back();
}

void Report::append(const std::string &title, std::string &&text) {
    Tab &t = tab(title);
    if (t.text.empty())
        t.text = std::move(text);
    else
        t.text += text;
}

Report::Tab &Report::appendFile(const std::string &title, std::filesystem::path file) {
    m_tabs.push_back({title, {}, std::move(file)});
    return m_tabs.back();
}

void Report::write(std::ostream &out) const {
    if (!m_title.empty())
        out << m_title << "\n\n";
    for (const auto &t : m_tabs) {
        out << t.title << '\n' << std::string(t.title.size(), '=') << '\n';
        t.writeContent(out);
        const char last = t.lastCharacter();
        if (last != '\0' && last != '\n')
            out << '\n';
        out << '\n';
    }
}

std::string Report::toText() const {
    std::string out;
    if (!m_title.empty())
        out += m_title + "\n\n";
    for (const auto &t : m_tabs) {
        out += t.title + "\n" + std::string(t.title.size(), '=') + "\n" + t.content();
        if (!out.empty() && out.back() != '\n' && !t.contentEmpty())
            out += '\n';
        out += '\n';
    }
    return out;
}

} // namespace tramline

#include "base/report.h"

namespace tramline {

Report::Tab &Report::tab(const std::string &title) {
    for (auto &t : m_tabs)
        if (t.title == title)
            return t;
    m_tabs.push_back({title, {}});
    return m_tabs.back();
}

void Report::append(const std::string &title, std::string &&text) {
    Tab &t = tab(title);
    if (t.text.empty())
        t.text = std::move(text);
    else
        t.text += text;
}

void Report::write(std::ostream &out) const {
    if (!m_title.empty())
        out << m_title << "\n\n";
    for (const auto &t : m_tabs) {
        out << t.title << '\n' << std::string(t.title.size(), '=') << '\n' << t.text;
        if (!t.text.empty() && t.text.back() != '\n')
            out << '\n';
        out << '\n';
    }
}

std::string Report::toText() const {
    std::string out;
    if (!m_title.empty())
        out += m_title + "\n\n";
    for (const auto &t : m_tabs) {
        out += t.title + "\n" + std::string(t.title.size(), '=') + "\n" + t.text;
        if (!t.text.empty() && t.text.back() != '\n')
            out += '\n';
        out += '\n';
    }
    return out;
}

} // namespace tramline

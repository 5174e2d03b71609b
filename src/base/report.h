// A report of titled tabs of text ("Process Results", conversion reports).
// The desktop program shows one tab per entry; the command line prints the
// titles as headings or writes the whole report as JSON.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace tramline {

class Report {
public:
    struct Tab {
        std::string title;
        std::string text;
    };

    explicit Report(std::string title = {}) : m_title(std::move(title)) {}

    const std::string &title() const { return m_title; }
    void setTitle(std::string title) { m_title = std::move(title); }

    /// The tab with this title, created at the end when it is new.
    Tab &tab(const std::string &title);
    /// Appends text to the tab with this title.
    void append(const std::string &title, const std::string &text) { tab(title).text += text; }
    /// The same, taking over `text` when the tab is still empty.
    void append(const std::string &title, std::string &&text);

    const std::vector<Tab> &tabs() const { return m_tabs; }
    bool empty() const { return m_tabs.empty(); }

    /// Plain text: the report title, then each tab's title as a heading
    /// underlined with '=' and its text.
    std::string toText() const;
    /// Writes toText() to `out` without building it first.
    void write(std::ostream &out) const;

private:
    std::string m_title;
    std::vector<Tab> m_tabs;
};

} // namespace tramline

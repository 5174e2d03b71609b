// A report of titled tabs of text ("Process Results", conversion reports).
// The desktop program shows one tab per entry; the command line prints the
// titles as headings or writes the whole report as JSON.
//
// A tab may begin with the contents of a file (a listing of a million
// shots is 120 MB): the report then holds only its name and reads it when
// the tab is shown or written. The file must stay as it is until then.
#pragma once

#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

namespace tramline {

class Report {
public:
    struct Tab {
        std::string title;
        std::string text; ///< after the file's contents, when there is a file
        /// When set, the tab's text begins with this file's contents.
        std::filesystem::path file;

        /// The whole text: the file's contents (nothing when it cannot be
        /// read), then `text`.
        std::string content() const;
        /// Writes content() to `out` without building it first.
        void writeContent(std::ostream &out) const;
        bool contentEmpty() const;
        /// The last character of the content; '\0' when it is empty.
        char lastCharacter() const;
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
    /// A new tab whose text begins with the contents of `file`.
    Tab &appendFile(const std::string &title, std::filesystem::path file);

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

#include "cli/console_interaction.h"

#include "base/format.h"
#include "base/text.h"

#include <algorithm>

namespace tramline::cli {

namespace {
// A button as the user names it: without its "&" and in any case.
std::string plain(const std::string &button) {
    std::string out = toLower(button);
    std::erase(out, '&');
    return out;
}
} // namespace

void ConsoleInteraction::needAnswer(const std::string &title) {
    unanswered = true;
    const auto hint = hints.find(title);
    m_err << "The \"" << title << "\" dialog needs an answer: give "
          << (hint != hints.end() ? hint->second : "--answer \"" + title + "=BUTTON\"") << '\n';
}

int ConsoleInteraction::choose(const std::string &title, const std::string &message,
                               const std::vector<std::string> &buttons) {
    const auto it = answers.find(title);
    const std::string wanted = it != answers.end() ? it->second : defaultAnswer;
    for (size_t i = 0; i < buttons.size(); ++i)
        if (!wanted.empty() && plain(buttons[i]) == plain(wanted))
            return static_cast<int>(i);
    m_err << title << ":\n" << message << '\n';
    if (!buttons.empty()) {
        m_err << "Answers:";
        for (const auto &b : buttons)
            m_err << " \"" << plain(b) << "\"";
        m_err << '\n';
    }
    needAnswer(title);
    return -1;
}

bool ConsoleInteraction::fillForm(const std::string &title, std::vector<FormField> &fields) {
    if (const auto it = answers.find(title); it != answers.end()) {
        fillFieldsFrom(it->second, fields);
        return true;
    }
    if (prefilled.count(title))
        return true;
    needAnswer(title);
    return false;
}

void ConsoleInteraction::progress(long position, long length, const std::string &caption) {
    if (!progressLine)
        return;
    if (length > 1)
        progressLine->show(format("%s %ld/%ld", caption.c_str(), position, length));
    else
        progressLine->show(caption);
}

} // namespace tramline::cli

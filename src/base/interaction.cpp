#include "base/interaction.h"

#include "base/format.h"
#include "base/translation.h"

namespace tramline {

ReplaceAnswer askReplace(Interaction &ui, long row, long column) {
    switch (ui.choose(tr("Search and Replace"),
                      format(tr("Replace in row %ld column %ld?"), row, column),
                      {tr("Yes"), tr("No"), tr("Cancel")})) {
    case 0:
        return ReplaceAnswer::Replace;
    case 1:
        return ReplaceAnswer::Skip;
    default:
        return ReplaceAnswer::Stop;
    }
}

void fillFieldsFrom(const std::string &answer, std::vector<FormField> &fields) {
    size_t start = 0;
    for (auto &field : fields) {
        const size_t bar = answer.find('|', start);
        field.value =
            answer.substr(start, bar == std::string::npos ? std::string::npos : bar - start);
        if (bar == std::string::npos)
            break;
        start = bar + 1;
    }
}

int ScriptedInteraction::choose(const std::string &title, const std::string &message,
                                const std::vector<std::string> &buttons) {
    questions.push_back(title + ": " + message);
    if (m_replies.empty())
        return -1;
    const std::string answer = m_replies.front();
    m_replies.pop_front();
    for (size_t i = 0; i < buttons.size(); ++i)
        if (buttons[i] == answer)
            return static_cast<int>(i);
    return -1;
}

bool ScriptedInteraction::fillForm(const std::string &title, std::vector<FormField> &fields) {
    questions.push_back(title);
    if (m_replies.empty())
        return false;
    const std::string answer = m_replies.front();
    m_replies.pop_front();
    if (answer == "<cancel>")
        return false;
    fillFieldsFrom(answer, fields);
    return true;
}

void ScriptedInteraction::progress(long position, long, const std::string &) {
    lastProgress = position;
}

} // namespace tramline

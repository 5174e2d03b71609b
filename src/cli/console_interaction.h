// The command line's answer to the core's questions: messages go to the
// error stream; questions and forms take the answers given as options
// ("--answer DIALOG=BUTTON" or "--answer DIALOG=v1|v2|..."), or the values
// the command already filled in. A question nobody answered is cancelled
// with a message that names the option to give.
#pragma once

#include "base/interaction.h"
#include "cli/progress.h"

#include <map>
#include <ostream>
#include <set>

namespace tramline::cli {

class ConsoleInteraction : public Interaction {
public:
    explicit ConsoleInteraction(std::ostream &err) : m_err(err) {}

    int choose(const std::string &title, const std::string &message,
               const std::vector<std::string> &buttons) override;
    bool fillForm(const std::string &title, std::vector<FormField> &fields) override;
    void message(const std::string &text) override { m_err << text << '\n'; }
    /// Shows the step on the progress line, when there is one.
    void progress(long position, long length, const std::string &caption) override;

    /// Every question is answered with this button when it is offered.
    std::string defaultAnswer;
    /// Answers by dialog title: a button's text (without '&', any case) or
    /// form values separated by '|'.
    std::map<std::string, std::string> answers;
    /// Forms the command filled in from its options: accepted as they are.
    std::set<std::string> prefilled;
    /// The option that answers a dialog, for the message when none did.
    std::map<std::string, std::string> hints;
    /// Set when a question went unanswered.
    bool unanswered = false;
    /// Where the core's progress goes (not owned); null: nowhere.
    Progress *progressLine = nullptr;

private:
    void needAnswer(const std::string &title);
    std::ostream &m_err;
};

} // namespace tramline::cli

// The command line's answer to the core's questions: messages go to the
// error stream; questions take the answers given as options, else cancel.
#pragma once

#include "base/interaction.h"

#include <ostream>

namespace tramline::cli {

class ConsoleInteraction : public Interaction {
public:
    explicit ConsoleInteraction(std::ostream &err) : m_err(err) {}

    int choose(const std::string &title, const std::string &message,
               const std::vector<std::string> &buttons) override;
    bool fillForm(const std::string &, std::vector<FormField> &) override { return false; }
    void message(const std::string &text) override { m_err << text << '\n'; }
    void progress(long, long, const std::string &) override {}

    /// Every question is answered with this button when it is offered.
    std::string defaultAnswer;

private:
    std::ostream &m_err;
};

} // namespace tramline::cli

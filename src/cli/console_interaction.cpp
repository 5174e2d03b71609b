#include "cli/console_interaction.h"

namespace tramline::cli {

int ConsoleInteraction::choose(const std::string &title, const std::string &message,
                               const std::vector<std::string> &buttons) {
    for (size_t i = 0; i < buttons.size(); ++i)
        if (buttons[i] == defaultAnswer)
            return static_cast<int>(i);
    m_err << title << ": " << message << " (no answer given; cancelled)\n";
    return -1;
}

} // namespace tramline::cli

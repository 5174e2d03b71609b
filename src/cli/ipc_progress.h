// Progress lines for a controlling process that shows a progress bar:
// "$IPC: SETLEN %ld SETTXT %s" when the length or the text changes,
// "$IPC: SETPOS %ld" for the position, and "$IPC: RETCDE %ld" with the
// command's exit status at the end. Asked for with the option --ipc or the
// environment variable TRAMLINE_IPC=1.
#pragma once

#include "base/interaction.h"

#include <ostream>

namespace tramline::cli {

/// True when TRAMLINE_IPC is set to "1" in the environment.
bool ipcRequestedByEnvironment();

/// Passes everything to `ui` and writes the progress lines to `out`.
class IpcProgress : public Interaction {
public:
    IpcProgress(Interaction &ui, std::ostream &out) : m_ui(ui), m_out(out) {}

    int choose(const std::string &title, const std::string &message,
               const std::vector<std::string> &buttons) override {
        return m_ui.choose(title, message, buttons);
    }
    bool fillForm(const std::string &title, std::vector<FormField> &fields) override {
        return m_ui.fillForm(title, fields);
    }
    void message(const std::string &text) override { m_ui.message(text); }
    void progress(long position, long length, const std::string &caption) override;
    bool idle() override { return m_ui.idle(); }

    /// "$IPC: RETCDE %ld".
    void finish(long code);

private:
    Interaction &m_ui;
    std::ostream &m_out;
    long m_length = -1;
    long m_position = -1;
    std::string m_caption;
};

} // namespace tramline::cli

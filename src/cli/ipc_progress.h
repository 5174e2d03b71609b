// Progress lines for a controlling process that shows a progress bar:
// "$IPC: SETLEN %ld SETTXT %s" when the length or the text changes,
// "$IPC: SETPOS %ld" for the position, and "$IPC: RETCDE %ld" with the
// command's exit status at the end. Asked for with the option --ipc or the
// environment variable TRAMLINE_IPC=1.
#pragma once

#include "base/forwarding_interaction.h"

#include <ostream>

namespace tramline::cli {

/// True when TRAMLINE_IPC is set to "1" in the environment.
bool ipcRequestedByEnvironment();

/// Passes everything to `ui` and writes the progress lines to `out`.
class IpcProgress : public ForwardingInteraction {
public:
    IpcProgress(Interaction &ui, std::ostream &out) : ForwardingInteraction(ui), m_out(out) {}

    void progress(long position, long length, const std::string &caption) override;

    /// "$IPC: RETCDE %ld".
    void finish(long code);

private:
    std::ostream &m_out;
    long m_length = -1;
    long m_position = -1;
    std::string m_caption;
};

} // namespace tramline::cli

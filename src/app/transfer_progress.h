// The progress window of a serial transfer: the transfer's status text
// ("Receiving Line: 12", "Sending point") above a Cancel button. The
// transfer runs on the window's thread; its idle hook lets Qt handle
// events, so the window stays responsive and Cancel is seen at the next
// wait. Questions and messages go on to the shell's own answers.
#pragma once

#include "base/forwarding_interaction.h"

#include <memory>

class QProgressDialog;
class QWidget;

namespace tramline::app {

class TransferProgress : public ForwardingInteraction {
public:
    TransferProgress(Interaction &ui, QWidget *parent, const std::string &title);
    ~TransferProgress() override;

    void progress(long position, long length, const std::string &caption) override;
    /// False once the user pressed Cancel (or the shell's own hook says stop).
    bool idle() override;

private:
    std::unique_ptr<QProgressDialog> m_dialog;
};

} // namespace tramline::app

// The progress window of a serial transfer: the transfer's status text
// ("Receiving Line: 12", "Sending point") above a Cancel button. The
// transfer runs on the window's thread; its idle hook lets Qt handle
// events, so the window stays responsive and Cancel is seen at the next
// wait. Questions and messages go on to the shell's own answers.
#pragma once

#include "base/interaction.h"

#include <memory>

class QProgressDialog;
class QWidget;

namespace tramline::app {

class TransferProgress : public Interaction {
public:
    TransferProgress(Interaction &ui, QWidget *parent, const std::string &title);
    ~TransferProgress() override;

    int choose(const std::string &title, const std::string &message,
               const std::vector<std::string> &buttons) override {
        return m_ui.choose(title, message, buttons);
    }
    bool fillForm(const std::string &title, std::vector<FormField> &fields) override {
        return m_ui.fillForm(title, fields);
    }
    void message(const std::string &text) override { m_ui.message(text); }
    void progress(long position, long length, const std::string &caption) override;
    /// False once the user pressed Cancel (or the shell's own hook says stop).
    bool idle() override;

private:
    Interaction &m_ui;
    std::unique_ptr<QProgressDialog> m_dialog;
};

} // namespace tramline::app

// The desktop program's answers to the core's questions: message boxes
// for choices and messages, a form generated from the fields for forms,
// the common file dialogs for file names.
#pragma once

#include "app/shell_prompts.h"
#include "base/interaction.h"

#include <QDialog>

class QWidget;

namespace tramline::app {

class QtInteraction : public Interaction, public ShellPrompts {
public:
    explicit QtInteraction(QWidget *parent) : m_parent(parent) {}

    /// A message box with one button per entry. A button captioned
    /// "Cancel" (or "&Cancel") is also the Escape key's answer.
    int choose(const std::string &title, const std::string &message,
               const std::vector<std::string> &buttons) override;
    bool fillForm(const std::string &title, std::vector<FormField> &fields) override;
    void message(const std::string &text) override;
    void progress(long position, long length, const std::string &caption) override;
    bool idle() override;

    std::string askFileName(const std::string &title, const std::string &types,
                            bool forSaving) override;
    int askForm(const std::string &title, std::vector<FormField> &fields,
                const std::vector<std::string> &buttons) override;

private:
    QWidget *m_parent;
};

/// A small dialog built from form fields: a line edit for a free value, a
/// list for a field with choices, and a row of buttons. exec() returns the
/// pressed button's index + 1, or 0 when rejected.
class FormDialog : public QDialog {
    Q_OBJECT
public:
    FormDialog(const QString &title, const std::vector<FormField> &fields,
               const std::vector<std::string> &buttons, QWidget *parent = nullptr);
    /// Copies the widgets' values into the fields.
    void collect(std::vector<FormField> &fields) const;

private:
    std::vector<QWidget *> m_editors;
};

/// File dialog filter text for types such as "rw5;sav".
QString fileFilter(const std::string &types);

} // namespace tramline::app

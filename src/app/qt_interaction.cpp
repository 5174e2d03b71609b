#include "app/qt_interaction.h"

#include "app/qt_text.h"

#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

namespace tramline::app {

namespace {

bool isCancel(const std::string &caption) {
    QString plain = qstr(caption);
    plain.remove(QLatin1Char('&'));
    return plain == qtr("Cancel") || plain == QStringLiteral("Cancel");
}

// Message texts of the core start with a line feed (they were written to a
// message log); a box shows them without the empty first line.
QString boxText(const std::string &text) {
    QString shown = qstr(text);
    while (shown.startsWith(QLatin1Char('\n')))
        shown.remove(0, 1);
    while (shown.endsWith(QLatin1Char('\n')))
        shown.chop(1);
    return shown;
}

} // namespace

int QtInteraction::choose(const std::string &title, const std::string &message,
                          const std::vector<std::string> &buttons) {
    QMessageBox box(QMessageBox::Question, qstr(title), boxText(message), QMessageBox::NoButton,
                    m_parent);
    std::vector<QAbstractButton *> added;
    for (const auto &caption : buttons) {
        QPushButton *button = box.addButton(
            qstr(caption), isCancel(caption) ? QMessageBox::RejectRole : QMessageBox::AcceptRole);
        if (isCancel(caption))
            box.setEscapeButton(button);
        added.push_back(button);
    }
    if (!added.empty())
        box.setDefaultButton(static_cast<QPushButton *>(added.front()));
    box.exec();
    for (size_t i = 0; i < added.size(); ++i)
        if (box.clickedButton() == added[i])
            return static_cast<int>(i);
    return -1;
}

bool QtInteraction::fillForm(const std::string &title, std::vector<FormField> &fields) {
    return askForm(title, fields, {tramline::tr("OK"), tramline::tr("Cancel")}) == 0;
}

void QtInteraction::message(const std::string &text) {
    const QString shown = boxText(text);
    const bool problem = shown.contains(qtr("Error")) || shown.contains(qtr("Warning")) ||
                         shown.contains(QStringLiteral("Error")) ||
                         shown.contains(QStringLiteral("Warning"));
    QMessageBox box(problem ? QMessageBox::Warning : QMessageBox::Information, qtr(kProductName),
                    shown, QMessageBox::Ok, m_parent);
    box.exec();
}

void QtInteraction::progress(long, long, const std::string &) {
    QApplication::processEvents();
}

bool QtInteraction::idle() {
    QApplication::processEvents();
    return true;
}

QString fileFilter(const std::string &types) {
    QStringList patterns;
    for (const QString &type : qstr(types).split(QLatin1Char(';'), Qt::SkipEmptyParts))
        patterns << QStringLiteral("*.") + type << QStringLiteral("*.") + type.toUpper();
    QString filter;
    if (!patterns.isEmpty())
        filter = qstr(types).toUpper().replace(QLatin1Char(';'), QLatin1Char('/')) +
                 QLatin1Char(' ') + qtr("Files") + QStringLiteral(" (") +
                 patterns.join(QLatin1Char(' ')) + QStringLiteral(");;");
    return filter + qtr("All Files") + QStringLiteral(" (*)");
}

std::string QtInteraction::askFileName(const std::string &title, const std::string &types,
                                       bool forSaving) {
    QString name =
        forSaving
            ? QFileDialog::getSaveFileName(m_parent, qstr(title), QString(), fileFilter(types))
            : QFileDialog::getOpenFileName(m_parent, qstr(title), QString(), fileFilter(types));
    // A name typed without an extension gets the first of the file types.
    if (forSaving && !name.isEmpty() && QFileInfo(name).suffix().isEmpty()) {
        const QString first = qstr(types).section(QLatin1Char(';'), 0, 0);
        if (!first.isEmpty())
            name += QLatin1Char('.') + first;
    }
    return sstr(name);
}

int QtInteraction::askForm(const std::string &title, std::vector<FormField> &fields,
                           const std::vector<std::string> &buttons) {
    FormDialog dialog(qstr(title), fields, buttons, m_parent);
    const int result = dialog.exec();
    dialog.collect(fields);
    return result - 1;
}

FormDialog::FormDialog(const QString &title, const std::vector<FormField> &fields,
                       const std::vector<std::string> &buttons, QWidget *parent)
    : QDialog(parent) {
    setWindowTitle(title);
    setObjectName(title);
    auto *layout = new QVBoxLayout(this);
    auto *form = new QFormLayout;
    layout->addLayout(form);
    for (const auto &field : fields) {
        QWidget *editor = nullptr;
        if (field.choices.empty()) {
            auto *line = new QLineEdit(qstr(field.value), this);
            line->setMinimumWidth(220);
            editor = line;
        } else {
            auto *list = new QComboBox(this);
            for (const auto &choice : field.choices)
                list->addItem(qstr(choice));
            list->setCurrentIndex(std::max(0, list->findText(qstr(field.value))));
            editor = list;
        }
        editor->setObjectName(qstr(field.caption));
        form->addRow(qstr(field.caption), editor);
        m_editors.push_back(editor);
    }
    auto *row = new QHBoxLayout;
    row->addStretch();
    for (size_t i = 0; i < buttons.size(); ++i) {
        auto *button = new QPushButton(qstr(buttons[i]), this);
        button->setObjectName(qstr(buttons[i]));
        if (i == 0)
            button->setDefault(true);
        const int result = static_cast<int>(i) + 1;
        // A Cancel button answers like the Escape key.
        connect(button, &QPushButton::clicked, this, [this, result, cancel = isCancel(buttons[i])] {
            cancel ? reject() : done(result);
        });
        row->addWidget(button);
    }
    layout->addLayout(row);
}

void FormDialog::collect(std::vector<FormField> &fields) const {
    for (size_t i = 0; i < fields.size() && i < m_editors.size(); ++i) {
        if (auto *line = qobject_cast<QLineEdit *>(m_editors[i]))
            fields[i].value = sstr(line->text());
        else if (auto *list = qobject_cast<QComboBox *>(m_editors[i]))
            fields[i].value = sstr(list->currentText());
    }
}

} // namespace tramline::app

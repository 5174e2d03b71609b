#include "app/report_windows.h"

#include "app/qt_text.h"

#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

namespace tramline::app {

namespace {

// Reports are laid out in columns: they need a fixed-width font and no
// wrapping.
QPlainTextEdit *reportView(const QString &text, QWidget *parent) {
    auto *view = new QPlainTextEdit(parent);
    view->setReadOnly(true);
    view->setLineWrapMode(QPlainTextEdit::NoWrap);
    view->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    view->setPlainText(text);
    return view;
}

QDialogButtonBox *closeButton(QDialog *dialog) {
    auto *buttons = new QDialogButtonBox(dialog);
    QPushButton *close = buttons->addButton(qtr("Close"), QDialogButtonBox::RejectRole);
    QObject::connect(close, &QPushButton::clicked, dialog, &QDialog::reject);
    return buttons;
}

} // namespace

TextWindow::TextWindow(const QString &title, const QString &text, QWidget *parent) : QDialog(parent) {
    setWindowTitle(title);
    setAttribute(Qt::WA_DeleteOnClose);
    auto *layout = new QVBoxLayout(this);
    m_text = reportView(text, this);
    layout->addWidget(m_text);
    layout->addWidget(closeButton(this));
    resize(760, 520);
}

QString TextWindow::text() const { return m_text->toPlainText(); }

ProcessResultsWindow::ProcessResultsWindow(const Report &report, QWidget *parent) : QDialog(parent) {
    setObjectName(QStringLiteral("Process Results"));
    setWindowTitle(report.title().empty() ? qtr("Process Results") : qstr(report.title()));
    setAttribute(Qt::WA_DeleteOnClose);
    auto *layout = new QVBoxLayout(this);
    m_tabs = new QTabWidget(this);
    for (const auto &tab : report.tabs())
        m_tabs->addTab(reportView(qstr(tab.text), m_tabs), qstr(tab.title));
    layout->addWidget(m_tabs);
    layout->addWidget(closeButton(this));
    resize(820, 600);
}

QString ProcessResultsWindow::tabText(const QString &title) const {
    for (int i = 0; i < m_tabs->count(); ++i)
        if (m_tabs->tabText(i) == title)
            return static_cast<QPlainTextEdit *>(m_tabs->widget(i))->toPlainText();
    return {};
}

} // namespace tramline::app

#include "app/report_windows.h"

#include "adjust/lsq_run.h"
#include "app/qt_text.h"

#include <QDialogButtonBox>
#include <QFileInfo>
#include <QFontDatabase>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QSvgRenderer>
#include <QSvgWidget>
#include <QTabWidget>
#include <QVBoxLayout>

#include <functional>

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

// A picture the core drew as SVG text; the text stays with it for tabText().
QSvgWidget *plotView(const QString &svg, QWidget *parent) {
    auto *view = new QSvgWidget(parent);
    view->load(svg.toUtf8());
    view->setProperty("svgText", svg);
    return view;
}

// Print and Close; `current` gives the text or picture to print when Print is pressed.
QDialogButtonBox *buttonRow(QDialog *dialog, QPrinter *printer,
                            std::function<QWidget *()> current) {
    auto *buttons = new QDialogButtonBox(dialog);
    QPushButton *print = buttons->addButton(qtr("Print"), QDialogButtonBox::ActionRole);
    QObject::connect(print, &QPushButton::clicked, dialog, [dialog, printer, current] {
        QPrintDialog ask(printer, dialog);
        if (ask.exec() != QDialog::Accepted)
            return;
        QWidget *shown = current();
        if (auto *text = qobject_cast<QPlainTextEdit *>(shown)) {
            text->print(printer);
        } else if (auto *plot = qobject_cast<QSvgWidget *>(shown)) {
            QPainter painter(printer);
            plot->renderer()->render(&painter);
        }
    });
    QPushButton *close = buttons->addButton(qtr("Close"), QDialogButtonBox::RejectRole);
    QObject::connect(close, &QPushButton::clicked, dialog, &QDialog::reject);
    return buttons;
}

} // namespace

bool writePdf(QWidget *shown, const QString &path) {
    QPrinter pdf(QPrinter::HighResolution);
    pdf.setOutputFormat(QPrinter::PdfFormat);
    pdf.setOutputFileName(path);
    if (auto *text = qobject_cast<QPlainTextEdit *>(shown)) {
        text->print(&pdf);
    } else if (auto *plot = qobject_cast<QSvgWidget *>(shown)) {
        QPainter painter;
        if (!painter.begin(&pdf))
            return false;
        plot->renderer()->render(&painter);
        painter.end();
    } else {
        return false;
    }
    return QFileInfo(path).size() > 0;
}

TextWindow::TextWindow(const QString &title, const QString &text, QPrinter *printer,
                       QWidget *parent)
    : QDialog(parent) {
    setWindowTitle(title);
    setAttribute(Qt::WA_DeleteOnClose);
    auto *layout = new QVBoxLayout(this);
    m_text = reportView(text, this);
    layout->addWidget(m_text);
    layout->addWidget(buttonRow(this, printer, [this] { return m_text; }));
    resize(760, 520);
}

QString TextWindow::text() const {
    return m_text->toPlainText();
}

ProcessResultsWindow::ProcessResultsWindow(const Report &report, QPrinter *printer, QWidget *parent)
    : QDialog(parent) {
    setObjectName(QStringLiteral("Process Results"));
    setWindowTitle(report.title().empty() ? qtr("Process Results") : qstr(report.title()));
    setAttribute(Qt::WA_DeleteOnClose);
    auto *layout = new QVBoxLayout(this);
    m_tabs = new QTabWidget(this);
    // Every tab's title whole; scroll buttons when they do not all fit.
    m_tabs->setElideMode(Qt::ElideNone);
    m_tabs->setUsesScrollButtons(true);
    const std::string plot = adjust::plotTabTitle();
    for (const auto &tab : report.tabs()) {
        const QString text = qstr(tab.content());
        QWidget *view = tab.title == plot ? static_cast<QWidget *>(plotView(text, m_tabs))
                                          : reportView(text, m_tabs);
        m_tabs->addTab(view, qstr(tab.title));
    }
    layout->addWidget(m_tabs);
    QDialogButtonBox *buttons =
        buttonRow(this, printer, [this] { return m_tabs->currentWidget(); });
    QPushButton *pdf = buttons->addButton(qtr("Export PDF..."), QDialogButtonBox::ActionRole);
    pdf->setObjectName(QStringLiteral("exportPdf"));
    connect(pdf, &QPushButton::clicked, this, &ProcessResultsWindow::exportPdfRequested);
    layout->addWidget(buttons);
    resize(960, 680);
}

bool ProcessResultsWindow::exportCurrentTab(const QString &path) const {
    return writePdf(m_tabs->currentWidget(), path);
}

QString ProcessResultsWindow::tabText(const QString &title) const {
    for (int i = 0; i < m_tabs->count(); ++i)
        if (m_tabs->tabText(i) == title) {
            if (auto *text = qobject_cast<QPlainTextEdit *>(m_tabs->widget(i)))
                return text->toPlainText();
            return m_tabs->widget(i)->property("svgText").toString();
        }
    return {};
}

} // namespace tramline::app

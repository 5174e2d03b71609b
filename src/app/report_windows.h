// Windows that show text the program produced: the printed reports (Print
// > Raw Data, Print > Coordinates) and the "Process Results" tabs. They
// stay open beside the main window until closed.
#pragma once

#include "base/report.h"

#include <QDialog>

class QPlainTextEdit;
class QPrinter;
class QTabWidget;

namespace tramline::app {

/// Writes a report view (text or picture) to a PDF file.
bool writePdf(QWidget *shown, const QString &path);

/// One text in a fixed-width font, read-only, with Print and Close.
/// Printing goes to `printer` (the program's, set up by File > Print >
/// Printer Settings) after the print dialog.
class TextWindow : public QDialog {
    Q_OBJECT
public:
    TextWindow(const QString &title, const QString &text, QPrinter *printer,
               QWidget *parent = nullptr);
    QString text() const;

private:
    QPlainTextEdit *m_text;
};

/// "Process Results": one tab per tab of the report, titled after the
/// report ("Process Compass Results"). The "Plot" tab's text is SVG and is
/// shown as the picture.
class ProcessResultsWindow : public QDialog {
    Q_OBJECT
public:
    /// Print prints the tab on show.
    ProcessResultsWindow(const Report &report, QPrinter *printer, QWidget *parent = nullptr);
    QTabWidget *tabs() const { return m_tabs; }
    /// The text of the tab with this (translated) title (the SVG text of a
    /// picture); empty when none.
    QString tabText(const QString &title) const;
    /// Writes the tab shown to a PDF file. False when it could not.
    bool exportCurrentTab(const QString &path) const;

signals:
    /// Export PDF was pressed: the shell asks for the file.
    void exportPdfRequested();

private:
    QTabWidget *m_tabs;
};

} // namespace tramline::app

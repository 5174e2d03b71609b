#include "app/transfer_progress.h"

#include "app/qt_text.h"

#include <QApplication>
#include <QProgressDialog>

#include <algorithm>
#include <climits>

namespace tramline::app {

TransferProgress::TransferProgress(Interaction &ui, QWidget *parent, const std::string &title)
    : ForwardingInteraction(ui), m_dialog(std::make_unique<QProgressDialog>(parent)) {
    m_dialog->setObjectName(QStringLiteral("transferProgress"));
    m_dialog->setWindowTitle(qstr(title));
    m_dialog->setCancelButtonText(qtr("Cancel"));
    // Nothing else may start while the line is in use.
    m_dialog->setWindowModality(Qt::ApplicationModal);
    m_dialog->setMinimumDuration(0);
    m_dialog->setAutoClose(false);
    m_dialog->setAutoReset(false);
    m_dialog->setRange(0, 0); // a download's length is unknown
    m_dialog->setMinimumWidth(320);
    m_dialog->show();
    QApplication::processEvents();
}

TransferProgress::~TransferProgress() {
    m_dialog->hide();
}

void TransferProgress::progress(long position, long length, const std::string &caption) {
    m_dialog->setLabelText(qstr(caption));
    if (length > 0 && length <= INT_MAX) {
        m_dialog->setRange(0, int(length));
        m_dialog->setValue(int(std::min(position, length)));
    } else {
        m_dialog->setRange(0, 0);
    }
    ForwardingInteraction::progress(position, length, caption);
    QApplication::processEvents();
}

bool TransferProgress::idle() {
    QApplication::processEvents();
    return !m_dialog->wasCanceled() && ForwardingInteraction::idle();
}

} // namespace tramline::app

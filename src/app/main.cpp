#include "app/main_dialog.h"

#include <QApplication>

int main(int argc, char **argv) {
    QApplication app(argc, argv);
    tramline::app::CKELMADlg dialog;
    // A raw file named on the command line opens at start.
    const QStringList args = QApplication::arguments();
    if (args.size() > 1 && args[1].endsWith(QStringLiteral(".rw5"), Qt::CaseInsensitive))
        dialog.openRawFile(args[1]);
    dialog.show();
    return QApplication::exec();
}

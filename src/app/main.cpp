#include "app/main_dialog.h"

#include <QApplication>

int main(int argc, char **argv) {
    QApplication app(argc, argv);
    tramline::app::CKELMADlg dialog;
    dialog.show();
    return QApplication::exec();
}

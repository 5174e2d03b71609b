#include "app/main_dialog.h"

#include <QApplication>
#include <QTableView>
#include <gtest/gtest.h>

#include <cstdlib>

namespace {

QApplication &application() {
    static int argc = 1;
    static char name[] = "tramline_app_tests";
    static char *argv[] = {name, nullptr};
    ::setenv("QT_QPA_PLATFORM", "offscreen", 0);
    static QApplication app(argc, argv);
    return app;
}

TEST(MainDialog, TwoGridsAndTheTitle) {
    application();
    tramline::app::CKELMADlg dialog;
    EXPECT_EQ(dialog.rawGrid()->property("controlId").toInt(), 110);
    EXPECT_EQ(dialog.coordinateGrid()->property("controlId").toInt(), 111);
    EXPECT_EQ(dialog.windowTitle(), "Halvren Tramline - [RW5: NONE] - [CRD: NONE]");
    EXPECT_EQ(dialog.rawGrid()->model()->rowCount(), 0);
}

TEST(MainDialog, OpensTheBundledExample) {
    application();
    tramline::app::CKELMADlg dialog;
    const QString example = QStringLiteral(TRAMLINE_SOURCE_DIR "/data/examples/closed-traverse.rw5");
    ASSERT_TRUE(dialog.openRawFile(example));
    const auto *model = dialog.rawGrid()->model();
    EXPECT_EQ(model->rowCount(), 42);
    EXPECT_EQ(model->headerData(5, Qt::Horizontal).toString(), "ZenithAng");
    EXPECT_EQ(model->index(9, 0).data().toString(), "SS");
    EXPECT_EQ(model->index(9, 4).data().toString(), "345.4539");
    EXPECT_EQ(model->index(8, 1).data(Qt::ToolTipRole).toString(), "InstHt");
    EXPECT_EQ(dialog.windowTitle(), "Halvren Tramline - [RW5: " + example + "] - [CRD: NONE]");
}

} // namespace

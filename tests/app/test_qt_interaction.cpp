// The real dialogs behind the core's questions, answered by a timer that
// acts on whichever modal window is open, as a user would.
#include "app/qt_interaction.h"
#include "app_test_support.h"

#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

using namespace tramline;
using namespace tramline::app;

namespace {

using tramline::test::whenModal;

void pressEscape(QWidget *w) {
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QApplication::sendEvent(w, &press);
}

void click(QWidget *w, const QString &caption) {
    for (auto *b : w->findChildren<QPushButton *>())
        if (b->text() == caption) {
            b->click();
            return;
        }
    ADD_FAILURE() << "no button " << caption.toStdString();
}

class QtInteractionTest : public ::testing::Test {
protected:
    QApplication &app = tramline::test::application();
    QWidget parent;
    QtInteraction ui{&parent};
};

TEST_F(QtInteractionTest, ChooseReturnsTheButtonPressed) {
    struct Case {
        std::function<void(QWidget *)> act;
        int expected;
    };
    const Case cases[] = {
        {[](QWidget *w) { click(w, "&No"); }, 1},
        {[](QWidget *w) { click(w, "&Yes"); }, 0},
        {[](QWidget *w) { pressEscape(w); }, 2}, // Escape answers Cancel
    };
    for (const auto &c : cases) {
        whenModal(c.act);
        EXPECT_EQ(
            ui.choose("Halvren Tramline", "Save Raw Data Changes?", {"&Yes", "&No", "Cancel"}),
            c.expected);
    }
    // Without a Cancel button Escape cannot pick one.
    whenModal([](QWidget *w) {
        pressEscape(w);
        if (QApplication::activeModalWidget() == w)
            click(w, "Return To &Editor");
    });
    EXPECT_EQ(ui.choose("Point Protect", "Duplicate Point Numbers",
                        {"Continue &Processing", "Return To &Editor"}),
              1);
}

TEST_F(QtInteractionTest, FormsAreBuiltFromTheFields) {
    std::vector<FormField> fields = {
        {"Starting Point Number", "1", {}},
        {"Ending Point Number", "", {}},
        {"Specify Traverse Points From Start To End", "Automatic", {"Automatic", "Prompt"}}};
    whenModal([](QWidget *w) {
        EXPECT_EQ(w->windowTitle(), "Traverse Points");
        w->findChild<QLineEdit *>("Ending Point Number")->setText("6");
        auto *list = w->findChild<QComboBox *>("Specify Traverse Points From Start To End");
        ASSERT_NE(list, nullptr);
        EXPECT_EQ(list->currentText(), "Automatic");
        list->setCurrentIndex(1);
        click(w, "OK");
    });
    ASSERT_TRUE(ui.fillForm("Traverse Points", fields));
    EXPECT_EQ(fields[0].value, "1");
    EXPECT_EQ(fields[1].value, "6");
    EXPECT_EQ(fields[2].value, "Prompt");

    whenModal([](QWidget *w) { click(w, "Cancel"); });
    EXPECT_FALSE(ui.fillForm("Traverse Points", fields));
}

TEST_F(QtInteractionTest, FormsWithTheirOwnButtons) {
    std::vector<FormField> fields = {{"Find What", "", {}}, {"Replace With", "", {}}};
    whenModal([](QWidget *w) {
        w->findChild<QLineEdit *>("Find What")->setText("PT");
        w->findChild<QLineEdit *>("Replace With")->setText("STN");
        click(w, "Replace All");
    });
    EXPECT_EQ(ui.askForm("Search and Replace", fields, {"Replace", "Replace All", "Cancel"}), 1);
    EXPECT_EQ(fields[0].value, "PT");
    EXPECT_EQ(fields[1].value, "STN");
    // Escape closes the form; a choice made before counts all the same.
    std::vector<FormField> language = {{"Language", "English", {"English", "Windows Setting"}}};
    whenModal([](QWidget *w) {
        w->findChild<QComboBox *>("Language")->setCurrentIndex(1);
        pressEscape(w);
    });
    EXPECT_EQ(ui.askForm("Settings", language, {"Cancel"}), -1);
    EXPECT_EQ(language[0].value, "Windows Setting");
}

TEST_F(QtInteractionTest, MessagesShowWithoutTheirLeadingLineFeed) {
    QString shown;
    whenModal([&shown](QWidget *w) {
        auto *box = qobject_cast<QMessageBox *>(w);
        ASSERT_NE(box, nullptr);
        shown = box->text();
        EXPECT_EQ(box->icon(), QMessageBox::Warning);
        box->accept();
    });
    ui.message("\nWarning: Missing translation file /x/LANG/fr/LC_MESSAGES/halvren-office.mo");
    EXPECT_EQ(shown, "Warning: Missing translation file /x/LANG/fr/LC_MESSAGES/halvren-office.mo");
}

TEST(FileFilter, FromTypes) {
    EXPECT_EQ(fileFilter("rw5").toStdString(), "RW5 Files (*.rw5 *.RW5);;All Files (*)");
    EXPECT_EQ(fileFilter("rw5;sav").toStdString(),
              "RW5/SAV Files (*.rw5 *.RW5 *.sav *.SAV);;All Files (*)");
}

} // namespace

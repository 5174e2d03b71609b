// What the desktop program's tests share: one QApplication on the
// offscreen platform, scripted answers for every question and dialog, and
// a fixture that starts the main window on scratch folders.
#pragma once

#include "../support/test_support.h"
#include "app/main_dialog.h"
#include "app/raw_grid_model.h"
#include "app/shell_prompts.h"
#include "base/interaction.h"
#include "crd/coordinate_file.h"

#include <QApplication>
#include <QTimer>
#include <gtest/gtest.h>

#include <cstdlib>
#include <deque>
#include <functional>
#include <memory>

namespace tramline::test {

inline QApplication &application() {
    static int argc = 1;
    static char name[] = "tramline_app_tests";
    static char *argv[] = {name, nullptr};
    ::setenv("QT_QPA_PLATFORM", "offscreen", 0);
    // Never destroyed: shown windows and the platform plugin tear down in
    // an order that static destruction at exit does not respect.
    static QApplication *app = new QApplication(argc, argv);
    return *app;
}

/// Runs `act` on the active modal window once one is open: the way tests
/// answer the real dialogs, as a user would.
inline void whenModal(std::function<void(QWidget *)> act) {
    auto *timer = new QTimer;
    timer->setInterval(10);
    QObject::connect(timer, &QTimer::timeout, [timer, act] {
        if (QWidget *modal = QApplication::activeModalWidget()) {
            timer->stop();
            timer->deleteLater();
            act(modal);
        }
    });
    timer->start();
}

/// Answers from scripts: questions and forms as ScriptedInteraction does,
/// file names from `files`, forms with buttons from `forms` as
/// "value|value=>Button" (or just "=>Button"). An empty script cancels.
class ScriptedShell : public ScriptedInteraction, public app::ShellPrompts {
public:
    std::string askFileName(const std::string &title, const std::string &types,
                            bool forSaving) override {
        asked.push_back(title + " (" + types + (forSaving ? ", save)" : ")"));
        if (files.empty())
            return {};
        std::string name = files.front();
        files.pop_front();
        return name;
    }

    int askForm(const std::string &title, std::vector<FormField> &fields,
                const std::vector<std::string> &buttons) override {
        asked.push_back(title);
        if (forms.empty())
            return -1;
        const std::string reply = forms.front();
        forms.pop_front();
        const size_t arrow = reply.find("=>");
        const std::string values = reply.substr(0, arrow);
        const std::string button =
            arrow == std::string::npos ? std::string() : reply.substr(arrow + 2);
        size_t start = 0;
        for (size_t i = 0; i < fields.size() && !values.empty(); ++i) {
            const size_t bar = values.find('|', start);
            fields[i].value =
                values.substr(start, bar == std::string::npos ? std::string::npos : bar - start);
            if (bar == std::string::npos)
                break;
            start = bar + 1;
        }
        for (size_t i = 0; i < buttons.size(); ++i)
            if (buttons[i] == button)
                return static_cast<int>(i);
        return -1;
    }

    std::deque<std::string> files;
    std::deque<std::string> forms;
    std::vector<std::string> asked; ///< titles of file dialogs and forms
};

/// A main window started on folders of its own, with the built program's
/// folder (and so its catalogues) as the program folder.
class ShellTest : public ScratchFolderTest {
protected:
    void SetUp() override {
        ScratchFolderTest::SetUp();
        application();
    }

    app::ShellOptions options(const std::string &commandLine = {}) {
        app::ShellOptions o;
        o.modulePath = TRAMLINE_APP_BINARY_DIR "/tramline";
        o.applicationDataFolder = dir / "appdata";
        o.documentsFolder = dir / "documents";
        o.commandLine = commandLine;
        o.systemLanguage = "en";
        o.systemCountry = "US";
        o.interaction = &shell;
        o.prompts = &shell;
        return o;
    }

    std::unique_ptr<app::CKELMADlg> start(const std::string &commandLine = {}) {
        return std::make_unique<app::CKELMADlg>(options(commandLine));
    }

    /// The main window with the bundled example's 42 rows in the raw grid.
    std::unique_ptr<app::CKELMADlg> startWithExample() {
        auto dialog = start("\"" + example().string() + "\"");
        EXPECT_EQ(dialog->rawModel()->rowCount(), 42);
        return dialog;
    }

    std::filesystem::path settingsFolder() const {
        return dir / "appdata" / "Halvren Software" / "Halvren Tramline";
    }
    std::filesystem::path settingsFile() const { return settingsFolder() / "tramline.ini"; }
    std::filesystem::path workingFolder() const { return dir / "documents" / "Halvren Tramline"; }
    /// A coordinate file in the scratch folder with the first `points` of
    /// 1 "IRON ROD", 2 "NAIL" and 3 "HUB" (northing 6000, 6100, 6200;
    /// easting 5000, 5100, 5200; elevation 100, 101, 102) and `note` on 1.
    std::filesystem::path coordinateFile(const std::string &name, int points,
                                         const std::string &note = {}) {
        static const char *const descriptions[] = {"IRON ROD", "NAIL", "HUB"};
        const auto path = dir / name;
        crd::CoordinateFile file;
        EXPECT_TRUE(file.open(path, crd::Create::Always));
        for (int i = 0; i < points; ++i) {
            crd::CrdPoint p;
            p.set(5000.0 + 100 * i, 6000.0 + 100 * i, 100.0 + i, std::to_string(i + 1),
                  descriptions[i]);
            EXPECT_TRUE(file.writePoint(p));
        }
        if (!note.empty()) {
            EXPECT_TRUE(file.addNote("1", note));
        }
        return path;
    }
    static std::filesystem::path example() {
        return std::filesystem::path(TRAMLINE_SOURCE_DIR) / "data/examples/closed-traverse.rw5";
    }

    ScriptedShell shell;
};

} // namespace tramline::test

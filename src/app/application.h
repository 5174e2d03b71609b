// The application object: gathers what start-up needs from the platform
// (the executable's path, the user's folders and locale, the command line),
// makes the main window and runs it.
#pragma once

#include "app/main_dialog.h"

#include <QApplication>

namespace tramline::app {

class CKELMAApp : public QApplication {
    Q_OBJECT
public:
    CKELMAApp(int &argc, char **argv);

    /// The start-up options of this process: the real folders and locale.
    /// TRAMLINE_APPDATA_DIR and TRAMLINE_DOCUMENTS_DIR, when set, stand in
    /// for the application-data and documents folders (scripted runs).
    ShellOptions shellOptions() const;

    /// Shows the main window and runs it to its end; the exit code.
    int run();
};

} // namespace tramline::app

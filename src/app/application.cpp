#include "app/application.h"

#include "app/command_line.h"
#include "base/folders.h"

#include <QLocale>

namespace tramline::app {

CKELMAApp::CKELMAApp(int &argc, char **argv) : QApplication(argc, argv) {
    setApplicationName(QStringLiteral("Halvren Tramline"));
    setOrganizationName(QStringLiteral("Halvren Software"));
}

ShellOptions CKELMAApp::shellOptions() const {
    ShellOptions options;
    options.modulePath = applicationFilePath().toStdString();
    const QByteArray appData = qgetenv("TRAMLINE_APPDATA_DIR");
    const QByteArray documents = qgetenv("TRAMLINE_DOCUMENTS_DIR");
    options.applicationDataFolder =
        appData.isEmpty() ? applicationDataFolder() : std::filesystem::path(appData.toStdString());
    options.documentsFolder =
        documents.isEmpty() ? documentsFolder() : std::filesystem::path(documents.toStdString());
    std::vector<std::string> arguments;
    const QStringList args = QApplication::arguments();
    for (qsizetype i = 1; i < args.size(); ++i)
        arguments.push_back(args[i].toStdString());
    options.commandLine = joinArguments(arguments);
    // The user's locale stands in for the Windows user locale.
    const QString locale = QLocale::system().name(); // "de_DE"
    options.systemLanguage = locale.section(QLatin1Char('_'), 0, 0).toStdString();
    options.systemCountry = locale.section(QLatin1Char('_'), 1, 1).toStdString();
    return options;
}

int CKELMAApp::run() {
    CKELMADlg dialog(shellOptions());
    if (dialog.startupFailed())
        return 1;
    dialog.show();
    return exec();
}

} // namespace tramline::app

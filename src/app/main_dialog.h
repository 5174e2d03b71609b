// The main window: the raw data grid (control id 110) above the coordinate
// grid (111), the main menu, and the command switch that every menu entry
// goes through. It owns the open raw document and the working coordinate
// file "tramlinetmp.crd" that the coordinate grid edits; opening and saving
// a coordinate file copies between that working copy and the user's file.
#pragma once

#include "app/localization_window.h"
#include "app/menu_table.h"
#include "app/plot_window.h"
#include "app/report_windows.h"
#include "app/shell_folders.h"
#include "app/shell_settings.h"
#include "base/interaction.h"
#include "crd/point_fields.h"
#include "raw/document.h"
#include "reduce/process_options.h"
#include "reduce/processing.h"

#include <QMainWindow>
#include <QPointer>
#include <filesystem>
#include <memory>

class QAction;
class QPrinter;
class QTableView;

namespace tramline {
class Interaction;
namespace convert {
struct FormatEntry;
struct GeodimeterOptions;
struct ImportSummary;
} // namespace convert
namespace transfer {
enum class Instrument;
enum class UploadProtocol;
struct PortSettings;
} // namespace transfer
namespace crd {
class CoordinateFile;
class WorkingCopy;
} // namespace crd
} // namespace tramline

namespace tramline::app {

class CoordinateGridModel;
class EditHistory;
class QtInteraction;
class RawGridModel;
class ShellPrompts;

/// What start-up needs from outside: the executable's path, the user's
/// folders, the command line, and who answers questions.
struct ShellOptions {
    std::string modulePath;                      ///< the executable's path
    std::filesystem::path applicationDataFolder; ///< settings go under it
    std::filesystem::path documentsFolder;       ///< the default working folder goes under it
    std::string commandLine;                     ///< as one text
    /// The user locale's language and country ("de", "DE"), for the
    /// language of the system setting.
    std::string systemLanguage, systemCountry;
    Interaction *interaction = nullptr; ///< null: message boxes and dialogs
    ShellPrompts *prompts = nullptr;    ///< null: file dialogs and forms
};

/// Where the two grids go in a client area of this size.
struct GridGeometry {
    QRect raw, coordinates;
};

class CKELMADlg : public QMainWindow {
    Q_OBJECT
public:
    static constexpr int kRawGridId = 110;
    static constexpr int kCoordinateGridId = 111;

    /// Runs the whole start-up: folders, settings and language, grids and
    /// menus, the working coordinate file, the title, the command line.
    explicit CKELMADlg(ShellOptions options, QWidget *parent = nullptr);
    ~CKELMADlg() override;

    /// The command switch: runs the feature of a command id; ids that no
    /// feature has do nothing.
    void dispatch(int id);
    /// The exit path: the save questions, the working file closed, the
    /// settings written. False when the user cancelled (nothing changed).
    bool exitProgram();
    /// True when start-up could not make the working coordinate file: the
    /// program has said so and ends.
    bool startupFailed() const { return m_startupFailed; }

    bool openRawFile(const std::string &path);
    bool openCoordinateFile(const std::string &path);
    void updateTitle();

    static GridGeometry gridGeometry(QSize client);

    // --- state, for the tests and the shell's parts --------------------
    QTableView *rawGrid() const { return m_rawGrid; }
    QTableView *coordinateGrid() const { return m_coordinateGrid; }
    RawGridModel *rawModel() const { return m_rawModel; }
    CoordinateGridModel *coordinateModel() const { return m_coordinateModel; }
    QWidget *clientArea() const { return m_client; }
    const raw::RawDocument &rawDocument() const { return m_rawDocument; }
    crd::CoordinateFile &workingFile() const { return *m_workingFile; }
    std::filesystem::path workingCoordinatePath() const { return m_workingCrdPath; }
    const ShellFolders &folders() const { return m_folders; }
    const ShellSettings &settings() const { return m_settings; }
    const MenuCheckTable &checkTable() const { return m_checks; }
    const std::string &coordinateFileName() const { return m_coordinateFileName; }
    bool coordinateModified() const { return m_coordinateModified; }
    /// Why a menu entry cannot run here (its feature is not built, its
    /// companion program is missing); empty when it can.
    std::string unavailableReason(int id) const;
    /// The menu entries of a command id (two for 32841).
    QList<QAction *> actions(int id) const;
    ProcessResultsWindow *processResultsWindow() const { return m_results; }
    TextWindow *textWindow() const { return m_textWindow; }
    LocalizationWindow *localizationWindow() const { return m_localizationWindow; }
    EditHistory &history() const { return *m_history; }
    PlotWindow *plotWindow() const { return m_plot; }

protected:
    void closeEvent(QCloseEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    Interaction &ui() const { return *m_ui; }
    ShellPrompts &prompts() const { return *m_prompts; }

    // start-up
    void setUpFolders(const ShellOptions &options);
    void readSettings(const ShellOptions &options);
    void createGrids();
    void createMenus();
    void placeWindow();
    bool createWorkingFile();
    void processCommandLine(const std::string &commandLine);

    // grids
    void layoutGrids();
    void refreshRawGrid();
    void fitRawColumns();
    void refreshCoordinateGrid();
    void applyCheckTable();
    /// The coordinate columns' order, as the display mode has it.
    crd::CoordinateOrder coordinateOrder() const;
    QTableView *activeGrid() const;
    void selectRawCell(size_t row, size_t cellColumn);

    // commands (commands.cpp)
    void runCommand(int id);
    void notAvailable(int id);
    bool confirmRawSave();
    bool confirmCoordinateSave();
    void newRawFile();
    void openRawFileCommand();
    bool saveRawFile();
    bool saveRawFileAs();
    void newCoordinateFile();
    void openCoordinateFileCommand();
    bool saveCoordinateFile();
    bool saveCoordinateFileAs();
    void settingsCommand();
    void printRawData();
    void printCoordinates();
    void showText(const QString &title, const QString &text);
    void printerSettings();
    void findCommand(bool rawGrid);
    void replaceCommand(bool rawGrid);
    void copySelection(bool cut);
    void paste();
    void deleteRow();
    void modifyMeasurements();
    void addRawRow(const std::string &type);
    void insertRowNearCurrent(bool above);
    void addPointToCoordinateFile();
    void displayCommand(int id);
    void processCommand(reduce::AdjustMethod method);
    void processSettings();
    void localizationCommand(); // localization_commands.cpp
    void processGpsCommand();
    void importRawData(bool tds);
    // converters (convert_commands.cpp)
    /// Runs the registry's converter of menu command `id`: false when the
    /// command has none that is built.
    bool runConverter(int id);
    void importRawFormat(const convert::FormatEntry &entry);
    void exportRawFormat(const convert::FormatEntry &entry);
    void importPoints(const convert::FormatEntry &entry);
    void exportPoints(const convert::FormatEntry &entry);
    void importTextPoints();
    void exportTextPoints();
    /// The import's own questions before it runs (the Geodimeter options).
    bool askImportOptions(const convert::FormatEntry &entry,
                          convert::GeodimeterOptions &geodimeter);
    /// Loads the converted job of "rimport.tmp" and the points it stored.
    void showImportedJob(const convert::ImportSummary &summary);
    void startCompanion(const char *name);
    // availability and the registry's converters (command_availability.cpp)
    static const convert::FormatEntry *converterOf(int id);
    /// Import Point Data > Leica: which coding's converter; null if cancelled.
    const convert::FormatEntry *askLeicaPointCoding();
    std::filesystem::path companionPath(const char *name) const;
    void applyAvailability();
    // Tools > Data Transfer (transfer_commands.cpp)
    static bool isDataTransfer(int id);
    std::filesystem::path settingsFilePath() const;
    transfer::PortSettings portSettings() const;
    void portDialog();
    /// A data-collection dialog with OK, the port dialog's button and
    /// Cancel; the port dialog opens as often as asked. The button pressed.
    int askTransferDialog(const std::string &title, std::vector<FormField> &fields);
    void dataTransfer(int id);
    void downloadFrom(transfer::Instrument instrument, const std::string &title,
                      const std::string &file);
    void uploadRawFile(const std::string &title, const std::string &file);
    void uploadPointsTo(transfer::UploadProtocol protocol, const std::string &title,
                        const std::string &file);
    void nikonTransfer();
    void about();
    /// Runs a command that edits a grid as one undoable step.
    void recordEdit(int id);
    void updateUndoActions();
    // the plan view (plot_commands.cpp)
    void showPlot();
    void refreshPlot();
    PlotData plotDataNow() const;
    /// Keeps a localization's residuals for the plot.
    void keepResiduals(const geodesy::Localization &localization);

    std::unique_ptr<QtInteraction> m_ownUi;
    Interaction *m_ui = nullptr;
    std::unique_ptr<Interaction> m_storeMessages; ///< the working file's, muted while it is made
    ShellPrompts *m_prompts = nullptr;

    ShellFolders m_folders;
    ShellSettings m_settings;
    raw::RawDocument m_rawDocument;
    std::unique_ptr<crd::CoordinateFile> m_workingFile;
    std::unique_ptr<crd::WorkingCopy> m_workingCopy; ///< opens and saves m_workingFile
    std::filesystem::path m_workingCrdPath;
    std::string m_coordinateFileName = "NONE";
    bool m_coordinateModified = false;
    MenuCheckTable m_checks;
    reduce::ProcessOptions m_processOptions;
    std::string m_lastFind, m_lastReplace;

    QWidget *m_client = nullptr;
    QTableView *m_rawGrid = nullptr;
    QTableView *m_coordinateGrid = nullptr;
    RawGridModel *m_rawModel = nullptr;
    CoordinateGridModel *m_coordinateModel = nullptr;
    QTableView *m_activeGrid = nullptr;
    std::vector<std::pair<int, QAction *>> m_actions;
    std::unique_ptr<QPrinter> m_printer;
    QPointer<ProcessResultsWindow> m_results;
    QPointer<TextWindow> m_textWindow;
    QPointer<LocalizationWindow> m_localizationWindow;
    QPointer<PlotWindow> m_plot;
    std::optional<reduce::ClosureVector> m_lastClosure; ///< of the last Process, for the plot
    std::vector<reduce::PointEllipse> m_lastEllipses;   ///< of the last Process, for the plot
    std::vector<PlotResidual> m_lastResiduals;          ///< of the last localization
    double m_residualFactor = 1.0;
    EditHistory *m_history = nullptr;
    geodesy::LocalizationSettings m_localizationSettings;

    bool m_startupFailed = false;
    bool m_closed = false;
};

} // namespace tramline::app

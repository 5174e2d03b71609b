// The command switch of the main window and the commands it runs: files,
// editing, display modes, settings, processing. Commands whose features
// are not built yet say so.
#include "app/coordinate_grid_model.h"
#include "app/display_commands.h"
#include "app/edit_history.h"
#include "app/long_line_warning.h"
#include "app/main_dialog.h"
#include "app/qt_text.h"
#include "app/raw_grid_model.h"
#include "app/report_windows.h"
#include "app/shell_prompts.h"
#include "base/format.h"
#include "base/unset.h"
#include "crd/coordinate_file.h"
#include "crd/coordinate_report.h"
#include "crd/file_kinds.h"
#include "crd/point_edit.h"
#include "crd/working_copy.h"
#include "reduce/processing.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QItemSelectionModel>
#include <QPageSetupDialog>
#include <QPrinter>
#include <QProcess>
#include <QTableView>

#include <fstream>
#include <sstream>

namespace tramline::app {

namespace {

const char *const kYes = trNoop("&Yes");
const char *const kNo = trNoop("&No");
const char *const kCancel = trNoop("Cancel");

std::string readWhole(const std::filesystem::path &path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

const char *rowTypeOf(int id) {
    switch (id) {
    case cmd::AddTraverse:
        return "TR";
    case cmd::AddSideShot:
        return "SS";
    case cmd::AddBackSight:
        return "BK";
    case cmd::AddInstrumentHeight:
        return "HI";
    case cmd::AddElevation:
        return "EL";
    case cmd::AddGps:
        return "GPS";
    case cmd::AddTraverseName:
        return "NAME";
    case cmd::AddNote:
        return "";
    case cmd::AddDataOnOff:
        return "DO";
    case cmd::AddPointToRaw:
        return "PT";
    case cmd::AddReferenceAzimuth:
        return "AZ";
    case cmd::AddControlError:
        return "CSE";
    case cmd::AddSetupError:
        return "SSE";
    case cmd::AddMeasurementError:
        return "MSE";
    default:
        return nullptr;
    }
}

bool isMenuCommand(int id) {
    for (const auto &c : menuCommands())
        if (c.id == id)
            return true;
    return false;
}

std::string yesNo(bool on) {
    return on ? tramline::tr("On") : tramline::tr("Off");
}

// Commands that change the grids by editing: each is one undoable step.
bool isRecordedEdit(int id) {
    static const int edits[] = {
        cmd::ReplaceRaw,     cmd::ReplaceCrd,         cmd::Cut,           cmd::Paste,
        cmd::DeleteRow,      cmd::ModifyMeasurements, cmd::AddPointToCrd, cmd::InsertRowAbove,
        cmd::InsertRowBelow, cmd::ImportRawHalvren,   cmd::ImportRawTds,
    };
    return rowTypeOf(id) || std::find(std::begin(edits), std::end(edits), id) != std::end(edits);
}

// Commands after which the undo steps still fit what the grids show: they
// only look, save or export. Any other command (opening, processing, an
// import) changes the data in ways no step knows, and the history goes.
bool keepsHistory(int id) {
    if (displayChoice(id))
        return true;
    static const int keepers[] = {
        cmd::SaveRaw,
        cmd::SaveRawAs,
        cmd::SaveCrd,
        cmd::SaveCrdAs,
        cmd::Settings,
        cmd::PrintRaw,
        cmd::PrintCoordinates,
        cmd::PrinterSettings,
        cmd::FindRaw,
        cmd::FindCrd,
        cmd::Copy,
        cmd::Undo,
        cmd::Redo,
        cmd::Plot,
        cmd::About,
        cmd::RawGrid,
        cmd::CoordinateGrid,
        cmd::RefreshCoordinates,
        cmd::ExportRawSokkia,
        cmd::ExportPointsText,
        cmd::Exit,
    };
    return std::find(std::begin(keepers), std::end(keepers), id) != std::end(keepers);
}

} // namespace

void CKELMADlg::dispatch(int id) {
    if (isRecordedEdit(id)) {
        m_history->record(QString::number(id), [&] {
            runCommand(id);
            return true;
        });
    } else {
        runCommand(id);
        if (!keepsHistory(id) && isMenuCommand(id))
            m_history->clear();
    }
    updateUndoActions();
}

void CKELMADlg::updateUndoActions() {
    if (!m_history)
        return;
    for (QAction *a : actions(cmd::Undo))
        a->setEnabled(m_history->stack().canUndo());
    for (QAction *a : actions(cmd::Redo))
        a->setEnabled(m_history->stack().canRedo());
}

void CKELMADlg::runCommand(int id) {
    if (const char *type = rowTypeOf(id)) {
        addRawRow(type);
        return;
    }
    // The Process menu's methods; one not built yet falls to the default.
    if (const auto *method = reduce::adjustMethodByMenuCommand(id); method && method->built) {
        processCommand(method->method);
        return;
    }
    switch (id) {
    case cmd::NewRaw:
        newRawFile();
        return;
    case cmd::OpenRaw:
        openRawFileCommand();
        return;
    case cmd::SaveRaw:
        saveRawFile();
        return;
    case cmd::SaveRawAs:
        saveRawFileAs();
        return;
    case cmd::NewCrd:
        newCoordinateFile();
        return;
    case cmd::OpenCrd:
        openCoordinateFileCommand();
        return;
    case cmd::SaveCrd:
        saveCoordinateFile();
        return;
    case cmd::SaveCrdAs:
        saveCoordinateFileAs();
        return;
    case cmd::Settings:
        settingsCommand();
        return;
    case cmd::PrintRaw:
        printRawData();
        return;
    case cmd::PrintCoordinates:
        printCoordinates();
        return;
    case cmd::PrinterSettings:
        printerSettings();
        return;
    case cmd::Exit:
        if (exitProgram())
            close();
        return;
    case cmd::FindRaw:
        findCommand(true);
        return;
    case cmd::FindCrd:
        findCommand(false);
        return;
    case cmd::ReplaceRaw:
        replaceCommand(true);
        return;
    case cmd::ReplaceCrd:
        replaceCommand(false);
        return;
    case cmd::Cut:
        copySelection(true);
        return;
    case cmd::Copy:
        copySelection(false);
        return;
    case cmd::Paste:
        paste();
        return;
    case cmd::DeleteRow:
        deleteRow();
        return;
    case cmd::ModifyMeasurements:
        modifyMeasurements();
        return;
    case cmd::Undo:
        m_history->stack().undo();
        return;
    case cmd::Redo:
        m_history->stack().redo();
        return;
    case cmd::Plot:
        showPlot();
        return;
    case cmd::VerticalAngle:
    case cmd::ZenithAngle:
    case cmd::ElevationDifference:
    case cmd::VerticalNone:
    case cmd::SlopeDistance:
    case cmd::HorizontalDistance:
    case cmd::AnglesDms:
    case cmd::AnglesGons:
    case cmd::NorthingEasting:
    case cmd::EastingNorthing:
        displayCommand(id);
        return;
    case cmd::AddPointToCrd:
        addPointToCoordinateFile();
        return;
    case cmd::ProcessSettings:
        processSettings();
        return;
    case cmd::ImportRawHalvren:
        importRawData(false);
        return;
    case cmd::ImportRawTds:
        importRawData(true);
        return;
    case cmd::ImportPointsText:
        importTextPoints();
        return;
    case cmd::ExportPointsText:
        exportTextPoints();
        return;
    case cmd::ImageTramline:
        startCompanion("imagery");
        return;
    case cmd::TransferQuillan:
        startCompanion("quilcom");
        return;
    case cmd::About:
        about();
        return;
    // The grids' notifications: the current raw row moved (its captions
    // head the columns), points of the coordinate grid were written.
    case cmd::RawGrid:
        m_rawModel->setCurrentRow(m_rawGrid->currentIndex().row());
        return;
    case cmd::CoordinateGrid:
        m_coordinateModified = true;
        refreshPlot();
        return;
    case cmd::InsertRowAbove:
        insertRowNearCurrent(true);
        return;
    case cmd::InsertRowBelow:
        insertRowNearCurrent(false);
        return;
    case cmd::RefreshCoordinates:
        refreshCoordinateGrid();
        return;
    case cmd::GpsLocalizationReport:
        localizationCommand();
        return;
    case cmd::ProcessGps:
        processGpsCommand();
        return;
    default:
        // Converters the registry has built run through the shared
        // flows; the other menu entries wait for their features; ids of
        // no entry (separators, 0) do nothing.
        if (runConverter(id))
            return;
        if (isDataTransfer(id)) {
            dataTransfer(id);
            return;
        }
        if (isMenuCommand(id))
            notAvailable(id);
        return;
    }
}

void CKELMADlg::notAvailable(int id) {
    std::string caption;
    for (const auto &c : menuCommands()) {
        if (c.id != id)
            continue;
        for (const auto &part : menuPath(c.path))
            caption += (caption.empty() ? "" : " > ") + std::string(tramline::tr(part.c_str()));
        break;
    }
    ui().message(format(tramline::tr("%s: this command is not available yet."), caption.c_str()));
}

// --- raw files -------------------------------------------------------------------

bool CKELMADlg::confirmRawSave() {
    if (!m_rawDocument.modified())
        return true;
    switch (ui().choose(tramline::tr(kProductName), tramline::tr("Save Raw Data Changes?"),
                        {tramline::tr(kYes), tramline::tr(kNo), tramline::tr(kCancel)})) {
    case 0:
        return saveRawFile();
    case 1:
        return true;
    default:
        return false;
    }
}

void CKELMADlg::newRawFile() {
    if (!confirmRawSave())
        return;
    m_rawDocument.clear();
    // New rows hold angles in the unit on display; the file must say so.
    if (m_rawDocument.modes().angle == AngleUnit::Gons)
        m_rawDocument.changeAngleMode(AngleUnit::Gons);
    refreshRawGrid();
    updateTitle();
}

void CKELMADlg::openRawFileCommand() {
    if (!confirmRawSave())
        return;
    const std::string path = prompts().askFileName(tramline::tr("Raw File To Open"), "rw5", false);
    if (!path.empty())
        openRawFile(path);
}

bool CKELMADlg::openRawFile(const std::string &path) {
    raw::RawDocument loaded;
    loaded.setModes(m_rawDocument.modes());
    if (!loaded.open(path, ui()))
        return false;
    loaded.changeAngleMode(m_rawDocument.modes().angle);
    m_rawDocument = std::move(loaded);
    m_rawGrid->setCurrentIndex({});
    refreshRawGrid();
    updateTitle();
    // The file is open and shown; now say which of its lines were split.
    if (const std::string warning = longLinesWarning(path); !warning.empty())
        ui().message(warning);
    return true;
}

bool CKELMADlg::saveRawFile() {
    if (m_rawDocument.path().empty())
        return saveRawFileAs();
    return m_rawDocument.save(ui());
}

bool CKELMADlg::saveRawFileAs() {
    const std::string path = prompts().askFileName(tramline::tr("Raw File To Save"), "rw5", true);
    if (path.empty() || !m_rawDocument.saveAs(path, ui()))
        return false;
    updateTitle();
    return true;
}

void CKELMADlg::importRawData(bool tds) {
    const std::string path =
        tds ? prompts().askFileName(tramline::tr("TDS Raw File to Import"), "rw5;raw", false)
            : prompts().askFileName(tramline::tr("Raw File to Add"), "rw5;sav", false);
    if (path.empty())
        return;
    const size_t before = m_rawDocument.rowCount();
    if (!m_rawDocument.append(path, tds ? raw::RawFlavour::Tds : raw::RawFlavour::Rw5, ui()))
        return;
    refreshRawGrid();
    if (m_rawDocument.rowCount() > before)
        selectRawCell(before, 1);
}

// --- coordinate files -------------------------------------------------------------

bool CKELMADlg::confirmCoordinateSave() {
    if (!m_coordinateModified)
        return true;
    switch (ui().choose(tramline::tr(kProductName), tramline::tr("Save Coordinate File Changes?"),
                        {tramline::tr(kYes), tramline::tr(kNo), tramline::tr(kCancel)})) {
    case 0:
        return saveCoordinateFile();
    case 1:
        return true;
    default:
        return false;
    }
}

void CKELMADlg::newCoordinateFile() {
    if (!confirmCoordinateSave())
        return;
    if (!createWorkingFile())
        ui().message(crd::CoordinateFile::errorText(m_workingFile->lastError()));
    m_coordinateFileName = "NONE";
    m_coordinateModified = false;
    refreshCoordinateGrid();
    updateTitle();
}

void CKELMADlg::openCoordinateFileCommand() {
    if (!confirmCoordinateSave())
        return;
    const std::string path =
        prompts().askFileName(tramline::tr("CRD File To Open"), crd::kCoordinateFileFilter, false);
    if (!path.empty())
        openCoordinateFile(path);
}

bool CKELMADlg::openCoordinateFile(const std::string &path) {
    const Status status = m_workingCopy->open(path);
    if (!status) {
        ui().message(status.message);
        if (status.code != StatusCode::Io)
            return false; // the working copy is as it was
        m_coordinateFileName = "NONE";
    } else {
        m_coordinateFileName = path;
    }
    m_coordinateModified = false;
    refreshCoordinateGrid();
    updateTitle();
    return status.ok();
}

bool CKELMADlg::saveCoordinateFile() {
    if (m_workingCopy->userFile().empty())
        return saveCoordinateFileAs();
    const Status status = m_workingCopy->save();
    if (!status) {
        ui().message(status.message);
        return false;
    }
    m_coordinateModified = false;
    return true;
}

bool CKELMADlg::saveCoordinateFileAs() {
    const std::string path = prompts().askFileName(tramline::tr("CRD File To Save"), "crd", true);
    if (path.empty())
        return false;
    const Status status = m_workingCopy->saveAs(path);
    if (!status) {
        ui().message(status.message);
        return false;
    }
    m_coordinateModified = false;
    m_coordinateFileName = path;
    updateTitle();
    return true;
}

void CKELMADlg::addPointToCoordinateFile() {
    std::vector<FormField> fields = {
        {tramline::tr("PntNo"), crd::nextPointName(*m_workingFile), {}},
        {tramline::tr("Northing"), "", {}},
        {tramline::tr("Easting"), "", {}},
        {tramline::tr("Elevation"), "", {}},
        {tramline::tr("Description"), "", {}}};
    if (!ui().fillForm(tramline::tr("Add Point"), fields))
        return;
    crd::CrdPoint point;
    double north = 0.0, east = 0.0, elevation = kUnsetPositive;
    if (!parseNumber(fields[1].value, north)) {
        ui().message(tramline::tr("Error: missing Northing"));
        return;
    }
    if (!parseNumber(fields[2].value, east)) {
        ui().message(tramline::tr("Error: missing Easting"));
        return;
    }
    if (!fields[3].value.empty() && !parseNumber(fields[3].value, elevation)) {
        ui().message(format(tramline::tr("Error: %s is not a number"), fields[3].value.c_str()));
        return;
    }
    point.name = fields[0].value;
    point.northing = north;
    point.easting = east;
    point.elevation = elevation;
    point.description = fields[4].value;
    crd::CrdPoint stored;
    if (const Status status = crd::addPoint(*m_workingFile, point, &stored); !status) {
        ui().message(status.message);
        return;
    }
    m_coordinateModified = true;
    refreshCoordinateGrid();
    const int row = m_coordinateModel->rowOf(stored.name);
    if (row >= 0)
        m_coordinateGrid->setCurrentIndex(m_coordinateModel->index(row, 0));
}

// --- settings and printing ------------------------------------------------------------

void CKELMADlg::settingsCommand() {
    const std::vector<std::string> choices = {tramline::tr("English"),
                                              tramline::tr("Windows Setting")};
    std::vector<FormField> fields = {{tramline::tr("Language"),
                                      choices[m_settings.language == LanguageMode::System ? 1 : 0],
                                      choices}};
    // The choice counts however the dialog is closed; Cancel only closes.
    prompts().askForm(tramline::tr("Settings"), fields, {tramline::tr(kCancel)});
    const LanguageMode chosen =
        fields[0].value == choices[1] ? LanguageMode::System : LanguageMode::English;
    if (chosen == m_settings.language)
        return;
    m_settings.language = chosen;
    ui().message(tramline::tr("Restart program to reset language"));
}

void CKELMADlg::showText(const QString &title, const QString &text) {
    auto *window = new TextWindow(title, text, m_printer.get(), this);
    m_textWindow = window;
    window->show();
}

void CKELMADlg::printerSettings() {
    QPageSetupDialog dialog(m_printer.get(), this);
    dialog.exec();
}

void CKELMADlg::printRawData() {
    if (!m_rawDocument.print(m_folders.working, ui()))
        return;
    showText(qtr("Edit-Process Raw File"), qstr(readWhole(m_folders.working / "morvrprt.tmp")));
}

void CKELMADlg::printCoordinates() {
    std::string text;
    const Status status = crd::printCoordinates(*m_workingFile, m_coordinateFileName,
                                                coordinateOrder(), m_folders.working, text);
    if (!status) {
        ui().message(status.message);
        return;
    }
    showText(qtr("Coordinates"), qstr(text));
}

// --- editing -----------------------------------------------------------------------------

void CKELMADlg::findCommand(bool rawGrid) {
    std::vector<FormField> fields = {{tramline::tr("Find What"), m_lastFind, {}}};
    if (!ui().fillForm(tramline::tr("Find"), fields) || fields[0].value.empty())
        return;
    m_lastFind = fields[0].value;
    if (rawGrid) {
        const QModelIndex current = m_rawGrid->currentIndex();
        raw::CellPosition from;
        if (current.isValid()) {
            from.row = static_cast<size_t>(current.row());
            from.column = m_rawModel->cellColumn(current.row(), current.column());
        } else if (m_rawDocument.rowCount() > 0) {
            // Start before the first cell, so that it is looked at first.
            from.row = m_rawDocument.rowCount() - 1;
            from.column = m_rawDocument.row(from.row).cells.size();
        }
        const auto hit = m_rawDocument.find(m_lastFind, from);
        if (!hit) {
            ui().message(tramline::tr("String not found"));
            return;
        }
        m_activeGrid = m_rawGrid;
        selectRawCell(hit->row, hit->column);
        return;
    }
    const QModelIndex current = m_coordinateGrid->currentIndex();
    const auto hit = current.isValid()
                         ? m_coordinateModel->find(m_lastFind, current.row(), current.column())
                         : m_coordinateModel->find(m_lastFind, m_coordinateModel->rowCount() - 1,
                                                   CoordinateGridModel::kColumns - 1);
    if (!hit) {
        ui().message(tramline::tr("String not found"));
        return;
    }
    m_activeGrid = m_coordinateGrid;
    m_coordinateGrid->setCurrentIndex(m_coordinateModel->index(hit->first, hit->second));
}

void CKELMADlg::replaceCommand(bool rawGrid) {
    std::vector<FormField> fields = {{tramline::tr("Find What"), m_lastFind, {}},
                                     {tramline::tr("Replace With"), m_lastReplace, {}}};
    const int button = prompts().askForm(
        tramline::tr("Search and Replace"), fields,
        {tramline::tr("Replace"), tramline::tr("Replace All"), tramline::tr(kCancel)});
    if ((button != 0 && button != 1) || fields[0].value.empty())
        return;
    m_lastFind = fields[0].value;
    m_lastReplace = fields[1].value;
    const bool all = button == 1;
    long count = 0;
    if (rawGrid) {
        count =
            m_rawDocument.replace(m_lastFind, m_lastReplace,
                                  all ? raw::ReplaceScope::All : raw::ReplaceScope::AskEach, ui());
        refreshRawGrid();
    } else {
        count = m_coordinateModel->replace(m_lastFind, m_lastReplace, all);
    }
    if (count == 0)
        ui().message(tramline::tr("String not found"));
}

void CKELMADlg::copySelection(bool cut) {
    QTableView *grid = activeGrid();
    const QModelIndexList selected = grid->selectionModel()->selectedIndexes();
    if (selected.isEmpty())
        return;
    int top = selected.front().row(), bottom = top, left = selected.front().column(), right = left;
    for (const QModelIndex &i : selected) {
        top = std::min(top, i.row());
        bottom = std::max(bottom, i.row());
        left = std::min(left, i.column());
        right = std::max(right, i.column());
    }
    QStringList lines;
    for (int r = top; r <= bottom; ++r) {
        QStringList cells;
        for (int c = left; c <= right; ++c)
            if (!grid->isColumnHidden(c))
                cells << grid->model()->index(r, c).data(Qt::EditRole).toString();
        lines << cells.join(QLatin1Char('\t'));
    }
    QApplication::clipboard()->setText(lines.join(QLatin1Char('\n')));
    if (!cut)
        return;
    // Cut empties the cells; a row's type and a point's name stay, as a
    // row needs its type and a point its name.
    for (const QModelIndex &i : selected)
        if (i.column() > 0 && (i.flags() & Qt::ItemIsEditable))
            grid->model()->setData(i, QString());
}

void CKELMADlg::paste() {
    QTableView *grid = activeGrid();
    QString text = QApplication::clipboard()->text();
    const QModelIndex start = grid->currentIndex();
    if (text.isEmpty() || !start.isValid())
        return;
    if (text.endsWith(QLatin1Char('\n')))
        text.chop(1);
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (int l = 0; l < lines.size(); ++l) {
        const int row = start.row() + l;
        if (row >= grid->model()->rowCount())
            break;
        QStringList cells = lines[l].split(QLatin1Char('\t'));
        int column = start.column();
        for (const QString &cell : cells) {
            while (column < grid->model()->columnCount() && grid->isColumnHidden(column))
                ++column;
            if (column >= grid->model()->columnCount())
                break;
            const QModelIndex index = grid->model()->index(row, column);
            if (index.flags() & Qt::ItemIsEditable)
                grid->model()->setData(index, QString(cell).remove(QLatin1Char('\r')));
            ++column;
        }
    }
}

void CKELMADlg::deleteRow() {
    QTableView *grid = activeGrid();
    const QModelIndex current = grid->currentIndex();
    if (!current.isValid())
        return;
    if (grid == m_coordinateGrid) {
        m_coordinateModel->deleteRow(current.row());
        return;
    }
    const int row = current.row();
    const int column = current.column();
    if (!m_rawDocument.deleteRow(static_cast<size_t>(row)))
        return;
    m_rawGrid->setCurrentIndex({});
    refreshRawGrid();
    if (m_rawModel->rowCount() > 0)
        m_rawGrid->setCurrentIndex(
            m_rawModel->index(std::min(row, m_rawModel->rowCount() - 1), column));
}

void CKELMADlg::addRawRow(const std::string &type) {
    const QModelIndex current = m_rawGrid->currentIndex();
    const size_t after =
        current.isValid() ? static_cast<size_t>(current.row()) : m_rawDocument.rowCount();
    const size_t row = m_rawDocument.addRow(type, after);
    m_rawGrid->setCurrentIndex({});
    refreshRawGrid();
    m_activeGrid = m_rawGrid;
    selectRawCell(row, 1);
    m_rawGrid->setFocus();
}

void CKELMADlg::insertRowNearCurrent(bool above) {
    const QModelIndex current = m_rawGrid->currentIndex();
    if (!current.isValid()) {
        addRawRow("SS");
        return;
    }
    const size_t row = static_cast<size_t>(current.row());
    const std::string type = m_rawDocument.row(row).type;
    size_t inserted = 0;
    if (above && row == 0) {
        // Rows are added below a row: add one below the first, then trade
        // their contents (both rows have the same type).
        const raw::RawRow old = m_rawDocument.row(0);
        const raw::RawRow fresh = m_rawDocument.row(m_rawDocument.addRow(type, 0));
        for (size_t c = 0; c < fresh.cells.size(); ++c) {
            m_rawDocument.setCell(0, c + 1, fresh.cells[c]);
            m_rawDocument.setCell(1, c + 1, c < old.cells.size() ? old.cells[c] : std::string());
        }
    } else {
        inserted = m_rawDocument.addRow(type, above ? row - 1 : row);
    }
    m_rawGrid->setCurrentIndex({});
    refreshRawGrid();
    selectRawCell(inserted, 1);
}

void CKELMADlg::modifyMeasurements() {
    const bool elevation =
        m_rawDocument.modes().verticalMode() == raw::VerticalMode::ElevationDifference;
    const std::string vertical =
        elevation ? tramline::tr("Elev Difference") : tramline::tr("Vertical Angle");
    std::vector<FormField> fields = {
        {tramline::tr("Field To Modify"),
         tramline::tr("Distance"),
         {tramline::tr("Distance"), tramline::tr("Horizontal Angle"), vertical}},
        {tramline::tr("delta"), "0.0000", {}},
        {tramline::tr("Apply To ..."),
         tramline::tr("By Line Number"),
         {tramline::tr("By Point Number"), tramline::tr("By Line Number")}},
        {tramline::tr("Range of Points:"), "", {}},
        {tramline::tr("Start Line:"), "1", {}},
        {tramline::tr("End Line:"), std::to_string(m_rawDocument.rowCount()), {}},
    };
    if (!ui().fillForm(tramline::tr("Modify Measurements"), fields))
        return;
    raw::ModifyField field = raw::ModifyField::Distance;
    if (fields[0].value == tramline::tr("Horizontal Angle"))
        field = raw::ModifyField::HorizontalAngle;
    else if (fields[0].value == vertical)
        field = elevation ? raw::ModifyField::ElevationDifference : raw::ModifyField::VerticalAngle;
    double delta = 0.0;
    if (!parseNumber(fields[1].value, delta)) {
        ui().message(format(tramline::tr("Error: %s is not a number"), fields[1].value.c_str()));
        return;
    }
    raw::ModifySelection selection;
    if (fields[2].value == tramline::tr("By Point Number")) {
        selection.points = fields[3].value;
    } else {
        double first = 0.0, last = 0.0;
        parseNumber(fields[4].value, first);
        parseNumber(fields[5].value, last);
        selection.firstLine = first > 0 ? static_cast<size_t>(first) : 0;
        selection.lastLine = last > 0 ? static_cast<size_t>(last) : 0;
    }
    const int count = std::max(0, m_rawDocument.modifyMeasurements(field, delta, selection));
    refreshRawGrid();
    ui().message(format(tramline::tr("Modified %d values"), count));
}

// --- display ---------------------------------------------------------------------------

void CKELMADlg::displayCommand(int id) {
    const auto choice = displayChoice(id);
    if (!choice)
        return;
    if (choice->vertical)
        m_rawDocument.changeVerticalMode(*choice->vertical);
    if (choice->distance)
        m_rawDocument.changeDistanceMode(*choice->distance);
    if (choice->angle)
        m_rawDocument.changeAngleMode(*choice->angle);
    if (choice->order)
        m_rawDocument.setCoordinateOrder(*choice->order);
    // A corrupt vertical mode was reset by the command: the marks follow
    // the modes as they now are.
    checkDisplayModes(m_rawDocument.modes(), m_checks);
    applyCheckTable();
    // Both grids show the change at once, each keeping its current cell.
    const QModelIndex current = m_rawGrid->currentIndex();
    refreshRawGrid();
    if (current.isValid() && current.row() < m_rawModel->rowCount())
        m_rawGrid->setCurrentIndex(m_rawModel->index(current.row(), current.column()));
    if (choice->order) {
        const QModelIndex point = m_coordinateGrid->currentIndex();
        refreshCoordinateGrid();
        if (point.isValid() && point.row() < m_coordinateModel->rowCount())
            m_coordinateGrid->setCurrentIndex(
                m_coordinateModel->index(point.row(), point.column()));
    }
}

// --- processing ------------------------------------------------------------------------

void CKELMADlg::processCommand(reduce::AdjustMethod method) {
    raw::RawFile file;
    if (!m_rawDocument.records(file) || file.nodes.empty()) {
        ui().message(tramline::tr("Error: unable to read raw file"));
        return;
    }
    reduce::ProcessOptions options = m_processOptions;
    options.method = method;
    options.workingFolder = m_folders.working;
    // The report names the user's file, not the working copy it writes.
    options.coordinateFileName = m_coordinateFileName;
    reduce::ProcessResult result =
        reduce::processRaw(file, m_rawDocument.fileName(), *m_workingFile, options, ui());
    if (result.rawChanged) {
        // Store point records became notes: the grid shows the file as
        // processing left it.
        m_rawDocument.load(file);
        m_rawDocument.setModified(true);
        refreshRawGrid();
    }
    if (result.pointsStored > 0)
        m_coordinateModified = true;
    m_lastClosure = result.closure;
    m_lastEllipses = result.ellipses;
    refreshCoordinateGrid();
    if (result.status == reduce::ProcessResult::Status::Failed && !result.error.empty())
        ui().message(result.error);
    if (!result.report.empty()) {
        if (m_results)
            m_results->close();
        m_results = new ProcessResultsWindow(result.report, m_printer.get(), this);
        connect(m_results, &ProcessResultsWindow::exportPdfRequested, this, [this] {
            const std::string path = prompts().askFileName(tramline::tr("Export PDF"), "pdf", true);
            if (!path.empty() && m_results && !m_results->exportCurrentTab(qstr(path)))
                ui().message(format(tramline::tr("Can't open output file %s"), path.c_str()));
        });
        m_results->show();
    }
}

void CKELMADlg::processSettings() {
    reduce::ProcessOptions &o = m_processOptions;
    const std::vector<std::string> onOff = {tramline::tr("On"), tramline::tr("Off")};
    std::vector<FormField> fields = {
        {tramline::tr("Scale Factor"), format("%.8f", o.scaleFactor), {}},
        {tramline::tr("Correct for Earth Curvature"), yesNo(o.curvature), onOff},
        {tramline::tr("Stadia Reduction"), yesNo(o.stadia), onOff},
        {tramline::tr("Calculate Elevations"), yesNo(o.elevations), onOff},
        {tramline::tr("Create Point Notes"), yesNo(o.pointNotes), onOff},
        {tramline::tr("Report Sideshots"), yesNo(o.reportSideshots), onOff},
        {tramline::tr("Report Unadjusted Points"), yesNo(o.reportUnadjusted), onOff},
        {tramline::tr("Report Point Adjustments"), yesNo(o.reportAdjustments), onOff},
        {tramline::tr("Apply Vertical Adjustment"), yesNo(o.verticalAdjust), onOff},
        {tramline::tr("Apply Angle Balance"), yesNo(o.angleBalance), onOff},
    };
    if (!ui().fillForm(tramline::tr("Process Settings"), fields))
        return;
    double scale = 0.0;
    if (!parseNumber(fields[0].value, scale) || scale <= 0.0) {
        ui().message(format(tramline::tr("Error: %s is not a number"), fields[0].value.c_str()));
        return;
    }
    auto on = [&](size_t i) { return fields[i].value == onOff[0]; };
    o.scaleFactor = scale;
    o.curvature = on(1);
    o.stadia = on(2);
    o.elevations = on(3);
    o.pointNotes = on(4);
    o.reportSideshots = on(5);
    o.reportUnadjusted = on(6);
    o.reportAdjustments = on(7);
    o.verticalAdjust = on(8);
    o.angleBalance = on(9);
}

// --- companions and help ---------------------------------------------------------------

void CKELMADlg::startCompanion(const char *name) {
    const std::string program = companionPath(name).string();
    if (!QProcess::startDetached(qstr(program), {}))
        ui().message(format(tramline::tr("Error: unable to start %s"), program.c_str()));
}

void CKELMADlg::about() {
    ui().message(format("%s %s\n\n%s", tramline::tr(kProductName), TRAMLINE_VERSION,
                        tramline::tr("Raw survey data in, checked and adjusted coordinates out.")));
}

} // namespace tramline::app

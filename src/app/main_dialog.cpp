// Start-up, the grids and menus, resizing and the exit path of the main
// window. The commands themselves are in commands.cpp.
#include "app/main_dialog.h"

#include "app/command_line.h"
#include "app/coordinate_grid_model.h"
#include "app/display_commands.h"
#include "app/edit_history.h"
#include "app/language.h"
#include "app/qt_interaction.h"
#include "app/qt_text.h"
#include "app/raw_grid_model.h"
#include "app/report_windows.h"
#include "base/format.h"
#include "base/forwarding_interaction.h"
#include "crd/coordinate_file.h"
#include "crd/working_copy.h"
#include "raw/classify.h"

#include <QAction>
#include <QActionGroup>
#include <QCloseEvent>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QHeaderView>
#include <QMenuBar>
#include <QPrinter>
#include <QScreen>
#include <QTableView>

#include <array>

namespace tramline::app {

namespace {

constexpr const char *kWorkingCoordinateFile = "tramlinetmp.crd";

// The working file's messages, passed on to the user except while the
// file is being made: a first failure there is followed by a retry, and
// only the end of the story is worth a message.
class StoreMessages : public ForwardingInteraction {
public:
    explicit StoreMessages(Interaction &target) : ForwardingInteraction(target) {}
    void message(const std::string &text) override {
        if (!muted)
            ForwardingInteraction::message(text);
    }

    bool muted = false;
};

QTableView *makeGrid(QWidget *parent, int id) {
    auto *grid = new QTableView(parent);
    grid->setObjectName(QStringLiteral("grid%1").arg(id));
    grid->setProperty("controlId", id);
    grid->setFrameShape(QFrame::Box);
    grid->setFocusPolicy(Qt::StrongFocus);
    grid->setSelectionMode(QAbstractItemView::ContiguousSelection);
    grid->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                          QAbstractItemView::AnyKeyPressed);
    grid->horizontalHeader()->setStretchLastSection(true);
    grid->horizontalHeader()->setHighlightSections(false);
    grid->verticalHeader()->setDefaultSectionSize(22);
    grid->setWordWrap(false);
    return grid;
}

} // namespace

CKELMADlg::CKELMADlg(ShellOptions options, QWidget *parent) : QMainWindow(parent) {
    if (options.interaction && options.prompts) {
        m_ui = options.interaction;
        m_prompts = options.prompts;
    } else {
        m_ownUi = std::make_unique<QtInteraction>(this);
        m_ui = options.interaction ? options.interaction : m_ownUi.get();
        m_prompts = options.prompts ? options.prompts : m_ownUi.get();
    }
    m_storeMessages = std::make_unique<StoreMessages>(*m_ui);
    crd::CrdContext context;
    context.messages = m_storeMessages.get();
    m_workingFile = std::make_unique<crd::CoordinateFile>(context);
    m_workingCopy = std::make_unique<crd::WorkingCopy>(*m_workingFile);

    m_printer = std::make_unique<QPrinter>();
    setUpFolders(options);
    readSettings(options);
    createGrids();
    createMenus();
    placeWindow();

    if (!createWorkingFile()) {
        ui().message(format(tramline::tr("Error: failed to create %s.\nExiting."),
                            m_workingCrdPath.string().c_str()));
        exitProgram();
        m_startupFailed = true;
        return;
    }
    updateTitle();
    processCommandLine(options.commandLine);
}

CKELMADlg::~CKELMADlg() {
    // The undo history refers to the document and the file, and its stack
    // signals this window while it empties; it goes first, unheard.
    if (m_history) {
        m_history->stack().disconnect(this);
        m_history->disconnect(this);
        delete m_history;
        m_history = nullptr;
    }
    // The models refer to the document and the file; they go next.
    delete m_rawGrid;
    delete m_coordinateGrid;
}

// --- start-up ------------------------------------------------------------------

// Where the window was last time, when that is still on a screen;
// otherwise two thirds of the screen, in its middle, so that both grids
// show a good number of rows.
void CKELMADlg::placeWindow() {
    const WindowPlace &place = m_settings.window;
    const QRect saved(place.x, place.y, place.width, place.height);
    if (place.valid()) {
        for (const QScreen *screen : QGuiApplication::screens())
            if (screen->availableGeometry().intersects(saved)) {
                setGeometry(saved);
                return;
            }
    }
    const QScreen *screen = QGuiApplication::primaryScreen();
    const QRect available = screen ? screen->availableGeometry() : QRect(0, 0, 1500, 1050);
    const QSize size(available.width() * 2 / 3, available.height() * 2 / 3);
    resize(size);
    move(available.center() - QPoint(size.width() / 2, size.height() / 2));
}

void CKELMADlg::setUpFolders(const ShellOptions &options) {
    m_folders =
        shellFolders(options.modulePath, options.applicationDataFolder, options.documentsFolder);
    // An existing folder is no error, and one that cannot be made shows up
    // later where a file in it is needed.
    std::error_code ec;
    std::filesystem::create_directories(m_folders.settings, ec);
    std::filesystem::create_directories(m_folders.working, ec);
}

void CKELMADlg::readSettings(const ShellOptions &options) {
    m_settings = ShellSettings{};
    readSettingsFile(m_folders.settings / kSettingsFileName, m_settings);
    if (!m_settings.tmpdir.empty()) {
        m_folders.working = m_settings.tmpdir;
        std::error_code ec;
        std::filesystem::create_directories(m_folders.working,
                                            ec); // reports and scratch files go there
    }
    m_settings.tmpdir = withSeparator(m_folders.working);

    if (m_settings.language == LanguageMode::System) {
        // The shared start-up file lies beside the settings file; it only
        // speaks when no code is asked for, and the shell asks for "win".
        const LanguageEnvironment environment = processLanguageEnvironment(
            options.systemLanguage, options.systemCountry, m_folders.settings / "morvstart.ini");
        for (const auto &warning :
             startTranslation(m_folders.program / "LANG", chooseLanguage("win", environment)))
            ui().message(warning);
    } else {
        startTranslation(m_folders.program / "LANG", LanguageCode{});
    }

    raw::DisplayModes modes = m_rawDocument.modes();
    modes.angle = m_settings.angleDisplay;
    modes.order = m_settings.coordinateOrder;
    m_rawDocument.setModes(modes);
    checkDisplayModes(modes, m_checks);
    if (modes.angle == AngleUnit::Gons)
        m_rawDocument.changeAngleMode(AngleUnit::Gons);
}

void CKELMADlg::createGrids() {
    m_client = new QWidget(this);
    m_client->setObjectName(QStringLiteral("client"));
    setCentralWidget(m_client);
    m_client->installEventFilter(this);

    m_rawGrid = makeGrid(m_client, kRawGridId);
    m_rawModel = new RawGridModel(m_rawDocument, m_rawGrid);
    m_rawGrid->setModel(m_rawModel);
    m_rawGrid->setItemDelegate(new RawGridDelegate(m_rawGrid));
    // The grids' own notifications reach their handlers through the
    // command switch, under the grids' ids.
    connect(m_rawGrid->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this] { dispatch(kRawGridId); });
    connect(m_rawModel, &RawGridModel::rowTypeChanged, this, [this](int row) {
        m_rawGrid->setSpan(row, 1, 1, m_rawModel->isTextRow(row) ? RawGridModel::kColumns - 1 : 1);
    });

    m_coordinateGrid = makeGrid(m_client, kCoordinateGridId);
    m_coordinateModel = new CoordinateGridModel(*m_workingFile, ui(), m_coordinateGrid);
    m_coordinateGrid->setModel(m_coordinateModel);
    m_coordinateGrid->setItemDelegate(
        new CoordinateGridDelegate(*m_coordinateModel, ui(), m_coordinateGrid));

    m_history = new EditHistory(m_rawDocument, *m_workingFile, this);
    const auto recorder = [this](const std::function<bool()> &edit) {
        return m_history->record(QStringLiteral("edit"), edit);
    };
    m_rawModel->setRecorder(recorder);
    m_coordinateModel->setRecorder(recorder);
    connect(m_history, &EditHistory::rowsRestored, this, [this] {
        const QModelIndex current = m_rawGrid->currentIndex();
        refreshRawGrid();
        if (current.isValid() && current.row() < m_rawModel->rowCount())
            m_rawGrid->setCurrentIndex(m_rawModel->index(current.row(), current.column()));
        updateTitle();
    });
    connect(m_history, &EditHistory::pointsRestored, this, [this] {
        m_coordinateModified = true;
        refreshCoordinateGrid();
    });
    connect(&m_history->stack(), &QUndoStack::indexChanged, this, &CKELMADlg::updateUndoActions);
    connect(&m_history->stack(), &QUndoStack::cleanChanged, this, &CKELMADlg::updateUndoActions);
    connect(m_coordinateModel, &CoordinateGridModel::pointsChanged, this,
            [this] { dispatch(kCoordinateGridId); });

    m_rawGrid->installEventFilter(this);
    m_coordinateGrid->installEventFilter(this);
    m_activeGrid = m_rawGrid;
    refreshRawGrid();
    refreshCoordinateGrid();
}

void CKELMADlg::createMenus() {
    // Menus are built from the command table, each caption translated.
    std::map<std::string, QMenu *> menus;
    for (const auto &command : menuCommands()) {
        const auto parts = menuPath(command.path);
        std::string key;
        QMenu *menu = nullptr;
        for (size_t i = 0; i + 1 < parts.size(); ++i) {
            key += parts[i] + ">";
            auto it = menus.find(key);
            if (it == menus.end()) {
                QMenu *created = menu ? menu->addMenu(qtr(parts[i].c_str()))
                                      : menuBar()->addMenu(qtr(parts[i].c_str()));
                created->setObjectName(qstr(parts[i]));
                connect(created, &QMenu::aboutToShow, this, &CKELMADlg::applyCheckTable);
                created->setToolTipsVisible(true); // the reasons of disabled entries
                it = menus.emplace(key, created).first;
            }
            menu = it->second;
        }
        QAction *action = menu->addAction(qtr(parts.back().c_str()));
        action->setObjectName(QStringLiteral("command%1").arg(command.id));
        action->setProperty("commandId", command.id);
        connect(action, &QAction::triggered, this, [this, id = command.id] { dispatch(id); });
        m_actions.emplace_back(command.id, action);
    }
    // The display groups show as radio items; the check table decides
    // which one is on.
    for (const auto &group : checkGroups()) {
        auto *radio = new QActionGroup(this);
        for (int id : group)
            for (QAction *a : actions(id)) {
                a->setCheckable(true);
                radio->addAction(a);
            }
    }
    // Separators between the groups of the File menu, where a surveyor
    // looks for them.
    if (QMenu *file = menus["File>"])
        for (int before : {cmd::OpenCrd, cmd::Settings, cmd::Exit})
            if (QAction *a = actions(before).value(0))
                file->insertSeparator(a);

    const std::pair<int, QKeySequence> shortcuts[] = {
        {cmd::OpenRaw, QKeySequence::Open}, {cmd::SaveRaw, QKeySequence::Save},
        {cmd::FindRaw, QKeySequence::Find}, {cmd::ReplaceRaw, QKeySequence::Replace},
        {cmd::Cut, QKeySequence::Cut},      {cmd::Copy, QKeySequence::Copy},
        {cmd::Paste, QKeySequence::Paste},  {cmd::Exit, QKeySequence::Quit},
        {cmd::Undo, QKeySequence::Undo},
    };
    for (const auto &[id, keys] : shortcuts)
        if (QAction *a = actions(id).value(0))
            a->setShortcut(keys);
    // Both habits of redoing: Ctrl+Shift+Z and Ctrl+Y.
    if (QAction *redo = actions(cmd::Redo).value(0))
        redo->setShortcuts(
            {QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z), QKeySequence(Qt::CTRL | Qt::Key_Y)});
    updateUndoActions();
    applyAvailability();

    // Commands without a menu entry, reached by keys: a row of the current
    // row's type above or below it, and re-reading the coordinate file.
    const std::pair<int, QKeySequence> hidden[] = {
        {cmd::InsertRowAbove, QKeySequence(Qt::ALT | Qt::Key_Insert)},
        {cmd::InsertRowBelow, QKeySequence(Qt::Key_Insert)},
        {cmd::RefreshCoordinates, QKeySequence(Qt::Key_F5)}};
    for (const auto &[id, keys] : hidden) {
        auto *action = new QAction(this);
        action->setShortcut(keys);
        action->setProperty("commandId", id);
        connect(action, &QAction::triggered, this, [this, id = id] { dispatch(id); });
        addAction(action);
    }
    applyCheckTable();
}

bool CKELMADlg::createWorkingFile() {
    auto &relay = static_cast<StoreMessages &>(*m_storeMessages);
    relay.muted = true;
    struct Unmute {
        StoreMessages &relay;
        ~Unmute() { relay.muted = false; }
    } unmute{relay};
    auto attempt = [this](const std::filesystem::path &folder) {
        m_workingCrdPath = folder / kWorkingCoordinateFile;
        return m_workingCopy->create(m_workingCrdPath).ok();
    };
    if (attempt(m_folders.settings))
        return true;
    // The one retry: make the working folder and keep the working file
    // there, so that a settings folder that cannot be made does not stop
    // the program.
    std::error_code ec;
    std::filesystem::create_directories(m_folders.working, ec);
    return attempt(m_folders.working);
}

void CKELMADlg::processCommandLine(const std::string &commandLine) {
    const CommandLineFiles files = parseCommandLine(commandLine);
    if (!files.rawFile.empty())
        openRawFile(files.rawFile);
    if (!files.coordinateFile.empty())
        openCoordinateFile(files.coordinateFile);
}

crd::CoordinateOrder CKELMADlg::coordinateOrder() const {
    return m_rawDocument.modes().order;
}

void CKELMADlg::updateTitle() {
    setWindowTitle(qstr(format("%s - [RW5: %s] - [CRD: %s]", tramline::tr(kProductName),
                               m_rawDocument.fileName().c_str(), m_coordinateFileName.c_str())));
}

// --- grids ---------------------------------------------------------------------

GridGeometry CKELMADlg::gridGeometry(QSize client) {
    const int width = client.width() - 4;
    const int height = client.height() / 2 - 8;
    return {QRect(2, 2, width, height), QRect(2, client.height() / 2 + 8, width, height)};
}

void CKELMADlg::layoutGrids() {
    const GridGeometry g = gridGeometry(m_client->size());
    m_rawGrid->setGeometry(g.raw);
    m_coordinateGrid->setGeometry(g.coordinates);
}

void CKELMADlg::refreshRawGrid() {
    m_rawModel->reload();
    // Rows of one text (notes, whole records, names) span the cell columns
    // so that they neither get cut nor widen the first cell column.
    m_rawGrid->clearSpans();
    for (int r = 0; r < m_rawModel->rowCount(); ++r)
        if (m_rawModel->isTextRow(r))
            m_rawGrid->setSpan(r, 1, 1, RawGridModel::kColumns - 1);
    m_rawGrid->setColumnHidden(RawGridModel::kVerticalColumn,
                               m_rawDocument.modes().verticalMode() == raw::VerticalMode::None);
    fitRawColumns();
    // A current cell to start from, without a selection that looks like
    // the user made one: the first observation, so that the headers name
    // the columns a surveyor reads most (a job's first rows are its job,
    // mode and note records, whose one text leaves the headers empty).
    if (m_rawModel->rowCount() > 0 && !m_rawGrid->currentIndex().isValid()) {
        int first = 0;
        while (static_cast<size_t>(first) < m_rawDocument.rowCount() &&
               !raw::isObservationType(m_rawDocument.row(static_cast<size_t>(first)).type))
            ++first;
        if (first == m_rawModel->rowCount())
            first = 0;
        m_rawGrid->selectionModel()->setCurrentIndex(m_rawModel->index(first, 1),
                                                     QItemSelectionModel::NoUpdate);
    }
    m_rawModel->setCurrentRow(m_rawGrid->currentIndex().row());
}

// Columns as wide as their values, looked at in the rows that have cells
// of their own (a note's text spans them and would make the first one
// huge), within bounds so that one long description cannot push the
// others off the screen. A large file is sampled at its start.
void CKELMADlg::fitRawColumns() {
    const QFontMetrics metrics(m_rawGrid->font());
    const int padding = 2 * metrics.horizontalAdvance(QLatin1Char('0')) + 6;
    std::array<int, RawGridModel::kColumns> widths{};
    widths.fill(metrics.horizontalAdvance(QStringLiteral("00000000")) + padding);
    widths[0] = metrics.horizontalAdvance(QStringLiteral("CL+AB")) + padding;
    const int rows = std::min(m_rawModel->rowCount(), 2000);
    for (int r = 0; r < rows; ++r) {
        if (m_rawModel->isTextRow(r))
            continue;
        for (int c = 1; c < RawGridModel::kColumns - 1; ++c)
            widths[static_cast<size_t>(c)] = std::max(
                widths[static_cast<size_t>(c)],
                metrics.horizontalAdvance(m_rawModel->index(r, c).data().toString()) + padding);
    }
    for (int c = 0; c < RawGridModel::kColumns - 1; ++c)
        m_rawGrid->setColumnWidth(c, std::min(widths[static_cast<size_t>(c)], 260));
}

void CKELMADlg::refreshCoordinateGrid() {
    m_coordinateModel->reload(m_rawDocument.modes().order);
    m_coordinateGrid->setColumnWidth(0, 90);
    for (int c = 1; c < 4; ++c)
        m_coordinateGrid->setColumnWidth(c, 130);
    refreshPlot();
}

void CKELMADlg::applyCheckTable() {
    for (const auto &[id, checked] : m_checks.entries())
        for (QAction *a : actions(id))
            a->setChecked(checked);
}

QList<QAction *> CKELMADlg::actions(int id) const {
    QList<QAction *> found;
    for (const auto &[actionId, action] : m_actions)
        if (actionId == id)
            found.push_back(action);
    return found;
}

QTableView *CKELMADlg::activeGrid() const {
    return m_activeGrid ? m_activeGrid : m_rawGrid;
}

void CKELMADlg::selectRawCell(size_t row, size_t cellColumn) {
    const QModelIndex index =
        m_rawModel->index(static_cast<int>(row), m_rawModel->gridColumn(row, cellColumn));
    m_rawGrid->setCurrentIndex(index);
    m_rawGrid->scrollTo(index);
}

bool CKELMADlg::eventFilter(QObject *watched, QEvent *event) {
    if (watched == m_client && event->type() == QEvent::Resize)
        layoutGrids();
    else if (event->type() == QEvent::FocusIn &&
             (watched == m_rawGrid || watched == m_coordinateGrid))
        m_activeGrid = static_cast<QTableView *>(watched);
    return QMainWindow::eventFilter(watched, event);
}

// --- the end -------------------------------------------------------------------

bool CKELMADlg::exitProgram() {
    if (m_closed)
        return true;
    if (!confirmRawSave() || !confirmCoordinateSave())
        return false;
    m_rawDocument.setModified(false);
    m_coordinateModified = false;
    m_workingFile->close();
    const raw::DisplayModes &modes = m_rawDocument.modes();
    m_settings.angleDisplay = modes.angle;
    m_settings.coordinateOrder = modes.order;
    m_settings.tmpdir = withSeparator(m_folders.working);
    const QRect frame = normalGeometry();
    if (frame.isValid())
        m_settings.window = {frame.x(), frame.y(), frame.width(), frame.height()};
    writeSettingsFile(m_folders.settings / kSettingsFileName,
                      m_settings); // a failure is no reason to stay
    m_closed = true;
    return true;
}

void CKELMADlg::closeEvent(QCloseEvent *event) {
    if (exitProgram())
        event->accept();
    else
        event->ignore();
}

} // namespace tramline::app

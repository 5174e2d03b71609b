// The main menu as data: every command with its id and its place in the
// menus, in menu order, and the check marks of the Display menu.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace tramline::app {

/// Command ids of the main menu and of the grids.
namespace cmd {
enum : int {
    OpenRaw = 201,
    NewRaw = 200,
    SaveRaw = 202,
    SaveRawAs = 203,
    OpenCrd = 32806,
    NewCrd = 32807,
    SaveCrd = 32809,
    SaveCrdAs = 32808,
    Settings = 288,
    PrintRaw = 206,
    PrintCoordinates = 57,
    PrinterSettings = 32778,
    Exit = 207,
    FindRaw = 32815,
    FindCrd = 32816,
    ReplaceRaw = 32818,
    ReplaceCrd = 32817,
    Cut = 210,
    Copy = 211,
    Paste = 212,
    DeleteRow = 40007,
    ModifyMeasurements = 109,
    AnglesDms = 32850,
    AnglesGons = 32851,
    VerticalAngle = 31,
    ZenithAngle = 32,
    ElevationDifference = 33,
    VerticalNone = 34,
    SlopeDistance = 35,
    HorizontalDistance = 36,
    NorthingEasting = 32862,
    EastingNorthing = 32863,
    AddTraverse = 50,
    AddSideShot = 51,
    AddBackSight = 52,
    AddInstrumentHeight = 53,
    AddElevation = 32830,
    AddGps = 32822,
    AddTraverseName = 67,
    AddNote = 55,
    AddDataOnOff = 32859,
    AddPointToRaw = 54,
    AddPointToCrd = 32805,
    AddReferenceAzimuth = 32829,
    AddControlError = 32825,
    AddSetupError = 32827,
    AddMeasurementError = 32828,
    ProcessNoAdjust = 37,
    ProcessAngleBalance = 32813,
    ProcessCompass = 39,
    ProcessCrandall = 40,
    ProcessTransit = 41,
    ProcessLeastSquares = 32814,
    ProcessGps = 32821,
    ProcessSettings = 32842,
    TransferQuillan = 32798,
    ImportRawHalvren = 47,
    ImportRawTds = 32840,
    ExportRawTds = 32841,
    ImageTramline = 32852,
    About = 32777,
    RawGrid = 110,
    CoordinateGrid = 111,
    InsertRowAbove = 213,
    InsertRowBelow = 214,
    RefreshCoordinates = 32826,
};
} // namespace cmd

struct MenuCommand {
    int id;
    const char *path; ///< menu captions from the top, separated by '>'
};

/// Every entry of the main menu, in menu order. Two entries (NY DOT and TDS
/// of Export Raw Data) share the id 32841 on purpose: they run one export.
const std::vector<MenuCommand> &menuCommands();

/// The captions of a path, from the top menu down.
std::vector<std::string> menuPath(const char *path);

/// The radio groups of the Display menu: vertical, distance, angles,
/// coordinates.
const std::vector<std::vector<int>> &checkGroups();

/// The menu check table: the checked flag of each display command. The
/// Display commands form four groups (vertical, distance, angles,
/// coordinates) that act as radio items.
class MenuCheckTable {
public:
    MenuCheckTable();

    /// Checks `id` and clears the others of its group.
    void choose(int id);
    bool checked(int id) const;
    const std::vector<std::pair<int, bool>> &entries() const { return m_entries; }

private:
    std::vector<std::pair<int, bool>> m_entries;
};

} // namespace tramline::app

#include "app/menu_table.h"

#include "base/text.h"

#include <algorithm>

namespace tramline::app {

const std::vector<std::vector<int>> &checkGroups() {
    static const std::vector<std::vector<int>> groups = {
        {cmd::VerticalAngle, cmd::ZenithAngle, cmd::ElevationDifference, cmd::VerticalNone},
        {cmd::SlopeDistance, cmd::HorizontalDistance},
        {cmd::AnglesDms, cmd::AnglesGons},
        {cmd::NorthingEasting, cmd::EastingNorthing},
    };
    return groups;
}

const std::vector<MenuCommand> &menuCommands() {
    static const std::vector<MenuCommand> commands = {
        {cmd::OpenRaw, "File>Open RW5 File"},
        {cmd::NewRaw, "File>New RW5 File"},
        {cmd::SaveRaw, "File>Save RW5 File"},
        {cmd::SaveRawAs, "File>Save RW5 As"},
        {cmd::OpenCrd, "File>Open CRD File"},
        {cmd::NewCrd, "File>New CRD File"},
        {cmd::SaveCrd, "File>Save CRD File"},
        {cmd::SaveCrdAs, "File>Save CRD As"},
        {cmd::Settings, "File>Settings"},
        {cmd::PrintRaw, "File>Print>Raw Data"},
        {cmd::PrintCoordinates, "File>Print>Coordinates"},
        {cmd::PrinterSettings, "File>Print>Printer Settings"},
        {cmd::Exit, "File>Exit"},
        {cmd::FindRaw, "Edit>Find in RW5 File"},
        {cmd::FindCrd, "Edit>Find in CRD File"},
        {cmd::ReplaceRaw, "Edit>Replace in RW5 File"},
        {cmd::ReplaceCrd, "Edit>Replace in CRD File"},
        {cmd::Cut, "Edit>Cut"},
        {cmd::Copy, "Edit>Copy"},
        {cmd::Paste, "Edit>Paste"},
        {cmd::DeleteRow, "Edit>Delete Row"},
        {cmd::ModifyMeasurements, "Edit>Modify Measurements"},
        {cmd::Undo, "Edit>Undo"},
        {cmd::Redo, "Edit>Redo"},
        {cmd::AnglesDms, "Display>Angles>Degrees/Minutes/Seconds (ddd.mmss)"},
        {cmd::AnglesGons, "Display>Angles>Gons 400-Circle (ddd.dddd)"},
        {cmd::VerticalAngle, "Display>Vertical>Vertical Angle"},
        {cmd::ZenithAngle, "Display>Vertical>Zenith Angle"},
        {cmd::ElevationDifference, "Display>Vertical>Elevation Difference"},
        {cmd::VerticalNone, "Display>Vertical>None"},
        {cmd::SlopeDistance, "Display>Distance>Slope"},
        {cmd::HorizontalDistance, "Display>Distance>Horizontal"},
        {cmd::NorthingEasting, "Display>Coordinates>Northing-Easting"},
        {cmd::EastingNorthing, "Display>Coordinates>Easting-Northing"},
        {cmd::Plot, "Display>Plot"},
        {cmd::AddTraverse, "Add>Traverse"},
        {cmd::AddSideShot, "Add>SideShot"},
        {cmd::AddBackSight, "Add>BackSight"},
        {cmd::AddInstrumentHeight, "Add>Instrument Height"},
        {cmd::AddElevation, "Add>Elevation"},
        {cmd::AddGps, "Add>GPS"},
        {cmd::AddTraverseName, "Add>Traverse Name"},
        {cmd::AddNote, "Add>Note"},
        {cmd::AddDataOnOff, "Add>Data On/Off"},
        {cmd::AddPointToRaw, "Add>Point (To RW5 File)"},
        {cmd::AddPointToCrd, "Add>Point (To CRD File)"},
        {cmd::AddReferenceAzimuth, "Add>Reference Azimuth"},
        {cmd::AddControlError, "Add>Control Standard Error"},
        {cmd::AddSetupError, "Add>Setup Standard Error"},
        {cmd::AddMeasurementError, "Add>Measurement Standard Error"},
        {cmd::ProcessNoAdjust, "Process (Compute Pts)>No Adjust"},
        {cmd::ProcessAngleBalance, "Process (Compute Pts)>Angle Balance"},
        {cmd::ProcessCompass, "Process (Compute Pts)>Compass"},
        {cmd::ProcessCrandall, "Process (Compute Pts)>Crandall"},
        {cmd::ProcessTransit, "Process (Compute Pts)>Transit"},
        {cmd::ProcessLeastSquares, "Process (Compute Pts)>Least-Squares"},
        {cmd::ProcessGps, "Process (Compute Pts)>GPS"},
        {cmd::ProcessSettings, "Process (Compute Pts)>Process Settings"},
        {cmd::TransferQuillan, "Tools>Data Transfer>Quillan/Rapidan"},
        {cmd::TransferSokkiaSdr, "Tools>Data Transfer>Sokkia SDR"},
        {cmd::TransferGeodimeter, "Tools>Data Transfer>Geodimeter"},
        {cmd::TransferLeica, "Tools>Data Transfer>Leica"},
        {cmd::TransferNikon, "Tools>Data Transfer>Nikon"},
        {cmd::TransferSmi, "Tools>Data Transfer>SMI"},
        {cmd::TransferTds, "Tools>Data Transfer>TDS"},
        {cmd::TransferTopcon, "Tools>Data Transfer>Topcon 210/310/220/GPT2000"},
        {cmd::GeoidManager, "Tools>Geoid Manager"},
        {cmd::ImportRawCAndG, "Tools>Import Raw Data>C and G"},
        {cmd::ImportRawCalTrans, "Tools>Import Raw Data>CalTrans"},
        {cmd::ImportRawHalvren, "Tools>Import Raw Data>Halvren"},
        {cmd::ImportRawFieldbook, "Tools>Import Raw Data>Fieldbook"},
        {cmd::ImportRawGeodimeter, "Tools>Import Raw Data>Geodimeter"},
        {cmd::ImportRawHorizon, "Tools>Import Raw Data>Horizon"},
        {cmd::ImportRawLeica, "Tools>Import Raw Data>Leica"},
        {cmd::ImportRawNikon, "Tools>Import Raw Data>Nikon"},
        {cmd::ImportRawSdms, "Tools>Import Raw Data>SDMS"},
        {cmd::ImportRawSmi, "Tools>Import Raw Data>SMI"},
        {cmd::ImportRawSokkia, "Tools>Import Raw Data>Sokkia/SDR"},
        {cmd::ImportRawQuillanArchive, "Tools>Import Raw Data>Quillan Archive"},
        {cmd::ImportRawTds, "Tools>Import Raw Data>TDS"},
        {cmd::ImportRawTrimble, "Tools>Import Raw Data>Trimble"},
        {cmd::ExportRawCalTrans, "Tools>Export Raw Data>CalTrans"},
        {cmd::ExportRawDgDialog, "Tools>Export Raw Data>dgDialog"},
        {cmd::ExportFieldbook, "Tools>Export Raw Data>Fieldbook>Export FieldBook"},
        {cmd::SetupFieldbookCodes, "Tools>Export Raw Data>Fieldbook>Setup Fieldbook Codes"},
        {cmd::ExportRawFlDot, "Tools>Export Raw Data>FL DOT"},
        {cmd::ExportRawLeica, "Tools>Export Raw Data>Leica"},
        {cmd::ExportRawTds, "Tools>Export Raw Data>NY DOT"},
        {cmd::ExportRawMoss, "Tools>Export Raw Data>MOSS"},
        {cmd::ExportRawRmGeo, "Tools>Export Raw Data>RMGeo"},
        {cmd::ExportSdms, "Tools>Export Raw Data>SDMS>Export SDMS"},
        {cmd::SetupSdmsCodes, "Tools>Export Raw Data>SDMS>Setup SDMS Codes"},
        {cmd::ExportRawSfn, "Tools>Export Raw Data>SFN"},
        {cmd::ExportRawSokkia, "Tools>Export Raw Data>Sokkia/SDR"},
        {cmd::ExportRawTds, "Tools>Export Raw Data>TDS"},
        {cmd::ExportRawTopobase, "Tools>Export Raw Data>Topobase"},
        {cmd::ExportRawTrimbleJxl, "Tools>Export Raw Data>Trimble JXL"},
        {cmd::ExportRawVaDot, "Tools>Export Raw Data>VA DOT"},
        {cmd::ImportPointsText, "Tools>Import Point Data>Text/ASCII File"},
        {cmd::ImportPointsGeodimeter, "Tools>Import Point Data>Geodimeter"},
        {cmd::ImportPointsLeica, "Tools>Import Point Data>Leica"},
        {cmd::ImportPointsNlsMmh360, "Tools>Import Point Data>NLS MMH360"},
        {cmd::ImportPointsSokkia, "Tools>Import Point Data>Sokkia/SDR"},
        {cmd::ImportPointsTdsCr5, "Tools>Import Point Data>TDS CR5"},
        {cmd::ImportPointsTopobase, "Tools>Import Point Data>Topobase"},
        {cmd::ExportPointsText, "Tools>Export Point Data>Text/ASCII File"},
        {cmd::ExportPointsCaice, "Tools>Export Point Data>Caice"},
        {cmd::ExportPointsGFormat, "Tools>Export Point Data>G-Format"},
        {cmd::ExportPointsGeodimeter, "Tools>Export Point Data>Geodimeter"},
        {cmd::ExportPointsLeica, "Tools>Export Point Data>Leica"},
        {cmd::ExportPointsNlsMmh360, "Tools>Export Point Data>NLS MMH360"},
        {cmd::ExportPointsSdms, "Tools>Export Point Data>SDMS"},
        {cmd::ExportPointsSokkia, "Tools>Export Point Data>Sokkia/SDR"},
        {cmd::ExportPointsTdsCr5, "Tools>Export Point Data>TDS CR5"},
        {cmd::ExportPointsTopobase, "Tools>Export Point Data>Topobase"},
        {cmd::ImageTramline, "Tools>Image Tramline"},
        {cmd::GpsLocalizationReport, "Tools>GPS Localization Report"},
        {cmd::DirectReverseReport, "Tools>Direct-Reverse Report"},
        {cmd::ReduceDirectReverse, "Tools>Reduce Direct-Reverse"},
        {cmd::CutSheet, "Tools>Cut Sheet"},
        {cmd::ScalePointData, "Tools>Scale Point Data"},
        {cmd::EditFieldCodeList, "Tools>Edit Field Code List"},
        {cmd::ConvertDxfToTriangulation, "Tools>Convert DXF To Triangulation"},
        {cmd::ImportIgrdsSection, "Tools>Convert Section Data>Import IGRDS Section"},
        {cmd::ExportIgrdsSection, "Tools>Convert Section Data>Export IGRDS Section"},
        {cmd::OnlineManual, "Help>On-Line Manual"},
        {cmd::About, "Help>About"},
    };
    return commands;
}

std::vector<std::string> menuPath(const char *path) {
    std::vector<std::string> parts;
    for (const std::string_view caption : split(path, '>'))
        parts.emplace_back(caption);
    return parts;
}

MenuCheckTable::MenuCheckTable() {
    for (const auto &group : checkGroups())
        for (int id : group)
            m_entries.emplace_back(id, false);
}

void MenuCheckTable::choose(int id) {
    for (const auto &group : checkGroups()) {
        if (std::find(group.begin(), group.end(), id) == group.end())
            continue;
        for (auto &[entry, checked] : m_entries)
            if (std::find(group.begin(), group.end(), entry) != group.end())
                checked = entry == id;
    }
}

bool MenuCheckTable::checked(int id) const {
    for (const auto &[entry, checked] : m_entries)
        if (entry == id)
            return checked;
    return false;
}

} // namespace tramline::app

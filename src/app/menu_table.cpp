#include "app/menu_table.h"

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
        {201, "File>Open RW5 File"},
        {200, "File>New RW5 File"},
        {202, "File>Save RW5 File"},
        {203, "File>Save RW5 As"},
        {32806, "File>Open CRD File"},
        {32807, "File>New CRD File"},
        {32809, "File>Save CRD File"},
        {32808, "File>Save CRD As"},
        {288, "File>Settings"},
        {206, "File>Print>Raw Data"},
        {57, "File>Print>Coordinates"},
        {32778, "File>Print>Printer Settings"},
        {207, "File>Exit"},
        {32815, "Edit>Find in RW5 File"},
        {32816, "Edit>Find in CRD File"},
        {32818, "Edit>Replace in RW5 File"},
        {32817, "Edit>Replace in CRD File"},
        {210, "Edit>Cut"},
        {211, "Edit>Copy"},
        {212, "Edit>Paste"},
        {40007, "Edit>Delete Row"},
        {109, "Edit>Modify Measurements"},
        {32850, "Display>Angles>Degrees/Minutes/Seconds (ddd.mmss)"},
        {32851, "Display>Angles>Gons 400-Circle (ddd.dddd)"},
        {31, "Display>Vertical>Vertical Angle"},
        {32, "Display>Vertical>Zenith Angle"},
        {33, "Display>Vertical>Elevation Difference"},
        {34, "Display>Vertical>None"},
        {35, "Display>Distance>Slope"},
        {36, "Display>Distance>Horizontal"},
        {32862, "Display>Coordinates>Northing-Easting"},
        {32863, "Display>Coordinates>Easting-Northing"},
        {50, "Add>Traverse"},
        {51, "Add>SideShot"},
        {52, "Add>BackSight"},
        {53, "Add>Instrument Height"},
        {32830, "Add>Elevation"},
        {32822, "Add>GPS"},
        {67, "Add>Traverse Name"},
        {55, "Add>Note"},
        {32859, "Add>Data On/Off"},
        {54, "Add>Point (To RW5 File)"},
        {32805, "Add>Point (To CRD File)"},
        {32829, "Add>Reference Azimuth"},
        {32825, "Add>Control Standard Error"},
        {32827, "Add>Setup Standard Error"},
        {32828, "Add>Measurement Standard Error"},
        {37, "Process (Compute Pts)>No Adjust"},
        {32813, "Process (Compute Pts)>Angle Balance"},
        {39, "Process (Compute Pts)>Compass"},
        {40, "Process (Compute Pts)>Crandall"},
        {41, "Process (Compute Pts)>Transit"},
        {32814, "Process (Compute Pts)>Least-Squares"},
        {32821, "Process (Compute Pts)>GPS"},
        {32842, "Process (Compute Pts)>Process Settings"},
        {32798, "Tools>Data Transfer>Quillan/Rapidan"},
        {32772, "Tools>Data Transfer>Sokkia SDR"},
        {32802, "Tools>Data Transfer>Geodimeter"},
        {32804, "Tools>Data Transfer>Leica"},
        {32803, "Tools>Data Transfer>Nikon"},
        {32800, "Tools>Data Transfer>SMI"},
        {32799, "Tools>Data Transfer>TDS"},
        {32801, "Tools>Data Transfer>Topcon 210/310/220/GPT2000"},
        {32866, "Tools>Geoid Manager"},
        {32796, "Tools>Import Raw Data>C and G"},
        {32823, "Tools>Import Raw Data>CalTrans"},
        {47, "Tools>Import Raw Data>Halvren"},
        {32797, "Tools>Import Raw Data>Fieldbook"},
        {32794, "Tools>Import Raw Data>Geodimeter"},
        {32867, "Tools>Import Raw Data>Horizon"},
        {32793, "Tools>Import Raw Data>Leica"},
        {32792, "Tools>Import Raw Data>Nikon"},
        {32835, "Tools>Import Raw Data>SDMS"},
        {32795, "Tools>Import Raw Data>SMI"},
        {59, "Tools>Import Raw Data>Sokkia/SDR"},
        {32846, "Tools>Import Raw Data>Quillan Archive"},
        {32840, "Tools>Import Raw Data>TDS"},
        {32839, "Tools>Import Raw Data>Trimble"},
        {32824, "Tools>Export Raw Data>CalTrans"},
        {32869, "Tools>Export Raw Data>dgDialog"},
        {32790, "Tools>Export Raw Data>Fieldbook>Export FieldBook"},
        {32843, "Tools>Export Raw Data>Fieldbook>Setup Fieldbook Codes"},
        {32861, "Tools>Export Raw Data>FL DOT"},
        {32855, "Tools>Export Raw Data>Leica"},
        {32841, "Tools>Export Raw Data>NY DOT"},
        {32836, "Tools>Export Raw Data>MOSS"},
        {40008, "Tools>Export Raw Data>RMGeo"},
        {32837, "Tools>Export Raw Data>SDMS>Export SDMS"},
        {32845, "Tools>Export Raw Data>SDMS>Setup SDMS Codes"},
        {32868, "Tools>Export Raw Data>SFN"},
        {32791, "Tools>Export Raw Data>Sokkia/SDR"},
        {32841, "Tools>Export Raw Data>TDS"},
        {32856, "Tools>Export Raw Data>Topobase"},
        {32874, "Tools>Export Raw Data>Trimble JXL"},
        {32838, "Tools>Export Raw Data>VA DOT"},
        {32775, "Tools>Import Point Data>Text/ASCII File"},
        {32779, "Tools>Import Point Data>Geodimeter"},
        {32780, "Tools>Import Point Data>Leica"},
        {32853, "Tools>Import Point Data>NLS MMH360"},
        {32784, "Tools>Import Point Data>Sokkia/SDR"},
        {32783, "Tools>Import Point Data>TDS CR5"},
        {32857, "Tools>Import Point Data>Topobase"},
        {32774, "Tools>Export Point Data>Text/ASCII File"},
        {32834, "Tools>Export Point Data>Caice"},
        {32871, "Tools>Export Point Data>G-Format"},
        {32785, "Tools>Export Point Data>Geodimeter"},
        {32786, "Tools>Export Point Data>Leica"},
        {32854, "Tools>Export Point Data>NLS MMH360"},
        {32844, "Tools>Export Point Data>SDMS"},
        {32860, "Tools>Export Point Data>Sokkia/SDR"},
        {32787, "Tools>Export Point Data>TDS CR5"},
        {32858, "Tools>Export Point Data>Topobase"},
        {32852, "Tools>Image Tramline"},
        {32865, "Tools>GPS Localization Report"},
        {44, "Tools>Direct-Reverse Report"},
        {43, "Tools>Reduce Direct-Reverse"},
        {32819, "Tools>Cut Sheet"},
        {32776, "Tools>Scale Point Data"},
        {32812, "Tools>Edit Field Code List"},
        {32820, "Tools>Convert DXF To Triangulation"},
        {32832, "Tools>Convert Section Data>Import IGRDS Section"},
        {32831, "Tools>Convert Section Data>Export IGRDS Section"},
        {32810, "Help>On-Line Manual"},
        {32777, "Help>About"},
    };
    return commands;
}

std::vector<std::string> menuPath(const char *path) {
    std::vector<std::string> parts;
    std::string part;
    for (const char *p = path; *p; ++p) {
        if (*p == '>') {
            parts.push_back(part);
            part.clear();
        } else {
            part += *p;
        }
    }
    parts.push_back(part);
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

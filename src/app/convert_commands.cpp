// The menu's converters: every entry of Import and Export Raw Data and of
// Import and Export Point Data whose format the registry has built runs
// through one of four flows here (raw import, raw export, point import,
// point export), the same core code as tramline-cli; titles and filters
// come from the registry. Text points ask their own questions first.
#include "app/command_ids.h"
#include "app/coordinate_grid_model.h"
#include "app/main_dialog.h"
#include "app/raw_grid_model.h"
#include "app/shell_prompts.h"
#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"
#include "convert/export_flow.h"
#include "convert/geodimeter_import.h"
#include "convert/geodimeter_options.h"
#include "convert/import_flow.h"
#include "convert/point_flow.h"
#include "convert/registry.h"
#include "convert/text_points_flow.h"
#include "crd/coordinate_file.h"

#include <algorithm>
#include <fstream>

namespace tramline::app {

using convert::FormatKind;

namespace {

const char *const kOk = trNoop("OK");
const char *const kCancelButton = trNoop("Cancel");

} // namespace

bool CKELMADlg::runConverter(int id) {
    const convert::FormatEntry *entry = converterOf(id);
    if (!entry || !entry->built)
        return false;
    if (id == cmd::ImportPointsLeica && !(entry = askLeicaPointCoding()))
        return true; // cancelled
    if (entry->import)
        importRawFormat(*entry);
    else if (entry->exporter)
        exportRawFormat(*entry);
    else if (entry->pointImport)
        importPoints(*entry);
    else if (entry->pointExport)
        exportPoints(*entry);
    else
        return false;
    return true;
}

const convert::FormatEntry *CKELMADlg::askLeicaPointCoding() {
    // The raw import's own choice, less GeoComp, which has no converter.
    std::vector<FormField> fields = {
        {tramline::tr("Coding System"), "WildSoft", {"WildSoft", "Liscad", "10-20-30-40"}}};
    if (!ui().fillForm(tramline::tr("Leica Options"), fields))
        return nullptr;
    return convert::findFormat(convert::FormatKind::PointImport, "gsi-" + fields[0].value);
}

void CKELMADlg::importRawFormat(const convert::FormatEntry &entry) {
    if (!confirmRawSave())
        return;
    const std::string source =
        prompts().askFileName(tramline::tr(entry.dialogTitle), entry.extensions, false);
    if (source.empty())
        return;
    // The scratch file is emptied first, so that a failed import leaves no
    // records of an earlier one behind.
    const auto scratch = convert::scratchImportPath(m_folders.working);
    std::ofstream(scratch, std::ios::trunc).close();
    convert::GeodimeterOptions geodimeter;
    if (!askImportOptions(entry, geodimeter))
        return;
    convert::GeodimeterOptionsAnswered answered(ui(), geodimeter);
    convert::ImportSummary summary;
    convert::ImportPaths paths{source, scratch, m_workingCrdPath, m_workingFile.get()};
    if (!convert::runImport(entry.import, paths, answered, summary))
        return;
    showImportedJob(summary);
}

bool CKELMADlg::askImportOptions(const convert::FormatEntry &entry,
                                 convert::GeodimeterOptions &geodimeter) {
    // The Geodimeter options start from "readgeod.ini" and are kept there.
    if (entry.import != convert::importGeodimeter)
        return true;
    const auto ini = m_folders.program / convert::kGeodimeterIni;
    if (Status s = convert::loadGeodimeterOptions(ini, geodimeter); !s)
        ui().message(s.message);
    if (!convert::askGeodimeterOptions(ui(), geodimeter))
        return false;
    convert::saveGeodimeterOptions(ini, geodimeter);
    return true;
}

void CKELMADlg::showImportedJob(const convert::ImportSummary &summary) {
    const auto scratch = convert::scratchImportPath(m_folders.working);
    if (summary.pointsStored > 0)
        m_coordinateModified = true;
    refreshCoordinateGrid();
    openRawFile(scratch.string());
    m_rawDocument.setModified(true);
    const std::string report =
        summary.report.starts_with('\n') ? summary.report.substr(1) : summary.report;
    ui().message((report.empty() ? "" : report + "\n\n") + convert::summaryLine(summary));
}

void CKELMADlg::exportRawFormat(const convert::FormatEntry &entry) {
    const std::string destination =
        prompts().askFileName(tramline::tr(entry.dialogTitle), entry.extensions, true);
    if (destination.empty())
        return;
    std::vector<std::string> lines;
    const std::string text = m_rawDocument.text();
    for (std::string_view line : split(text, '\n'))
        if (line.size() >= 3)
            lines.emplace_back(trimRight(line));
    convert::ExportOutput out;
    convert::runExport(entry.exporter, lines, destination, {}, ui(), out);
}

void CKELMADlg::importTextPoints() {
    const auto *entry = convert::findFormat(FormatKind::PointImport, "text");
    const std::string source =
        prompts().askFileName(tramline::tr(entry->dialogTitle), entry->extensions, false);
    if (source.empty())
        return;
    std::vector<FormField> fields = {
        {tramline::tr("Coordinate Order"), "P,N,E,Z,D", convert::commonPointFormats()}};
    if (prompts().askForm(tramline::tr("Import Point Data"), fields,
                          {tramline::tr(kOk), tramline::tr(kCancelButton)}) != 0)
        return;
    convert::PointColumns columns;
    if (Status s = convert::parseCoordinateOrder(fields[0].value, columns); !s) {
        ui().message(s.message);
        return;
    }
    convert::TextImportSummary summary;
    const Status s = convert::importTextPointsFile(source, *m_workingFile, columns, ui(), summary);
    if (s && summary.pointsStored > 0)
        m_coordinateModified = true;
    if (!summary.report.empty())
        ui().message(summary.report.substr(1));
    refreshCoordinateGrid();
}

void CKELMADlg::exportTextPoints() {
    const auto names = convert::exportColumnNames();
    std::vector<std::string> orders;
    for (const char *name : names)
        orders.push_back(tramline::tr(name));
    std::vector<FormField> fields = {
        {tramline::tr("Coordinate Order"), orders.front(), orders},
        {tramline::tr("Delimiter"),
         tramline::tr("Comma"),
         {tramline::tr("Comma"), tramline::tr("Space")}},
        {tramline::tr("Number of Decimals:"), "5", {}},
        {tramline::tr("Range of Points:"),
         convert::defaultRange(m_workingFile->lowestName(), m_workingFile->highestName()),
         {}}};
    if (prompts().askForm(tramline::tr("Export Point Data"), fields,
                          {tramline::tr(kOk), tramline::tr(kCancelButton)}) != 0)
        return;
    convert::TextExportOptions options;
    for (std::size_t i = 0; i < orders.size(); ++i)
        if (fields[0].value == orders[i])
            options.columns = convert::ExportColumns(i);
    options.delimiter = fields[1].value == tramline::tr("Space") ? ' ' : ',';
    double decimals = 5;
    parseNumber(fields[2].value, decimals);
    options.decimals = std::clamp(int(decimals), 0, 12);
    const auto *entry = convert::findFormat(FormatKind::PointExport, "text");
    const std::string destination =
        prompts().askFileName(tramline::tr(entry->dialogTitle), entry->extensions, true);
    if (destination.empty())
        return;
    long written = 0;
    convert::exportTextPointsFile(*m_workingFile, destination, options, fields[3].value, ui(),
                                  written);
}

void CKELMADlg::importPoints(const convert::FormatEntry &entry) {
    const std::string source =
        prompts().askFileName(tramline::tr(entry.dialogTitle), entry.extensions, false);
    if (source.empty())
        return;
    convert::ImportSummary summary;
    const Status s =
        convert::runPointImport(entry.pointImport, source, *m_workingFile, ui(), summary);
    if (s && summary.pointsStored > 0)
        m_coordinateModified = true;
    if (!summary.report.empty())
        ui().message(summary.report.substr(1));
    refreshCoordinateGrid();
}

void CKELMADlg::exportPoints(const convert::FormatEntry &entry) {
    const std::string destination =
        prompts().askFileName(tramline::tr(entry.dialogTitle), entry.extensions, true);
    if (destination.empty())
        return;
    convert::ExportOutput out;
    convert::runPointExport(entry.pointExport, *m_workingFile, destination, {}, ui(), out);
}

} // namespace tramline::app

// Which menu entries can run here and now, and why the others cannot: an
// entry whose feature is missing is shown disabled with the reason as its
// tool tip. Converters come from the registry, so an entry enables itself
// once its converter is built; companion programs must be installed.
#include "app/main_dialog.h"
#include "app/shell_prompts.h"
#include "base/format.h"
#include "base/translation.h"
#include "convert/registry.h"
#include "reduce/adjust_methods.h"

#include <QAction>
#include <QFileInfo>
#include <algorithm>

namespace tramline::app {

namespace {

// The ids that the command switch carries out itself.
bool handledBySwitch(int id) {
    static const int handled[] = {
        cmd::NewRaw,
        cmd::OpenRaw,
        cmd::SaveRaw,
        cmd::SaveRawAs,
        cmd::NewCrd,
        cmd::OpenCrd,
        cmd::SaveCrd,
        cmd::SaveCrdAs,
        cmd::Settings,
        cmd::PrintRaw,
        cmd::PrintCoordinates,
        cmd::PrinterSettings,
        cmd::Exit,
        cmd::FindRaw,
        cmd::FindCrd,
        cmd::ReplaceRaw,
        cmd::ReplaceCrd,
        cmd::Cut,
        cmd::Copy,
        cmd::Paste,
        cmd::DeleteRow,
        cmd::ModifyMeasurements,
        cmd::Undo,
        cmd::Redo,
        cmd::Plot,
        cmd::AddPointToCrd,
        cmd::ProcessSettings,
        cmd::ImportRawHalvren,
        cmd::ImportRawTds,
        cmd::ImportPointsText,
        cmd::ExportPointsText,
        cmd::About,
        cmd::GpsLocalizationReport,
        cmd::ProcessGps,
        cmd::VerticalAngle,
        cmd::ZenithAngle,
        cmd::ElevationDifference,
        cmd::VerticalNone,
        cmd::SlopeDistance,
        cmd::HorizontalDistance,
        cmd::AnglesDms,
        cmd::AnglesGons,
        cmd::NorthingEasting,
        cmd::EastingNorthing,
        cmd::AddTraverse,
        cmd::AddSideShot,
        cmd::AddBackSight,
        cmd::AddInstrumentHeight,
        cmd::AddElevation,
        cmd::AddGps,
        cmd::AddTraverseName,
        cmd::AddNote,
        cmd::AddDataOnOff,
        cmd::AddPointToRaw,
        cmd::AddReferenceAzimuth,
        cmd::AddControlError,
        cmd::AddSetupError,
        cmd::AddMeasurementError,
    };
    return std::find(std::begin(handled), std::end(handled), id) != std::end(handled);
}

const char *menuPathOf(int id) {
    for (const auto &c : menuCommands())
        if (c.id == id)
            return c.path;
    return nullptr;
}

} // namespace

const convert::FormatEntry *CKELMADlg::converterOf(int id) {
    const char *path = menuPathOf(id);
    if (!path)
        return nullptr;
    const auto parts = menuPath(path);
    if (parts.size() != 3 || parts[0] != "Tools")
        return nullptr;
    using convert::FormatKind;
    const std::pair<const char *, FormatKind> kinds[] = {
        {"Import Raw Data", FormatKind::RawImport},
        {"Export Raw Data", FormatKind::RawExport},
        {"Import Point Data", FormatKind::PointImport},
        {"Export Point Data", FormatKind::PointExport},
    };
    for (const auto &[name, kind] : kinds) {
        if (parts[1] != name)
            continue;
        if (const auto *entry = convert::findFormatByMenu(kind, parts[2]))
            return entry;
        // Leica point files come in three codings, one converter each; the
        // one entry stands for them all and asks which (askLeicaPointCoding).
        if (kind == FormatKind::PointImport && parts[2] == "Leica")
            return convert::findFormat(kind, "gsi-wildsoft");
        return nullptr;
    }
    return nullptr;
}

std::filesystem::path CKELMADlg::companionPath(const char *name) const {
#ifdef _WIN32
    return m_folders.program / (std::string(name) + ".exe");
#else
    return m_folders.program / name;
#endif
}

std::string CKELMADlg::unavailableReason(int id) const {
    if (id == cmd::ImageTramline || id == cmd::TransferQuillan) {
        const auto program = companionPath(id == cmd::ImageTramline ? "imagery" : "quilcom");
        if (QFileInfo(QString::fromStdString(program.string())).isExecutable())
            return {};
        return format(tramline::tr("The companion program %s is not installed on this computer."),
                      program.filename().string().c_str());
    }
    if (const auto *method = reduce::adjustMethodByMenuCommand(id))
        return method->built ? std::string() : tramline::tr("This command is not available yet.");
    if (handledBySwitch(id) || isDataTransfer(id))
        return {};
    if (const auto *entry = converterOf(id)) {
        const bool runs = entry->built && (entry->import || entry->exporter || entry->pointImport ||
                                           entry->pointExport);
        return runs ? std::string() : tramline::tr("This converter is not available yet.");
    }
    return tramline::tr("This command is not available yet.");
}

void CKELMADlg::applyAvailability() {
    for (const auto &[id, action] : m_actions) {
        const std::string reason = unavailableReason(id);
        if (reason.empty())
            continue;
        action->setEnabled(false);
        action->setToolTip(QString::fromStdString(reason));
    }
}

} // namespace tramline::app

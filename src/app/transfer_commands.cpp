// Tools > Data Transfer: the data-collection dialog of each instrument
// (its file, download or upload, the port dialog), the Nikon dialog, and
// the transfers themselves, run by the same core code as tramline-cli with
// a progress window whose Cancel stops them. A download's converted job
// goes into the grids the way Import Raw Data puts it there.
#include "app/main_dialog.h"
#include "app/port_dialog.h"
#include "app/shell_prompts.h"
#include "app/transfer_progress.h"
#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"
#include "convert/geodimeter_options.h"
#include "convert/import_flow.h"
#include "convert/registry.h"
#include "convert/text_points_export.h"
#include "crd/coordinate_file.h"
#include "transfer/download.h"
#include "transfer/nikon.h"
#include "transfer/point_upload.h"
#include "transfer/raw_upload.h"

#include <fstream>
#include <optional>

namespace tramline::app {

namespace {

const char *const kOk = trNoop("OK");
const char *const kCancelButton = trNoop("Cancel");
const char *const kTransferType = trNoop("Transfer Type:");
const char *const kDownload = trNoop("Download (Receive From Collector)");
const char *const kUpload = trNoop("Upload (Send CRD File To Collector)");

// Sokkia sends a whole raw file; the others take points of a coordinate
// file, in framed blocks or in their own point format.
enum class Upload { SdrFile, Points };

struct Collector {
    int id;
    const char *title;
    const char *fileCaption;
    std::optional<transfer::Instrument> download; ///< none: the instrument only takes uploads
    Upload upload;
    transfer::UploadProtocol protocol;
};

using transfer::Instrument;
using transfer::UploadProtocol;

const Collector kCollectors[] = {
    {cmd::TransferSokkiaSdr, trNoop("SDR/Sokkia Data Collection"), trNoop("Sokkia File:"),
     Instrument::Sokkia, Upload::SdrFile, UploadProtocol::Sdr},
    {cmd::TransferGeodimeter, trNoop("Geodimeter Data Collection"), trNoop("Geodimeter File:"),
     Instrument::Geodimeter, Upload::Points, UploadProtocol::Geodimeter},
    {cmd::TransferLeica, trNoop("Leica Data Collection"), trNoop("Leica File:"), Instrument::Leica,
     Upload::Points, UploadProtocol::Gsi},
    {cmd::TransferSmi, trNoop("SMI Data Collection"), trNoop("SMI File:"), Instrument::Smi,
     Upload::Points, UploadProtocol::Framed},
    {cmd::TransferTds, trNoop("TDS Data Collection"), trNoop("TDS File:"), std::nullopt,
     Upload::Points, UploadProtocol::Framed},
    {cmd::TransferTopcon, trNoop("Topcon Data Collection"), trNoop("Topcon File:"),
     Instrument::Topcon, Upload::Points, UploadProtocol::Framed},
};

const Collector *collectorOf(int id) {
    for (const auto &c : kCollectors)
        if (c.id == id)
            return &c;
    return nullptr;
}

} // namespace

bool CKELMADlg::isDataTransfer(int id) {
    return collectorOf(id) || id == cmd::TransferNikon;
}

std::filesystem::path CKELMADlg::settingsFilePath() const {
    return m_folders.settings / kSettingsFileName;
}

transfer::PortSettings CKELMADlg::portSettings() const {
    transfer::PortSettings port;
    transfer::readPortSettings(settingsFilePath(), port);
    return port;
}

void CKELMADlg::portDialog() {
    const transfer::PortSettings old = portSettings();
    std::vector<FormField> fields = portDialogFields(old, transfer::listPorts());
    if (prompts().askForm(tramline::tr(kPortDialogTitle), fields,
                          {tramline::tr(kOk), tramline::tr(kCancelButton)}) != 0)
        return;
    if (!transfer::savePortSettings(settingsFilePath(), portSettingsFrom(fields, old)))
        ui().message(
            format(tramline::tr("Error: unable to write %s"), settingsFilePath().string().c_str()));
}

int CKELMADlg::askTransferDialog(const std::string &title, std::vector<FormField> &fields) {
    for (;;) {
        const int button = prompts().askForm(
            title, fields,
            {tramline::tr(kOk), tramline::tr(kPortDialogTitle), tramline::tr(kCancelButton)});
        if (button != 1)
            return button;
        portDialog();
    }
}

void CKELMADlg::dataTransfer(int id) {
    if (id == cmd::TransferNikon) {
        nikonTransfer();
        return;
    }
    const Collector *c = collectorOf(id);
    if (!c)
        return;
    FormField direction{tramline::tr(kTransferType), {}, {}};
    if (c->download)
        direction.choices.emplace_back(tramline::tr(kDownload));
    direction.choices.emplace_back(tramline::tr(kUpload));
    direction.value = direction.choices.front();
    std::vector<FormField> fields = {{tramline::tr(c->fileCaption), "", {}}, direction};
    if (askTransferDialog(tramline::tr(c->title), fields) != 0)
        return;
    const std::string file(trim(fields[0].value));
    if (c->download && fields[1].value == tramline::tr(kDownload))
        downloadFrom(*c->download, tramline::tr(c->title), file);
    else if (c->upload == Upload::SdrFile)
        uploadRawFile(tramline::tr(c->title), file);
    else
        uploadPointsTo(c->protocol, tramline::tr(c->title), file);
}

void CKELMADlg::downloadFrom(transfer::Instrument instrument, const std::string &title,
                             const std::string &file) {
    const auto &info = transfer::instrumentDownload(instrument);
    const convert::FormatEntry *entry =
        info.importId ? convert::findFormat(convert::FormatKind::RawImport, info.importId)
                      : nullptr;
    const bool converts = entry && entry->built && entry->import;
    convert::GeodimeterOptions geodimeter;
    if (converts && (!confirmRawSave() || !askImportOptions(*entry, geodimeter)))
        return;
    const auto scratch = convert::scratchImportPath(m_folders.working);
    if (converts)
        std::ofstream(scratch, std::ios::trunc).close();
    const transfer::PortSettings port = portSettings();
    transfer::DownloadRequest request;
    request.instrument = instrument;
    request.device = transfer::portDevice(port);
    request.line = transfer::lineSettings(port);
    // The program's folder is rarely writable now; the working folder is
    // the user's, like the other scratch files.
    request.captureFolder = m_folders.working;
    request.namedFile = file;
    request.destination = scratch;
    request.coordinateFile = m_workingCrdPath;
    request.openCoordinateFile = m_workingFile.get();
    transfer::DownloadOutcome outcome;
    {
        TransferProgress progress(ui(), this, title);
        convert::GeodimeterOptionsAnswered answered(progress, geodimeter);
        if (!transfer::runDownload(request, answered, outcome))
            return;
    }
    if (outcome.converted)
        showImportedJob(outcome.summary);
}

void CKELMADlg::uploadRawFile(const std::string &title, const std::string &file) {
    std::string source = file;
    if (source.empty())
        source = prompts().askFileName(tramline::tr("SDR File To Upload"), "sdr;raw;*", false);
    const transfer::PortSettings port = portSettings();
    TransferProgress progress(ui(), this, title);
    transfer::uploadSdrFile(source, transfer::portDevice(port), transfer::lineSettings(port),
                            progress);
}

void CKELMADlg::uploadPointsTo(transfer::UploadProtocol protocol, const std::string &title,
                               const std::string &file) {
    transfer::PointUploadRequest request;
    request.protocol = protocol;
    // No file named: the points of the coordinate grid.
    m_workingFile->flush();
    request.coordinateFile = file.empty() ? m_workingCrdPath : std::filesystem::path(file);
    std::vector<FormField> fields = {
        {tramline::tr("Range of Points:"),
         file.empty()
             ? convert::defaultRange(m_workingFile->lowestName(), m_workingFile->highestName())
             : std::string(),
         {}}};
    if (prompts().askForm(tramline::tr("Points To Transfer"), fields,
                          {tramline::tr(kOk), tramline::tr(kCancelButton)}) != 0)
        return;
    request.range = std::string(trim(fields[0].value));
    const transfer::PortSettings port = portSettings();
    request.device = transfer::portDevice(port);
    request.line = transfer::lineSettings(port);
    TransferProgress progress(ui(), this, title);
    transfer::uploadPoints(request, progress);
}

void CKELMADlg::nikonTransfer() {
    const char *const units[] = {trNoop("US Feet"), trNoop("Intl Feet"), trNoop("Metric")};
    std::vector<FormField> fields = {
        {tramline::tr(kTransferType),
         tramline::tr(kDownload),
         {tramline::tr(kDownload), tramline::tr(kUpload)}},
        {tramline::tr("Units"), tramline::tr(units[2]), {}},
        {tramline::tr("Angles"),
         tramline::tr("Angle Right"),
         {tramline::tr("Angle Right"), tramline::tr("Azimuth")}},
        {tramline::tr("Model"), transfer::nikonModels().front(), transfer::nikonModels()}};
    for (const char *unit : units)
        fields[1].choices.emplace_back(tramline::tr(unit));
    const std::string title = tramline::tr("Nikon Data Collection");
    if (askTransferDialog(title, fields) != 0)
        return;
    transfer::NikonParameters parameters;
    parameters.download = fields[0].value == tramline::tr(kDownload);
    for (const char *unit : units)
        if (fields[1].value == tramline::tr(unit))
            parameters.unit = transfer::nikonUnitLetter(unit);
    parameters.model = fields[3].value;
    TransferProgress progress(ui(), this, title);
    if (!parameters.download) {
        std::vector<crd::CrdPoint> points;
        crd::readAllPoints(*m_workingFile, points);
        if (!transfer::writeNikonPointFile(m_folders.working / "nikon.txt", points, progress))
            return;
    }
    transfer::runNikonTransfer(parameters, progress);
}

} // namespace tramline::app

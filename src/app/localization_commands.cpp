// Tools > GPS Localization Report and Process > GPS: the localization
// settings and report settings asked in forms, the alignment points loaded
// and kept in alignment files, the fit shown in the localization window,
// and the GPS records of the open raw file brought onto the local grid.
#include "app/localization_window.h"
#include "app/main_dialog.h"
#include "app/qt_text.h"
#include "app/report_windows.h"
#include "app/shell_prompts.h"
#include "base/format.h"
#include "base/text.h"
#include "geodesy/coordinate_system_family.h"
#include "geodesy/localization_files.h"
#include "reduce/gps_processing.h"

namespace tramline::app {

namespace {

using namespace tramline::geodesy;

constexpr const char *kAlignmentTypes = "dat;loc;gc3;raw";

const char *const kSimilarity = trNoop("Plane Similarity");
const char *const kRigid = trNoop("Rigid Body (No Scale)");
const char *const kLevel = trNoop("Level Plane");
const char *const kTilted = trNoop("Tilted Plane");
const char *const kGrid = trNoop("State Plane Grid");
const char *const kGeodetic = trNoop("Geodetic");
const char *const kFitRotate = trNoop("Fit & Rotate");
const char *const kRotateOnly = trNoop("Rotate Only");
const char *const kOn = trNoop("On");
const char *const kOff = trNoop("Off");

std::string choice(bool second, const char *first, const char *other) {
    return tramline::tr(second ? other : first);
}

// The settings dialog's fields, in order.
std::vector<FormField> settingsFields(const LocalizationSettings &s) {
    std::vector<std::string> families;
    for (int code = 0; code < kFamilyCount; ++code)
        families.emplace_back(familyName(*familyFromCode(code)));
    families.emplace_back("EPSG");
    const std::vector<std::string> places = {"0.00", "0.000", "0.0000"};
    std::vector<std::string> units, multiple;
    for (int i = 0; i < 3; ++i)
        units.emplace_back(tramline::tr(unitsChoice(static_cast<LocalizationUnits>(i))));
    for (const char *m : {trNoop("Use Last"), trNoop("Average"), trNoop("Use First")})
        multiple.emplace_back(tramline::tr(m));
    const std::vector<std::string> onOff = {tramline::tr(kOn), tramline::tr(kOff)};
    return {
        {tramline::tr("Coordinate System"), s.family, families},
        {tramline::tr("Zone"), s.zone, {}},
        {tramline::tr("Horizontal Transformation"),
         choice(s.rigid, kSimilarity, kRigid),
         {tramline::tr(kSimilarity), tramline::tr(kRigid)}},
        {tramline::tr("Vertical Transformation"),
         choice(s.tilted, kLevel, kTilted),
         {tramline::tr(kLevel), tramline::tr(kTilted)}},
        {tramline::tr("One Point Alignment Azimuth"),
         choice(s.geodeticAzimuth, kGrid, kGeodetic),
         {tramline::tr(kGrid), tramline::tr(kGeodetic)}},
        {tramline::tr("Two Point Align Method"),
         choice(s.rotateOnly, kFitRotate, kRotateOnly),
         {tramline::tr(kFitRotate), tramline::tr(kRotateOnly)}},
        {tramline::tr("Geoid"), std::to_string(s.geoidModel), {}},
        {tramline::tr("Project Scale Factor"), format("%.9f", s.projectScale), {}},
        {tramline::tr("Places"), places[static_cast<std::size_t>(s.places - 2)], places},
        {tramline::tr("Units"), units[static_cast<std::size_t>(s.units)], units},
        {tramline::tr("Multiple Measurements"), multiple[static_cast<std::size_t>(s.multiple)],
         multiple},
        {tramline::tr("Define Datum"), choice(!s.defineDatum, kOn, kOff), onOff},
    };
}

int indexIn(const FormField &field) {
    for (std::size_t i = 0; i < field.choices.size(); ++i)
        if (field.choices[i] == field.value)
            return static_cast<int>(i);
    return 0;
}

bool applySettingsFields(const std::vector<FormField> &f, LocalizationSettings &s,
                         std::string &error) {
    double geoid = 0, scale = 0;
    if (!parseNumber(f[6].value, geoid) || geoid < 0 || geoid > 78) {
        error = format(tramline::tr("Error: %s is not a number"), f[6].value.c_str());
        return false;
    }
    if (!parseNumber(f[7].value, scale) || scale <= 0.0) {
        error = format(tramline::tr("Error: %s is not a number"), f[7].value.c_str());
        return false;
    }
    s.family = f[0].value;
    s.zone = std::string(trim(f[1].value));
    s.rigid = indexIn(f[2]) == 1;
    s.tilted = indexIn(f[3]) == 1;
    s.geodeticAzimuth = indexIn(f[4]) == 1;
    s.rotateOnly = indexIn(f[5]) == 1;
    s.geoidModel = static_cast<int>(geoid);
    s.projectScale = scale;
    s.places = indexIn(f[8]) + 2;
    s.units = static_cast<LocalizationUnits>(indexIn(f[9]));
    s.multiple = static_cast<MultipleMeasurements>(indexIn(f[10]));
    s.defineDatum = indexIn(f[11]) == 0;
    return true;
}

bool isRawFile(const std::string &path) {
    const std::string ext = toLower(std::filesystem::path(path).extension().string());
    return ext == ".raw" || ext == ".rw5";
}

} // namespace

void CKELMADlg::localizationCommand() {
    const std::string path =
        prompts().askFileName(tramline::tr("Alignment File to Load"), kAlignmentTypes, false);
    if (path.empty())
        return;
    LocalizationSettings &s = m_localizationSettings;
    std::vector<FormField> fields = settingsFields(s);
    if (!ui().fillForm(tramline::tr("Localization Settings"), fields))
        return;
    std::string error;
    if (!applySettingsFields(fields, s, error))
        return ui().message(error);
    const auto reportIni = m_folders.settings / kLocalizationReportIni;
    LocalizationReportSettings report = loadReportSettings(reportIni);
    const std::vector<std::string> onOff = {tramline::tr(kOn), tramline::tr(kOff)};
    std::vector<FormField> reportFields = {
        {tramline::tr("Report Projection Parameters"),
         choice(!report.projectionParameters, kOn, kOff), onOff},
        {tramline::tr("Report Transformation Parameters"),
         choice(!report.transformationParameters, kOn, kOff), onOff},
        {tramline::tr("Report Formulas"), choice(!report.formulas, kOn, kOff), onOff}};
    if (!ui().fillForm(tramline::tr("Localization Report Settings"), reportFields))
        return;
    report.projectionParameters = reportFields[0].value == onOff[0];
    report.transformationParameters = reportFields[1].value == onOff[0];
    report.formulas = reportFields[2].value == onOff[0];
    saveReportSettings(reportIni, report);

    std::vector<AlignmentPoint> points;
    Status status;
    if (isRawFile(path)) {
        status = reduce::alignmentFromRawFile(path, s.units, s.multiple, points);
    } else {
        AlignmentFile file;
        status = loadAlignmentFile(path, file);
        points = mergeRepeatedPoints(file.points, s.multiple);
    }
    CoordinateSystem system;
    if (status)
        status = systemFromSettings(s, system);
    GeoidModels models({m_folders.settings, kDefaultGeoidServer, 120});
    Localization localization;
    if (status)
        status = fitLocalization(system, s, points, separationSource(models, s.geoidModel),
                                 localization);
    if (!status)
        return ui().message(status.message);
    if (m_localizationWindow)
        m_localizationWindow->close();
    m_localizationWindow = new LocalizationWindow(localization, report, this);
    m_localizationWindow->show();
    keepResiduals(localization);
    refreshPlot();
    for (const std::string &warning : localization.warnings)
        ui().message(warning);

    const std::string target =
        prompts().askFileName(tramline::tr("Alignment File to Save"), "dat", true);
    if (target.empty())
        return;
    if (Status saved = saveLocalization(target, localization); !saved)
        ui().message(saved.message);
}

void CKELMADlg::processGpsCommand() {
    raw::RawFile file;
    if (!m_rawDocument.records(file) || file.nodes.empty()) {
        ui().message(tramline::tr("Error: unable to read raw file"));
        return;
    }
    const std::string path =
        prompts().askFileName(tramline::tr("Alignment File to Load"), "dat;loc;gc3", false);
    if (path.empty())
        return;
    CoordinateSystem system;
    LocalizationSettings settings;
    std::vector<AlignmentPoint> points;
    GeoidModels models({m_folders.settings, kDefaultGeoidServer, 120});
    Localization localization;
    GridProjector projector;
    Status status = loadLocalization(path, system, settings, points);
    const SeparationSource separation = separationSource(models, settings.geoidModel);
    if (status)
        status = fitLocalization(system, settings, points, separation, localization);
    if (status)
        status = projector.open(system, settings, separation);
    if (!status)
        return ui().message(status.message);
    keepResiduals(localization);
    const reduce::GpsProcessResult result =
        reduce::processGps(file, m_rawDocument.fileName(), localization, projector, *m_workingFile);
    if (result.pointsStored > 0)
        m_coordinateModified = true;
    refreshCoordinateGrid();
    if (!result.ok && !result.error.empty())
        ui().message(result.error);
    if (m_results)
        m_results->close();
    m_results = new ProcessResultsWindow(result.report, m_printer.get(), this);
    m_results->show();
}

} // namespace tramline::app

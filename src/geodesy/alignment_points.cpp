#include "geodesy/alignment_points.h"

#include "base/atomic_save.h"
#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"

#include <fstream>
#include <sstream>

namespace tramline::geodesy {

std::vector<std::string> alignmentColumnNames() {
    return {
        "Localization Points", "Ellipsoid_Elv", "Local_X",    "Local_Y", "Local_Z", "HRMS", "VRMS",
        "Use_Horizontal",      "Use_Vertical",  "Description"};
}

LinearUnit linearUnit(LocalizationUnits units) {
    switch (units) {
    case LocalizationUnits::UsFeet:
        return LinearUnit::UsSurveyFeet;
    case LocalizationUnits::InternationalFeet:
        return LinearUnit::InternationalFeet;
    case LocalizationUnits::Metres:
        break;
    }
    return LinearUnit::Metres;
}

const char *unitsChoice(LocalizationUnits units) {
    static const char *const names[] = {trNoop("US Feet"), trNoop("Meters"), trNoop("Int'l Feet")};
    return names[static_cast<int>(units)];
}

const char *unitsReportName(LocalizationUnits units) {
    static const char *const names[] = {trNoop("US Feet"), trNoop("Meters"),
                                        trNoop("International Feet")};
    return names[static_cast<int>(units)];
}

namespace {

bool parseFlag(std::string_view text, bool &value) {
    double v = 0;
    if (!parseNumber(text, v))
        return false;
    value = v != 0.0;
    return true;
}

bool parseInt(std::string_view text, int low, int high, int &value) {
    double v = 0;
    if (!parseNumber(text, v) || v < low || v > high || v != static_cast<int>(v))
        return false;
    value = static_cast<int>(v);
    return true;
}

template <typename Apply> void forEachSetting(const std::string &text, Apply apply) {
    for (const std::string_view line : split(text, '\n')) {
        std::string_view key, value;
        if (splitKeyValue(trim(line), '=', key, value))
            apply(trim(key), trim(value));
    }
}

std::string readWhole(const std::filesystem::path &path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

} // namespace

std::string settingsText(const LocalizationSettings &s) {
    std::string out;
    appendFormat(out, "proj_type=%s\n", s.family.c_str());
    appendFormat(out, "zone=%s\n", s.zone.c_str());
    appendFormat(out, "datum_name=%s\n", s.datumName.c_str());
    appendFormat(out, "define_datum=%d\n", s.defineDatum ? 1 : 0);
    appendFormat(out, "use_align=%d\n", s.useAlignmentFile ? 1 : 0);
    appendFormat(out, "rigid_on=%d\n", s.rigid ? 1 : 0);
    appendFormat(out, "is_z_tilt=%d\n", s.tilted ? 1 : 0);
    appendFormat(out, "geo_on=%d\n", s.geodeticAzimuth ? 1 : 0);
    appendFormat(out, "rotate_only=%d\n", s.rotateOnly ? 1 : 0);
    appendFormat(out, "is_geoid99=%d\n", s.geoidModel);
    appendFormat(out, "project_scale=%.9f\n", s.projectScale);
    appendFormat(out, "places=%d\n", s.places);
    appendFormat(out, "is_metric=%d\n", static_cast<int>(s.units));
    appendFormat(out, "mult_avg=%d\n", static_cast<int>(s.multiple));
    appendFormat(out, "do_notes=%d\n", s.pointNotes ? 1 : 0);
    return out;
}

void applySettingsText(const std::string &text, LocalizationSettings &s) {
    forEachSetting(text, [&s](std::string_view key, std::string_view value) {
        int n = 0;
        double v = 0;
        if (key == "proj_type")
            s.family = std::string(value);
        else if (key == "zone")
            s.zone = std::string(value);
        else if (key == "datum_name")
            s.datumName = std::string(value);
        else if (key == "define_datum")
            parseFlag(value, s.defineDatum);
        else if (key == "use_align")
            parseFlag(value, s.useAlignmentFile);
        else if (key == "rigid_on")
            parseFlag(value, s.rigid);
        else if (key == "is_z_tilt")
            parseFlag(value, s.tilted);
        else if (key == "geo_on")
            parseFlag(value, s.geodeticAzimuth);
        else if (key == "rotate_only")
            parseFlag(value, s.rotateOnly);
        else if (key == "is_geoid99")
            parseInt(value, 0, 78, s.geoidModel);
        else if (key == "project_scale" && parseNumber(value, v) && v > 0.0)
            s.projectScale = v;
        else if (key == "places")
            parseInt(value, 2, 4, s.places);
        else if (key == "is_metric" && parseInt(value, 0, 2, n))
            s.units = static_cast<LocalizationUnits>(n);
        else if (key == "mult_avg" && parseInt(value, 0, 2, n))
            s.multiple = static_cast<MultipleMeasurements>(n);
        else if (key == "do_notes")
            parseFlag(value, s.pointNotes);
    });
}

std::string reportSettingsText(const LocalizationReportSettings &s) {
    return format("is_proj_param=%d\nis_xform_param=%d\nis_formula=%d\n",
                  s.projectionParameters ? 1 : 0, s.transformationParameters ? 1 : 0,
                  s.formulas ? 1 : 0);
}

void applyReportSettingsText(const std::string &text, LocalizationReportSettings &s) {
    forEachSetting(text, [&s](std::string_view key, std::string_view value) {
        if (key == "is_proj_param")
            parseFlag(value, s.projectionParameters);
        else if (key == "is_xform_param")
            parseFlag(value, s.transformationParameters);
        else if (key == "is_formula")
            parseFlag(value, s.formulas);
    });
}

LocalizationReportSettings loadReportSettings(const std::filesystem::path &path) {
    LocalizationReportSettings settings;
    applyReportSettingsText(readWhole(path), settings);
    return settings;
}

bool saveReportSettings(const std::filesystem::path &path,
                        const LocalizationReportSettings &settings) {
    return saveTextAtomically(path, reportSettingsText(settings));
}

std::vector<AlignmentPoint> mergeRepeatedPoints(const std::vector<AlignmentPoint> &points,
                                                MultipleMeasurements multiple) {
    std::vector<AlignmentPoint> merged;
    std::vector<int> counts;
    for (const AlignmentPoint &p : points) {
        std::size_t i = 0;
        while (i < merged.size() && merged[i].description != p.description)
            ++i;
        if (i == merged.size()) {
            merged.push_back(p);
            counts.push_back(1);
            continue;
        }
        AlignmentPoint &m = merged[i];
        ++counts[i];
        if (multiple == MultipleMeasurements::UseLast) {
            m = p;
        } else if (multiple == MultipleMeasurements::Average) {
            // A running mean of the GPS position; the local coordinates are
            // the point's own and stay.
            const double w = 1.0 / counts[i];
            m.latitude += (p.latitude - m.latitude) * w;
            m.longitude += (p.longitude - m.longitude) * w;
            m.ellipsoidHeight += (p.ellipsoidHeight - m.ellipsoidHeight) * w;
        }
    }
    return merged;
}

} // namespace tramline::geodesy

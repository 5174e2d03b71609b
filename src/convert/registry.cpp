#include "convert/registry.h"

#include "base/text.h"
#include "base/translation.h"
#include "convert/geodimeter_import.h"
#include "convert/geodimeter_points.h"
#include "convert/gsi_export.h"
#include "convert/gsi_import.h"
#include "convert/gsi_point_export.h"
#include "convert/jxl_export.h"
#include "convert/sdr_export.h"
#include "convert/sdr_import.h"
#include "convert/sdr_point_export.h"

namespace tramline::convert {

namespace {

using K = FormatKind;

// Titles of converters not built yet are not marked for translation: the
// program never shows them, and whoever builds one marks its texts.
const FormatEntry kFormats[] = {
    {K::RawImport, "sdr", "Sokkia/SDR", trNoop("SDR Raw File to Import"), "sdr;raw", importSdr,
     nullptr, true},
    {K::RawImport, "quillan", "Quillan Archive", "Quillan Archive File to Open", "sc5"},
    {K::RawImport, "gsi", "Leica", trNoop("Leica Raw File to Import"), "gsi;raw;gre", importGsi,
     nullptr, true},
    {K::RawImport, "geodimeter", "Geodimeter", trNoop("Geodimeter Raw File to Import"), "obs;raw",
     importGeodimeter, nullptr, true},
    {K::RawImport, "nikon", "Nikon", "Nikon Raw File to Import", "trn;raw"},
    {K::RawImport, "smi", "SMI", "SMI Raw File to Import", "raw"},
    {K::RawImport, "tds", "TDS", "TDS Raw File to Import", "rw5;raw"},
    {K::RawImport, "candg", "C and G", "C and G Raw File to Import", "cgr;raw;txt;*"},
    {K::RawImport, "fieldbook", "Fieldbook", "Fieldbook File to Import", "fbk"},
    {K::RawImport, "sdms", "SDMS", "SDMS Raw File to Import", "prj;*"},
    {K::RawImport, "caltrans", "CalTrans", "CalTrans File To Import", "dmp;*"},
    {K::RawImport, "trimble", "Trimble", "Trimble Raw File to Import", "dc"},
    {K::RawImport, "horizon", "Horizon", "Horizon Raw File to Import", "dat;*"},
    {K::RawImport, "pccogo", "PC-COGO", "PC-COGO Raw File to Import", "bat"},
    {K::RawImport, "mdl", "MDL laser", "MDL Laser File to Import", "cds"},
    {K::RawImport, "survis", "SURVIS", "SURVIS Raw File to Import", "raw"},

    {K::RawExport, "sdr", "Sokkia/SDR", trNoop("SDR Raw File to Write"), "sdr;raw", nullptr,
     exportSdr, true},
    {K::RawExport, "gsi", "Leica", trNoop("Leica Raw File to Write"), "gsi", nullptr, exportGsi,
     true},
    {K::RawExport, "jxl", "Trimble JXL", trNoop("Trimble JXL File to Export"), "jxl", nullptr,
     exportJxl, true, nullptr, nullptr, trNoop("\nError: cannot open RW5 file.")},

    {K::PointImport, "text", "Text/ASCII File", trNoop("Text/ASCII File To Import"),
     "txt;asc;dat;csv;xyz;*", nullptr, nullptr, true},
    {K::PointImport, "geodimeter", "Geodimeter", trNoop("Select Geodimeter File"), "obs;raw",
     nullptr, nullptr, true, importGeodimeterPoints},
    {K::PointImport, "nlsmmh360", "NLS MMH360", "Select NLS MMH360 File", "txt;360"},
    {K::PointImport, "sdr", "Sokkia/SDR", "Select Sokkia File", "sdr;raw"},
    {K::PointImport, "cr5", "TDS CR5", "CR5 File to Read", "cr5"},
    {K::PointImport, "topobase", "Topobase", "Select Topobase File", "ro"},
    {K::PointImport, "gsi-wildsoft", "Leica Wildsoft File", trNoop("Leica Wildsoft File"),
     "gsi;raw", nullptr, nullptr, true, importGsiPointsWildsoft},
    {K::PointImport, "gsi-liscad", "Leica Liscad File", trNoop("Leica Liscad File"), "gsi;raw",
     nullptr, nullptr, true, importGsiPointsLiscad},
    {K::PointImport, "gsi-10-20-30-40", "Leica 10-20-30-40 File", trNoop("Leica 10-20-30-40 File"),
     "gsi;raw", nullptr, nullptr, true, importGsiPointsTenTwenty},

    {K::PointExport, "text", "Text/ASCII File", trNoop("Point Text File to Write"),
     "txt;asc;dat;csv;xyz;*", nullptr, nullptr, true},
    {K::PointExport, "caice", "Caice", "Caice Point File to Write", "srv"},
    {K::PointExport, "gformat", "G-Format", "G-Format File to Write", "txt"},
    {K::PointExport, "nlsmmh360", "NLS MMH360", "NLS MMH360 Point File to Write", "txt;360"},
    {K::PointExport, "sdms", "SDMS", "SDMS Point File to Write", "ctl"},
    {K::PointExport, "sdr", "Sokkia/SDR", trNoop("SDR Point File to Write"), "sdr;raw", nullptr,
     nullptr, true, nullptr, exportSdrPoints},
    {K::PointExport, "topobase", "Topobase", "Topobase Point File to Write", "ro"},
    {K::PointExport, "gsi", "Leica", trNoop("Leica File To Write"), "gsi;raw", nullptr, nullptr,
     true, nullptr, exportGsiPoints},
    {K::PointExport, "geodimeter", "Geodimeter", trNoop("Geodimeter File To Write"), "obs;raw",
     nullptr, nullptr, true, nullptr, exportGeodimeterPoints},
};

} // namespace

std::span<const FormatEntry> formatRegistry() {
    return kFormats;
}

const FormatEntry *findFormat(FormatKind kind, std::string_view id) {
    for (const auto &entry : kFormats)
        if (entry.kind == kind && equalsIgnoreCase(entry.id, id))
            return &entry;
    return nullptr;
}

const FormatEntry *findFormatByMenu(FormatKind kind, std::string_view menuName) {
    for (const auto &entry : kFormats)
        if (entry.kind == kind && menuName == entry.menuName)
            return &entry;
    return nullptr;
}

std::string dialogFilter(const FormatEntry &entry) {
    std::string filter;
    for (std::string_view extension : split(entry.extensions, ';')) {
        if (!filter.empty())
            filter += ' ';
        filter += extension == "*" ? std::string("*") : "*." + std::string(extension);
    }
    return filter;
}

const char *kindName(FormatKind kind) {
    switch (kind) {
    case FormatKind::RawImport:
        return trNoop("Import Raw Data");
    case FormatKind::RawExport:
        return trNoop("Export Raw Data");
    case FormatKind::PointImport:
        return trNoop("Import Point Data");
    case FormatKind::PointExport:
        break;
    }
    return trNoop("Export Point Data");
}

} // namespace tramline::convert

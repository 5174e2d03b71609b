#include "crd/file_kinds.h"

#include "base/text.h"

#include <algorithm>
#include <string>

namespace tramline::crd {

namespace {

struct KindEntry {
    const char *extension;
    int format; // -2: a ".crd" file, whose format is the setting's
};

constexpr KindEntry kKinds[] = {
    {"crd", -2},
    {"cgc", kFormatCandG},
    {"zak", kFormatSight},
    {"mdb", kFormatLandDesktop},
    {"dwg", kFormatDrawing},
    {"crdb", kFormatSqlite},
};

} // namespace

int formatFromExtension(const std::filesystem::path &path, int defaultCrdFormat) {
    std::string ext = path.extension().string();
    if (ext.empty())
        return kFormatUnknown;
    ext = toLower(std::string_view(ext).substr(1));
    for (const auto &kind : kKinds) {
        if (ext != kind.extension)
            continue;
        if (kind.format != -2)
            return kind.format;
        if (defaultCrdFormat == kFormatNumeric || defaultCrdFormat == kFormatAlphanumeric ||
            defaultCrdFormat == kFormatCrdOther)
            return defaultCrdFormat;
        return kFormatAlphanumeric;
    }
    return kFormatUnknown;
}

const char *extensionText(int format) {
    switch (format) {
    case kFormatNumeric:
    case kFormatAlphanumeric:
    case kFormatCrdOther:
        return "crd";
    case kFormatCandG:
        return "cgc";
    case kFormatSight:
        return "zak";
    case kFormatLandDesktop:
        return "mdb";
    case kFormatDrawing:
        return "dwg";
    case kFormatSqlite:
        return "crdb";
    default:
        return "";
    }
}

} // namespace tramline::crd

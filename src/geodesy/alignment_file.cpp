#include "geodesy/alignment_file.h"

#include "base/atomic_save.h"
#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"

#include <cmath>
#include <fstream>

namespace tramline::geodesy {

namespace {

constexpr std::size_t kValueCount = 8;
// No coordinate or height of the earth comes near this; larger values are
// damage (and would not fit a line when written back).
constexpr double kMaxValue = 1e9;

Status lineError(std::size_t line, const char *what) {
    return Status::failure(StatusCode::Format,
                           format(tr("Error: line %zu of the alignment file: %s"), line, tr(what)),
                           line);
}

bool parseFlag(std::string_view text, bool &flag) {
    const std::string_view t = trim(text);
    if (t.size() != 1)
        return false;
    const char c = toUpperAscii(t[0]);
    if (c == 'Y' || c == '1' || c == 'T')
        flag = true;
    else if (c == 'N' || c == '0' || c == 'F')
        flag = false;
    else
        return false;
    return true;
}

std::string cleanDescription(std::string_view text) {
    std::string out;
    for (const char c : text)
        if (c != '\n' && c != '\r')
            out += c;
    if (out.size() > kAlignmentDescriptionLength)
        out.resize(kAlignmentDescriptionLength);
    return out;
}

} // namespace

std::string alignmentSystemText(const LocalizationSettings &settings) {
    if (equalsIgnoreCase(settings.family, "EPSG"))
        return "EPSG: " + settings.zone;
    if (settings.zone.empty())
        return settings.family;
    return settings.family + ": " + settings.zone;
}

std::string alignmentLine(const AlignmentPoint &p, const std::string &systemText,
                          const std::string &geoidName) {
    return format("%.14f,%.14f,%.14f,%.14f,%.14f,%.14f,%.14f,%.14f,%c,%c,%s,%s,GEOID=%s\n",
                  p.latitude, p.longitude, p.ellipsoidHeight, p.localX, p.localY, p.localZ, p.hrms,
                  p.vrms, p.useHorizontal ? 'Y' : 'N', p.useVertical ? 'Y' : 'N',
                  cleanDescription(p.description).c_str(), systemText.c_str(), geoidName.c_str());
}

Status readAlignment(std::istream &in, AlignmentFile &file) {
    AlignmentFile read;
    std::string line;
    std::size_t number = 0;
    while (std::getline(in, line)) {
        ++number;
        if (line.size() > kMaxAlignmentLine)
            return lineError(number, trNoop("the line is too long"));
        const std::string_view text = trim(line);
        if (text.empty())
            continue;
        // Control characters (a NUL above all) are damage, not text: they
        // would not survive being written back.
        for (const char c : text)
            if (static_cast<unsigned char>(c) < 0x20 && c != '\t')
                return lineError(number, trNoop("not an alignment point"));
        const auto fields = split(text, ',');
        if (fields.size() < kValueCount + 4)
            return lineError(number, trNoop("not an alignment point"));
        double values[kValueCount] = {};
        for (std::size_t i = 0; i < kValueCount; ++i)
            if (!parseNumber(trim(fields[i]), values[i]) || !(std::abs(values[i]) < kMaxValue))
                return lineError(number, trNoop("a value is not a number"));
        if (std::abs(values[0]) > 90.0 || std::abs(values[1]) > 360.0)
            return lineError(number, trNoop("the position is not a latitude and longitude"));
        AlignmentPoint p;
        p.latitude = values[0];
        p.longitude = values[1];
        p.ellipsoidHeight = values[2];
        p.localX = values[3];
        p.localY = values[4];
        p.localZ = values[5];
        p.hrms = values[6];
        p.vrms = values[7];
        if (!parseFlag(fields[8], p.useHorizontal) || !parseFlag(fields[9], p.useVertical))
            return lineError(number, trNoop("a use flag is not Y or N"));
        // The description may hold commas: it runs up to the system text,
        // and the geoid is the last field when it carries its key.
        std::size_t last = fields.size();
        std::string geoid;
        if (startsWithIgnoreCase(trim(fields[last - 1]), "GEOID=")) {
            geoid = std::string(trim(fields[last - 1]).substr(6));
            --last;
        }
        read.systemText = std::string(trim(fields[last - 1]));
        read.geoidName = geoid;
        std::string description;
        for (std::size_t i = 10; i + 1 < last; ++i)
            description += (i > 10 ? "," : "") + std::string(fields[i]);
        p.description = cleanDescription(description);
        if (read.points.size() == kMaxAlignmentPoints)
            return Status::failure(StatusCode::InvalidInput, tr("Error: Invalid alignment points."),
                                   number);
        read.points.push_back(std::move(p));
    }
    if (in.bad())
        return Status::failure(StatusCode::Io, tr("Error: unable to read alignment file"), number);
    file = std::move(read);
    return {};
}

Status loadAlignmentFile(const std::filesystem::path &path, AlignmentFile &file) {
    std::ifstream in(path, std::ios::binary);
    if (!in || std::filesystem::is_directory(path))
        return Status::failure(StatusCode::NotFound,
                               format(tr("Error: unable to open file %s"), path.string().c_str()));
    return readAlignment(in, file);
}

Status saveAlignmentFile(const std::filesystem::path &path, const AlignmentFile &file,
                         bool &written) {
    written = false;
    if (equalsIgnoreCase(path.stem().string(), "DICTIONARY") ||
        equalsIgnoreCase(path.filename().string(), "DICTIONARY"))
        return {};
    std::string text;
    for (const AlignmentPoint &p : file.points)
        text += alignmentLine(p, file.systemText, file.geoidName);
    if (!saveTextAtomically(path, text))
        return Status::failure(
            StatusCode::Io, format(tr("\nError: unable to save file %s"), path.string().c_str()));
    written = true;
    return {};
}

} // namespace tramline::geodesy

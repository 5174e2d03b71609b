#include "transfer/nikon.h"

#include "base/atomic_save.h"
#include "base/format.h"
#include "base/translation.h"

namespace tramline::transfer {

const std::vector<std::string> &nikonModels() {
    static const std::vector<std::string> models = {"DR-48",
                                                    "DTM-300",
                                                    "DTM-310",
                                                    "DTM-400",
                                                    "DTM-500/330/350(CRD)",
                                                    "DTM-500/330/350(RAW)",
                                                    "DTM-700(CRD)",
                                                    "DTM-700(RAW)",
                                                    "DTM-800(CRD)",
                                                    "DTM-800(RAW)",
                                                    "AIMS CE(CRD)",
                                                    "AIMS CE(RAW)"};
    return models;
}

char nikonUnitLetter(const std::string &choice) {
    if (choice == "US Feet")
        return 'F';
    if (choice == "Intl Feet")
        return 'M';
    return 'N';
}

std::string nikonPointLines(std::span<const crd::CrdPoint> points) {
    std::string text;
    for (const auto &p : points)
        appendFormat(text, "%s,%.8f,%.8f,%.8f,%s\n", p.name.c_str(), p.northing, p.easting,
                     p.elevation, p.description.c_str());
    return text;
}

Status writeNikonPointFile(const std::filesystem::path &path, std::span<const crd::CrdPoint> points,
                           Interaction &ui) {
    for (std::size_t i = 0; i < points.size(); ++i)
        ui.progress(long(i), long(points.size()),
                    format("%s: %s", tr("Sending point"), points[i].name.c_str()));
    if (saveTextAtomically(path, nikonPointLines(points)))
        return Status::success();
    const std::string text = format(tr("Error: failed to write %s"), path.string().c_str());
    ui.message(text);
    return Status::failure(StatusCode::Io, text);
}

Status runNikonTransfer(const NikonParameters &, Interaction &ui) {
    const char *text = tr("Error: the Nikon transfer needs the instrument vendor's transfer "
                          "library, which this system does not have");
    ui.message(text);
    return Status::failure(StatusCode::NotSupported, text);
}

} // namespace tramline::transfer

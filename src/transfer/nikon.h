// Nikon instruments talk through their vendor's transfer library, which
// does not exist on this platform. The choices of the transfer and the
// point file the upload hands to the library are built; the transfer
// itself says plainly that it needs the library.
#pragma once

#include "base/interaction.h"
#include "base/status.h"
#include "crd/crd_point.h"

#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace tramline::transfer {

/// The instrument models offered, in the dialog's order.
const std::vector<std::string> &nikonModels();

/// What the vendor library is given besides the port and baud.
struct NikonParameters {
    char unit = 'N';  ///< 'F' US feet, 'M' international feet, 'N' metric
    char angle = 'D'; ///< always 'D'
    std::string model = "DTM-300";
    bool download = true; ///< false: upload
};

/// The unit letter of a dialog choice: "US Feet", "Intl Feet", "Metric".
char nikonUnitLetter(const std::string &choice);

/// "%s,%.8f,%.8f,%.8f,%s\n" a point: name, northing, easting, elevation,
/// description.
std::string nikonPointLines(std::span<const crd::CrdPoint> points);

/// Writes "nikon.txt" for the upload; "Error: failed to write %s" when it
/// cannot be written.
Status writeNikonPointFile(const std::filesystem::path &path, std::span<const crd::CrdPoint> points,
                           Interaction &ui);

/// The transfer: here always the message that the vendor library is needed.
Status runNikonTransfer(const NikonParameters &parameters, Interaction &ui);

} // namespace tramline::transfer

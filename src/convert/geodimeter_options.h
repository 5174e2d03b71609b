// The options of the Geodimeter import, "Geodimeter Process Options", kept
// in "readgeod.ini" in the program's folder as is_strip and is_info (0 or 1).
#pragma once

#include "base/forwarding_interaction.h"
#include "base/status.h"

#include <filesystem>
#include <istream>

namespace tramline::convert {

struct GeodimeterOptions {
    bool stripDecimal = false; ///< is_strip: "12.5" as a code becomes "125"
    bool infoCodes = false;    ///< is_info: labels 60 and 61 join the description
};

inline constexpr const char *kGeodimeterIni = "readgeod.ini";

/// Reads the settings: lines "key=value" (blank lines and "[section]"
/// lines allowed, unknown keys ignored). A line that is neither, or an
/// is_strip / is_info value other than 0 or 1, fails with Format ("Error:
/// bad line %ld in %s") and its line number; `options` keep what was read
/// before it.
Status readGeodimeterOptions(std::istream &in, GeodimeterOptions &options);

/// The same from the file; a missing file keeps the defaults and succeeds.
Status loadGeodimeterOptions(const std::filesystem::path &file, GeodimeterOptions &options);

/// Writes "is_strip=%d\nis_info=%d\n". False when the file cannot be written.
bool saveGeodimeterOptions(const std::filesystem::path &file, const GeodimeterOptions &options);

/// Shows the form "Geodimeter Process Options" ("Strip Decimal Point From
/// Point Codes", "Use Info Codes In Point Descriptions", each Yes or No),
/// starting from `options`. False when cancelled.
bool askGeodimeterOptions(Interaction &ui, GeodimeterOptions &options);

/// Passes everything to `ui` except the form "Geodimeter Process Options",
/// which it answers with `options`: the desktop program asks the form
/// itself (with the values of the settings file) before the import runs.
class GeodimeterOptionsAnswered : public ForwardingInteraction {
public:
    GeodimeterOptionsAnswered(Interaction &ui, const GeodimeterOptions &options)
        : ForwardingInteraction(ui), m_options(options) {}

    bool fillForm(const std::string &title, std::vector<FormField> &fields) override;

private:
    GeodimeterOptions m_options;
};

} // namespace tramline::convert

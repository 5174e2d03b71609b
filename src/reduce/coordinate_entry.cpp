#include "reduce/coordinate_entry.h"

#include "base/format.h"
#include "base/translation.h"

namespace tramline::reduce {

std::optional<TraversePoint> askCoordinates(Interaction &ui, const std::string &title,
                                            const std::string &name, const std::string &intro) {
    // A script that keeps giving a refused entry must not hang the run.
    for (int attempt = 0; attempt < 3; ++attempt) {
        std::vector<FormField> fields = {{tr("Northing"), "", {}},
                                         {tr("Easting"), "", {}},
                                         {tr("Elevation"), "", {}},
                                         {tr("Description"), "", {}}};
        ui.message(intro);
        if (!ui.fillForm(title, fields))
            return std::nullopt;
        TraversePoint p;
        p.name = name;
        if (!parseNumber(fields[0].value, p.north)) {
            ui.message(tr("Error: missing Northing"));
            continue;
        }
        if (!parseNumber(fields[1].value, p.east)) {
            ui.message(tr("Error: missing Easting"));
            continue;
        }
        p.hasElevation = parseNumber(fields[2].value, p.elevation);
        p.description = fields[3].value;
        return p;
    }
    return std::nullopt;
}

} // namespace tramline::reduce

// The Display menu's commands and the modes they choose, in one table:
// dispatch reads the mode of a command, the check marks the command of a
// mode.
#pragma once

#include "app/menu_table.h"
#include "raw/display_modes.h"

#include <optional>

namespace tramline::app {

/// What a Display command chooses; each holds exactly one mode.
struct DisplayChoice {
    std::optional<raw::VerticalMode> vertical;
    std::optional<raw::DistanceMode> distance;
    std::optional<AngleUnit> angle;
    std::optional<raw::CoordinateOrder> order;
};

/// The choice of a Display command id; nullopt for any other id.
std::optional<DisplayChoice> displayChoice(int id);

/// Checks the command of each mode in its radio group.
void checkDisplayModes(const raw::DisplayModes &modes, MenuCheckTable &checks);

} // namespace tramline::app

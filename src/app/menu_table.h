// The main menu as data: every command with its id and its place in the
// menus, in menu order, and the check marks of the Display menu.
#pragma once

#include "app/command_ids.h"

#include <string>
#include <utility>
#include <vector>

namespace tramline::app {

struct MenuCommand {
    int id;
    const char *path; ///< menu captions from the top, separated by '>'
};

/// Every entry of the main menu, in menu order. Two entries (NY DOT and TDS
/// of Export Raw Data) share the id 32841 on purpose: they run one export.
const std::vector<MenuCommand> &menuCommands();

/// The captions of a path, from the top menu down.
std::vector<std::string> menuPath(const char *path);

/// The radio groups of the Display menu: vertical, distance, angles,
/// coordinates.
const std::vector<std::vector<int>> &checkGroups();

/// The menu check table: the checked flag of each display command. The
/// Display commands form four groups (vertical, distance, angles,
/// coordinates) that act as radio items.
class MenuCheckTable {
public:
    MenuCheckTable();

    /// Checks `id` and clears the others of its group.
    void choose(int id);
    bool checked(int id) const;
    const std::vector<std::pair<int, bool>> &entries() const { return m_entries; }

private:
    std::vector<std::pair<int, bool>> m_entries;
};

} // namespace tramline::app

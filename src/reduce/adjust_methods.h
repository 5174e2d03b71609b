// The adjustment methods of Process, in one table: what each is called in
// the report, on the command line and in the desktop program's menu. Every
// list of methods (CLI choices, menu dispatch, tests) is read from here.
#pragma once

#include <span>
#include <string_view>

namespace tramline::reduce {

enum class AdjustMethod { None, AngleBalance, Transit, Compass, Crandall, LeastSquares };

struct AdjustMethodInfo {
    AdjustMethod method;
    const char *name;         ///< "Compass": the method's tab, untranslated
    const char *resultTitle;  ///< "Process Compass Results", untranslated
    const char *closureTitle; ///< "Compass Closure"; empty for methods without a linear rule
    const char *cliWord;      ///< "compass"
    int menuCommand;          ///< the desktop program's Process menu command id
    int historyOperation;     ///< coordinate history op code of adjusted points; 0: none
    bool built;               ///< false: menus and the CLI say it is not available yet
};

/// Every method, in menu order.
std::span<const AdjustMethodInfo> adjustMethods();

/// The row of `method` (every method has one).
const AdjustMethodInfo &adjustMethodInfo(AdjustMethod method);
/// The row for a CLI word or a menu command id; nullptr when none.
const AdjustMethodInfo *adjustMethodByCliWord(std::string_view word);
const AdjustMethodInfo *adjustMethodByMenuCommand(int command);

/// "Process Compass Results" and its siblings, translated.
const char *resultTitle(AdjustMethod method);
/// The method's tab: "No Adjust", "Angle Balance", "Transit", "Compass", "Crandall", translated.
const char *methodTab(AdjustMethod method);

} // namespace tramline::reduce

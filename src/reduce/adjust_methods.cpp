#include "reduce/adjust_methods.h"

#include "base/translation.h"

namespace tramline::reduce {

namespace {

// Menu ids are the desktop program's (its menu table checks them against
// these rows); history codes are the coordinate file's processing codes.
constexpr AdjustMethodInfo kMethods[] = {
    {AdjustMethod::None, "No Adjust", "Process No Adjust Results", "", "none", 37, 0, true},
    {AdjustMethod::AngleBalance, "Angle Balance", "Process Angle Balance Results", "",
     "angle-balance", 32813, 0, true},
    {AdjustMethod::Compass, "Compass", "Process Compass Results", "Compass Closure", "compass", 39,
     28, true},
    {AdjustMethod::Crandall, "Crandall", "Process Crandall Results", "Crandall Closure", "crandall",
     40, 29, true},
    {AdjustMethod::Transit, "Transit", "Process Transit Results", "Transit Closure", "transit", 41,
     27, true},
    {AdjustMethod::LeastSquares, "Least-Squares", "Process Least-Squares Results", "",
     "least-squares", 32814, 30, false},
};

} // namespace

std::span<const AdjustMethodInfo> adjustMethods() {
    return kMethods;
}

const AdjustMethodInfo &adjustMethodInfo(AdjustMethod method) {
    for (const auto &m : kMethods)
        if (m.method == method)
            return m;
    return kMethods[0];
}

const AdjustMethodInfo *adjustMethodByCliWord(std::string_view word) {
    for (const auto &m : kMethods)
        if (word == m.cliWord)
            return &m;
    return nullptr;
}

const AdjustMethodInfo *adjustMethodByMenuCommand(int command) {
    for (const auto &m : kMethods)
        if (command == m.menuCommand)
            return &m;
    return nullptr;
}

const char *resultTitle(AdjustMethod method) {
    return tr(adjustMethodInfo(method).resultTitle);
}

const char *methodTab(AdjustMethod method) {
    return tr(adjustMethodInfo(method).name);
}

} // namespace tramline::reduce

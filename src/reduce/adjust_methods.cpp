#include "reduce/adjust_methods.h"

#include "base/translation.h"

namespace tramline::reduce {

namespace {

// Menu ids are the desktop program's (its menu table checks them against
// these rows); history codes are the coordinate file's processing codes.
constexpr AdjustMethodInfo kMethods[] = {
    {AdjustMethod::None, trNoop("No Adjust"), trNoop("Process No Adjust Results"), "", "none", 37,
     0, true},
    {AdjustMethod::AngleBalance, trNoop("Angle Balance"), trNoop("Process Angle Balance Results"),
     "", "angle-balance", 32813, 0, true},
    {AdjustMethod::Compass, trNoop("Compass"), trNoop("Process Compass Results"),
     trNoop("Compass Closure"), "compass", 39, 28, true},
    {AdjustMethod::Crandall, trNoop("Crandall"), trNoop("Process Crandall Results"),
     trNoop("Crandall Closure"), "crandall", 40, 29, true},
    {AdjustMethod::Transit, trNoop("Transit"), trNoop("Process Transit Results"),
     trNoop("Transit Closure"), "transit", 41, 27, true},
    {AdjustMethod::LeastSquares, trNoop("Least-Squares"), trNoop("Process Least-Squares Results"),
     "", "least-squares", 32814, 30, true},
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

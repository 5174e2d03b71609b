#include "base/units.h"

namespace tramline {

std::string_view unitName(LinearUnit unit) {
    switch (unit) {
    case LinearUnit::InternationalFeet:
        return "FOOT";
    case LinearUnit::UsSurveyFeet:
        return "USFOOT";
    case LinearUnit::Metres:
        break;
    }
    return "METERS";
}

bool linearUnitFromCode(int code, LinearUnit &unit) {
    if (code < 0 || code > 2)
        return false;
    unit = static_cast<LinearUnit>(code);
    return true;
}

} // namespace tramline

#include "raw/record.h"

#include "base/text.h"

namespace tramline::raw {

namespace {
constexpr const char *kHorizontalNames[] = {"",   "NE", "SE", "SW", "NW", "AZ",
                                            "AL", "AR", "DL", "DR", "GN"};
}

const char *horizontalKindName(HorizontalKind kind) {
    const int i = static_cast<int>(kind);
    return i >= 0 && i <= 10 ? kHorizontalNames[i] : "";
}

HorizontalKind horizontalKindFromName(std::string_view name) {
    for (int i = 1; i <= 10; ++i)
        if (name == kHorizontalNames[i])
            return static_cast<HorizontalKind>(i);
    return HorizontalKind::None;
}

std::string occupiedPointOf(std::string_view occupyLine) {
    if (occupyLine.size() <= 5 || occupyLine.substr(0, 3) != "OC,")
        return {};
    const std::string_view rest = occupyLine.substr(5);
    return std::string(rest.substr(0, rest.find(',')));
}

bool applyUnitsLine(std::string_view line, RawUnits &units) {
    bool changed = false;
    if (line.starts_with("MO,") && line.find(",AD") != std::string_view::npos) {
        const size_t un = line.find(",UN");
        if (un != std::string_view::npos && un + 3 < line.size()) {
            LinearUnit unit;
            if (linearUnitFromCode(line[un + 3] - '0', unit)) {
                units.linear = unit;
                units.linearDeclared = true;
                changed = true;
            }
        }
        const size_t au = line.find(",AU");
        if (au != std::string_view::npos && au + 3 < line.size()) {
            units.angle = line[au + 3] == '0' ? AngleUnit::DegreesMinutesSeconds : AngleUnit::Gons;
            units.angleDeclared = true;
            changed = true;
        }
        return changed;
    }
    if (line.starts_with("--UNITS ")) {
        const std::string_view word = trimRight(line.substr(8));
        if (word == "METERS") {
            units.linear = LinearUnit::Metres;
            units.linearDeclared = true;
            return true;
        }
        if (word == "FOOT") {
            units.linear = LinearUnit::InternationalFeet;
            units.linearDeclared = true;
            return true;
        }
        if (word == "GONS") {
            units.angle = AngleUnit::Gons;
            units.angleDeclared = true;
            return true;
        }
    }
    return false;
}

} // namespace tramline::raw

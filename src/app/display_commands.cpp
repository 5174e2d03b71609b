#include "app/display_commands.h"

namespace tramline::app {

namespace {

using raw::CoordinateOrder;
using raw::DistanceMode;
using raw::VerticalMode;

struct DisplayCommand {
    int id;
    DisplayChoice choice;
};

const DisplayCommand kDisplayCommands[] = {
    {cmd::VerticalAngle, {VerticalMode::VerticalAngle, {}, {}, {}}},
    {cmd::ZenithAngle, {VerticalMode::Zenith, {}, {}, {}}},
    {cmd::ElevationDifference, {VerticalMode::ElevationDifference, {}, {}, {}}},
    {cmd::VerticalNone, {VerticalMode::None, {}, {}, {}}},
    {cmd::SlopeDistance, {{}, DistanceMode::Slope, {}, {}}},
    {cmd::HorizontalDistance, {{}, DistanceMode::Horizontal, {}, {}}},
    {cmd::AnglesDms, {{}, {}, AngleUnit::DegreesMinutesSeconds, {}}},
    {cmd::AnglesGons, {{}, {}, AngleUnit::Gons, {}}},
    {cmd::NorthingEasting, {{}, {}, {}, CoordinateOrder::NorthingEasting}},
    {cmd::EastingNorthing, {{}, {}, {}, CoordinateOrder::EastingNorthing}},
};

} // namespace

std::optional<DisplayChoice> displayChoice(int id) {
    for (const auto &command : kDisplayCommands)
        if (command.id == id)
            return command.choice;
    return std::nullopt;
}

void checkDisplayModes(const raw::DisplayModes &modes, MenuCheckTable &checks) {
    for (const auto &[id, choice] : kDisplayCommands)
        if (choice.vertical == modes.verticalMode() || choice.distance == modes.distanceMode() ||
            choice.angle == modes.angle || choice.order == modes.order)
            checks.choose(id);
}

} // namespace tramline::app

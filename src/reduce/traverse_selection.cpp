#include "reduce/traverse_selection.h"

#include "base/angles.h"
#include "base/format.h"
#include "base/translation.h"
#include "raw/angle_math.h"
#include "reduce/setup_walk.h"

namespace tramline::reduce {

using raw::RawNode;
using raw::RecordType;

namespace {

bool isTraverseShot(const RawNode &n) {
    return n.type == RecordType::Observation && n.observation.isTraverseSide();
}

// The foresight of the first traverse shot from `from` after `afterLine`:
// what the user most likely means as the next point.
std::string nextForesight(const raw::RawFile &file, const std::string &from, size_t &afterLine) {
    for (const auto &n : file.nodes)
        if (n.lineNumber > afterLine && isTraverseShot(n) && n.observation.occupied == from) {
            afterLine = n.lineNumber;
            return n.observation.foresight.str();
        }
    return {};
}

bool askRoute(const raw::RawFile &file, TraverseChoice &choice, Interaction &ui) {
    choice.route = {choice.start};
    size_t line = 0;
    // Never more points than the file has traverse shots: a loop that
    // never reaches the end must not ask for ever.
    size_t limit = 1;
    for (const auto &n : file.nodes)
        limit += isTraverseShot(n) ? 1 : 0;
    while (choice.route.size() < limit) {
        std::vector<FormField> fields = {
            {tr("Traverse Point"), nextForesight(file, choice.route.back(), line), {}}};
        if (!ui.fillForm(tr("Traverse Points"), fields) || fields[0].value.empty())
            return false;
        choice.route.push_back(fields[0].value);
        if (fields[0].value == choice.end)
            return true;
    }
    return false;
}

} // namespace

std::optional<TraverseChoice> chooseTraversePoints(const raw::RawFile &file,
                                                   const ProcessOptions &options, Interaction &ui) {
    TraverseChoice choice{options.startPoint, options.endPoint, {}};
    bool automatic = options.automaticTraversePoints;
    if (choice.start.empty() || choice.end.empty()) {
        // Offer the first set-up and the last traverse foresight.
        std::string firstSetup, lastForesight;
        for (const auto &n : file.nodes) {
            if (n.type == RecordType::Occupy && firstSetup.empty())
                firstSetup = n.fields[raw::kOccupiedPoint];
            if (isTraverseShot(n))
                lastForesight = n.observation.foresight;
        }
        std::vector<FormField> fields = {
            {tr("Starting Point Number"), choice.start.empty() ? firstSetup : choice.start, {}},
            {tr("Ending Point Number"), choice.end.empty() ? lastForesight : choice.end, {}},
            {tr("Specify Traverse Points From Start To End"),
             automatic ? tr("Automatic") : tr("Prompt"),
             {tr("Automatic"), tr("Prompt")}}};
        if (!ui.fillForm(tr("Traverse Points"), fields))
            return std::nullopt;
        choice.start = fields[0].value;
        choice.end = fields[1].value;
        automatic = fields[2].value != tr("Prompt");
        if (choice.start.empty() || choice.end.empty())
            return std::nullopt;
    }
    if (!automatic && !askRoute(file, choice, ui))
        return std::nullopt;
    return choice;
}

ClosingShot chooseClosingShot(const raw::RawFile &file, const std::string &end,
                              const ProcessOptions &options, Interaction &ui) {
    std::vector<const RawNode *> candidates;
    for (const auto &n : file.nodes)
        if (isTraverseShot(n) && n.observation.foresight == end)
            candidates.push_back(&n);
    ClosingShot shot;
    if (candidates.empty())
        return shot;
    if (!options.closingShotOccupied.empty()) {
        for (const auto *c : candidates)
            if (c->observation.occupied == options.closingShotOccupied &&
                (options.closingShotForesight.empty() ||
                 c->observation.foresight == options.closingShotForesight))
                shot.line = static_cast<long>(c->lineNumber);
        if (shot.line != 0)
            shot.status = ClosingShot::Status::Found;
        return shot;
    }
    size_t chosen = 0;
    if (candidates.size() > 1) {
        std::string text =
            std::string(tr("Select the Closing Shot")) + "\n" + tr("Occupy Pt  Foresight Pt");
        std::vector<std::string> buttons;
        for (const auto *c : candidates)
            buttons.push_back(format("%-10s %s", c->observation.occupied.str().c_str(),
                                     c->observation.foresight.str().c_str()));
        buttons.push_back(tr("&Cancel"));
        const int choice = ui.choose(tr("Closing Shot Measurement"), text, buttons);
        if (choice < 0 || choice >= static_cast<int>(candidates.size())) {
            shot.status = ClosingShot::Status::Cancelled;
            return shot;
        }
        chosen = static_cast<size_t>(choice);
    }
    shot.status = ClosingShot::Status::Found;
    shot.line = static_cast<long>(candidates[chosen]->lineNumber);
    return shot;
}

std::vector<TraverseSide> traverseSides(const std::vector<TraverseSide> &all,
                                        const TraverseChoice &choice, long closingLine) {
    std::vector<TraverseSide> sides;
    if (choice.route.empty()) {
        bool started = false;
        for (const auto &s : all) {
            if (!started && s.from != choice.start)
                continue;
            started = true;
            sides.push_back(s);
            if (s.line == closingLine)
                break;
        }
        return sides;
    }
    long after = 0;
    for (size_t i = 1; i < choice.route.size(); ++i) {
        const bool last = i + 1 == choice.route.size();
        const TraverseSide *found = nullptr;
        for (const auto &s : all) {
            if (s.line <= after || s.from != choice.route[i - 1] || s.to != choice.route[i] ||
                (last && s.line != closingLine))
                continue;
            found = &s;
            break;
        }
        if (!found)
            break; // the caller finds the traverse short of its closing shot
        sides.push_back(*found);
        after = found->line;
    }
    return sides;
}

std::optional<double> askReferenceAzimuth(const BalanceShot &shot, AngleUnit unit,
                                          Interaction &ui) {
    std::vector<FormField> fields = {
        {tr("From Pt#"), shot.occupied, {}},
        {tr("To Pt#"), shot.foresight, {}},
        {tr("Reference Closing Angle (dd.mmss)"), "", {}},
        {tr("Angle Format"),
         tr("Azimuth"),
         {tr("Azimuth"), tr("NE Bearing"), tr("SE Bearing"), tr("SW Bearing"), tr("NW Bearing")}}};
    ui.message(format("%s: %s %s %s", tr("Measured Closing Points"), shot.occupied.c_str(), "-",
                      shot.foresight.c_str()) +
               "\n" + tr("Measured Closing Azimuth") + ": " + formatDms(shot.measuredAzimuth, 4));
    double value;
    if (!ui.fillForm(tr("Reference Closing Angle"), fields) || !parseNumber(fields[2].value, value))
        return std::nullopt;
    const auto kind = fields[3].value == tr("NE Bearing")   ? raw::HorizontalKind::NE
                      : fields[3].value == tr("SE Bearing") ? raw::HorizontalKind::SE
                      : fields[3].value == tr("SW Bearing") ? raw::HorizontalKind::SW
                      : fields[3].value == tr("NW Bearing") ? raw::HorizontalKind::NW
                                                            : raw::HorizontalKind::AZ;
    return shotAzimuth(kind, raw::angleToDegrees(value, unit), 0.0);
}

} // namespace tramline::reduce

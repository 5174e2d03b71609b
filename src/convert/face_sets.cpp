#include "convert/face_sets.h"

#include <deque>
#include <string_view>
#include <unordered_map>

namespace tramline::convert {

std::vector<PlacedReading> groupFaceSets(const std::vector<FaceReading> &readings,
                                         const std::string &backsight, RoundRule rule) {
    std::vector<PlacedReading> placed;
    placed.reserve(readings.size() * 2);
    const std::size_t n = readings.size();
    auto isBacksight = [&](std::size_t i) {
        return !backsight.empty() && readings[i].to == backsight;
    };
    auto opensRound = [&](std::size_t i) { return !readings[i].face2 && isBacksight(i); };

    std::size_t i = 0;
    for (; i < n && !opensRound(i); ++i)
        placed.push_back({i, SetRole::Single});

    std::vector<bool> used(n, false);
    while (i < n) {
        std::size_t end = i + 1;
        while (end < n && !opensRound(end))
            ++end;
        std::size_t closing = end;
        for (std::size_t k = i + 1; k < end; ++k)
            if (readings[k].face2 && isBacksight(k)) {
                closing = k;
                if (!rule.lastClosing)
                    break;
            }
        bool anySet = false;
        if (closing != end) {
            std::size_t from = i + 1, to = end;
            if (rule.window == ReverseWindow::BeforeClosing)
                to = closing;
            else if (rule.window == ReverseWindow::AfterClosing)
                from = closing + 1;
            // Face-2 foresights by point, in the order read: pairing stays
            // linear however many targets a round holds.
            std::unordered_map<std::string_view, std::deque<std::size_t>> reverse;
            for (std::size_t m = from; m < to; ++m)
                if (readings[m].face2 && !isBacksight(m))
                    reverse[readings[m].to].push_back(m);
            for (std::size_t k = i + 1; k < end; ++k) {
                if (readings[k].face2 || isBacksight(k))
                    continue;
                const auto found = reverse.find(readings[k].to);
                if (found == reverse.end() || found->second.empty())
                    continue;
                const std::size_t m = found->second.front();
                found->second.pop_front();
                placed.push_back({i, SetRole::BD});
                placed.push_back({k, SetRole::FD});
                placed.push_back({m, SetRole::FR});
                placed.push_back({closing, SetRole::BR});
                used[k] = used[m] = anySet = true;
            }
        }
        if (anySet)
            used[i] = used[closing] = true;
        for (std::size_t k = i; k < end; ++k)
            if (!used[k])
                placed.push_back({k, SetRole::Single});
        i = end;
    }
    return placed;
}

} // namespace tramline::convert

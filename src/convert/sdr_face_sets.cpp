#include "convert/sdr_face_sets.h"

namespace tramline::convert::sdr {

std::vector<PlacedReading> groupFaceReadings(const std::vector<FaceReading> &readings,
                                             const std::string &backsight) {
    std::vector<PlacedReading> placed;
    placed.reserve(readings.size());
    const std::size_t n = readings.size();
    auto opensRound = [&](std::size_t i) {
        return !readings[i].face2 && !backsight.empty() && readings[i].to == backsight;
    };

    std::size_t i = 0;
    for (; i < n && !opensRound(i); ++i)
        placed.push_back({i, SetRole::Single});

    while (i < n) {
        std::size_t end = i + 1;
        while (end < n && !opensRound(end))
            ++end;
        std::size_t closing = end;
        for (std::size_t k = i + 1; k < end; ++k)
            if (readings[k].face2 && readings[k].to == backsight) {
                closing = k;
                break;
            }
        if (closing == end) {
            for (std::size_t k = i; k < end; ++k)
                placed.push_back({k, SetRole::Single});
        } else {
            placed.push_back({i, SetRole::BD});
            for (std::size_t k = i + 1; k < end; ++k)
                if (!readings[k].face2 && readings[k].to != backsight)
                    placed.push_back({k, SetRole::FD});
            for (std::size_t k = i + 1; k < end; ++k)
                if (readings[k].face2 && readings[k].to != backsight)
                    placed.push_back({k, SetRole::FR});
            placed.push_back({closing, SetRole::BR});
            for (std::size_t k = i + 1; k < end; ++k)
                if (k != closing && readings[k].to == backsight)
                    placed.push_back({k, SetRole::Single});
        }
        i = end;
    }
    return placed;
}

} // namespace tramline::convert::sdr

// Generates a large RW5 job of mixed records for the benchmarks: set-ups
// with backsights and heights, sideshots and traverse shots in every angle
// and vertical form, store points, GPS positions and notes.
#pragma once

#include <string>

namespace tramline::bench {

std::string generateRawJob(size_t records);

} // namespace tramline::bench

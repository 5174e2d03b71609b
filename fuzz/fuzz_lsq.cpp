// Fuzzes the least-squares file reader, and for what it accepts the whole
// adjustment: network, solve, statistics, report and picture.
#include "adjust/lsq_file.h"
#include "adjust/lsq_run.h"

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    std::istringstream in(std::string(reinterpret_cast<const char *>(data), size));
    tramline::adjust::LsqData lsq;
    if (!tramline::adjust::readLsq(in, lsq))
        return 0;
    (void)tramline::adjust::lsqText(lsq);
    // Small networks only: the solve of a large one is the benchmark's business.
    if (lsq.observations.size() > 64 || lsq.adjust.size() > 32)
        return 0;
    tramline::adjust::LsqRunOptions options;
    options.debug = lsq.adjust.size() <= 4;
    const tramline::adjust::LsqRun run = tramline::adjust::runLeastSquares(lsq, options);
    (void)run.leastSquares.size();
    return 0;
}

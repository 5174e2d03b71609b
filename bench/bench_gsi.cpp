// Speed of the GSI import on a large input: a generated GSI-16 file of
// 1,000,000 blocks imported with its points into a coordinate file. Goal:
// under 2 s.
#include "base/format.h"
#include "base/interaction.h"
#include "convert/gsi_import.h"
#include "convert/import_flow.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <unistd.h>

using namespace tramline;

namespace {

constexpr long kBlocks = 1000000;

std::filesystem::path scratch(const std::string &name) {
    return std::filesystem::temp_directory_path() /
           ("tramline-bench-" + std::to_string(::getpid()) + "-" + name);
}

// Set-ups of 100 blocks: a station block, a direct/reverse round of 6
// readings, then readings of which every second one carries coordinates.
std::string generateGsi16(long blocks) {
    std::string out;
    out.reserve(std::size_t(blocks) * 150);
    long point = 1;
    for (long block = 1; block <= blocks; ++block) {
        const long k = (block - 1) % 100;
        const long station = (block - 1) / 100 + 1;
        const int n = int(block % 10000);
        if (k == 0) {
            appendFormat(out,
                         "*11%04d+%016ld 84..10+%016ld 85..10+%016ld 86..10+%016ld "
                         "88..10+0000000000001550 \n",
                         n, 900000000 + station, 1000000 + station, 2000000 + station, 100000L);
        } else if (k <= 6) {
            const bool face2 = k > 3;
            const long to = k == 1 || k == 6 ? 900000000 + station + 1 : 800000000 + k;
            appendFormat(out,
                         "*11%04d+%016ld 21.324+%016ld 22.324+%016ld 31..00+%016ld "
                         "87..10+0000000000001800 \n",
                         n, to, face2 ? 26012345L : 8012345L, face2 ? 27045678L : 8954321L,
                         123456L);
        } else if (k % 2 == 0) {
            appendFormat(out,
                         "*11%04d+%016ld 21.324+0000000005532100 22.324+0000000009123450 "
                         "31..00+0000000000211111 81..00+%016ld 82..00+%016ld "
                         "83..00+0000000000101234 \n",
                         n, point, 1000000 + point * 10, 2000000 + point * 20);
            ++point;
        } else {
            appendFormat(out,
                         "*11%04d+%016ld 21.324+0000000005532100 22.324+0000000009123450 "
                         "31..00+0000000000211111 87..10+0000000000001800 \n",
                         n, 700000000 + block);
        }
    }
    return out;
}

void BM_GsiImport1M(benchmark::State &state) {
    const auto source = scratch("job.gsi");
    std::ofstream(source, std::ios::binary) << generateGsi16(kBlocks);
    const auto rw5 = scratch("job.rw5"), crdPath = scratch("job.crd");
    long records = 0, points = 0;
    for (auto _ : state) {
        std::filesystem::remove(crdPath);
        ScriptedInteraction ui({"BFFB|WildSoft"});
        convert::ImportSummary summary;
        convert::runImport(convert::importGsi, {source, rw5, crdPath, nullptr}, ui, summary);
        records = summary.records;
        points = summary.pointsStored;
    }
    state.counters["blocks"] = double(records);
    state.counters["points"] = double(points);
    state.SetItemsProcessed(state.iterations() * records);
    for (const auto &p : {source, rw5, crdPath})
        std::filesystem::remove(p);
}
BENCHMARK(BM_GsiImport1M)->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace

BENCHMARK_MAIN();

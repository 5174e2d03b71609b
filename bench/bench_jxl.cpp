// Speed of the JobXML export on a generated RW5 job of 1,000,000 lines,
// read from its file and written to the JXL file. Goal: under 3 s.
#include "base/interaction.h"
#include "convert/export_flow.h"
#include "convert/jxl_export.h"
#include "raw_generator.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <unistd.h>

using namespace tramline;

namespace {

void JxlExportOfAMillionLines(benchmark::State &state) {
    const auto folder = std::filesystem::temp_directory_path() /
                        ("tramline-bench-jxl-" + std::to_string(::getpid()));
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "job.rw5", std::ios::binary) << bench::generateRawJob(1000000);
    for (auto _ : state) {
        SilentInteraction ui;
        convert::ExportOutput out;
        if (!convert::runExport(convert::exportJxl, folder / "job.rw5", folder / "job.jxl", {}, ui,
                                out))
            state.SkipWithError("export failed");
        state.counters["records"] = double(out.records);
    }
    std::filesystem::remove_all(folder);
}

} // namespace

BENCHMARK(JxlExportOfAMillionLines)->Unit(benchmark::kMillisecond)->Iterations(1);

BENCHMARK_MAIN();

// Reading, classifying and writing a 1,000,000-record RW5 job.
#include "raw_generator.h"

#include "base/line_reader.h"
#include "raw/classify.h"
#include "raw/document.h"
#include "raw/reader.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <fstream>

namespace {

constexpr size_t kRecords = 1'000'000;

const std::filesystem::path &jobFile() {
    static const std::filesystem::path path = [] {
        auto p = std::filesystem::temp_directory_path() / "tramline-bench-1m.rw5";
        std::ofstream(p, std::ios::binary) << tramline::bench::generateRawJob(kRecords);
        return p;
    }();
    return path;
}

void setBytes(benchmark::State &state, size_t bytes, size_t items) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes));
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * items));
}

// The reader into the record list, from the file on disk.
void BM_ReadRawFile(benchmark::State &state) {
    const auto &path = jobFile();
    tramline::raw::RawFile file;
    for (auto _ : state) {
        tramline::raw::readRawFile(path, file);
        benchmark::DoNotOptimize(file.nodes.data());
    }
    setBytes(state, std::filesystem::file_size(path), file.nodes.size());
}
BENCHMARK(BM_ReadRawFile)->Unit(benchmark::kMillisecond);

// The strict classifier over every line of the file.
void BM_ClassifyRawFile(benchmark::State &state) {
    const auto &path = jobFile();
    size_t lines = 0;
    for (auto _ : state) {
        std::ifstream in(path, std::ios::binary);
        tramline::LineReader reader(in, tramline::raw::kRawLineBuffer);
        tramline::raw::RawFields fields;
        std::string line;
        lines = 0;
        while (reader.next(line)) {
            benchmark::DoNotOptimize(tramline::raw::ClassifyRawLine(
                line, tramline::raw::JobRecords::Recognised, fields));
            ++lines;
        }
    }
    setBytes(state, std::filesystem::file_size(path), lines);
}
BENCHMARK(BM_ClassifyRawFile)->Unit(benchmark::kMillisecond);

// Opening into the document (rows and cells in the grid's formats).
void BM_OpenDocument(benchmark::State &state) {
    const auto &path = jobFile();
    tramline::SilentInteraction ui;
    for (auto _ : state) {
        tramline::raw::RawDocument doc;
        doc.open(path, ui);
        benchmark::DoNotOptimize(doc.rowCount());
    }
    setBytes(state, std::filesystem::file_size(path), kRecords);
}
BENCHMARK(BM_OpenDocument)->Unit(benchmark::kMillisecond);

// Writing the document back to disk (Save As, atomic).
void BM_SaveDocument(benchmark::State &state) {
    const auto &path = jobFile();
    tramline::SilentInteraction ui;
    tramline::raw::RawDocument doc;
    doc.open(path, ui);
    const auto out = std::filesystem::temp_directory_path() / "tramline-bench-1m-out.rw5";
    for (auto _ : state)
        doc.saveAs(out, ui);
    setBytes(state, std::filesystem::file_size(out), doc.rowCount());
    std::filesystem::remove(out);
}
BENCHMARK(BM_SaveDocument)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();

// Speed of the converters on large inputs: a generated SDR-33 job of
// 1,000,000 records imported with its points into a coordinate file, and
// 1,000,000 text points imported into an alphanumeric coordinate file (the
// bulk write). Goal: under 2 s each.
#include "base/format.h"
#include "base/interaction.h"
#include "convert/import_flow.h"
#include "convert/sdr_import.h"
#include "convert/text_points_flow.h"
#include "crd/coordinate_file.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <unistd.h>

using namespace tramline;

namespace {

constexpr long kRecords = 1000000;

std::filesystem::path scratch(const std::string &name) {
    return std::filesystem::temp_directory_path() /
           ("tramline-bench-" + std::to_string(::getpid()) + "-" + name);
}

void appendField(std::string &out, const std::string &text, bool right = false) {
    appendPadded(out, text, 16, right);
}

// Blocks of 100 records: a station with backsight and target height, a
// direct/reverse set of 12 readings, then 85 records of readings, each
// second one followed by the coordinates of its point.
std::string generateSdr33(long records) {
    std::string out = "00NMSDR33 V04-04.02     05-Nov-20 08:00 113111\r\n10NMBENCH\r\n";
    long written = 2, point = 1;
    auto record = [&](const char *type, std::initializer_list<std::string> fields) {
        out += type;
        bool first = true;
        for (const auto &f : fields) {
            appendField(out, f, first);
            first = false;
        }
        out += "\r\n";
        ++written;
    };
    // `record` counts what it writes: stations follow until there are enough.
    for (long station = 1;; ++station) {
        if (written >= records)
            break;
        const std::string at = "S" + std::to_string(station);
        const std::string bs = "S" + std::to_string(station + 1);
        record("02TP", {at, "1000.000", "2000.000", "100.000", "1.550", "STATION"});
        record("07TP", {at, bs, "45.12345678", "0.00000000"});
        record("03NM", {"1.800"});
        const char *targets[] = {"T1", "T2", "T3", "T4", "T5"};
        record("09F1", {at, bs, "120.456", "90.1234", "0.0000", "BS"});
        for (const char *t : targets)
            record("09F1", {at, t, "80.123", "89.5432", "123.4567", "SET"});
        for (const char *t : targets)
            record("09F2", {at, t, "80.124", "270.4567", "303.4566", "SET"});
        record("09F2", {at, bs, "120.457", "269.8765", "180.0001", "BS"});
        for (int k = 0; k < 85 && written < records; ++k) {
            const std::string to = std::to_string(point);
            if (k % 2 == 0) {
                record("09F1", {at, to, "55.321", "91.2345", "211.1111", "TOPO"});
            } else {
                record("08TP", {to, format("%.3f", 1000.0 + double(point) * 0.01),
                                format("%.3f", 2000.0 + double(point) * 0.02), "101.234", "TOPO"});
                ++point;
            }
        }
    }
    return out;
}

void BM_SdrImport1M(benchmark::State &state) {
    const auto source = scratch("job.sdr");
    std::ofstream(source, std::ios::binary) << generateSdr33(kRecords);
    const auto rw5 = scratch("job.rw5"), crdPath = scratch("job.crd");
    long records = 0;
    for (auto _ : state) {
        std::filesystem::remove(crdPath);
        ScriptedInteraction ui({"Sideshots"});
        convert::ImportSummary summary;
        convert::runImport(convert::importSdr, {source, rw5, crdPath, nullptr}, ui, summary);
        records = summary.records;
    }
    state.counters["records"] = double(records);
    state.SetItemsProcessed(state.iterations() * records);
    for (const auto &p : {source, rw5, crdPath})
        std::filesystem::remove(p);
}
BENCHMARK(BM_SdrImport1M)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_TextPointsImport1M(benchmark::State &state) {
    const auto source = scratch("points.txt");
    {
        std::string text;
        for (long i = 0; i < kRecords; ++i)
            appendFormat(text, "P%ld,%.3f,%.3f,%.3f,TOPO %ld\n", (i * 7919) % kRecords,
                         500000.0 + double(i) * 0.01, 1400000.0 + double(i) * 0.02, 680.5, i % 100);
        std::ofstream(source, std::ios::binary) << text;
    }
    const auto crdPath = scratch("points.crd");
    long stored = 0;
    for (auto _ : state) {
        ScriptedInteraction ui;
        crd::CoordinateFile file(crd::CrdContext{&ui, {}, {}});
        file.open(crdPath, crd::Create::Always, crd::kFormatAlphanumeric);
        convert::PointColumns columns;
        convert::parseCoordinateOrder("P,N,E,Z,D", columns);
        convert::TextImportSummary summary;
        convert::importTextPointsFile(source, file, columns, ui, summary);
        stored = summary.pointsStored;
    }
    state.counters["points"] = double(stored);
    state.SetItemsProcessed(state.iterations() * stored);
    std::filesystem::remove(source);
    std::filesystem::remove(crdPath);
}
BENCHMARK(BM_TextPointsImport1M)->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace

BENCHMARK_MAIN();

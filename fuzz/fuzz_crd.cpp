// libFuzzer target: arbitrary bytes opened as a coordinate file (in
// memory), walked both ways, searched, written to, and read as a history
// file. Nothing may crash, hang or read out of bounds.
#include "crd/crd_io_morvane.h"
#include "crd/history_file.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

using namespace tramline::crd;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char *>(data), size);
    std::vector<HistoryEntry> entries;
    parseHistory(bytes, entries);
    for (const auto &entry : entries)
        describeHistoryEntry(entry);

    if (size == 0)
        return 0;
    const bool readOnly = data[0] & 1;
    CrdIOMorvane io;
    if (!io.openStore(std::make_unique<MemoryStore>(std::vector<unsigned char>(data, data + size)),
                      readOnly ? CrdAccess::ReadOnly : CrdAccess::Update))
        return 0;

    CrdPoint point;
    std::vector<std::string> names;
    for (long i = -1; io.readByIndex(i, point, 1); i = io.currentIndex())
        if (names.size() < 64)
            names.push_back(point.name);
    for (long i = io.recordCount(); io.readByIndex(i, point, -1); i = io.currentIndex()) {
    }
    // Names from the file and pieces of the input, in every direction.
    for (std::size_t at = 1; at + 4 <= size && names.size() < 96; at += 37)
        names.emplace_back(bytes.substr(at, 1 + data[at] % 10));
    for (const auto &name : names)
        for (int direction : {-1, 0, 1})
            io.readPoint(name, point, static_cast<PointSearch>(direction), Verbosity::Quiet);

    if (readOnly)
        return 0;
    std::vector<CrdPoint> batch;
    for (std::size_t i = 0; i < names.size(); ++i) {
        CrdPoint p;
        // Numeric names stay small so that the file does not balloon.
        const std::string name = io.format() == 0 ? std::to_string(i * 7 % 500) : names[i];
        p.set(static_cast<double>(i), 1.0, i % 3 ? 2.0 : 98765432.1, name, names[i]);
        if (i % 2)
            io.writePoint(p, Verbosity::Quiet, nullptr);
        else
            batch.push_back(p);
    }
    io.writePoints(batch, Verbosity::Quiet, nullptr);
    for (long i = -1; io.readByIndex(i, point, 1); i = io.currentIndex()) {
    }
    return 0;
}

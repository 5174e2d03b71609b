// Processes arbitrary bytes as a raw file, without adjustment and by the
// compass rule: the pass, its checks and the report must stand anything.
#include "crd/coordinate_file.h"
#include "raw/reader.h"
#include "reduce/processing.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <sstream>
#include <string>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    using namespace tramline;
    static const std::filesystem::path folder =
        std::filesystem::temp_directory_path() /
        ("tramline-fuzz-process-" + std::to_string(::getpid()));
    std::filesystem::create_directories(folder);
    for (auto method : {reduce::AdjustMethod::None, reduce::AdjustMethod::Compass}) {
        std::istringstream in(std::string(reinterpret_cast<const char *>(data), size));
        raw::RawFile file;
        raw::readRaw(in, file);
        std::filesystem::remove(folder / "job.crd");
        ScriptedInteraction ui;
        crd::CrdContext context;
        context.messages = &ui;
        context.wait = [](int) { return false; };
        crd::CoordinateFile coordinates(context);
        if (!coordinates.open(folder / "job.crd"))
            return 0;
        reduce::ProcessOptions options;
        options.method = method;
        options.workingFolder = folder;
        options.startPoint = "1";
        options.endPoint = "1";
        options.angleBalance = true;
        reduce::processRaw(file, "fuzz.rw5", coordinates, options, ui);
    }
    return 0;
}

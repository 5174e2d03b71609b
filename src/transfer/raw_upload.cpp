#include "transfer/raw_upload.h"

#include "base/translation.h"
#include "transfer/open_port.h"
#include "transfer/point_upload.h"

#include <fstream>
#include <sstream>

namespace tramline::transfer {

Status uploadSdrFile(const std::filesystem::path &file, const std::string &device,
                     const LineSettings &line, Interaction &ui) {
    if (file.empty())
        return transferFailure(ui, StatusCode::InvalidInput, tr("Missing Sokkia File Name"));
    std::ifstream in(file, std::ios::binary);
    std::ostringstream text;
    if (!in || !(text << in.rdbuf()))
        return transferFailure(ui, StatusCode::Io, tr("Error: unable to read file"));
    Status status;
    const std::unique_ptr<SerialPort> port = openTransferPort(device, line, ui, status);
    if (!port)
        return status;
    return sendLines(*port, text.str(), trNoop("Sending Header"), trNoop("Sending line"), ui);
}

} // namespace tramline::transfer

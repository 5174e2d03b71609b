#include "transfer/open_port.h"

#include "base/format.h"
#include "base/translation.h"

namespace tramline::transfer {

Status transferFailure(Interaction &ui, StatusCode code, const std::string &text) {
    ui.message(text);
    return Status::failure(code, text);
}

std::unique_ptr<SerialPort> openTransferPort(const std::string &device, const LineSettings &line,
                                             Interaction &ui, Status &status) {
    std::unique_ptr<SerialPort> port = SerialPort::open(device, line);
    if (!port) {
        status = transferFailure(ui, StatusCode::InvalidInput, tr("Error: Null port"));
        return nullptr;
    }
    if (port->status() < 0) {
        status = transferFailure(
            ui, StatusCode::Io, format(tr("Failed to open the port. Status = %d"), port->status()));
        return nullptr;
    }
    port->setIdleHook([&ui] { return ui.idle(); });
    status = Status::success();
    return port;
}

} // namespace tramline::transfer

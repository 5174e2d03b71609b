// Two 51-character records fit a block; a record is never split across
// blocks, so that an instrument that drops a block loses whole points.
#include "transfer/framed_upload.h"

#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"
#include "transfer/open_port.h"
#include "transfer/protocol_time.h"

#include <cmath>
#include <cstdlib>

namespace tramline::transfer {

namespace {

enum class FrameSent { Sent, Failed, Cancelled };

FrameSent sendFrame(SerialPort &port, const std::string &frame) {
    for (int attempt = 0; attempt < kFrameTries; ++attempt) {
        const int status = port.writeString(frame, kCrLf, protocolMs(kFrameDeadlineMs));
        if (status == kCancelled)
            return FrameSent::Cancelled;
        if (status == 0)
            return port.pause(protocolMs(kAfterFrameMs)) == 0 ? FrameSent::Sent
                                                              : FrameSent::Cancelled;
    }
    return FrameSent::Failed;
}

long leadingNumber(std::string_view name) {
    const std::string text(trim(name));
    return std::strtol(text.c_str(), nullptr, 10);
}

} // namespace

int xorChecksum(std::string_view payload) {
    unsigned char sum = 0;
    for (char c : payload)
        sum ^= static_cast<unsigned char>(c);
    return sum;
}

std::string frameOf(std::string_view payload) {
    std::string frame(1, '\x02');
    frame += payload;
    frame += format("%03d", xorChecksum(payload));
    frame += '\x03';
    return frame;
}

std::string headerPayload(const std::filesystem::path &coordinateFile, long pointCount) {
    const std::string name = toUpper(coordinateFile.stem().string());
    return format("%-10.10s+10001.000000100010-20%04ldS", name.c_str(), pointCount);
}

std::string coordinateDigits(double value) {
    if (!std::isfinite(value))
        value = 0.0; // a damaged record must not widen the field
    std::string text = format("%.3f", std::fabs(value));
    if (text.size() > 10)
        text.erase(0, text.size() - 10);
    const long digits = std::lround(std::strtod(text.c_str(), nullptr) * 1000.0);
    return format("%c%09ld", value < 0 ? '-' : '+', digits);
}

std::string pointRecord(const crd::CrdPoint &point, XCarries xCarries) {
    const bool northFirst = xCarries == XCarries::Northing;
    const std::string x = coordinateDigits(northFirst ? point.northing : point.easting);
    const std::string y = coordinateDigits(northFirst ? point.easting : point.northing);
    const std::string z = coordinateDigits(point.elevation);
    return format("_+%-10ld_ x%s_ y%s_ z%s", leadingNumber(point.name), x.c_str(), y.c_str(),
                  z.c_str());
}

std::vector<std::string> dataBlocks(std::span<const crd::CrdPoint> points, XCarries xCarries) {
    std::vector<std::string> blocks;
    std::string records;
    auto close = [&] {
        blocks.push_back(format("%-128.128s%d", records.c_str(), int(blocks.size() % 10)));
        records.clear();
    };
    for (const auto &point : points) {
        const std::string record = pointRecord(point, xCarries);
        if (!records.empty() && records.size() + record.size() > kBlockWidth)
            close();
        records += record;
    }
    if (!records.empty())
        close();
    return blocks;
}

Status sendFramedPoints(SerialPort &port, const std::filesystem::path &coordinateFile,
                        std::span<const crd::CrdPoint> points, XCarries xCarries, Interaction &ui) {
    const auto cancelled = [&ui] {
        return transferFailure(ui, StatusCode::Cancelled, tr("Function cancelled at user request"));
    };
    const std::vector<std::string> blocks = dataBlocks(points, xCarries);
    const long total = long(blocks.size()) + 1;
    ui.progress(0, total, tr("Sending Header"));
    switch (sendFrame(port, frameOf(headerPayload(coordinateFile, long(points.size()))))) {
    case FrameSent::Cancelled:
        return cancelled();
    case FrameSent::Failed:
        return transferFailure(ui, StatusCode::Io, tr("Error sending block 2"));
    case FrameSent::Sent:
        break;
    }
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        ui.progress(long(i) + 1, total, tr("Sending point"));
        switch (sendFrame(port, frameOf(blocks[i]))) {
        case FrameSent::Cancelled:
            return cancelled();
        case FrameSent::Failed:
            return transferFailure(ui, StatusCode::Io, tr("Transfer error sending data block"));
        case FrameSent::Sent:
            break;
        }
    }
    ui.progress(total, total, tr("Upload completed successfully"));
    ui.message(tr("Upload completed successfully"));
    return Status::success();
}

} // namespace tramline::transfer

// The framed coordinate upload: a header frame naming the coordinate file
// and its point count, then the points in blocks of 128 characters, each
// block with a sequence digit. A frame is start of text, the payload, the
// exclusive-or of the payload's bytes as three decimal digits and end of
// text; it goes out with CR LF and is tried up to five times.
#pragma once

#include "base/interaction.h"
#include "base/status.h"
#include "crd/crd_point.h"
#include "transfer/port.h"

#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace tramline::transfer {

/// Which coordinate the x field carries; y carries the other.
enum class XCarries { Northing, Easting };

/// Characters of a data block before its sequence digit.
inline constexpr std::size_t kBlockWidth = 128;
/// Waits of a frame, milliseconds of a real line (see protocol_time.h).
inline constexpr long kFrameDeadlineMs = 1000;
inline constexpr long kAfterFrameMs = 400;
inline constexpr int kFrameTries = 5;

/// The exclusive-or of every byte of `payload` (0-255).
int xorChecksum(std::string_view payload);
/// Byte 2, the payload, the checksum as three digits, byte 3.
std::string frameOf(std::string_view payload);
/// "%-10.10s+10001.000000100010-20%04dS" with the file's name without
/// folder and extension, upper-cased, and the point count.
std::string headerPayload(const std::filesystem::path &coordinateFile, long pointCount);
/// The sign and nine digits of a coordinate: its absolute value with three
/// decimals, only the last 10 characters of that text kept (leading digits
/// are dropped to fit the field), times 1000. 1234567.890 gives "+234567890".
std::string coordinateDigits(double value);
/// "_+%-10ld_ x%c%09ld_ y%c%09ld_ z%c%09ld": the number the point's name
/// starts with (0 for a name without one), x, y and the elevation.
std::string pointRecord(const crd::CrdPoint &point, XCarries xCarries);
/// The data block payloads: whole records, as many as fit in 128
/// characters, padded with blanks, then the sequence digit 0-9, 0, ...
std::vector<std::string> dataBlocks(std::span<const crd::CrdPoint> points, XCarries xCarries);

/// Sends the header and the data blocks on `port`. Failures show "Error
/// sending block 2" (the header) or "Transfer error sending data block";
/// a cancel shows "Function cancelled at user request". Progress through
/// ui.progress() as blocks go out.
Status sendFramedPoints(SerialPort &port, const std::filesystem::path &coordinateFile,
                        std::span<const crd::CrdPoint> points, XCarries xCarries, Interaction &ui);

} // namespace tramline::transfer

#include "crd/record_layout.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace tramline::crd::layout {

void putDouble(unsigned char *at, double value) {
    std::uint64_t bits = std::bit_cast<std::uint64_t>(value);
    for (int i = 0; i < 8; ++i) {
        at[i] = static_cast<unsigned char>(bits & 0xffu);
        bits >>= 8;
    }
}

double getDouble(const unsigned char *at) {
    std::uint64_t bits = 0;
    for (int i = 7; i >= 0; --i)
        bits = (bits << 8) | at[i];
    return std::bit_cast<double>(bits);
}

void putText(unsigned char *at, std::size_t fieldSize, std::string_view text) {
    const std::size_t n = std::min(text.size(), fieldSize - 1);
    std::memcpy(at, text.data(), n);
    std::memset(at + n, 0, fieldSize - n);
}

std::string getText(const unsigned char *at, std::size_t fieldSize, std::size_t maxChars) {
    std::size_t n = 0;
    const std::size_t limit = std::min(fieldSize, maxChars);
    while (n < limit && at[n] != 0)
        ++n;
    return std::string(reinterpret_cast<const char *>(at), n);
}

bool hasAlphaMark(const unsigned char *header) {
    const std::string mark = getText(header + kAlphaMark, kTextField, kTextField - 1);
    return mark.size() > 5 && mark.compare(0, kMarkPrefix.size(), kMarkPrefix) == 0;
}

bool isFirstRevisionMark(const unsigned char *header) {
    return header[kAlphaMark + kMarkPrefix.size()] != '2';
}

std::string alphaName(const unsigned char *record) {
    return getText(record + kName, kNameField, kMaxAlphaName);
}

void fillPoint(const unsigned char *record, CrdPoint &point) {
    point.northing = getDouble(record + kNorthing);
    point.easting = getDouble(record + kEasting);
    point.elevation = getDouble(record + kElevation);
    point.description = getText(record + kDescription, kTextField, kMaxDescription);
    point.code.clear();
    point.locked = 0;
}

bool isEmptySlot(const unsigned char *record) {
    return getDouble(record + kNorthing) == 0.0 && getDouble(record + kEasting) == 0.0 &&
           getDouble(record + kElevation) == 0.0;
}

} // namespace tramline::crd::layout

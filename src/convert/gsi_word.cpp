#include "convert/gsi_word.h"

#include "base/angles.h"
#include "base/text.h"

#include <cmath>

namespace tramline::convert::gsi {

namespace {

int decimalsFor(const Word &word) {
    const char unit = unitCode(word);
    if (isAngleWord(word.index)) {
        if (unit == '2' || unit == '3' || unit == '4')
            return 5;
        if (unit == '5')
            return 4;
        return 3;
    }
    if (unit == '6' || unit == '7')
        return 4;
    if (unit == '8')
        return 5;
    return 3;
}

} // namespace

char unitCode(const Word &word) {
    return word.info.size() == 4 ? word.info[3] : '.';
}

bool isAngleWord(int index) {
    return index >= 21 && index <= 29;
}

bool numberOf(const Word &word, double &value) {
    const std::string_view data = trim(word.data);
    if (data.empty())
        return false;
    // Digits are summed by hand: the data is at most a few dozen bytes and
    // this is the inner loop of every import.
    double whole = 0.0;
    int decimals = -1; // digits after the point, -1: no point seen
    bool digits = false;
    for (const char c : data) {
        if (c >= '0' && c <= '9') {
            whole = whole * 10.0 + (c - '0');
            digits = true;
            if (decimals >= 0)
                ++decimals;
        } else if (c == '.' && decimals < 0) {
            decimals = 0;
        } else {
            return false; // dashes of a missing value, or text
        }
    }
    if (!digits)
        return false;
    static constexpr double kPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                         1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                         1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
    const int places = decimals >= 0 ? decimals : decimalsFor(word);
    value = whole / (places < 23 ? kPowers[places] : std::pow(10.0, places));
    if (word.sign == '-')
        value = -value;
    return true;
}

bool angleDegrees(const Word &word, double &degrees) {
    double value = 0.0;
    if (!numberOf(word, value))
        return false;
    switch (unitCode(word)) {
    case '2':
        degrees = gonsToDegrees(value);
        break;
    case '3':
        degrees = value;
        break;
    case '5':
        degrees = value * 360.0 / 6400.0;
        break;
    default:
        degrees = unpackDms(value);
        break;
    }
    return true;
}

bool inFeet(const Word &word) {
    const char unit = unitCode(word);
    return unit == '1' || unit == '7';
}

std::string nameOf(const Word &word) {
    std::string_view data = trim(word.data);
    while (data.size() > 1 && (data.front() == '0' || data.front() == ' '))
        data.remove_prefix(1);
    return data.empty() ? std::string("0") : std::string(data);
}

std::string textOf(const Word &word) {
    std::string text = nameOf(word);
    if (text == "0")
        text.clear();
    return text;
}

} // namespace tramline::convert::gsi

#include "convert/geodimeter_reader.h"

#include "base/text.h"
#include "convert/geodimeter_labels.h"

namespace tramline::convert::geodimeter {

LabelLine readLabelLine(std::string_view line) {
    LabelLine out;
    out.value = trim(line);
    std::string_view key, value;
    if (!splitKeyValue(line, '=', key, value) || key.empty())
        return out;
    long number = 0;
    for (char c : key) {
        if (c < '0' || c > '9')
            return out;
        // Past nine digits the label is surely above the table; stop
        // counting so that the number cannot overflow.
        if (number <= 99999999)
            number = number * 10 + (c - '0');
    }
    out.label = number > kHighestLabel ? -1 : int(number);
    out.kind = number > kHighestLabel ? LineKind::HighLabel : LineKind::Label;
    out.value = value;
    return out;
}

} // namespace tramline::convert::geodimeter

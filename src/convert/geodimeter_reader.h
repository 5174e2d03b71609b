// One line of a Geodimeter file: "label=value", or a remark.
#pragma once

#include <string_view>

namespace tramline::convert::geodimeter {

enum class LineKind {
    Label,     ///< a label of 0 to 74 and its value
    HighLabel, ///< a label above 74: skipped
    Remark,    ///< anything else: no "=", or no whole number before it
};

struct LabelLine {
    LineKind kind = LineKind::Remark;
    int label = -1;
    std::string_view value; ///< trimmed; for a remark the whole trimmed line
};

/// Splits `line` at its first "=". The label is digits only (blanks
/// around it allowed); more than nine digits count as a high label.
LabelLine readLabelLine(std::string_view line);

} // namespace tramline::convert::geodimeter

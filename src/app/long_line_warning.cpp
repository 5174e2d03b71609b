#include "app/long_line_warning.h"

#include "base/format.h"
#include "base/translation.h"
#include "raw/text_scan.h"

#include <algorithm>
#include <fstream>

namespace tramline::app {

std::string longLinesMessage(const std::vector<std::size_t> &lines, std::size_t limit) {
    if (lines.empty())
        return {};
    std::string listed;
    const std::size_t shown = std::min(lines.size(), kListedLongLines);
    for (std::size_t i = 0; i < shown; ++i)
        appendFormat(listed, i == 0 ? "%zu" : ", %zu", lines[i]);
    if (lines.size() > shown)
        return format(tr("Warning: lines longer than %zu characters are read as several lines: "
                         "%s and %zu more"),
                      limit, listed.c_str(), lines.size() - shown);
    return format(tr("Warning: lines longer than %zu characters are read as several lines: %s"),
                  limit, listed.c_str());
}

std::string longLinesWarning(const std::filesystem::path &path) {
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return {};
    return longLinesMessage(raw::scanText(in).longLines, raw::kLongestRawLine);
}

} // namespace tramline::app

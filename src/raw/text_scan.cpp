#include "raw/text_scan.h"

namespace tramline::raw {

TextScan scanText(std::istream &in, std::size_t limit) {
    TextScan scan;
    char buffer[65536];
    std::size_t length = 0;
    bool afterCr = false, pending = false;
    const auto endLine = [&] {
        ++scan.lines;
        if (length > limit)
            scan.longLines.push_back(scan.lines);
        length = 0;
        pending = false;
    };
    while (in) {
        in.read(buffer, sizeof buffer);
        const std::streamsize got = in.gcount();
        for (std::streamsize i = 0; i < got; ++i) {
            const char c = buffer[i];
            if (c == '\n') {
                if (!afterCr)
                    endLine();
                afterCr = false;
                continue;
            }
            afterCr = c == '\r';
            if (afterCr) {
                endLine();
                continue;
            }
            if (c == '\0')
                scan.hasNul = true;
            ++length;
            pending = true;
        }
    }
    if (pending)
        endLine();
    return scan;
}

} // namespace tramline::raw

#include "base/status_text.h"

#include "base/format.h"
#include "base/translation.h"

namespace tramline {

std::string statusText(const Status &status) {
    if (status.lineNumber == 0)
        return status.message;
    return format(tr("%s (line %zu)"), status.message.c_str(), status.lineNumber);
}

} // namespace tramline

#include "base/folders.h"

#include <cstdlib>

namespace tramline {

namespace {
std::filesystem::path home() {
    if (const char *h = std::getenv("HOME"); h && *h)
        return h;
    return std::filesystem::temp_directory_path();
}
} // namespace

std::filesystem::path documentsFolder() {
    if (const char *d = std::getenv("XDG_DOCUMENTS_DIR"); d && *d)
        return d;
    return home() / "Documents";
}

std::filesystem::path applicationDataFolder() {
    if (const char *d = std::getenv("XDG_CONFIG_HOME"); d && *d)
        return d;
    return home() / ".config";
}

std::filesystem::path settingsFolder() {
    return applicationDataFolder() / "Halvren Software" / "Halvren Tramline";
}

std::filesystem::path defaultWorkingFolder() {
    return documentsFolder() / "Halvren Tramline";
}

} // namespace tramline

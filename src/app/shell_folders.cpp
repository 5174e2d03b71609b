#include "app/shell_folders.h"

#include "base/text.h"

#include <algorithm>

namespace tramline::app {

namespace {

constexpr char kSeparator = static_cast<char>(std::filesystem::path::preferred_separator);

bool isSeparator(char c) {
    return c == '/' || c == kSeparator;
}

bool sameName(std::string_view a, std::string_view b) {
#ifdef _WIN32
    return equalsIgnoreCase(a, b);
#else
    return a == b;
#endif
}

} // namespace

std::string programFolder(const std::string &modulePath, const std::string &executableName) {
    const std::string_view path(modulePath);
    if (path.size() > executableName.size()) {
        const size_t at = path.size() - executableName.size();
        if (isSeparator(path[at - 1]) && sameName(path.substr(at), executableName))
            return std::string(path.substr(0, at));
    }
    std::error_code ec;
    if (modulePath.empty() || std::filesystem::is_directory(modulePath, ec))
        return modulePath.empty() || isSeparator(modulePath.back()) ? modulePath
                                                                    : modulePath + kSeparator;
    return withSeparator(std::filesystem::path(modulePath).parent_path());
}

std::string withSeparator(const std::filesystem::path &folder) {
    std::string text = folder.string();
    if (text.empty() || !isSeparator(text.back()))
        text.push_back(kSeparator);
    return text;
}

ShellFolders shellFolders(const std::string &modulePath,
                          const std::filesystem::path &applicationData,
                          const std::filesystem::path &documents) {
    ShellFolders folders;
    folders.program = programFolder(modulePath);
    folders.settings = withSeparator(applicationData / "Halvren Software" / "Halvren Tramline");
    folders.working = withSeparator(documents / "Halvren Tramline");
    return folders;
}

} // namespace tramline::app

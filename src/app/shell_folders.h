// Where the program finds its own files and keeps the user's: the program
// folder (catalogues under "LANG"), the settings folder (the settings file
// and the working coordinate file) and the working folder (scratch and
// report files).
#pragma once

#include <filesystem>
#include <string>

namespace tramline::app {

/// The executable's file name as built, for the program folder rule.
#ifdef _WIN32
inline constexpr const char *kExecutableName = "tramline.exe";
#else
inline constexpr const char *kExecutableName = "tramline";
#endif

/// The program folder, ending in a separator: the module path cut where
/// the executable's name begins. When the path does not end in that name
/// (the program was renamed or started through a link of another name) a
/// separator is appended if the path is a folder, else the path's own
/// folder is taken: a path ending in a file name and a separator would name
/// nothing.
std::string programFolder(const std::string &modulePath,
                          const std::string &executableName = kExecutableName);

struct ShellFolders {
    std::filesystem::path program;  ///< ends in a separator
    std::filesystem::path settings; ///< ".../Halvren Software/Halvren Tramline/"
    std::filesystem::path working;  ///< ".../Halvren Tramline/", or the tmpdir setting
};

/// The folders under the given application-data and documents folders.
ShellFolders shellFolders(const std::string &modulePath,
                          const std::filesystem::path &applicationData,
                          const std::filesystem::path &documents);

/// A folder path as the settings file holds it: with a trailing separator.
std::string withSeparator(const std::filesystem::path &folder);

} // namespace tramline::app

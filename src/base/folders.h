// The folders the program keeps its files in, after the platform's own
// conventions: settings under the user's configuration folder, the working
// folder (scratch and report files) under the documents folder.
#pragma once

#include <filesystem>

namespace tramline {

/// The user's documents folder ($XDG_DOCUMENTS_DIR, else ~/Documents).
std::filesystem::path documentsFolder();
/// The user's application-data folder ($XDG_CONFIG_HOME, else ~/.config).
std::filesystem::path applicationDataFolder();
/// "Halvren Software/Halvren Tramline" under the application-data folder.
std::filesystem::path settingsFolder();
/// "Halvren Tramline" under the documents folder: the default working folder.
std::filesystem::path defaultWorkingFolder();

} // namespace tramline

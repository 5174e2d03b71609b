// Which language the program speaks: English, or the user's own when the
// settings ask for it (`lang_mode` 1), read from gettext catalogues under
// the program folder's "LANG" folder in the domain "halvren-office".
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace tramline::app {

struct LanguageCode {
    std::string full = "en";      ///< "de_DE", "de", or "en"
    std::string shortCode = "en"; ///< the part before the first "_"
    bool english() const { return full == "en"; }
};

/// What the choice looks at, gathered once so that tests can set it.
struct LanguageEnvironment {
    std::optional<std::string> language; ///< LANGUAGE
    std::optional<std::string> lang;     ///< LANG
    std::string systemLanguage;          ///< the user locale's language, "de"
    std::string systemCountry;           ///< the user locale's country, "DE"
    std::filesystem::path startupFile;   ///< "morvstart.ini"
};

/// The environment variables of this process with the given locale.
LanguageEnvironment processLanguageEnvironment(std::string systemLanguage,
                                               std::string systemCountry,
                                               std::filesystem::path startupFile);

/// The `lang_code` of the "morvstart" section of the start-up file ("Language
/// Mode"); "en" when the file, the section or the key is missing.
std::string startupLanguageCode(const std::filesystem::path &startupFile);

/// Chooses the language for a requested code: "win" for the system's
/// language, "en" for English, a code such as "de", or empty to take the
/// code from the start-up file. LANGUAGE, then LANG, outrank the system
/// locale when set to something other than a number.
LanguageCode chooseLanguage(const std::string &requested, const LanguageEnvironment &environment);

/// The catalogue of a code: <locale folder>/<code>/LC_MESSAGES/halvren-office.mo.
std::filesystem::path cataloguePath(const std::filesystem::path &localeFolder,
                                    const std::string &code);

/// Loads the catalogue for `code` from `localeFolder` (the program folder's
/// "LANG"), trying the full code, then the short one. Returns the warnings
/// to show: "\nWarning: Missing translation file %s" or "\nWarning: Unable
/// to initialize translation ..."; none when English or when loaded.
std::vector<std::string> startTranslation(const std::filesystem::path &localeFolder,
                                          const LanguageCode &code);

} // namespace tramline::app

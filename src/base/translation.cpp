#include "base/translation.h"

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <libintl.h>

namespace tramline {

namespace {
bool g_bound = false;
}

bool setTranslationLanguage(const std::string &catalogueFolder, const std::string &languageCode) {
    if (languageCode.empty() || languageCode == "en" || languageCode.starts_with("en_")) {
        g_bound = false;
        return true;
    }
    std::error_code ec;
    const auto mo = std::filesystem::path(catalogueFolder) / languageCode / "LC_MESSAGES" /
                    (std::string(kTextDomain) + ".mo");
    const auto shortMo = std::filesystem::path(catalogueFolder) / languageCode.substr(0, 2) /
                         "LC_MESSAGES" / (std::string(kTextDomain) + ".mo");
    if (!std::filesystem::exists(mo, ec) && !std::filesystem::exists(shortMo, ec))
        return false;
    // gettext picks the catalogue from LANGUAGE, which outranks the locale;
    // the program chooses the language itself, so it sets LANGUAGE.
    setenv("LANGUAGE", languageCode.c_str(), 1);
    // gettext ignores LANGUAGE under the "C" locale, which is what a
    // machine without the user's locale installed falls back to; C.UTF-8
    // keeps every other behaviour of "C" and lets the catalogue speak.
    const char *messages = std::setlocale(LC_MESSAGES, nullptr);
    if (messages == nullptr || std::strcmp(messages, "C") == 0 ||
        std::strcmp(messages, "POSIX") == 0)
        std::setlocale(LC_MESSAGES, "C.UTF-8");
    bindtextdomain(kTextDomain, catalogueFolder.c_str());
    bind_textdomain_codeset(kTextDomain, "UTF-8");
    g_bound = true;
    return true;
}

const char *tr(const char *english) {
    if (!g_bound || english == nullptr || *english == '\0')
        return english;
    return dgettext(kTextDomain, english);
}

} // namespace tramline

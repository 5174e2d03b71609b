#include "app/language.h"

#include "base/format.h"
#include "base/line_reader.h"
#include "base/text.h"
#include "base/translation.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <fstream>

namespace tramline::app {

namespace {

bool isNumeric(const std::string &text) {
    return !text.empty() &&
           std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isdigit(c); });
}

std::optional<std::string> variable(const char *name) {
    const char *value = std::getenv(name);
    if (value == nullptr)
        return std::nullopt;
    return std::string(value);
}

// A variable's language, as gettext spells its values: LANGUAGE may list
// several ("de:en"), the first counts; a codeset or modifier ("de_DE.UTF-8",
// "de_DE@euro") names no catalogue folder of its own.
std::string languageOf(std::string value) {
    value = value.substr(0, value.find(':'));
    return value.substr(0, value.find_first_of(".@"));
}

// The values that mean the program's own English: en_US, and the C and
// POSIX locales of systems where no language was chosen.
bool meansEnglish(const std::string &value) {
    return value == "en_US" || value == "C" || value == "POSIX" || value.empty();
}

LanguageCode codeFrom(const std::string &full) {
    LanguageCode code;
    code.full = full;
    code.shortCode = full.substr(0, full.find('_'));
    // Any English is the program's own text: no catalogue to look for.
    if (equalsIgnoreCase(code.shortCode, "en"))
        return LanguageCode{};
    return code;
}

} // namespace

LanguageEnvironment processLanguageEnvironment(std::string systemLanguage,
                                               std::string systemCountry,
                                               std::filesystem::path startupFile) {
    LanguageEnvironment environment;
    environment.language = variable("LANGUAGE");
    environment.lang = variable("LANG");
    environment.systemLanguage = std::move(systemLanguage);
    environment.systemCountry = std::move(systemCountry);
    environment.startupFile = std::move(startupFile);
    return environment;
}

std::string startupLanguageCode(const std::filesystem::path &startupFile) {
    std::ifstream in(startupFile, std::ios::binary);
    if (!in)
        return "en";
    LineReader reader(in, 222);
    std::string line;
    bool inSection = false;
    while (reader.next(line)) {
        const std::string_view text = trim(line);
        if (text.starts_with('[')) {
            inSection = equalsIgnoreCase(text, "[morvstart]");
            continue;
        }
        std::string_view key, value;
        if (!inSection || !splitKeyValue(text, '=', key, value) ||
            !equalsIgnoreCase(key, "lang_code"))
            continue;
        return value.empty() ? "en" : std::string(value);
    }
    return "en";
}

LanguageCode chooseLanguage(const std::string &requested, const LanguageEnvironment &environment) {
    const std::string code =
        requested.empty() ? startupLanguageCode(environment.startupFile) : requested;
    if (equalsIgnoreCase(code, "en"))
        return LanguageCode{};
    for (const auto &value : {environment.language, environment.lang}) {
        if (!value || value->empty() || isNumeric(*value))
            continue;
        const std::string language = languageOf(*value);
        return meansEnglish(language) ? LanguageCode{} : codeFrom(language);
    }
    const std::string &language = environment.systemLanguage;
    const std::string &country = environment.systemCountry;
    if (equalsIgnoreCase(code, "win")) {
        if (language.empty())
            return LanguageCode{};
        const bool differ = !equalsIgnoreCase(language, country);
        const bool unitedStatesEnglish =
            equalsIgnoreCase(language, "en") && equalsIgnoreCase(country, "us");
        if (differ && !unitedStatesEnglish && !country.empty())
            return codeFrom(language + "_" + country);
        return codeFrom(language);
    }
    return equalsIgnoreCase(code, language) ? codeFrom(code) : LanguageCode{};
}

std::filesystem::path cataloguePath(const std::filesystem::path &localeFolder,
                                    const std::string &code) {
    return localeFolder / code / "LC_MESSAGES" / (std::string(kTextDomain) + ".mo");
}

std::vector<std::string> startTranslation(const std::filesystem::path &localeFolder,
                                          const LanguageCode &code) {
    if (code.english()) {
        setTranslationLanguage(localeFolder.string(), "");
        return {};
    }
    std::error_code ec;
    std::string chosen = code.full;
    std::filesystem::path path = cataloguePath(localeFolder, chosen);
    if (!std::filesystem::is_regular_file(path, ec)) {
        chosen = code.shortCode;
        path = cataloguePath(localeFolder, chosen);
        if (!std::filesystem::is_regular_file(path, ec))
            return {format(tr("\nWarning: Missing translation file %s"), path.string().c_str())};
    }
    if (!setTranslationLanguage(localeFolder.string(), chosen)) {
        std::string warning =
            format(tr("\nWarning: Unable to initialize translation %s\\%s\\LC_MESSAGES\\%s.mo"),
                   localeFolder.string().c_str(), chosen.c_str(), kTextDomain);
#ifndef _WIN32
        std::replace(warning.begin(), warning.end(), '\\', '/');
#endif
        return {warning};
    }
    return {};
}

} // namespace tramline::app

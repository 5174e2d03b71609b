// The one lookup every user-visible text passes through. The English text
// is the key; gettext finds the translation in the "halvren-office" domain
// when a catalogue has been bound, and the English text comes back when
// there is none.
#pragma once

#include <string>

namespace tramline {

inline constexpr const char *kTextDomain = "halvren-office";

/// Binds the catalogue folder (holding <code>/LC_MESSAGES/halvren-office.mo)
/// and chooses the language by its code ("de", "fr_CA"); an empty code
/// means English. Returns false when the folder has no catalogue for the
/// code (the English texts are used).
bool setTranslationLanguage(const std::string &catalogueFolder, const std::string &languageCode);

/// Marks a text for the catalogue where it is defined (a table entry, a
/// message constant) when tr() is applied to it later; returns it unchanged.
constexpr const char *trNoop(const char *english) {
    return english;
}

/// The translation of `english`, or `english` itself. The pointer stays
/// valid for the life of the program.
const char *tr(const char *english);

} // namespace tramline

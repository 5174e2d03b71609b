// The one place where the core's texts (UTF-8 std::string, translated
// through tr()) become Qt's and back.
#pragma once

#include "base/translation.h"

#include <QString>
#include <filesystem>
#include <string>

namespace tramline::app {

/// The translation of an English text, for Qt.
inline QString qtr(const char *english) {
    return QString::fromUtf8(tramline::tr(english));
}
inline QString qstr(const std::string &text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}
inline std::string sstr(const QString &text) {
    return text.toStdString();
}
inline std::filesystem::path spath(const QString &text) {
    return std::filesystem::path(text.toStdString());
}
inline QString qpath(const std::filesystem::path &path) {
    return QString::fromStdString(path.string());
}

/// The product name, used in titles and message boxes.
inline constexpr const char *kProductName = trNoop("Halvren Tramline");

} // namespace tramline::app

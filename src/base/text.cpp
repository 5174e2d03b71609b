#include "base/text.h"

#include <algorithm>

namespace tramline {

std::string_view trimLeft(std::string_view text) {
    std::size_t first = 0;
    while (first < text.size() && isBlank(text[first]))
        ++first;
    return text.substr(first);
}

std::string_view trimRight(std::string_view text) {
    std::size_t last = text.size();
    while (last > 0 && isBlank(text[last - 1]))
        --last;
    return text.substr(0, last);
}

std::string_view trim(std::string_view text) {
    return trimRight(trimLeft(text));
}

std::string toLower(std::string_view text) {
    std::string out(text);
    for (char &c : out)
        c = toLowerAscii(c);
    return out;
}

std::string toUpper(std::string_view text) {
    std::string out(text);
    for (char &c : out)
        c = toUpperAscii(c);
    return out;
}

bool equalsIgnoreCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (toLowerAscii(a[i]) != toLowerAscii(b[i]))
            return false;
    return true;
}

bool startsWithIgnoreCase(std::string_view text, std::string_view prefix) {
    return text.size() >= prefix.size() && equalsIgnoreCase(text.substr(0, prefix.size()), prefix);
}

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> out;
    splitAtMost(text, separator, text.size() + 1, out);
    return out;
}

void splitAtMost(std::string_view text, char separator, std::size_t maxFields,
                 std::vector<std::string_view> &out) {
    out.clear();
    if (maxFields == 0)
        return;
    while (out.size() + 1 < maxFields) {
        const std::size_t at = text.find(separator);
        if (at == std::string_view::npos)
            break;
        out.push_back(text.substr(0, at));
        text.remove_prefix(at + 1);
    }
    out.push_back(text);
}

std::string replaceAll(std::string_view text, std::string_view what, std::string_view with,
                       long &count) {
    count = 0;
    if (what.empty())
        return std::string(text);
    std::string out;
    std::size_t from = 0;
    for (std::size_t at; (at = text.find(what, from)) != std::string_view::npos;
         from = at + what.size()) {
        out.append(text.substr(from, at - from)).append(with);
        ++count;
    }
    out.append(text.substr(from));
    return out;
}

bool splitKeyValue(std::string_view text, char separator, std::string_view &key,
                   std::string_view &value) {
    const std::size_t at = text.find(separator);
    if (at == std::string_view::npos)
        return false;
    key = trim(text.substr(0, at));
    value = trim(text.substr(at + 1));
    return true;
}

std::string_view cutAtCharacter(std::string_view text, std::size_t maxBytes) {
    if (text.size() <= maxBytes)
        return text;
    std::size_t end = maxBytes;
    // Back off over continuation bytes (10xxxxxx) to the start of their character.
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;
    return text.substr(0, end);
}

namespace {

bool needsXmlEscape(char c) {
    const auto u = static_cast<unsigned char>(c);
    return c == '&' || c == '<' || c == '>' || c == '\'' || c == '"' ||
           (u < 0x20 && c != '\t' && c != '\n');
}

} // namespace

void appendXmlEscaped(std::string &out, std::string_view text) {
    if (std::none_of(text.begin(), text.end(), needsXmlEscape)) {
        out += text;
        return;
    }
    for (const char c : text) {
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '\'':
            out += "&apos;";
            break;
        case '"':
            out += "&quot;";
            break;
        default:
            if (!needsXmlEscape(c))
                out += c;
        }
    }
}

std::string xmlEscaped(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    appendXmlEscaped(out, text);
    return out;
}

} // namespace tramline

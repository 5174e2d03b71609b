#include "convert/gsi_reader.h"

namespace tramline::convert::gsi {

namespace {

constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

} // namespace

bool isGsi16(std::string_view line) {
    return !line.empty() && line.front() == '*';
}

bool wordStartsAt(std::string_view line, std::size_t pos) {
    if (pos + 7 > line.size() || !isDigit(line[pos]) || !isDigit(line[pos + 1]))
        return false;
    for (std::size_t k = pos + 2; k < pos + 6; ++k)
        if (line[k] == ' ' || line[k] == '\t')
            return false;
    return line[pos + 6] == '+' || line[pos + 6] == '-';
}

bool readWords(std::string_view line, std::vector<Word> &words) {
    words.clear();
    const std::size_t width = isGsi16(line) ? 16 : 8;
    std::size_t pos = isGsi16(line) ? 1 : 0;
    for (;;) {
        while (pos < line.size() && line[pos] == ' ')
            ++pos;
        if (!wordStartsAt(line, pos))
            break;
        Word word;
        word.index = (line[pos] - '0') * 10 + (line[pos + 1] - '0');
        word.info = line.substr(pos + 2, 4);
        word.sign = line[pos + 6];
        const std::size_t begin = pos + 7;
        // The data ends at a blank that is followed by the next word, or at
        // the first blank past the data width (remarks may hold blanks).
        std::size_t end = begin;
        while (end < line.size() &&
               !(line[end] == ' ' && (end >= begin + width || wordStartsAt(line, end + 1))))
            ++end;
        word.data = line.substr(begin, end - begin);
        while (!word.data.empty() && word.data.back() == ' ')
            word.data.remove_suffix(1);
        words.push_back(word);
        pos = end;
    }
    return !words.empty();
}

const Word *findWord(const std::vector<Word> &words, int index) {
    for (const auto &word : words)
        if (word.index == index)
            return &word;
    return nullptr;
}

} // namespace tramline::convert::gsi

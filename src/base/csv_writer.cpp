#include "base/csv_writer.h"

namespace tramline {

void appendCsvField(std::string &out, std::string_view field) {
    if (field.find_first_of(",\"\r\n") == std::string_view::npos) {
        out += field;
        return;
    }
    out += '"';
    for (const char c : field) {
        if (c == '"')
            out += '"';
        out += c;
    }
    out += '"';
}

CsvWriter &CsvWriter::field(std::string_view text) {
    if (!m_first)
        m_record += ',';
    m_first = false;
    appendCsvField(m_record, text);
    return *this;
}

void CsvWriter::endRecord() {
    m_record += "\r\n";
    m_out << m_record;
    m_record.clear();
    m_first = true;
}

} // namespace tramline

// Comma-separated values as RFC 4180 has them: a field holding a comma, a
// quote or a line break is quoted, with its quotes doubled; records end
// with CR LF. Spreadsheets and GIS tools read such files back unchanged.
#pragma once

#include <ostream>
#include <string>
#include <string_view>

namespace tramline {

/// Appends `field` to `out`, quoted when it has to be.
void appendCsvField(std::string &out, std::string_view field);

/// Writes one record at a time to a stream.
class CsvWriter {
public:
    explicit CsvWriter(std::ostream &out) : m_out(out) {}

    /// Adds a field to the current record (an empty text for an unset value).
    CsvWriter &field(std::string_view text);
    /// Ends the current record.
    void endRecord();

private:
    std::ostream &m_out;
    std::string m_record;
    bool m_first = true;
};

} // namespace tramline

// The text of a JobXML document, element by element: the root, record
// headers with their hexadecimal IDs, text elements with escaping, and
// numbers in the formats the elements take.
#pragma once

#include <string>
#include <string_view>

namespace tramline::convert {

/// Text for XML: & < > ' " as entities, control characters dropped.
std::string jxlEscaped(std::string_view text);

/// "%Y-%m-%dT%H:%M:%S" of `time` (seconds since the epoch, local time).
std::string jxlTimeStamp(long long time);

class JxlWriter {
public:
    explicit JxlWriter(std::string timeStamp) : m_stamp(std::move(timeStamp)) {}

    /// The XML declaration and "<JOBFile jobName=... TimeStamp=...>".
    void begin(std::string_view jobName);
    /// "</JOBFile>\n".
    void end() { m_out += "</JOBFile>\n"; }

    /// `<Record ID="%08x" TimeStamp="...">` and a new ID, returned; with
    /// `empty` the record is closed at once ("/>").
    unsigned record(const char *element, bool empty = false);
    void open(const char *element);
    void close(const char *element);

    /// <name>escaped text</name>, or <name/> when empty.
    void text(const char *name, std::string_view value);
    /// <name>value</name>, the value written as it stands.
    void raw(const char *name, std::string_view value);
    /// <name>%.*f</name>.
    void number(const char *name, double value, int decimals);
    /// <name>%08x</name>: a record ID.
    void id(const char *name, unsigned value);
    /// <name/>.
    void empty(const char *name);

    unsigned lastId() const { return m_id; }
    std::string &bytes() { return m_out; }

private:
    std::string m_stamp;
    std::string m_out;
    unsigned m_id = 0;
};

} // namespace tramline::convert

// The text of a JobXML document, element by element: the root, record
// headers with their hexadecimal IDs, text elements with escaping, and
// numbers in the formats the elements take.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace tramline::convert {

/// One element of a run that never changes (the fixed parts of a record or
/// of the environment), for JxlWriter::fixed().
struct JxlField {
    enum Kind { Open, Close, Value, Empty };
    Kind kind;
    const char *name;
    const char *value = nullptr; ///< Value only: written as it stands
};

namespace jxl {
constexpr JxlField open(const char *name) {
    return {JxlField::Open, name};
}
constexpr JxlField close(const char *name) {
    return {JxlField::Close, name};
}
constexpr JxlField value(const char *name, const char *text) {
    return {JxlField::Value, name, text};
}
constexpr JxlField empty(const char *name) {
    return {JxlField::Empty, name};
}
} // namespace jxl

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
    /// <name>%.*f</name>, or <name/> when the value is not `present`.
    void numberIf(bool present, const char *name, double value, int decimals);
    /// <name>%08x</name>: a record ID.
    void id(const char *name, unsigned value);
    /// As id(), or <name/> for 0: no record of that kind written yet.
    void idOrEmpty(const char *name, unsigned value);
    /// <name/>.
    void empty(const char *name);
    /// Each field in order: <name>, </name>, <name>value</name> or <name/>.
    void fixed(std::span<const JxlField> fields);

    unsigned lastId() const { return m_id; }
    std::string &bytes() { return m_out; }

private:
    // <name>value</name> on a line of its own; `append` writes the value.
    template <class Append> void element(const char *name, Append append) {
        m_out += '<';
        m_out += name;
        m_out += '>';
        append();
        m_out += "</";
        m_out += name;
        m_out += ">\n";
    }

    std::string m_stamp;
    std::string m_out;
    unsigned m_id = 0;
};

} // namespace tramline::convert

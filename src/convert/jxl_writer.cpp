#include "convert/jxl_writer.h"

#include "base/format.h"
#include "base/text.h"

#include <algorithm>
#include <ctime>

namespace tramline::convert {

namespace {

// Eight lower-case hexadecimal digits, as record IDs are written.
void appendHexId(std::string &out, unsigned value) {
    char digits[8];
    for (int i = 7; i >= 0; --i, value >>= 4)
        digits[i] = "0123456789abcdef"[value & 0xf];
    out.append(digits, 8);
}

} // namespace

std::string jxlTimeStamp(long long time) {
    const std::time_t t = std::time_t(time);
    std::tm parts{};
    localtime_r(&t, &parts);
    char buffer[32];
    std::strftime(buffer, sizeof buffer, "%Y-%m-%dT%H:%M:%S", &parts);
    return buffer;
}

void JxlWriter::begin(std::string_view jobName) {
    m_out += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    m_out += "<JOBFile jobName=\"";
    appendXmlEscaped(m_out, jobName);
    m_out += "\" TimeStamp=\"";
    m_out += m_stamp;
    m_out += "\">\n";
}

unsigned JxlWriter::record(const char *element, bool empty) {
    ++m_id;
    m_out += '<';
    m_out += element;
    m_out += " ID=\"";
    appendHexId(m_out, m_id);
    m_out += "\" TimeStamp=\"";
    m_out += m_stamp;
    m_out += empty ? "\"/>\n" : "\">\n";
    return m_id;
}

void JxlWriter::open(const char *element) {
    m_out += '<';
    m_out += element;
    m_out += ">\n";
}

void JxlWriter::close(const char *element) {
    m_out += "</";
    m_out += element;
    m_out += ">\n";
}

void JxlWriter::text(const char *name, std::string_view value) {
    if (value.empty())
        return empty(name);
    element(name, [&] { appendXmlEscaped(m_out, value); });
}

void JxlWriter::raw(const char *name, std::string_view value) {
    element(name, [&] { m_out += value; });
}

void JxlWriter::number(const char *name, double value, int decimals) {
    element(name, [&] { appendFixed(m_out, value, decimals); });
}

void JxlWriter::numberIf(bool present, const char *name, double value, int decimals) {
    if (present)
        number(name, value, decimals);
    else
        empty(name);
}

void JxlWriter::idOrEmpty(const char *name, unsigned value) {
    if (value != 0)
        id(name, value);
    else
        empty(name);
}

void JxlWriter::id(const char *name, unsigned value) {
    element(name, [&] { appendHexId(m_out, value); });
}

void JxlWriter::empty(const char *name) {
    m_out += '<';
    m_out += name;
    m_out += "/>\n";
}

void JxlWriter::fixed(std::span<const JxlField> fields) {
    for (const JxlField &field : fields) {
        switch (field.kind) {
        case JxlField::Open:
            open(field.name);
            break;
        case JxlField::Close:
            close(field.name);
            break;
        case JxlField::Value:
            raw(field.name, field.value);
            break;
        case JxlField::Empty:
            empty(field.name);
            break;
        }
    }
}

} // namespace tramline::convert

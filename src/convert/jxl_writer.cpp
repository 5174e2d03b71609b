#include "convert/jxl_writer.h"

#include "base/format.h"
#include "base/text.h"

#include <ctime>

namespace tramline::convert {

std::string jxlEscaped(std::string_view text) {
    const std::string escaped = xmlEscaped(text);
    if (escaped.find('\'') == std::string::npos)
        return escaped;
    std::string out;
    out.reserve(escaped.size() + 8);
    for (char c : escaped) {
        if (c == '\'')
            out += "&apos;";
        else
            out += c;
    }
    return out;
}

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
    m_out += jxlEscaped(jobName);
    m_out += "\" TimeStamp=\"";
    m_out += m_stamp;
    m_out += "\">\n";
}

unsigned JxlWriter::record(const char *element, bool empty) {
    ++m_id;
    appendFormat(m_out, "<%s ID=\"%08x\" TimeStamp=\"%s\"%s\n", element, m_id, m_stamp.c_str(),
                 empty ? "/>" : ">");
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
    raw(name, jxlEscaped(value));
}

void JxlWriter::raw(const char *name, std::string_view value) {
    m_out += '<';
    m_out += name;
    m_out += '>';
    m_out += value;
    m_out += "</";
    m_out += name;
    m_out += ">\n";
}

void JxlWriter::number(const char *name, double value, int decimals) {
    appendFormat(m_out, "<%s>%.*f</%s>\n", name, decimals, value, name);
}

void JxlWriter::id(const char *name, unsigned value) {
    appendFormat(m_out, "<%s>%08x</%s>\n", name, value, name);
}

void JxlWriter::empty(const char *name) {
    m_out += '<';
    m_out += name;
    m_out += "/>\n";
}

} // namespace tramline::convert

#include "cli/ipc_progress.h"

#include <cstdlib>
#include <cstring>

namespace tramline::cli {

bool ipcRequestedByEnvironment() {
    const char *value = std::getenv("TRAMLINE_IPC");
    return value && std::strcmp(value, "1") == 0;
}

void IpcProgress::progress(long position, long length, const std::string &caption) {
    ForwardingInteraction::progress(position, length, caption);
    if (length != m_length || caption != m_caption) {
        m_length = length;
        m_caption = caption;
        m_position = -1;
        m_out << "$IPC: SETLEN " << length << " SETTXT " << caption << '\n';
    }
    if (position != m_position) {
        m_position = position;
        m_out << "$IPC: SETPOS " << position << '\n';
    }
    m_out.flush();
}

void IpcProgress::finish(long code) {
    m_out << "$IPC: RETCDE " << code << '\n';
    m_out.flush();
}

} // namespace tramline::cli

#include "reduce/temporary_files.h"

#include "base/format.h"
#include "base/translation.h"

namespace tramline::reduce {

bool TemporaryFiles::open(std::string &error) {
    if (m_folder.empty())
        return true;
    std::error_code ec;
    std::filesystem::create_directories(m_folder, ec);
    const auto path = m_folder / "warnings.tmp";
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (!out) {
        error = format(tr("Can't open output file %s"), path.string().c_str());
        m_ui.message(error);
        return false;
    }
    return true;
}

std::string TemporaryFiles::through(const char *name, std::string text) {
    if (m_folder.empty())
        return text;
    const auto path = m_folder / name;
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (!out.write(text.data(), static_cast<std::streamsize>(text.size())) || !out.flush())
        m_ui.message(format(tr("Can't open output file %s"), path.string().c_str()));
    return text;
}

bool TemporaryFiles::stream(const char *name, std::ofstream &out) const {
    if (m_folder.empty())
        return false;
    out.open(m_folder / name, std::ios::binary | std::ios::trunc);
    return out.is_open();
}

} // namespace tramline::reduce

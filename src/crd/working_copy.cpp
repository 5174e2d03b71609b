#include "crd/working_copy.h"

#include "base/atomic_save.h"
#include "base/format.h"
#include "base/interaction.h"
#include "base/translation.h"
#include "crd/byte_store.h"
#include "crd/file_kinds.h"
#include "crd/history_file.h"
#include "crd/notes_file.h"

namespace tramline::crd {

namespace {

Status cannotWrite(const std::filesystem::path &path) {
    return Status::failure(StatusCode::Io,
                           format(tr("\nCan't open new file %s"), path.string().c_str()));
}

// The side files that travel with a coordinate file.
std::filesystem::path (*const kSideFiles[])(const std::filesystem::path &) = {notesPathFor,
                                                                              historyPathFor};

// Makes `to`'s side file a copy of `from`'s, or removes it when `from` has
// none: a side file describes points of its own file only.
bool mirrorSideFile(const std::filesystem::path &from, const std::filesystem::path &to) {
    std::error_code ec;
    if (std::filesystem::exists(from, ec))
        return copyAtomically(from, to);
    std::filesystem::remove(to, ec);
    return !ec;
}

void removeWithSideFiles(const std::filesystem::path &path) {
    std::error_code ec;
    std::filesystem::remove(path, ec);
    for (auto side : kSideFiles)
        std::filesystem::remove(side(path), ec);
}

} // namespace

Status WorkingCopy::create(const std::filesystem::path &path) {
    m_file.close();
    m_path = path;
    m_userFile.clear();
    removeWithSideFiles(m_path);
    m_file.setHistoryKeeping(false);
    if (!m_file.open(m_path, Create::Always))
        return Status::failure(StatusCode::Io, errorText(m_file.lastError()));
    return Status::success();
}

Status WorkingCopy::open(const std::filesystem::path &userFile) {
    {
        SilentInteraction lines;
        CrdContext context;
        context.messages = &lines;
        CoordinateFile probe(context);
        if (!probe.openForReading(userFile)) {
            std::string text;
            for (const auto &line : lines.messages)
                text += line;
            return Status::failure(StatusCode::NotFound,
                                   text.empty() ? errorText(probe.lastError()) : text);
        }
    }
    m_file.close();
    bool copied = copyAtomically(userFile, m_path);
    for (auto side : kSideFiles)
        copied = copied && mirrorSideFile(side(userFile), side(m_path));
    if (!copied || !m_file.open(m_path)) {
        Status failure = cannotWrite(m_path);
        create(m_path);
        return failure;
    }
    std::error_code ec;
    m_file.setHistoryKeeping(std::filesystem::exists(m_file.historyPath(), ec));
    m_userFile = userFile;
    return Status::success();
}

Status WorkingCopy::save() {
    if (m_userFile.empty())
        return Status::failure(StatusCode::NotFound, errorText(kNotOpen));
    return copyOut(m_userFile);
}

Status WorkingCopy::saveAs(const std::filesystem::path &target) {
    if (!isHandledFormat(formatFromExtension(target, m_file.defaultFormat())))
        return Status::failure(StatusCode::NotSupported, errorText(kFileTypeNotSupported));
    Status status = copyOut(target);
    if (status)
        m_userFile = target;
    return status;
}

Status WorkingCopy::copyOut(const std::filesystem::path &target) {
    std::error_code ec;
    if (std::filesystem::equivalent(target, m_path, ec))
        return cannotWrite(target);
    // Another program writing the file would lose its changes, or ours.
    if (FileStore::probeForUpdate(target) == FileOpenResult::Locked)
        return Status::failure(StatusCode::Io, errorText(kCannotOpen));
    if (!m_file.flush() || !copyAtomically(m_path, target))
        return cannotWrite(target);
    // The points first: a side file that fails after them is reported, and
    // the user's file is whole either way.
    for (auto side : kSideFiles)
        if (!mirrorSideFile(side(m_path), side(target)))
            return cannotWrite(side(target));
    return Status::success();
}

} // namespace tramline::crd

#include "jet/disk/set_aside.h"

#include "jet/disk/file_content.h"
#include "jet/disk/journal.h"
#include "jet/disk/pager.h"
#include "jet/disk/unfinished_file.h"

namespace jet {

namespace {

void copyJournal(FileSystem& fileSystem, const std::string& from, const std::string& to)
{
    const std::unique_ptr<File> journal = fileSystem.open(from, OpenMode::ReadOnly);
    const std::unique_ptr<File> copy = fileSystem.createLike(to, from);
    copyContent(*journal, *copy);
    if (!haveSameContent(*journal, *copy)) {
        throw Error(ErrorCode::Io, "The copy at " + to + " does not read as what was written");
    }
    fileSystem.syncFolderOf(to);
}

} // namespace

bool isFreePath(FileSystem& fileSystem, const std::string& path)
{
    return !fileSystem.exists(path) && !Journal(fileSystem, path).isThere();
}

void setAside(FileSystem& fileSystem, const std::string& path, const std::string& aside)
{
    requireFreePath(fileSystem, aside);
    const Journal journal(fileSystem, path);
    const Journal journalAside(fileSystem, aside);
    if (!fileSystem.exists(path)) {
        if (journal.isThere()) {
            fileSystem.rename(journal.path(), journalAside.path());
            fileSystem.syncFolderOf(path);
        }
        return;
    }
    const std::unique_ptr<File> file = fileSystem.open(path, OpenMode::ReadWrite);
    file->lock(LockLevel::Exclusive, Pager::kPatience);
    if (!file->isInPlace()) {
        throw Error(ErrorCode::Replaced, "The file " + path + " was moved or replaced by another program just now");
    }
    // The journal is at the new name before the file is, and leaves the old one after it.
    const bool hasJournal = journal.isThere();
    if (hasJournal) {
        copyJournal(fileSystem, journal.path(), journalAside.path());
    }
    fileSystem.rename(path, aside);
    fileSystem.syncFolderOf(path);
    if (hasJournal) {
        fileSystem.remove(journal.path());
        fileSystem.syncFolderOf(path);
    }
}

} // namespace jet

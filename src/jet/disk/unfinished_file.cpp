#include "jet/disk/unfinished_file.h"

#include "jet/disk/file_content.h"
#include "jet/disk/journal.h"
#include "jet/disk/pager.h"

namespace jet {

void requireFreePath(FileSystem& fileSystem, const std::string& path)
{
    if (fileSystem.exists(path)) {
        throw Error(ErrorCode::FileExists, "There is a file already at " + path);
    }
    if (const Journal journal(fileSystem, path); journal.isThere()) {
        throw Error(ErrorCode::JournalDamaged,
                    "There is a journal at " + journal.path() + " of a file that is not there any more");
    }
}

void renameDurably(FileSystem& fileSystem, const std::string& from, const std::string& to)
{
    fileSystem.rename(from, to);
    try {
        fileSystem.syncFolderOf(to);
    } catch (const Error& error) {
        throw Error(ErrorCode::Io,
                    "The file " + to + " is in place, but may not outlast a loss of power: " + error.what());
    }
}

UnfinishedFile::UnfinishedFile(FileSystem& fileSystem, std::string finalPath)
    : fileSystem_(&fileSystem), finalPath_(std::move(finalPath)), path_(finalPath_ + "-unfinished")
{
    removeLeftovers();
}

UnfinishedFile::~UnfinishedFile()
{
    if (finished_) {
        return;
    }
    try {
        if (copy_ == nullptr || copy_->isInPlace()) {
            copy_.reset();
            removeLeftovers();
        }
    } catch (...) {
        return; // the next attempt removes what is left
    }
}

void UnfinishedFile::create(const std::string& model)
{
    static_cast<void>(fileSystem_->createLike(path_, model));
}

void UnfinishedFile::copyFrom(File& file, const std::string& model)
{
    copy_ = fileSystem_->createLike(path_, fileSystem_->exists(finalPath_) ? finalPath_ : model);
    copy_->lock(LockLevel::Exclusive, Pager::kPatience);
    copyContent(file, *copy_);
    const std::unique_ptr<File> found = fileSystem_->open(path_, OpenMode::ReadOnly);
    if (!copy_->isInPlace() || !haveSameContent(file, *found)) {
        throw Error(ErrorCode::Io, "The copy at " + path_ + " does not read as what was written");
    }
}

void UnfinishedFile::finish()
{
    requireFreePath(*fileSystem_, finalPath_);
    if (copy_ != nullptr && !copy_->isInPlace()) {
        throw Error(ErrorCode::Io, "The file " + path_ + " was moved or removed before it was finished");
    }
    renameDurably(*fileSystem_, path_, finalPath_);
    finished_ = true;
}

void UnfinishedFile::removeLeftovers()
{
    const Journal journal(*fileSystem_, path_);
    if (fileSystem_->exists(path_)) {
        const std::unique_ptr<File> leftover = fileSystem_->open(path_, OpenMode::ReadOnly);
        leftover->lock(LockLevel::Shared, Pager::kPatience);
        if (leftover->isInPlace()) { // else it has just been finished
            fileSystem_->remove(path_);
        }
    }
    for (const std::string& leftover : {journal.path(), journal.unfinishedPath()}) {
        if (fileSystem_->exists(leftover)) {
            fileSystem_->remove(leftover);
        }
    }
}

} // namespace jet

// Files that appear under their name when they are whole.
//
// Such a file is written under its name with "-unfinished" behind it and renamed when it is durable. What stands under
// the second name is the remains of an attempt that was cut short; nothing depends on it, and the next attempt removes
// it.
#pragma once

#include "jet/disk/file.h"

#include <string>

namespace jet {

/// Throws FileExists where there is a file at the path, and JournalDamaged where there is a journal of one: whoever
/// opened a new file there would take it for the new file's.
void requireFreePath(FileSystem& fileSystem, const std::string& path);

/// Gives a file another name, over what has that name, durably. Where only the durability fails, the error is Io, and
/// its message says that the file is in place.
void renameDurably(FileSystem& fileSystem, const std::string& from, const std::string& to);

class UnfinishedFile
{
public:
    /// Removes what an earlier attempt left; throws Locked where that is a copy still being
    /// made.
    UnfinishedFile(FileSystem& fileSystem, std::string finalPath);
    UnfinishedFile(const UnfinishedFile&) = delete;
    UnfinishedFile& operator=(const UnfinishedFile&) = delete;
    /// Removes the file when it still has this name.
    ~UnfinishedFile();

    /// Where to write the file.
    [[nodiscard]] const std::string& path() const { return path_; }
    /// Makes it an empty file that whoever may use the model may use as well.
    void create(const std::string& model);
    /// Makes it a copy of the file, byte for byte, durable and read back. Whoever may use the file that has its name
    /// now may use it as well, or where there is none, whoever may use the model. The caller holds a lock on the file
    /// that keeps it as it is.
    void copyFrom(File& file, const std::string& model);
    /// Gives the file its name, durably. Throws what requireFreePath does: nothing is ever overwritten.
    void finish();

private:
    void removeLeftovers();

    FileSystem* fileSystem_;
    std::string finalPath_;
    std::string path_;
    std::unique_ptr<File> copy_; ///< held for as long as this lives, so that no other attempt takes it for remains
    bool finished_ = false;
};

} // namespace jet

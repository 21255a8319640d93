// Files in memory, with the lock rules of real ones between whoever opens them: for tests, and for tools that work on a
// file without touching it.
#pragma once

#include "jet/disk/file.h"

#include <map>
#include <memory>
#include <string>

namespace jet {

/// May be used from several threads. Open files stay good when the file is removed or the file system is gone.
class MemoryFileSystem final : public FileSystem
{
public:
    MemoryFileSystem();
    ~MemoryFileSystem() override;

    [[nodiscard]] std::unique_ptr<File> open(const std::string& path, OpenMode mode) override;
    [[nodiscard]] std::unique_ptr<File> createLike(const std::string& path, const std::string& model) override;
    [[nodiscard]] std::string resolve(const std::string& path) override;
    [[nodiscard]] bool exists(const std::string& path) override;
    void remove(const std::string& path) override;
    void rename(const std::string& from, const std::string& to) override;
    void syncFolderOf(const std::string& path) override;

    /// The whole content of a file; throws FileNotFound.
    [[nodiscard]] Bytes content(const std::string& path) const;
    /// Makes or replaces a file's content, as another program would that does not ask for locks.
    void setContent(const std::string& path, Bytes content);
    /// Opening the file with ReadWrite throws ReadOnly from now on.
    void setReadOnly(const std::string& path, bool readOnly = true);
    [[nodiscard]] std::map<std::string, Bytes> files() const;

private:
    class Folder;
    class OpenFile;
    std::shared_ptr<Folder> folder_;
};

} // namespace jet

// A file system that sees to it that the rules of the journal are kept by whoever changes one file.
//
//   - No byte of the file that is not past its old end is overwritten, and the file is not cut, unless a journal of the
//     right name holds the page as it was, and both the journal and its name were synced before.
//   - The journal does not go before the file is synced.
//   - Each change goes to whole pages and happens under the exclusive lock.
//
// A breach is a failure of the running test. The referee reads the journal by its documented layout.
#pragma once

#include "jet/support/forwarding_file_system.h"

#include <memory>
#include <string>

namespace jet::test {

class JournalRefereeFileSystem final : public ForwardingFileSystem
{
public:
    JournalRefereeFileSystem(FileSystem& inner, std::string databasePath);
    ~JournalRefereeFileSystem() override;

    [[nodiscard]] std::unique_ptr<File> open(const std::string& path, OpenMode mode) override;
    [[nodiscard]] std::unique_ptr<File> createLike(const std::string& path, const std::string& model) override;
    void remove(const std::string& path) override;
    void rename(const std::string& from, const std::string& to) override;
    void syncFolderOf(const std::string& path) override;

    /// How many changes of the file were looked at.
    [[nodiscard]] std::size_t watchedChanges() const;

private:
    class State;
    class OpenFile;
    std::unique_ptr<File> watched(const std::string& path, std::unique_ptr<File> file);
    std::shared_ptr<State> state_;
};

} // namespace jet::test

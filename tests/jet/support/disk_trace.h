// What programs did to a disk, call by call.
#pragma once

#include "jet/disk/memory_file.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace jet::test {

/// All files of the one folder that there is, by path.
using Files = std::map<std::string, Bytes>;

/// A file whatever its name is. Files that are there at the start are numbered from 0 in the order of their paths, new
/// ones onwards.
using FileNumber = std::size_t;

struct Created {
    FileNumber file = 0;
    std::string path;
};
struct Written {
    FileNumber file = 0;
    std::uint64_t offset = 0;
    Bytes bytes;
};
struct Resized {
    FileNumber file = 0;
    std::uint64_t size = 0;
};
struct Synced {
    FileNumber file = 0;
};
struct Renamed {
    std::string from;
    std::string to;
};
struct Removed {
    std::string path;
};
struct FolderSynced {
};
/// A connection let go of its exclusive lock: from now on other programs read what it wrote.
struct Released {
};

using Event = std::variant<Created, Written, Resized, Synced, Renamed, Removed, FolderSynced, Released>;

/// For messages: "write of 4096 bytes at 0".
[[nodiscard]] std::string describe(const Event& event);

/// A disk in memory that keeps a record of all that changes it.
class RecordingFileSystem final : public FileSystem
{
public:
    explicit RecordingFileSystem(Files files);
    ~RecordingFileSystem() override;

    /// The files at the start.
    [[nodiscard]] const Files& start() const;
    [[nodiscard]] const std::vector<Event>& events() const;
    /// The files as running programs see them.
    [[nodiscard]] Files files() const;

    [[nodiscard]] std::unique_ptr<File> open(const std::string& path, OpenMode mode) override;
    [[nodiscard]] std::unique_ptr<File> createLike(const std::string& path, const std::string& model) override;
    [[nodiscard]] std::string resolve(const std::string& path) override;
    [[nodiscard]] bool exists(const std::string& path) override;
    void remove(const std::string& path) override;
    void rename(const std::string& from, const std::string& to) override;
    void syncFolderOf(const std::string& path) override;

private:
    class OpenFile;
    struct Record;
    std::shared_ptr<Record> record_;
};

} // namespace jet::test

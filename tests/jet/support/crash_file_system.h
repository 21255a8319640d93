// A file system in memory on which the power can fail.
//
// Whatever a program writes is seen by it at once, but is on the disk only after a sync: writes and sizes after the
// sync of the file, names (creations, removals, renames) after the sync of the folder. At the chosen operation the
// power fails: it and every later call throws. afterCrash() then says what is on the disk. Each unsynced write is
// there, is not, or is torn; each unsynced name is there or is not; in any combination, whatever their order was.
//
//     forEachCrash({.prepare = [](FileSystem& disk) { makeDiary(disk); },
//                   .body = [](FileSystem& disk) { addReading(disk); },
//                   .recover = [](FileSystem& disk) { openDiary(disk); },
//                   .check = [](FileSystem& disk, bool finished) { expectOldOrNew(disk, finished); }});
#pragma once

#include "jet/disk/memory_file.h"

#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace jet::test {

/// What becomes of the things that were not synced.
struct Survival {
    enum class Fate { None, All, Chance };

    Fate writes = Fate::None;
    Fate names = Fate::None;
    std::uint64_t seed = 0; ///< for Chance

    [[nodiscard]] std::string describe() const;
    /// The four combinations without chance, and as many with it as asked for.
    [[nodiscard]] static std::vector<Survival> several(std::uint64_t seeds);
};

using Files = std::map<std::string, Bytes>;

class CrashFileSystem final : public FileSystem
{
public:
    /// The files, all of them on the disk. All paths count as one folder.
    explicit CrashFileSystem(const Files& files = {});
    ~CrashFileSystem() override;

    [[nodiscard]] std::unique_ptr<File> open(const std::string& path, OpenMode mode) override;
    [[nodiscard]] std::unique_ptr<File> createLike(const std::string& path, const std::string& model) override;
    [[nodiscard]] std::string resolve(const std::string& path) override;
    [[nodiscard]] bool exists(const std::string& path) override;
    void remove(const std::string& path) override;
    void rename(const std::string& from, const std::string& to) override;
    void syncFolderOf(const std::string& path) override;

    /// The power fails in the operation of that number, counted from 0. Operations are creations, writes, truncations,
    /// syncs, removals and renames; reading does not count.
    void failPowerAt(std::size_t operation);
    [[nodiscard]] std::size_t operations() const;
    [[nodiscard]] bool powerFailed() const;

    /// As running programs see them.
    [[nodiscard]] Files files() const;
    [[nodiscard]] Files afterCrash(const Survival& survival) const;

private:
    class State;
    class OpenFile;
    std::shared_ptr<State> state_;
};

struct CrashTest {
    /// Makes the state before; all of it is on the disk when it returns.
    std::function<void(FileSystem&)> prepare;
    /// What the power fails in.
    std::function<void(FileSystem&)> body;
    /// What a program does first after the crash. Optional; when given, the power fails at each operation of it as
    /// well.
    std::function<void(FileSystem&)> recover = {};
    /// Looks at what survived; `finished` tells that the body had returned without an error.
    std::function<void(FileSystem&, bool finished)> check;
    std::uint64_t seeds = 6;         ///< runs with chance for each operation of the body
    std::uint64_t recoverySeeds = 2; ///< and for each operation of the recovery
};

/// Lets the power fail at every operation of the body, and once after it, with each kind of survival. Gives the number
/// of checked states.
std::size_t forEachCrash(const CrashTest& test);

} // namespace jet::test

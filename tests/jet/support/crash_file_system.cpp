#include "jet/support/crash_file_system.h"

#include "jet/disk/journal.h"
#include "jet/support/forwarding_file_system.h"

#include <gtest/gtest.h>
#include <random>
#include <set>

namespace jet::test {

namespace {

/// A write, or a truncation where there are no bytes.
struct Change {
    std::uint64_t offset = 0;
    std::optional<Bytes> bytes;
};

struct Inode {
    Bytes durable;
    std::vector<Change> unsynced;
};

using Names = std::map<std::string, std::shared_ptr<Inode>>;

void applyBytes(Bytes& content, std::uint64_t offset, ByteView bytes)
{
    const std::size_t start = static_cast<std::size_t>(offset);
    if (content.size() < start + bytes.size()) {
        content.resize(start + bytes.size());
    }
    putBytes(content, start, bytes);
}

void apply(Bytes& content, const Change& change)
{
    if (change.bytes) {
        applyBytes(content, change.offset, *change.bytes);
    } else {
        content.resize(static_cast<std::size_t>(change.offset));
    }
}

/// Calls back with each part of the write between multiples of the unit.
template <typename Visit>
void splitAt(std::size_t unit, std::uint64_t offset, ByteView bytes, Visit visit)
{
    while (!bytes.empty()) {
        const std::size_t length = std::min<std::size_t>(bytes.size(), unit - static_cast<std::size_t>(offset % unit));
        visit(offset, bytes.first(length));
        offset += length;
        bytes = bytes.subspan(length);
    }
}

class Chance
{
public:
    explicit Chance(std::uint64_t seed) : random_(seed) {}
    std::uint64_t below(std::uint64_t limit) { return random_() % limit; }
    bool coin() { return below(2) == 0; }

private:
    std::mt19937_64 random_;
};

void applyByChance(Bytes& content, const Change& change, Chance& chance)
{
    if (!change.bytes) {
        if (chance.coin()) {
            apply(content, change);
        }
        return;
    }
    splitAt(kPageSize, change.offset, *change.bytes, [&](std::uint64_t offset, ByteView page) {
        switch (chance.below(3)) {
        case 0:
            break;
        case 1:
            applyBytes(content, offset, page);
            break;
        default:
            splitAt(kSectorSize, offset, page, [&](std::uint64_t at, ByteView sector) {
                if (chance.coin()) {
                    applyBytes(content, at, sector);
                }
            });
        }
    });
}

Bytes survivingContent(const Inode& inode, Survival::Fate fate, Chance& chance)
{
    Bytes content = inode.durable;
    if (fate == Survival::Fate::None) {
        return content;
    }
    for (const Change& change : inode.unsynced) {
        if (fate == Survival::Fate::All) {
            apply(content, change);
        } else {
            applyByChance(content, change, chance);
        }
    }
    return content;
}

} // namespace

std::string Survival::describe() const
{
    const auto word = [](Fate fate) { return fate == Fate::None ? "none" : fate == Fate::All ? "all" : "some"; };
    return std::string("unsynced writes: ") + word(writes) + ", unsynced names: " + word(names) + ", seed " +
           std::to_string(seed);
}

std::vector<Survival> Survival::several(std::uint64_t seeds)
{
    std::vector<Survival> all;
    for (const Fate writes : {Fate::None, Fate::All}) {
        for (const Fate names : {Fate::None, Fate::All}) {
            all.push_back(Survival{.writes = writes, .names = names});
        }
    }
    for (std::uint64_t seed = 1; seed <= seeds; ++seed) {
        all.push_back(Survival{.writes = Fate::Chance, .names = Fate::Chance, .seed = seed});
    }
    return all;
}

class CrashFileSystem::State
{
public:
    MemoryFileSystem seen; ///< what programs see, and the locks
    Names names;           ///< as programs see them
    Names durableNames;
    std::size_t operations = 0;
    std::size_t failsAt = std::numeric_limits<std::size_t>::max();

    void requirePower() const
    {
        if (operations > failsAt) {
            throw Error(ErrorCode::Io, "The power has failed");
        }
    }

    /// Counts an operation. What it changes counts as begun, so it may be on the disk though it fails.
    template <typename Begin>
    void operate(Begin begin)
    {
        requirePower();
        ++operations;
        begin();
        requirePower();
    }
};

class CrashFileSystem::OpenFile final : public ForwardingFile
{
public:
    OpenFile(std::shared_ptr<State> state, std::shared_ptr<Inode> inode, std::unique_ptr<File> file)
        : ForwardingFile(std::move(file)), state_(std::move(state)), inode_(std::move(inode))
    {
    }

    void readAt(std::uint64_t offset, MutableBytes buffer) override
    {
        state_->requirePower();
        ForwardingFile::readAt(offset, buffer);
    }

    void writeAt(std::uint64_t offset, ByteView bytes) override
    {
        state_->operate([&] {
            ForwardingFile::writeAt(offset, bytes);
            inode_->unsynced.push_back(Change{.offset = offset, .bytes = Bytes(bytes.begin(), bytes.end())});
        });
    }

    std::uint64_t size() override
    {
        state_->requirePower();
        return ForwardingFile::size();
    }

    void truncate(std::uint64_t size) override
    {
        state_->operate([&] {
            ForwardingFile::truncate(size);
            inode_->unsynced.push_back(Change{.offset = size, .bytes = std::nullopt});
        });
    }

    void sync() override
    {
        state_->operate([] {});
        for (const Change& change : std::exchange(inode_->unsynced, {})) {
            apply(inode_->durable, change);
        }
    }

    void lock(LockLevel level, std::chrono::milliseconds patience) override
    {
        state_->requirePower();
        ForwardingFile::lock(level, patience);
    }

    FileStamp stamp() override
    {
        state_->requirePower();
        return ForwardingFile::stamp();
    }

    bool isInPlace() override
    {
        state_->requirePower();
        return ForwardingFile::isInPlace();
    }

private:
    std::shared_ptr<State> state_;
    std::shared_ptr<Inode> inode_;
};

CrashFileSystem::CrashFileSystem(const Files& files) : state_(std::make_shared<State>())
{
    for (const auto& [path, content] : files) {
        state_->seen.setContent(path, content);
        state_->names[path] = std::make_shared<Inode>(Inode{.durable = content, .unsynced = {}});
    }
    state_->durableNames = state_->names;
}

CrashFileSystem::~CrashFileSystem() = default;

std::unique_ptr<File> CrashFileSystem::open(const std::string& path, OpenMode mode)
{
    std::unique_ptr<File> file;
    if (mode == OpenMode::Create) {
        state_->operate([&] {
            file = state_->seen.open(path, mode);
            state_->names[path] = std::make_shared<Inode>();
        });
    } else {
        state_->requirePower();
        file = state_->seen.open(path, mode);
    }
    return std::make_unique<OpenFile>(state_, state_->names.at(path), std::move(file));
}

std::unique_ptr<File> CrashFileSystem::createLike(const std::string& path, const std::string& model)
{
    static_cast<void>(resolve(model));
    return open(path, OpenMode::Create);
}

std::string CrashFileSystem::resolve(const std::string& path)
{
    state_->requirePower();
    return state_->seen.resolve(path);
}

bool CrashFileSystem::exists(const std::string& path)
{
    state_->requirePower();
    return state_->seen.exists(path);
}

void CrashFileSystem::remove(const std::string& path)
{
    state_->operate([&] {
        state_->seen.remove(path);
        state_->names.erase(path);
    });
}

void CrashFileSystem::rename(const std::string& from, const std::string& to)
{
    state_->operate([&] {
        state_->seen.rename(from, to);
        state_->names[to] = state_->names.at(from);
        state_->names.erase(from);
    });
}

void CrashFileSystem::syncFolderOf(const std::string& /*path*/)
{
    state_->operate([] {});
    state_->durableNames = state_->names;
}

void CrashFileSystem::failPowerAt(std::size_t operation)
{
    state_->failsAt = operation;
}
std::size_t CrashFileSystem::operations() const
{
    return state_->operations;
}
bool CrashFileSystem::powerFailed() const
{
    return state_->operations > state_->failsAt;
}
Files CrashFileSystem::files() const
{
    return state_->seen.files();
}

Files CrashFileSystem::afterCrash(const Survival& survival) const
{
    Chance chance(survival.seed);
    std::set<std::string> paths;
    for (const auto& [path, inode] : state_->names) {
        paths.insert(path);
    }
    for (const auto& [path, inode] : state_->durableNames) {
        paths.insert(path);
    }
    std::map<const Inode*, Bytes> contents;
    Files files;
    for (const std::string& path : paths) {
        const auto newOne = state_->names.find(path);
        const auto oldOne = state_->durableNames.find(path);
        const bool takeNew =
            survival.names == Survival::Fate::All || (survival.names == Survival::Fate::Chance && chance.coin());
        const bool isThere = takeNew ? newOne != state_->names.end() : oldOne != state_->durableNames.end();
        if (!isThere) {
            continue;
        }
        const Inode& inode = takeNew ? *newOne->second : *oldOne->second;
        if (!contents.contains(&inode)) {
            contents.emplace(&inode, survivingContent(inode, survival.writes, chance));
        }
        files.emplace(path, contents.at(&inode));
    }
    return files;
}

namespace {

/// Runs the action until it ends or the power fails. True when it did not throw, whatever it may have got over.
bool finishes(const std::function<void(FileSystem&)>& action, CrashFileSystem& disk)
{
    try {
        action(disk);
        return true;
    } catch (const Error& error) {
        EXPECT_TRUE(disk.powerFailed()) << "failed although the power was on: " << error.what();
        return false;
    }
}

class Run
{
public:
    explicit Run(const CrashTest& test) : test_(&test) {}

    std::size_t all()
    {
        MemoryFileSystem start;
        test_->prepare(start);
        for (std::size_t operation = 0; !stopped(); ++operation) {
            CrashFileSystem disk(start.files());
            disk.failPowerAt(operation);
            const bool finished = finishes(test_->body, disk);
            const bool failed = disk.powerFailed();
            for (const Survival& survival : Survival::several(test_->seeds)) {
                SCOPED_TRACE("power failed at operation " + std::to_string(operation) + "; " + survival.describe());
                const Files files = disk.afterCrash(survival);
                check(files, finished);
                if (test_->recover) {
                    crashInRecovery(files, finished);
                }
                if (stopped()) {
                    break;
                }
            }
            if (!failed) {
                break;
            }
        }
        return checked_;
    }

private:
    // One broken state is enough to look at.
    static bool stopped() { return testing::Test::HasFailure(); }

    void crashInRecovery(const Files& files, bool finished)
    {
        for (std::size_t operation = 0;; ++operation) {
            CrashFileSystem disk(files);
            disk.failPowerAt(operation);
            finishes(test_->recover, disk);
            if (!disk.powerFailed()) {
                return;
            }
            for (const Survival& survival : Survival::several(test_->recoverySeeds)) {
                SCOPED_TRACE("power failed again at operation " + std::to_string(operation) + " of the recovery; " +
                             survival.describe());
                check(disk.afterCrash(survival), finished);
                if (stopped()) {
                    return;
                }
            }
        }
    }

    void check(const Files& files, bool finished)
    {
        ++checked_;
        CrashFileSystem disk(files);
        try {
            test_->check(disk, finished);
        } catch (const Error& error) {
            ADD_FAILURE() << "the check ended with an error: " << error.what();
        }
    }

    const CrashTest* test_;
    std::size_t checked_ = 0;
};

} // namespace

std::size_t forEachCrash(const CrashTest& test)
{
    return Run(test).all();
}

} // namespace jet::test

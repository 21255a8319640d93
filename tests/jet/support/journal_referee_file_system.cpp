#include "jet/support/journal_referee_file_system.h"

#include "jet/disk/journal.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <set>

namespace jet::test {

class JournalRefereeFileSystem::State
{
public:
    explicit State(FileSystem& inner, std::string path)
        : disk(&inner), database(std::move(path)), journal(database + "-journal")
    {
    }

    FileSystem* disk;
    std::string database;
    std::string journal;
    std::set<std::string> unsyncedFiles; ///< names of files that were written to and not synced
    std::set<std::string> newFiles;      ///< names of files that were made and not renamed since
    bool journalIsNew = false;           ///< rather than one that is taken up again
    bool journalIsDurable = false;       ///< the name was synced while it led to a synced file
    bool databaseIsUnsynced = false;
    std::size_t watchedChanges = 0;

    [[nodiscard]] Bytes contentOf(const std::string& path) const
    {
        const std::unique_ptr<File> file = disk->open(path, OpenMode::ReadOnly);
        Bytes content(static_cast<std::size_t>(file->size()));
        file->readAt(0, content);
        return content;
    }

    struct Kept {
        PageNumber pageCount = 0;
        std::map<PageNumber, Page> pages;
    };

    [[nodiscard]] Kept readJournal() const
    {
        const Bytes bytes = contentOf(journal);
        const JournalHeader header = JournalHeader::decode(bytes);
        Kept kept{.pageCount = header.pagesBefore, .pages = {}};
        for (std::size_t i = 0; i < header.recordCount; ++i) {
            const ByteView rest = ByteView(bytes).subspan(JournalHeader::kSize + i * JournalRecord::kSize);
            const JournalRecord record = JournalRecord::decode(rest, header.salt);
            kept.pages.emplace(record.page, record.content);
        }
        return kept;
    }

    void beforeChange(LockLevel level)
    {
        ++watchedChanges;
        EXPECT_EQ(level, LockLevel::Exclusive) << "the file is changed without the exclusive lock";
        EXPECT_TRUE(journalIsDurable) << "the file is changed without a durable journal";
        databaseIsUnsynced = true;
    }

    void beforeWrite(std::uint64_t offset, std::size_t length, LockLevel level)
    {
        beforeChange(level);
        EXPECT_EQ(offset % kPageSize, 0U) << "a write begins inside a page";
        EXPECT_EQ(length % kPageSize, 0U) << "a write ends inside a page";
        if (!journalIsDurable) {
            return;
        }
        const Kept kept = readJournal();
        for (std::uint64_t page = offset / kPageSize; page < (offset + length) / kPageSize; ++page) {
            if (page < kept.pageCount) {
                EXPECT_TRUE(kept.pages.contains(static_cast<PageNumber>(page)))
                    << "page " << page << " is overwritten and not in the journal";
            }
        }
    }

    void beforeTruncate(std::uint64_t size, LockLevel level)
    {
        beforeChange(level);
        if (journalIsDurable) {
            EXPECT_EQ(size, pageOffset(readJournal().pageCount)) << "the file is cut to a size it did not have before";
        }
    }

    /// A new journal must hold the file as it is now, before the first write.
    void afterJournalBecameDurable()
    {
        if (!std::exchange(journalIsNew, false)) {
            return;
        }
        const Bytes content = contentOf(database);
        const Kept kept = readJournal();
        EXPECT_EQ(content.size(), pageOffset(kept.pageCount)) << "the journal has another size of the file";
        for (const auto& [number, page] : kept.pages) {
            const ByteView now = slice(ByteView(content), static_cast<std::size_t>(pageOffset(number)), kPageSize);
            EXPECT_TRUE(std::ranges::equal(now, page)) << "the journal does not hold page " << number << " as it is";
        }
    }

    void beforeJournalGoes() const { EXPECT_FALSE(databaseIsUnsynced) << "the journal goes before the file is synced"; }
};

class JournalRefereeFileSystem::OpenFile final : public ForwardingFile
{
public:
    OpenFile(std::shared_ptr<State> state, std::string path, std::unique_ptr<File> file)
        : ForwardingFile(std::move(file)), state_(std::move(state)), path_(std::move(path)),
          isDatabase_(path_ == state_->database)
    {
    }

    void writeAt(std::uint64_t offset, ByteView bytes) override
    {
        if (isDatabase_) {
            state_->beforeWrite(offset, bytes.size(), level_);
        } else {
            state_->unsyncedFiles.insert(path_);
        }
        ForwardingFile::writeAt(offset, bytes);
    }

    void truncate(std::uint64_t size) override
    {
        if (isDatabase_) {
            state_->beforeTruncate(size, level_);
        }
        ForwardingFile::truncate(size);
    }

    void sync() override
    {
        ForwardingFile::sync();
        if (isDatabase_) {
            state_->databaseIsUnsynced = false;
        }
        state_->unsyncedFiles.erase(path_);
    }

    void lock(LockLevel level, std::chrono::milliseconds patience) override
    {
        ForwardingFile::lock(level, patience);
        level_ = level;
    }

private:
    std::shared_ptr<State> state_;
    std::string path_;
    bool isDatabase_;
    LockLevel level_ = LockLevel::None;
};

JournalRefereeFileSystem::JournalRefereeFileSystem(FileSystem& inner, std::string databasePath)
    : ForwardingFileSystem(inner), state_(std::make_shared<State>(inner, std::move(databasePath)))
{
    state_->journalIsDurable = inner.exists(state_->journal); // left by a crash: it has survived it
}

JournalRefereeFileSystem::~JournalRefereeFileSystem() = default;

std::unique_ptr<File> JournalRefereeFileSystem::watched(const std::string& path, std::unique_ptr<File> file)
{
    return std::make_unique<OpenFile>(state_, path, std::move(file));
}

std::unique_ptr<File> JournalRefereeFileSystem::open(const std::string& path, OpenMode mode)
{
    return watched(path, ForwardingFileSystem::open(path, mode));
}

std::unique_ptr<File> JournalRefereeFileSystem::createLike(const std::string& path, const std::string& model)
{
    std::unique_ptr<File> file = watched(path, ForwardingFileSystem::createLike(path, model));
    state_->newFiles.insert(path);
    return file;
}

void JournalRefereeFileSystem::remove(const std::string& path)
{
    if (path == state_->journal) {
        state_->beforeJournalGoes();
    }
    ForwardingFileSystem::remove(path);
    state_->journalIsDurable = state_->journalIsDurable && path != state_->journal;
}

void JournalRefereeFileSystem::rename(const std::string& from, const std::string& to)
{
    if (from == state_->journal) {
        state_->beforeJournalGoes();
    }
    if (to == state_->journal) {
        EXPECT_FALSE(state_->unsyncedFiles.contains(from)) << "the journal gets its name before it is synced";
        state_->journalIsNew = state_->newFiles.contains(from);
    }
    ForwardingFileSystem::rename(from, to);
    state_->newFiles.erase(from);
    state_->journalIsDurable = state_->journalIsDurable && from != state_->journal;
}

void JournalRefereeFileSystem::syncFolderOf(const std::string& path)
{
    ForwardingFileSystem::syncFolderOf(path);
    if (!state_->journalIsDurable && state_->disk->exists(state_->journal)) {
        state_->journalIsDurable = true;
        state_->afterJournalBecameDurable();
    }
}

std::size_t JournalRefereeFileSystem::watchedChanges() const
{
    return state_->watchedChanges;
}

} // namespace jet::test

// The disk of these tests forgets what a real one may forget, and a program that does not sync is found out: otherwise
// the other tests could not fail.
#include "jet/database/small_diary.h"
#include "jet/support/forwarding_file_system.h"
#include "power_loss/diaries.h"
#include "power_loss/disk_state.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace power_loss {
namespace {

using testing::IsEmpty;
using testing::Not;
using Kind = Survival::Kind;

jet::Bytes filled(std::size_t size, int fill)
{
    return jet::Bytes(size, static_cast<std::byte>(fill));
}

/// All that may be found in so many choices.
std::set<Files> foundAfter(const DiskState& disk, std::size_t choices = 500)
{
    std::set<Files> found;
    for (const Survival& survival : Survival::several(choices, 1)) {
        found.insert(disk.afterPowerLoss(survival));
    }
    return found;
}

TEST(DiskState, OfSyncedFilesAndNamesIsCertain)
{
    DiskState disk({{"a", filled(10, 1)}});
    disk.apply(Written{0, 5, filled(10, 2)});
    disk.apply(Created{1, "b"});
    disk.apply(Written{1, 0, filled(3, 3)});
    EXPECT_FALSE(disk.isSettled());
    disk.apply(Synced{0});
    disk.apply(Synced{1});
    EXPECT_FALSE(disk.isSettled());
    disk.apply(FolderSynced{});
    EXPECT_TRUE(disk.isSettled());
    jet::Bytes a = filled(15, 2);
    std::fill_n(a.begin(), 5, std::byte{1});
    EXPECT_EQ(foundAfter(disk), (std::set<Files>{{{"a", a}, {"b", filled(3, 3)}}}));
}

TEST(DiskState, OfARenamedFileHasEitherNameBothOrNone)
{
    DiskState disk({{"a", filled(1, 1)}});
    disk.apply(Renamed{"a", "b"});
    const jet::Bytes content = filled(1, 1);
    EXPECT_EQ(foundAfter(disk),
              (std::set<Files>{{}, {{"a", content}}, {{"b", content}}, {{"a", content}, {"b", content}}}));
}

TEST(DiskState, OfANameThatCameAndWentMayHoldIt)
{
    DiskState disk(Files{});
    disk.apply(Created{0, "a"});
    disk.apply(Removed{"a"});
    EXPECT_EQ(foundAfter(disk), (std::set<Files>{{}, {{"a", {}}}}));
    disk.apply(FolderSynced{});
    EXPECT_EQ(foundAfter(disk), (std::set<Files>{{}}));
}

TEST(DiskState, OfAWriteIsWholeLostOrTornAtSectorsAndBetween)
{
    DiskState disk({{"a", filled(jet::kPageSize, 1)}});
    disk.apply(Written{0, 0, filled(jet::kPageSize, 2)});
    std::set<std::size_t> heads;
    std::set<std::size_t> tails;
    bool inTheMiddle = false;
    for (const Files& files : foundAfter(disk)) {
        const jet::Bytes& content = files.at("a");
        ASSERT_EQ(content.size(), jet::kPageSize);
        const auto isNew = [](std::byte byte) { return byte == std::byte{2}; };
        const auto count = static_cast<std::size_t>(std::count_if(content.begin(), content.end(), isNew));
        if (std::all_of(content.begin(), content.begin() + static_cast<std::ptrdiff_t>(count), isNew)) {
            heads.insert(count);
        } else if (std::all_of(content.end() - static_cast<std::ptrdiff_t>(count), content.end(), isNew)) {
            tails.insert(count);
        } else {
            inTheMiddle = true;
        }
    }
    EXPECT_TRUE(heads.contains(0) && heads.contains(jet::kPageSize));
    const auto isOdd = [](std::size_t count) { return count % 2 == 1; };
    const auto isSector = [](std::size_t count) { return count % 512 == 0 && count > 0 && count < jet::kPageSize; };
    for (const auto& counts : {heads, tails}) {
        EXPECT_TRUE(std::any_of(counts.begin(), counts.end(), isOdd));
        EXPECT_TRUE(std::any_of(counts.begin(), counts.end(), isSector));
    }
    EXPECT_TRUE(inTheMiddle);
}

TEST(DiskState, OfTwoWritesHoldsEitherWithoutTheOther)
{
    DiskState disk({{"a", filled(2 * jet::kPageSize, 1)}});
    disk.apply(Written{0, 0, filled(jet::kPageSize, 2)});
    disk.apply(Written{0, jet::kPageSize, filled(jet::kPageSize, 3)});
    const std::set<Files> found = foundAfter(disk);
    jet::Bytes first = filled(2 * jet::kPageSize, 1);
    jet::Bytes second = first;
    std::fill_n(first.begin(), jet::kPageSize, std::byte{2});
    std::fill_n(second.begin() + jet::kPageSize, jet::kPageSize, std::byte{3});
    EXPECT_TRUE(found.contains({{"a", first}}));
    EXPECT_TRUE(found.contains({{"a", second}}));
}

TEST(DiskState, OfTwoWritesToOnePlaceMayHoldTheEarlier)
{
    DiskState disk({{"a", filled(jet::kPageSize, 1)}});
    disk.apply(Written{0, 0, filled(jet::kPageSize, 2)});
    disk.apply(Written{0, 0, filled(jet::kPageSize, 3)});
    EXPECT_TRUE(foundAfter(disk).contains({{"a", filled(jet::kPageSize, 2)}}));
}

TEST(DiskState, OfAFileThatGrewMayHoldWhatTheDiskHeldThere)
{
    DiskState disk({{"a", jet::Bytes()}});
    disk.apply(Written{0, 0, filled(jet::kPageSize, 2)});
    const std::set<Files> found = foundAfter(disk);
    EXPECT_TRUE(std::any_of(found.begin(), found.end(), [](const Files& files) {
        const jet::Bytes& content = files.at("a");
        return std::any_of(content.begin(), content.end(),
                           [](std::byte byte) { return byte != std::byte{2} && byte != std::byte{0}; });
    }));
}

TEST(DiskState, OfAFileThatWasCutHasTheOldSizeOrTheNew)
{
    DiskState disk({{"a", filled(3, 1)}});
    disk.apply(Resized{0, 1});
    EXPECT_EQ(foundAfter(disk), (std::set<Files>{{{"a", filled(3, 1)}}, {{"a", filled(1, 1)}}}));
}

/// A disk that says of one sync that it has been done.
class ForgetfulDisk final : public jet::test::ForwardingFileSystem
{
public:
    /// Of the files' or the folder's syncs, counted together from 0, the one that does nothing.
    ForgetfulDisk(jet::FileSystem& inner, std::size_t forgotten)
        : ForwardingFileSystem(inner), forgotten_(forgotten), syncs_(std::make_shared<std::size_t>(0))
    {
    }

    std::unique_ptr<jet::File> open(const std::string& path, jet::OpenMode mode) override
    {
        return std::make_unique<ForgetfulFile>(ForwardingFileSystem::open(path, mode), forgotten_, syncs_);
    }
    std::unique_ptr<jet::File> createLike(const std::string& path, const std::string& model) override
    {
        return std::make_unique<ForgetfulFile>(ForwardingFileSystem::createLike(path, model), forgotten_, syncs_);
    }
    void syncFolderOf(const std::string& path) override
    {
        if ((*syncs_)++ != forgotten_) {
            ForwardingFileSystem::syncFolderOf(path);
        }
    }

private:
    class ForgetfulFile final : public jet::test::ForwardingFile
    {
    public:
        ForgetfulFile(std::unique_ptr<jet::File> file, std::size_t forgotten, std::shared_ptr<std::size_t> syncs)
            : ForwardingFile(std::move(file)), forgotten_(forgotten), syncs_(std::move(syncs))
        {
        }
        void sync() override
        {
            if ((*syncs_)++ != forgotten_) {
                ForwardingFile::sync();
            }
        }

    private:
        std::size_t forgotten_;
        std::shared_ptr<std::size_t> syncs_;
    };

    std::size_t forgotten_;
    std::shared_ptr<std::size_t> syncs_;
};

/// Of a commit's four syncs: the journal, the folder for its name, the file, the folder for its name's going.
class Sync : public testing::TestWithParam<std::size_t>
{
};

TEST_P(Sync, OfACommitThatIsForgottenIsFoundOut)
{
    RecordingFileSystem disk(smallDiary([](jet::Database&) {}));
    ForgetfulDisk forgetful(disk, GetParam());
    addSomeReading(*jet::Database::open(forgetful, jet::test::kDiaryPath));
    EXPECT_THAT(Trial(jet::test::kDiaryPath, addSomeReading, {.choices = 4}).run(disk).losses, Not(IsEmpty()));
}

INSTANTIATE_TEST_SUITE_P(Each, Sync, testing::Range<std::size_t>(0, 4));

TEST(Trial, FindsAWriteWithoutAJournal)
{
    RecordingFileSystem disk(smallDiary([](jet::Database&) {}));
    const auto file = disk.open(jet::test::kDiaryPath, jet::OpenMode::ReadWrite);
    file->writeAt(jet::kPageSize * 3 + 100, filled(5, 9));
    EXPECT_THAT(Trial(jet::test::kDiaryPath, addSomeReading, {}).run(disk).losses, Not(IsEmpty()));
}

} // namespace
} // namespace power_loss

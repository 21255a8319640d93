// A disk that loses power forgets what a real one may forget: otherwise tests that use it could not fail.
#include "jet/support/disk_state.h"

#include "jet/disk/page.h"
#include "jet/support/power_failure.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace jet::test {
namespace {

Bytes filled(std::size_t size, int fill)
{
    return Bytes(size, static_cast<std::byte>(fill));
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
    Bytes a = filled(15, 2);
    std::fill_n(a.begin(), 5, std::byte{1});
    EXPECT_EQ(foundAfter(disk), (std::set<Files>{{{"a", a}, {"b", filled(3, 3)}}}));
}

TEST(DiskState, OfARenamedFileHasEitherNameBothOrNone)
{
    DiskState disk({{"a", filled(1, 1)}});
    disk.apply(Renamed{"a", "b"});
    const Bytes content = filled(1, 1);
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
    DiskState disk({{"a", filled(kPageSize, 1)}});
    disk.apply(Written{0, 0, filled(kPageSize, 2)});
    std::set<std::size_t> heads;
    std::set<std::size_t> tails;
    bool inTheMiddle = false;
    for (const Files& files : foundAfter(disk)) {
        const Bytes& content = files.at("a");
        ASSERT_EQ(content.size(), kPageSize);
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
    EXPECT_TRUE(heads.contains(0) && heads.contains(kPageSize));
    const auto isOdd = [](std::size_t count) { return count % 2 == 1; };
    const auto isSector = [](std::size_t count) { return count % 512 == 0 && count > 0 && count < kPageSize; };
    for (const auto& counts : {heads, tails}) {
        EXPECT_TRUE(std::any_of(counts.begin(), counts.end(), isOdd));
        EXPECT_TRUE(std::any_of(counts.begin(), counts.end(), isSector));
    }
    EXPECT_TRUE(inTheMiddle);
}

TEST(DiskState, OfTwoWritesHoldsEitherWithoutTheOther)
{
    DiskState disk({{"a", filled(2 * kPageSize, 1)}});
    disk.apply(Written{0, 0, filled(kPageSize, 2)});
    disk.apply(Written{0, kPageSize, filled(kPageSize, 3)});
    const std::set<Files> found = foundAfter(disk);
    Bytes first = filled(2 * kPageSize, 1);
    Bytes second = first;
    std::fill_n(first.begin(), kPageSize, std::byte{2});
    std::fill_n(second.begin() + kPageSize, kPageSize, std::byte{3});
    EXPECT_TRUE(found.contains({{"a", first}}));
    EXPECT_TRUE(found.contains({{"a", second}}));
}

TEST(DiskState, OfTwoWritesToOnePlaceMayHoldTheEarlier)
{
    DiskState disk({{"a", filled(kPageSize, 1)}});
    disk.apply(Written{0, 0, filled(kPageSize, 2)});
    disk.apply(Written{0, 0, filled(kPageSize, 3)});
    EXPECT_TRUE(foundAfter(disk).contains({{"a", filled(kPageSize, 2)}}));
}

TEST(DiskState, OfAFileThatGrewMayHoldWhatTheDiskHeldThere)
{
    DiskState disk({{"a", Bytes()}});
    disk.apply(Written{0, 0, filled(kPageSize, 2)});
    const std::set<Files> found = foundAfter(disk);
    EXPECT_TRUE(std::any_of(found.begin(), found.end(), [](const Files& files) {
        const Bytes& content = files.at("a");
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

/// Every content of "a" that is found when the power fails while the body overwrites it.
std::set<Bytes> foundDuring(const std::function<void(File&)>& body, bool onceFinished)
{
    std::set<Bytes> found;
    forEachPowerFailure({
        .prepare = [](FileSystem& disk) { disk.open("a", OpenMode::Create)->writeAt(0, filled(kPageSize, 1)); },
        .body = [&body](FileSystem& disk) { body(*disk.open("a", OpenMode::ReadWrite)); },
        .check =
            [&](FileSystem& disk, bool finished) {
                if (finished == onceFinished) {
                    Bytes content(kPageSize);
                    disk.open("a", OpenMode::ReadOnly)->readAt(0, content);
                    found.insert(content);
                }
            },
    });
    return found;
}

TEST(PowerFailure, ShowsWhatIsTornBeforeItIsSynced)
{
    const auto overwrite = [](File& file) {
        file.writeAt(0, filled(kPageSize, 2));
        file.sync();
    };
    const std::set<Bytes> found = foundDuring(overwrite, false);
    EXPECT_TRUE(found.contains(filled(kPageSize, 1)));
    EXPECT_TRUE(found.contains(filled(kPageSize, 2)));
    EXPECT_GT(found.size(), 2U);
    EXPECT_EQ(foundDuring(overwrite, true), std::set<Bytes>{filled(kPageSize, 2)});
}

TEST(PowerFailure, AfterABodyThatDoesNotSyncFindsWhatWasThereBefore)
{
    EXPECT_TRUE(
        foundDuring([](File& file) { file.writeAt(0, filled(kPageSize, 2)); }, true).contains(filled(kPageSize, 1)));
}

TEST(PowerFailure, AlsoStrikesInTheRecovery)
{
    std::set<Bytes> found;
    forEachPowerFailure({
        .prepare = [](FileSystem& disk) { disk.open("a", OpenMode::Create)->writeAt(0, filled(3, 1)); },
        .body = [](FileSystem&) {},
        .recover = [](FileSystem& disk) { disk.open("a", OpenMode::ReadWrite)->truncate(1); },
        .check =
            [&found](FileSystem& disk, bool) {
                const auto file = disk.open("a", OpenMode::ReadOnly);
                Bytes content(file->size());
                file->readAt(0, content);
                found.insert(content);
            },
    });
    EXPECT_EQ(found, (std::set<Bytes>{filled(3, 1), filled(1, 1)}));
}

} // namespace
} // namespace jet::test

// A program that does not sync is found out: otherwise the other tests could not fail.
#include "power_loss/trial.h"

#include "jet/database/small_diary.h"
#include "jet/disk/page.h"
#include "jet/support/forwarding_file_system.h"
#include "power_loss/diaries.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace power_loss {
namespace {

using testing::IsEmpty;
using testing::Not;

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
    file->writeAt(jet::kPageSize * 3 + 100, jet::Bytes(5, std::byte{9}));
    EXPECT_THAT(Trial(jet::test::kDiaryPath, addSomeReading, {}).run(disk).losses, Not(IsEmpty()));
}

} // namespace
} // namespace power_loss

// What every kind of file does, checked on real files and on those in memory; then what only real files have.
#include "jet/disk/file.h"
#include "jet/disk/memory_file.h"
#include "jet/support/error_matchers.h"
#include "jet/support/temporary_folder.h"

#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <grp.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <tuple>
#include <unistd.h>

namespace jet {
namespace {

using std::chrono::milliseconds;
using test::throwsError;

constexpr milliseconds kNoPatience{0};

Bytes text(const std::string& characters)
{
    const ByteView view = std::as_bytes(std::span(characters));
    return {view.begin(), view.end()};
}

struct RealDisk {
    FileSystem& fileSystem() { return posixFileSystem(); }
    [[nodiscard]] std::string path(const std::string& name) const { return folder.path(name); }
    test::TemporaryFolder folder;
};

struct MemoryDisk {
    FileSystem& fileSystem() { return memory; }
    [[nodiscard]] static std::string path(const std::string& name) { return name; }
    MemoryFileSystem memory;
};

template <typename Disk>
class AnyFile : public testing::Test
{
protected:
    std::string path(const std::string& name = "a.mdb") { return disk.path(name); }

    std::unique_ptr<File> open(OpenMode mode, const std::string& name = "a.mdb")
    {
        return disk.fileSystem().open(path(name), mode);
    }

    void make(const std::string& content, const std::string& name = "a.mdb")
    {
        open(OpenMode::Create, name)->writeAt(0, text(content));
    }

    Bytes read(const std::string& name = "a.mdb")
    {
        const std::unique_ptr<File> file = open(OpenMode::ReadOnly, name);
        Bytes content(static_cast<std::size_t>(file->size()));
        file->readAt(0, content);
        return content;
    }

    Disk disk;
};

struct DiskNames {
    template <typename Disk>
    static std::string GetName(int /*index*/)
    {
        return std::is_same_v<Disk, RealDisk> ? "Real" : "Memory";
    }
};

using Disks = testing::Types<RealDisk, MemoryDisk>;
TYPED_TEST_SUITE(AnyFile, Disks, DiskNames);

TYPED_TEST(AnyFile, WhatIsWrittenIsRead)
{
    const auto file = this->open(OpenMode::Create);
    file->writeAt(0, text("abcdef"));
    file->writeAt(2, text("XY"));
    file->sync();
    EXPECT_EQ(this->read(), text("abXYef"));
    EXPECT_EQ(file->size(), 6U);
}

TYPED_TEST(AnyFile, WritingPastTheEndFillsTheGapWithZeros)
{
    this->open(OpenMode::Create)->writeAt(3, text("x"));
    EXPECT_EQ(this->read(), text(std::string("\0\0\0x", 4)));
}

TYPED_TEST(AnyFile, ReadingPastTheEndIsAnErrorAndNeverShort)
{
    this->make("abc");
    const auto file = this->open(OpenMode::ReadOnly);
    Bytes buffer(2);
    EXPECT_THAT([&] { file->readAt(2, buffer); }, throwsError(ErrorCode::Io, "ends before byte 4"));
    EXPECT_THAT([&] { file->readAt(9, buffer); }, throwsError(ErrorCode::Io));
    file->readAt(1, buffer);
    EXPECT_EQ(buffer, text("bc"));
}

TYPED_TEST(AnyFile, TruncatingCutsAndExtends)
{
    this->make("abcdef");
    const auto file = this->open(OpenMode::ReadWrite);
    file->truncate(2);
    EXPECT_EQ(this->read(), text("ab"));
    file->truncate(4);
    EXPECT_EQ(this->read(), text(std::string("ab\0\0", 4)));
}

TYPED_TEST(AnyFile, OpeningAFileThatIsNotThereIsAnError)
{
    EXPECT_THAT([&] { this->open(OpenMode::ReadOnly); }, throwsError(ErrorCode::FileNotFound, this->path()));
    EXPECT_THAT([&] { this->open(OpenMode::ReadWrite); }, throwsError(ErrorCode::FileNotFound, this->path()));
    EXPECT_FALSE(this->disk.fileSystem().exists(this->path()));
}

TYPED_TEST(AnyFile, CreatingAFileThatIsThereLeavesItAlone)
{
    this->make("abc");
    EXPECT_THAT([&] { this->open(OpenMode::Create); }, throwsError(ErrorCode::FileExists, this->path()));
    EXPECT_EQ(this->read(), text("abc"));
}

TYPED_TEST(AnyFile, AFileOpenedForReadingCannotBeWritten)
{
    this->make("abc");
    const auto file = this->open(OpenMode::ReadOnly);
    EXPECT_TRUE(file->isReadOnly());
    EXPECT_THAT([&] { file->writeAt(0, text("x")); }, throwsError(ErrorCode::Io));
    EXPECT_EQ(this->read(), text("abc"));
    EXPECT_FALSE(this->open(OpenMode::ReadWrite)->isReadOnly());
}

TYPED_TEST(AnyFile, FilesAreRemovedAndRenamed)
{
    FileSystem& files = this->disk.fileSystem();
    this->make("one", "1");
    this->make("two", "2");
    files.rename(this->path("1"), this->path("2"));
    EXPECT_FALSE(files.exists(this->path("1")));
    EXPECT_EQ(this->read("2"), text("one"));
    files.remove(this->path("2"));
    EXPECT_FALSE(files.exists(this->path("2")));
    files.syncFolderOf(this->path("2"));
    EXPECT_THAT([&] { files.remove(this->path("2")); }, throwsError(ErrorCode::FileNotFound));
    EXPECT_THAT([&] { files.rename(this->path("2"), this->path("3")); }, throwsError(ErrorCode::FileNotFound));
}

TYPED_TEST(AnyFile, AFileThatWasReplacedIsNotInPlace)
{
    this->make("abc");
    const auto file = this->open(OpenMode::ReadOnly);
    EXPECT_TRUE(file->isInPlace());
    this->make("other", "b.mdb");
    this->disk.fileSystem().rename(this->path("b.mdb"), this->path());
    EXPECT_FALSE(file->isInPlace());
    this->disk.fileSystem().remove(this->path());
    EXPECT_FALSE(file->isInPlace());
}

TYPED_TEST(AnyFile, TheStampChangesWithTheSize)
{
    this->make("abc");
    const auto file = this->open(OpenMode::ReadWrite);
    const FileStamp before = file->stamp();
    EXPECT_EQ(file->stamp(), before);
    file->writeAt(3, text("d"));
    EXPECT_NE(file->stamp(), before);
}

TYPED_TEST(AnyFile, SharedGoesWithSharedAndWithReserved)
{
    this->make("abc");
    const auto first = this->open(OpenMode::ReadWrite);
    const auto second = this->open(OpenMode::ReadOnly);
    first->lock(LockLevel::Shared, kNoPatience);
    second->lock(LockLevel::Shared, kNoPatience);
    first->lock(LockLevel::Reserved, kNoPatience);
    second->lock(LockLevel::None, kNoPatience);
    second->lock(LockLevel::Shared, kNoPatience);
}

TYPED_TEST(AnyFile, OnlyOneHoldsReserved)
{
    this->make("abc");
    const auto first = this->open(OpenMode::ReadWrite);
    const auto second = this->open(OpenMode::ReadWrite);
    first->lock(LockLevel::Reserved, kNoPatience);
    EXPECT_THAT([&] { second->lock(LockLevel::Reserved, kNoPatience); },
                throwsError(ErrorCode::Locked, "another program holds a lock"));
    first->lock(LockLevel::Shared, kNoPatience);
    second->lock(LockLevel::Reserved, kNoPatience);
}

TYPED_TEST(AnyFile, ExclusiveGoesWithNothing)
{
    this->make("abc");
    const auto first = this->open(OpenMode::ReadWrite);
    const auto second = this->open(OpenMode::ReadWrite);
    first->lock(LockLevel::Exclusive, kNoPatience);
    for (const LockLevel level : {LockLevel::Shared, LockLevel::Reserved, LockLevel::Exclusive}) {
        EXPECT_THAT([&] { second->lock(level, kNoPatience); }, throwsError(ErrorCode::Locked, this->path()));
    }
    first->lock(LockLevel::Shared, kNoPatience);
    second->lock(LockLevel::Shared, kNoPatience);
}

TYPED_TEST(AnyFile, AReaderKeepsTheWriterOutUntilItLeaves)
{
    this->make("abc");
    const auto writer = this->open(OpenMode::ReadWrite);
    const auto reader = this->open(OpenMode::ReadOnly);
    reader->lock(LockLevel::Shared, kNoPatience);
    writer->lock(LockLevel::Reserved, kNoPatience);
    EXPECT_THAT([&] { writer->lock(LockLevel::Exclusive, kNoPatience); }, throwsError(ErrorCode::Locked));
    // The writer is as it was: still alone with its claim, and new readers come in.
    const auto other = this->open(OpenMode::ReadWrite);
    other->lock(LockLevel::Shared, kNoPatience);
    EXPECT_THAT([&] { other->lock(LockLevel::Reserved, kNoPatience); }, throwsError(ErrorCode::Locked));
    other->lock(LockLevel::None, kNoPatience);
    reader->lock(LockLevel::None, kNoPatience);
    writer->lock(LockLevel::Exclusive, kNoPatience);
}

TYPED_TEST(AnyFile, WhoGoesStraightToReservedInVainHoldsNothing)
{
    this->make("abc");
    const auto writer = this->open(OpenMode::ReadWrite);
    const auto late = this->open(OpenMode::ReadWrite);
    writer->lock(LockLevel::Reserved, kNoPatience);
    EXPECT_THAT([&] { late->lock(LockLevel::Reserved, kNoPatience); }, throwsError(ErrorCode::Locked));
    writer->lock(LockLevel::Exclusive, kNoPatience);
}

TYPED_TEST(AnyFile, ClosingLetsGoOfTheLock)
{
    this->make("abc");
    const auto file = this->open(OpenMode::ReadWrite);
    {
        const auto other = this->open(OpenMode::ReadWrite);
        other->lock(LockLevel::Exclusive, kNoPatience);
    }
    file->lock(LockLevel::Exclusive, kNoPatience);
}

TYPED_TEST(AnyFile, ClosingAnotherOpenFileKeepsTheLock)
{
    this->make("abc");
    const auto holder = this->open(OpenMode::ReadWrite);
    holder->lock(LockLevel::Exclusive, kNoPatience);
    this->open(OpenMode::ReadWrite).reset();
    const auto other = this->open(OpenMode::ReadWrite);
    EXPECT_THAT([&] { other->lock(LockLevel::Shared, kNoPatience); }, throwsError(ErrorCode::Locked));
}

// --- Real files only ---

class RealFile : public AnyFile<RealDisk>
{
};

TEST_F(RealFile, AFolderIsRefusedByName)
{
    const std::string folder = path("folder");
    std::filesystem::create_directory(folder);
    EXPECT_THAT([&] { open(OpenMode::ReadOnly, "folder"); },
                throwsError(ErrorCode::Io, "Cannot open " + folder + ": it is a folder, not a file"));
    EXPECT_THAT([&] { open(OpenMode::ReadWrite, "folder"); },
                throwsError(ErrorCode::Io, "Cannot open " + folder + ": it is a folder, not a file"));
}

TEST_F(RealFile, ANamedPipeIsRefusedWithoutWaiting)
{
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    EXPECT_THAT([&] { open(OpenMode::ReadOnly, "pipe"); }, throwsError(ErrorCode::Io, "device or pipe"));
}

TEST_F(RealFile, AFileInAFolderThatIsNotThereIsNotFound)
{
    EXPECT_THAT([&] { open(OpenMode::ReadWrite, "no/a.mdb"); }, throwsError(ErrorCode::FileNotFound));
    EXPECT_THAT([&] { open(OpenMode::Create, "no/a.mdb"); }, throwsError(ErrorCode::FileNotFound));
    EXPECT_FALSE(posixFileSystem().exists(path("no/a.mdb")));
}

TEST_F(RealFile, ADeviceIsRefused)
{
    EXPECT_THAT([] { static_cast<void>(posixFileSystem().open("/dev/null", OpenMode::ReadWrite)); },
                throwsError(ErrorCode::Io, "device or pipe"));
}

TEST_F(RealFile, AFileWithoutTheRightToWriteIsReadOnly)
{
    make("abc");
    std::filesystem::permissions(path(), std::filesystem::perms::owner_read);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        // Rights do not bind the superuser, so ask as somebody else where we are it.
        if (::geteuid() == 0 &&
            (::chown(path().c_str(), 65534, 65534) != 0 ||
             ::chmod(std::filesystem::path(path()).parent_path().c_str(), 0755) != 0 || ::setuid(65534) != 0)) {
            ::_exit(2);
        }
        try {
            static_cast<void>(open(OpenMode::ReadWrite));
        } catch (const Error& error) {
            ::_exit(error.code() == ErrorCode::ReadOnly ? 0 : 3);
        }
        ::_exit(4);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

mode_t modeOf(const std::string& path)
{
    struct stat status = {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0);
    return status.st_mode & 07777U;
}

TEST_F(RealFile, ANewFileIsForItsOwnerAlone)
{
    make("abc");
    EXPECT_EQ(modeOf(path()), 0600U);
}

TEST_F(RealFile, AFileLikeAnotherTakesItsRights)
{
    make("abc");
    ASSERT_EQ(::chmod(path().c_str(), 0664), 0);
    static_cast<void>(posixFileSystem().createLike(path("b"), path()));
    EXPECT_EQ(modeOf(path("b")), 0664U);
}

/// Somebody who shares a folder with the owner of a file through a group. For the superuser, who can be anybody.
class SharedFolder : public RealFile
{
protected:
    static constexpr uid_t kOwner = 65533;
    static constexpr uid_t kOther = 65532;
    static constexpr gid_t kGroup = 65531;
    static constexpr gid_t kOtherGroup = 65530;

    void SetUp() override
    {
        if (::geteuid() != 0) {
            GTEST_SKIP() << "only the superuser can make files of others";
        }
        make("abc");
        const std::string folder = std::filesystem::path(path()).parent_path();
        ASSERT_EQ(::chown(path().c_str(), kOwner, kGroup), 0);
        ASSERT_EQ(::chown(folder.c_str(), kOwner, kGroup), 0);
        ASSERT_EQ(::chmod(folder.c_str(), 0775), 0);
    }

    /// What a file like the other has when the other person makes it: owner, group, rights.
    std::tuple<uid_t, gid_t, mode_t> madeByTheOther(gid_t group, mode_t rights)
    {
        EXPECT_EQ(::chmod(path().c_str(), rights), 0);
        const pid_t child = ::fork();
        if (child == 0) {
            if (::setgroups(1, &kGroup) != 0 || ::setgid(group) != 0 || ::setuid(kOther) != 0) {
                ::_exit(2);
            }
            try {
                static_cast<void>(posixFileSystem().createLike(path("b"), path()));
            } catch (const Error&) {
                ::_exit(3);
            }
            ::_exit(0);
        }
        int status = 0;
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_EQ(WEXITSTATUS(status), 0);
        struct stat made = {};
        EXPECT_EQ(::stat(path("b").c_str(), &made), 0);
        return {made.st_uid, made.st_gid, made.st_mode & 07777U};
    }
};

TEST_F(SharedFolder, WhatAMemberOfTheGroupMakesLikeAFileTheWholeGroupCanUse)
{
    EXPECT_EQ(madeByTheOther(kGroup, 0660), std::tuple(kOther, kGroup, 0660U));
}

TEST_F(SharedFolder, AMemberWhoseFilesHaveAnotherGroupGivesThemToTheGroupOfTheModel)
{
    EXPECT_EQ(madeByTheOther(kOtherGroup, 0640), std::tuple(kOther, kGroup, 0640U));
}

TEST_F(SharedFolder, WhatTheGroupOfTheModelMayGoesToNoOtherGroup)
{
    ASSERT_EQ(::chown(path().c_str(), kOwner, kOtherGroup - 1), 0); // a group that the other is not in
    EXPECT_EQ(madeByTheOther(kOtherGroup, 0666), std::tuple(kOther, kOtherGroup, 0600U));
}

TEST_F(RealFile, AFileLikeOneThatMayOnlyBeReadCanBeWrittenByItsOwner)
{
    make("abc");
    ASSERT_EQ(::chmod(path().c_str(), 0440), 0);
    static_cast<void>(posixFileSystem().createLike(path("c"), path()));
    EXPECT_EQ(modeOf(path("c")), 0640U);
}

TEST_F(RealFile, ALinkResolvesToTheFile)
{
    make("abc");
    std::filesystem::create_symlink(path(), path("link.mdb"));
    EXPECT_EQ(posixFileSystem().resolve(path("link.mdb")), posixFileSystem().resolve(path()));
    EXPECT_THAT([&] { static_cast<void>(posixFileSystem().resolve(path("no"))); },
                throwsError(ErrorCode::FileNotFound));
}

TEST_F(RealFile, ADanglingLinkCountsAsBeingThere)
{
    std::filesystem::create_symlink(path("nowhere"), path("link.mdb"));
    EXPECT_TRUE(posixFileSystem().exists(path("link.mdb")));
}

/// A lock of the whole file by a descriptor of our own, as another program would take it.
class WholeFileLock
{
public:
    WholeFileLock(const std::string& path, int command, short type)
        : descriptor_(::open(path.c_str(), O_RDWR | O_CLOEXEC))
    {
        struct flock whole = {};
        whole.l_type = type;
        whole.l_whence = SEEK_SET;
        EXPECT_EQ(::fcntl(descriptor_, command, &whole), 0);
    }
    WholeFileLock(const WholeFileLock&) = delete;
    WholeFileLock& operator=(const WholeFileLock&) = delete;
    ~WholeFileLock() { ::close(descriptor_); }

private:
    int descriptor_;
};

TEST_F(RealFile, AWholeFileLockOfAnotherProgramKeepsReadersOut)
{
    make("abc");
    const auto file = open(OpenMode::ReadWrite);
    for (const int command : {F_SETLK, F_OFD_SETLK}) {
        const WholeFileLock foreign(path(), command, F_WRLCK);
        EXPECT_THAT([&] { file->lock(LockLevel::Shared, kNoPatience); },
                    throwsError(ErrorCode::Locked, "The file " + path() + " is in use"));
    }
    file->lock(LockLevel::Shared, kNoPatience);
}

TEST_F(RealFile, AWholeFileReadLockOfAnotherProgramKeepsWritersOut)
{
    make("abc");
    const auto file = open(OpenMode::ReadWrite);
    for (const int command : {F_SETLK, F_OFD_SETLK}) {
        const WholeFileLock foreign(path(), command, F_RDLCK);
        file->lock(LockLevel::Shared, kNoPatience);
        EXPECT_THAT([&] { file->lock(LockLevel::Exclusive, kNoPatience); }, throwsError(ErrorCode::Locked));
        file->lock(LockLevel::None, kNoPatience);
    }
}

TEST_F(RealFile, ALockOfAnotherProcessIsSeenAndEndsWithIt)
{
    make("abc");
    int ready[2];
    int go[2];
    ASSERT_EQ(::pipe(ready), 0);
    ASSERT_EQ(::pipe(go), 0);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        ::close(go[1]);
        const auto file = open(OpenMode::ReadWrite);
        file->lock(LockLevel::Exclusive, kNoPatience);
        char byte = 'r';
        const bool told = ::write(ready[1], &byte, 1) == 1;
        static_cast<void>(::read(go[0], &byte, 1)); // until the parent lets go
        ::_exit(told ? 0 : 1);                      // like a program that crashes: nothing is closed in order
    }
    char byte = 0;
    ASSERT_EQ(::read(ready[0], &byte, 1), 1);
    const auto file = open(OpenMode::ReadWrite);
    EXPECT_THAT([&] { file->lock(LockLevel::Shared, milliseconds{5}); }, throwsError(ErrorCode::Locked));
    ::close(go[1]);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    file->lock(LockLevel::Exclusive, kNoPatience);
    for (const int end : {ready[0], ready[1], go[0]}) {
        ::close(end);
    }
}

TEST_F(RealFile, WhatIsSaidOnAClosedStandardStreamDoesNotEndInTheFile)
{
    make("abc");
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            ::close(stream);
        }
        const auto file = open(OpenMode::ReadWrite);
        bool refused = true;
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            refused = ::write(stream, "!", 1) < 0 && refused;
        }
        Bytes content(3);
        file->readAt(0, content);
        ::_exit(refused && content == text("abc") ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

} // namespace
} // namespace jet

// Output that cannot be written.

#include "cli/quillonctl.h"
#include "support/test_diary.h"

#include <QFile>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <fcntl.h>
#include <unistd.h>

namespace {

using testing::StartsWith;

class UnwritableOutput : public testing::Test
{
protected:
    Outcome dumpWith(const std::function<void()>& beforeStart) const
    {
        return quillonctl({QStringLiteral("dump"), diary_.path(), QStringLiteral("BloodSugarReadingTypes")},
                          {QStringLiteral("C.UTF-8"), beforeStart});
    }

    QByteArray fileBytes() const
    {
        QFile file(diary_.path());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    TestDiary diary_;
};

TEST_F(UnwritableOutput, AFullDiskIsAFault)
{
    const Outcome outcome = dumpWith([] { ::dup2(::open("/dev/full", O_WRONLY), STDOUT_FILENO); });
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, StartsWith("quillonctl: Cannot write the output: "));
}

TEST_F(UnwritableOutput, AReaderThatHasLeftIsAFault)
{
    std::array<int, 2> pipe{};
    ASSERT_EQ(::pipe(pipe.data()), 0);
    ::close(pipe[0]);
    const Outcome outcome = dumpWith([&pipe] { ::dup2(pipe[1], STDOUT_FILENO); });
    ::close(pipe[1]);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, StartsWith("quillonctl: Cannot write the output: "));
}

TEST_F(UnwritableOutput, HelpCanFailToo)
{
    const Outcome outcome =
        quillonctl({QStringLiteral("--help")},
                   {QStringLiteral("C.UTF-8"), [] { ::dup2(::open("/dev/full", O_WRONLY), STDOUT_FILENO); }});
    EXPECT_EQ(outcome.status, 1);
}

TEST_F(UnwritableOutput, ClosedStreamsNeverLeadIntoTheDiary)
{
    const QByteArray before = fileBytes();
    ASSERT_FALSE(before.isEmpty());
    const Outcome closedOutput = dumpWith([] { ::close(STDOUT_FILENO); });
    EXPECT_EQ(closedOutput.status, 1);
    EXPECT_THAT(closedOutput.err, StartsWith("quillonctl: Cannot write the output: "));
    const Outcome allClosed = dumpWith([] {
        ::close(STDIN_FILENO);
        ::close(STDOUT_FILENO);
        ::close(STDERR_FILENO);
    });
    EXPECT_EQ(allClosed.status, 1);
    EXPECT_TRUE(fileBytes() == before);
}

} // namespace

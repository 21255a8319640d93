// Output that cannot be written.

#include "cli/quillonctl.h"
#include "support/file_content.h"
#include "support/test_diary.h"

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
    // Far more than a buffer holds, so that it is written while the diary is open: 8 to the power of 5 lines.
    const QString sql = QStringLiteral("select a.Text from BloodSugarReadingTypes as a, BloodSugarReadingTypes as b, "
                                       "BloodSugarReadingTypes as c, BloodSugarReadingTypes as d, "
                                       "BloodSugarReadingTypes as e");
    const QStringList arguments{QStringLiteral("sql"), diary_.path(), sql};
    ASSERT_EQ(linesOf(quillonctl(arguments).out).size(), 1U + 32768U);
    const QByteArray before = contentOf(diary_.path());
    // The lowest free number is given to the next file that is opened, so each number has its turn.
    for (int closed = STDIN_FILENO; closed <= STDERR_FILENO; ++closed) {
        const Outcome outcome =
            quillonctl(arguments, {QStringLiteral("C.UTF-8"), [closed] {
                                       for (int stream = closed; stream <= STDERR_FILENO; ++stream) {
                                           ::close(stream);
                                       }
                                   }});
        EXPECT_EQ(outcome.status, closed <= STDOUT_FILENO ? 1 : 0);
        EXPECT_TRUE(contentOf(diary_.path()) == before) << "streams closed from number " << closed << " on";
    }
    const Outcome closedOutput = quillonctl(arguments, {QStringLiteral("C.UTF-8"), [] { ::close(STDOUT_FILENO); }});
    EXPECT_EQ(closedOutput.status, 1);
    EXPECT_THAT(closedOutput.err, StartsWith("quillonctl: Cannot write the output: "));
    EXPECT_TRUE(contentOf(diary_.path()) == before);
}

} // namespace

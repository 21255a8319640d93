// Files that are not what they should be.

#include "cli/quillonctl.h"
#include "support/test_diary.h"

#include <QFile>
#include <QFileInfo>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

namespace {

using testing::HasSubstr;
using testing::StartsWith;

class Faults : public testing::Test
{
protected:
    /// Each command that opens a file, with arguments that would do.
    static std::vector<QStringList> commandsOn(const QString& path)
    {
        const auto command = [&](const char* name, const QStringList& more = {}) {
            return QStringList{QString::fromLatin1(name), path} + more;
        };
        return {command("check"),
                command("tables"),
                command("queries"),
                command("dump", {QStringLiteral("Meals")}),
                command("sql", {QStringLiteral("select * from Meals")}),
                command("sql", {QStringLiteral("Delete * from Meals")}),
                command("report", {QStringLiteral("basic")}),
                command("print", {QStringLiteral("basic"), QStringLiteral("--pdf"), path + QStringLiteral(".pdf")})};
    }

    static void expectEveryCommandFails(const QString& path, const char* error)
    {
        for (const QStringList& command : commandsOn(path)) {
            const Outcome outcome = quillonctl(command);
            EXPECT_EQ(outcome.status, 1) << command.join(u' ').toStdString();
            EXPECT_EQ(outcome.out, "") << command.join(u' ').toStdString();
            EXPECT_THAT(outcome.err, StartsWith(error)) << command.join(u' ').toStdString();
        }
    }

    static void overwrite(const QString& path, const QByteArray& bytes, qint64 offset = 0)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.seek(offset));
        ASSERT_EQ(file.write(bytes), bytes.size());
    }

    TestDiary diary_;
};

TEST_F(Faults, AMissingFileIsNamedAndNotMade)
{
    const QString missing = diary_.path() + QStringLiteral(".missing");
    expectEveryCommandFails(missing, "quillonctl: Run-time error '3024': ");
    EXPECT_THAT(quillonctl({QStringLiteral("tables"), missing}).err, HasSubstr(missing.toStdString()));
    EXPECT_FALSE(QFile::exists(missing));
}

TEST_F(Faults, AFileThatIsNoDatabaseIsRefusedAndKept)
{
    const QString path = diary_.path() + QStringLiteral(".txt");
    for (const QByteArray& content : {QByteArray(), QByteArray("a letter"), QByteArray(3 * 4096, 'x')}) {
        QFile::remove(path);
        overwrite(path, content);
        expectEveryCommandFails(path, "quillonctl: Run-time error '3343': ");
        EXPECT_EQ(QFileInfo(path).size(), content.size());
    }
}

TEST_F(Faults, AFolderIsNoDatabase)
{
    const Outcome outcome = quillonctl({QStringLiteral("tables"), QFileInfo(diary_.path()).path()});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, StartsWith("quillonctl: Run-time error '"));
}

TEST_F(Faults, CheckListsTheFaultsOfADamagedFile)
{
    // Every data page of the readings' table names its owner; a page of another kind has no business there.
    diary_.addReading(QStringLiteral("05/03/2002 07:30"), 5.6, 1);
    QFile file(diary_.path());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const qint64 lastPage = file.size() - 4096;
    file.close();
    overwrite(diary_.path(), QByteArray(4096, '\x7f'), lastPage);
    const Outcome outcome = quillonctl({QStringLiteral("check"), diary_.path()});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_FALSE(outcome.out.empty());
    EXPECT_THAT(outcome.err, testing::ContainsRegex(": [0-9]+ faults?\n"));
}

TEST_F(Faults, WhatAnotherProgramLeftIsListedByCheckAndIsNoFault)
{
    constexpr qint64 kRowCountOfSavedQueries = 4 * 4096 + 16; // other programs do not keep it up
    overwrite(diary_.path(), QByteArray("\x03\0\0\0", 4), kRowCountOfSavedQueries);
    const Outcome outcome = quillonctl({QStringLiteral("check"), diary_.path()});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.out, testing::HasSubstr("Left by another program, harmless: Page 4: Table \"MSysQueries\": it "
                                                "counts 3 rows and has "));
    EXPECT_THAT(outcome.out, testing::EndsWith(diary_.path().toStdString() + ": sound\n"));
    EXPECT_EQ(outcome.err, "");
}

TEST_F(Faults, AFileThatMayNotBeWrittenIsReadButNotChanged)
{
    diary_.addReading(QStringLiteral("05/03/2002 07:30"), 5.6, 1);
    const QString folder = QFileInfo(diary_.path()).path();
    // Root may write everything, so there the program runs as somebody else.
    const Circumstances somebodyElse{QStringLiteral("C.UTF-8"), [] {
                                         if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0)) {
                                             ::_exit(99);
                                         }
                                     }};
    const auto readable = QFileDevice::ReadOwner | QFileDevice::ReadGroup | QFileDevice::ReadOther;
    const auto enterable = QFileDevice::ExeOwner | QFileDevice::ExeGroup | QFileDevice::ExeOther;
    ASSERT_TRUE(QFile::setPermissions(diary_.path(), readable));
    ASSERT_TRUE(QFile::setPermissions(folder, readable | enterable));
    const Outcome version = quillonctl({QStringLiteral("--version")}, somebodyElse);
    if (version.status != 0) {
        GTEST_SKIP() << "the build folder is closed to others";
    }

    const Outcome dumped =
        quillonctl({QStringLiteral("dump"), diary_.path(), QStringLiteral("ExcelHistory")}, somebodyElse);
    EXPECT_EQ(dumped.status, 0) << dumped.err;
    EXPECT_EQ(linesOf(dumped.out).size(), 2U);

    const Outcome deleted = quillonctl(
        {QStringLiteral("sql"), diary_.path(), QStringLiteral("Delete * from BloodSugarLevels")}, somebodyElse);
    EXPECT_EQ(deleted.status, 1);
    EXPECT_THAT(deleted.err, StartsWith("quillonctl: Run-time error '3027': "));

    ASSERT_TRUE(QFile::setPermissions(folder, readable | enterable | QFileDevice::WriteOwner));
    EXPECT_EQ(
        linesOf(quillonctl({QStringLiteral("dump"), diary_.path(), QStringLiteral("BloodSugarLevels")}).out).size(),
        2U);
}

} // namespace

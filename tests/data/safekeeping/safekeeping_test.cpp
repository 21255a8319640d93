// Backups: made, and put back.
#include "data/safekeeping/files.h"
#include "data/safekeeping/safekeeping.h"
#include "runtime/conversions.h"
#include "runtime/run_time_error.h"
#include "support/test_diary.h"

#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <functional>

namespace {

using runtime::ErrorNumber;
using testing::ElementsAre;
using testing::HasSubstr;

/// The error that the action raises; none fails the test.
runtime::RunTimeError errorOf(const std::function<void()>& action)
{
    try {
        action();
    } catch (const runtime::RunTimeError& error) {
        return error;
    }
    ADD_FAILURE() << "no error";
    return runtime::RunTimeError(ErrorNumber::InvalidProcedureCall);
}

class Safekeeping : public testing::Test
{
protected:
    void addReading() { diary.addReading(QStringLiteral("05/03/2002 08:15"), 5.6, 1); }
    QString inFolder(const char* name) const { return folder.filePath(QString::fromLatin1(name)); }
    QString besideDiary(const char* name) const
    {
        return QFileInfo(diary.path()).dir().filePath(QString::fromLatin1(name));
    }
    static void damage(const QString& path)
    {
        QByteArray bytes = contentOf(path);
        bytes.replace(bytes.size() - 4096, 4096, QByteArray(4096, 'U'));
        writeFile(path, bytes);
    }

    TestDiary diary;
    QTemporaryDir folder;
    runtime::FixedClock clock{runtime::toDate(QStringLiteral("21/11/2026 08:00"))};
};

// --- Backing up ---

using BackUp = Safekeeping;

TEST_F(BackUp, IsTheSameFile)
{
    addReading();
    const data::BackUp made = data::backUp(diary.path(), inFolder("copy.mdb"));
    EXPECT_EQ(made.path, inFolder("copy.mdb"));
    EXPECT_TRUE(made.damage.isEmpty());
    EXPECT_EQ(contentOf(inFolder("copy.mdb")), contentOf(diary.path()));
    EXPECT_THAT(namesIn(folder.path()), ElementsAre("copy.mdb"));
}

TEST_F(BackUp, CanBeMadeWhileTheDiaryIsOpen)
{
    const data::Database window(diary.path());
    addReading();
    static_cast<void>(data::backUp(diary.path(), inFolder("copy.mdb")));
    EXPECT_EQ(readingsIn(inFolder("copy.mdb")), 1);
}

TEST_F(BackUp, NeverOverwritesAFile)
{
    writeFile(inFolder("copy.mdb"), "precious");
    const auto error = errorOf([&] { static_cast<void>(data::backUp(diary.path(), inFolder("copy.mdb"))); });
    EXPECT_EQ(error.code(), ErrorNumber::FileAlreadyExists);
    EXPECT_THAT(error.hint().toStdString(), HasSubstr("copy.mdb"));
    EXPECT_EQ(contentOf(inFolder("copy.mdb")), "precious");
}

TEST_F(BackUp, NamesTheFolderThatIsNotThere)
{
    const auto error = errorOf([&] { static_cast<void>(data::backUp(diary.path(), inFolder("none/copy.mdb"))); });
    EXPECT_EQ(error.code(), ErrorNumber::CannotOpenFile);
    EXPECT_THAT(error.hint().toStdString(), HasSubstr("There is no folder"));
}

TEST_F(BackUp, NamesTheDiaryThatIsNotThere)
{
    const auto error = errorOf([&] { static_cast<void>(data::backUp(inFolder("no.mdb"), inFolder("copy.mdb"))); });
    EXPECT_EQ(error.code(), ErrorNumber::FileNotFound);
    EXPECT_THAT(namesIn(folder.path()), testing::IsEmpty());
}

TEST_F(BackUp, OfADamagedDiaryIsMadeAndSaysSo)
{
    addReading();
    damage(diary.path());
    const data::BackUp made = data::backUp(diary.path(), inFolder("copy.mdb"));
    EXPECT_FALSE(made.damage.isEmpty());
    EXPECT_EQ(contentOf(inFolder("copy.mdb")), contentOf(diary.path()));
}

TEST_F(BackUp, WithoutADestinationGoesBesideTheDiaryUnderTheDay)
{
    EXPECT_EQ(data::backUpToday(diary.path(), clock).path, besideDiary("backups/Nutrition 2026-11-21.mdb"));
    addReading();
    EXPECT_EQ(data::backUpToday(diary.path(), clock).path, besideDiary("backups/Nutrition 2026-11-21 2.mdb"));
    EXPECT_EQ(readingsIn(besideDiary("backups/Nutrition 2026-11-21.mdb")), 0);
    EXPECT_EQ(readingsIn(besideDiary("backups/Nutrition 2026-11-21 2.mdb")), 1);
}

} // namespace

// The copies that the window makes before changes.
#include "app/diary_copies.h"
#include "controls/mock_dialogs.h"
#include "data/database.h"
#include "runtime/conversions.h"
#include "support/test_diary.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

namespace {

using testing::_;
using testing::Truly;

class DiaryCopies : public testing::Test
{
protected:
    QString beside(const char* name) const { return QFileInfo(diary.path()).dir().filePath(QString::fromLatin1(name)); }
    qsizetype readings() const
    {
        return data::Database(diary.path()).openRecordset(QStringLiteral("BloodSugarLevels")).recordCount();
    }

    TestDiary diary;
    runtime::FixedClock clock{runtime::toDate(QStringLiteral("21/11/2026 08:00"))};
    controls::StrictDialogs dialogs;
};

TEST_F(DiaryCopies, TheFirstEntryOfADayMakesACopyWithoutAWord)
{
    const app::DiaryCopies copies(clock, dialogs);
    diary.addReading(QStringLiteral("05/03/2002 08:15"), 5.6, 1);
    QCoreApplication::processEvents();
    EXPECT_TRUE(QFile::exists(beside("backups/Nutrition 2026-11-21.mdb")));
}

TEST_F(DiaryCopies, AFailureIsShownOnceAfterTheEntryIsStored)
{
    QFile inTheWay(beside("backups"));
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    const app::DiaryCopies copies(clock, dialogs);
    diary.addReading(QStringLiteral("05/03/2002 08:15"), 5.6, 1);
    diary.addReading(QStringLiteral("05/03/2002 09:15"), 5.6, 1);
    const auto isPlain = [](const QString& words) { return words.startsWith(QStringLiteral("No copy of the diary")); };
    EXPECT_CALL(dialogs, showError(_, Truly(isPlain), controls::kTitle)).WillOnce([this] { EXPECT_EQ(readings(), 2); });
    QCoreApplication::processEvents();
}

TEST_F(DiaryCopies, NoBoxIsShownWhenTheWindowIsGone)
{
    QFile inTheWay(beside("backups"));
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    {
        const app::DiaryCopies copies(clock, dialogs);
        diary.addReading(QStringLiteral("05/03/2002 08:15"), 5.6, 1);
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(readings(), 1);
}

} // namespace

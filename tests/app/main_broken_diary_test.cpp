// What the user sees when the diary's file is not what it should be, word for word, and that nobody touches it then.
#include "app/main_window.h"
#include "support/file_content.h"

#include <QApplication>
#include <QDir>
#include <QFile>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

namespace app {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr qsizetype kPageSize = 4096;

struct Damage {
    const char* name;
    QByteArray (*spoil)(QByteArray file);
    const char* box; ///< %1 is the path
};

QByteArray patched(QByteArray file, qsizetype offset, char change)
{
    file[offset] = static_cast<char>(file.at(offset) ^ change);
    return file;
}

const std::vector<Damage> kDamages{
    {"Empty", [](QByteArray) { return QByteArray(); },
     "Run-time error '3343':\n\nUnrecognized database format '%1'.\n\nThe file %1 is not an Access database."},
    {"AllZero", [](QByteArray file) { return QByteArray(file.size(), '\0'); },
     "Run-time error '3343':\n\nUnrecognized database format '%1'.\n\nThe file is not an Access database (page 0)."},
    {"ALetter", [](QByteArray) { return QByteArray("Dear diary,\n").repeated(500); },
     "Run-time error '3343':\n\nUnrecognized database format '%1'.\n\nThe file is not an Access database (page 0)."},
    {"CutInItsFirstPage", [](QByteArray file) { return file.left(100); },
     "Run-time error '3343':\n\nUnrecognized database format '%1'.\n\nThe file %1 is not an Access database."},
    {"CutBehindItsFirstPage", [](QByteArray file) { return file.left(kPageSize); },
     "Run-time error '3343':\n\nUnrecognized database format '%1'.\n\nA page was asked for that lies past the end of "
     "%1, which has 1 pages (page 2)."},
    {"WithoutItsCatalogue",
     [](QByteArray file) { return file.replace(2 * kPageSize, kPageSize, QByteArray(kPageSize, '\7')); },
     "Run-time error '3343':\n\nUnrecognized database format '%1'.\n\nA page that should hold a table's definition "
     "does not (page 2)."},
    {"OfAccess97", [](QByteArray file) { return patched(file, 0x14, 1); },
     "Run-time error '3343':\n\nUnrecognized database format '%1'.\n\nThe file was made by Access 97 or earlier; only "
     "files of Access 2000, 2002 and 2003 can be opened (page 0)."},
    {"OfAccess2007", [](QByteArray file) { return patched(file, 0x14, 3); },
     "Run-time error '3343':\n\nUnrecognized database format '%1'.\n\nThe file was made by Access 2007 or later "
     "(format version 2); only files of Access 2000, 2002 and 2003 can be opened (page 0)."},
    {"Encoded", [](QByteArray file) { return patched(file, 0x3E, 1); },
     "Run-time error '3343':\n\nUnrecognized database format '%1'.\n\nThe file is encoded; remove the encoding with "
     "the program that made it before opening it here (page 0)."},
};

class BrokenDiary : public MainWindow
{
protected:
    BrokenDiary() { diary.addReading("02/03/2002 08:15", 5.6, 2); }

    void expectBox(const char* text)
    {
        EXPECT_CALL(dialogs, showError(&*window, QString::fromLatin1(text).replace(QLatin1String("%1"), diary.path()),
                                       QString("Quillon")));
    }
    void report() { choose("mnuReports", "mnuBasicBloodSugar"); }
    void expectReportWorks()
    {
        report();
        EXPECT_THAT(lines(), ElementsAre("Mmol\tWhen\tType\tComment", "", "05.6\t02/03/2002 08:15:00\tMeal\t"));
    }
};

class DamagedDiary : public BrokenDiary, public testing::WithParamInterface<Damage>
{
};

TEST_P(DamagedDiary, IsToldAndLeftAsItIs)
{
    const QByteArray sound = contentOf(diary.path());
    const QByteArray damaged = GetParam().spoil(sound);
    writeFile(diary.path(), damaged);
    expectBox(GetParam().box);
    report();
    EXPECT_THAT(lines(), IsEmpty());
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    EXPECT_EQ(contentOf(diary.path()), damaged);
    writeFile(diary.path(), sound);
    expectReportWorks();
}

INSTANTIATE_TEST_SUITE_P(Damages, DamagedDiary, testing::ValuesIn(kDamages),
                         [](const auto& damage) { return std::string(damage.param.name); });

TEST_F(BrokenDiary, AFolderInItsPlaceIsTold)
{
    const QString away = diary.path() + QStringLiteral(".away");
    ASSERT_TRUE(QFile::rename(diary.path(), away));
    ASSERT_TRUE(QDir().mkdir(diary.path()));
    expectBox("Run-time error '3043':\n\nDisk or network error.\n\nCannot open %1: it is a folder, not a file.");
    report();
    ASSERT_TRUE(QDir().rmdir(diary.path()));
    ASSERT_TRUE(QFile::rename(away, diary.path()));
    expectReportWorks();
}

TEST_F(BrokenDiary, ALockThatIsNeverGivenBackIsToldAfterAShortWait)
{
    const int other = ::open(diary.path().toLocal8Bit().constData(), O_RDWR);
    ASSERT_GE(other, 0);
    struct flock lock {
    };
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    ASSERT_EQ(::fcntl(other, F_OFD_SETLK, &lock), 0);
    expectBox("Run-time error '3045':\n\nCould not use '%1'; file already in use.\n\nAnother program is working with "
              "the diary. Close it there and try again.");
    report();
    ::close(other);
    expectReportWorks();
}

TEST_F(BrokenDiary, AJournalThatIsNoneIsToldAndBothFilesAreLeftAsTheyAre)
{
    const QString journal = diary.path() + QStringLiteral("-journal");
    const QByteArray before = contentOf(diary.path());
    const QByteArray rubbish = QByteArray("not a journal ").repeated(300);
    writeFile(journal, rubbish);
    expectBox("Run-time error '3343':\n\nUnrecognized database format '%1'.\n\nThe last change to %1 was interrupted, "
              "and its journal %1-journal cannot be used to take it back: it does not begin as a journal does; both "
              "files were left as they are.");
    report();
    EXPECT_EQ(contentOf(diary.path()), before);
    EXPECT_EQ(contentOf(journal), rubbish);
    ASSERT_TRUE(QFile::remove(journal));
    expectReportWorks();
}

TEST_F(BrokenDiary, AnotherFileInItsPlaceIsTheDiaryFromThenOn)
{
    expectReportWorks();
    const TestDiary other;
    ASSERT_TRUE(QFile::remove(diary.path()));
    ASSERT_TRUE(QFile::copy(other.path(), diary.path()));
    diary.addReading("02/03/2002 09:00", 7.0, 1);
    report();
    EXPECT_THAT(lines(), ElementsAre("Mmol\tWhen\tType\tComment", "", "07.0\t02/03/2002 09:00:00\tGetting Up\t"));
}

TEST_F(BrokenDiary, ReadingsAtBothEndsOfTheCalendarAreReported)
{
    diary.addReading("02/01/0100 00:01", 4.5, 2);
    diary.addReading("31/12/9999 23:58", 1e12, 2);
    type("txtFrom", "1/1/0100");
    type("txtTo", "31/12/9999 23:59");
    click("cmdApply");
    report();
    EXPECT_THAT(lines(),
                ElementsAre("Mmol\tWhen\tType\tComment", "", "04.5\t02/01/0100 00:01:00\tMeal\t",
                            "05.6\t02/03/2002 08:15:00\tMeal\t", "1000000000000.0\t31/12/9999 23:58:00\tMeal\t"));
}

TEST_F(BrokenDiary, AClockAtTheEndOfTheCalendarOpensTheWindowAllTheSame)
{
    open("31/12/9999 23:59:59");
    EXPECT_EQ(field("txtTo").text(), QStringLiteral("31/12/9999"));
    open("01/01/0100");
    EXPECT_EQ(field("txtFrom").text(), QStringLiteral("01/01/0100"));
}

TEST_F(BrokenDiary, AQuoteInTheFilterIsNoDateAndGoesNoFurther)
{
    type("txtFrom", "1/3/2002') or ('1'='1");
    expectDateMessage();
    QTest::keyClick(&field("txtFrom"), Qt::Key_Tab);
    testing_windows::handlePostedEvents();
    EXPECT_EQ(window->focusWidget(), &field("txtFrom"));
}

} // namespace
} // namespace app

#include "data/diary_location.h"

#include "data/support/print_text.h"

#include <QDir>

#include <gtest/gtest.h>

namespace data::test {
namespace {

TEST(DiaryLocation, StartedFromExactlyItsOwnFolderTheDiaryIsThere)
{
    EXPECT_EQ(diaryPath(QStringLiteral("C:\\Quillon")), QStringLiteral("C:\\Quillon\\Nutrition.mdb"));
}

TEST(DiaryLocation, EveryOtherSpellingOfTheFolderMeansTheFixedPath)
{
    for (const char* folder : {"C:\\quillon", "c:\\Quillon", "C:\\Quillon\\", "C:/Quillon", "D:\\Quillon", ""}) {
        EXPECT_EQ(diaryPath(QString::fromLatin1(folder)), fixedDiaryPath()) << folder;
    }
}

TEST(DiaryLocation, TheFixedPathOfAProgramInItsBuildFolderIsTheOneCompiledIn)
{
    EXPECT_EQ(fixedDiaryPath(), QStringLiteral(QUILLON_EXPECTED_DIARY));
    EXPECT_TRUE(QDir::isAbsolutePath(fixedDiaryPath()));
    EXPECT_TRUE(fixedDiaryPath().endsWith(QStringLiteral("/Nutrition.mdb")));
}

} // namespace
} // namespace data::test

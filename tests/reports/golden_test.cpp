// Whole reports of whole diaries, worked out by hand: one test for each file of the folder golden.

#include "reports/golden_diary.h"

#include "reports/all_reports.h"
#include "runtime/conversions.h"
#include "runtime/run_time_error.h"
#include "support/run_time_errors.h"
#include "support/test_diary.h"

#include <QDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace reports {
namespace {

/// As a golden file writes them.
std::vector<std::string> linesOf(const ReportList& list)
{
    std::vector<std::string> lines;
    for (qsizetype position = 0; position < list.size(); ++position) {
        const ReportLine& line = list.at(position);
        lines.push_back((line.style == Plain ? "" : std::to_string(line.style) + '>') + line.text.toStdString());
    }
    return lines;
}

std::vector<std::string> goldenFiles()
{
    std::vector<std::string> names;
    for (const QFileInfo& file :
         QDir(QStringLiteral(QUILLON_GOLDEN_DIARIES)).entryInfoList({QStringLiteral("*.txt")})) {
        names.push_back(file.completeBaseName().toStdString());
    }
    return names;
}

class GoldenDiaryReports : public testing::TestWithParam<std::string>
{
};

TEST_P(GoldenDiaryReports, HoldTheLinesWorkedOutByHand)
{
    const QString path =
        QStringLiteral(QUILLON_GOLDEN_DIARIES "/") + QString::fromStdString(GetParam()) + QStringLiteral(".txt");
    const GoldenDiary golden = readGoldenDiary(path);
    QLocale::setDefault(golden.locale);
    TestDiary diary;
    for (const GoldenDiary::Reading& reading : golden.readings) {
        diary.addReading(reading.when, reading.mmol, reading.type,
                         reading.comment.isEmpty() ? runtime::Value{runtime::Null{}} : reading.comment);
    }

    for (std::size_t food = 0; food < golden.foods.size(); ++food) {
        addFood(diary.path(), static_cast<qint32>(food) + 1, golden.foods[food]);
    }
    for (const MealRow& meal : golden.meals) {
        addMeal(diary.path(), meal);
    }

    const runtime::FixedClock clock(runtime::toDate(QStringLiteral("01/06/2002 10:00")));
    std::optional<ReportState> state;
    for (const GoldenDiary::Report& expected : golden.reports) {
        SCOPED_TRACE(expected.name.toStdString());
        const Report* report = findReport(expected.name);
        ASSERT_NE(report, nullptr);
        if (!expected.continues) {
            state.emplace(clock);
            state->strPath = diary.path();
            state->fields = golden.filter;
            state->strWhere = golden.filter.isComplete() ? golden.filter.strWhere() : QString();
        }
        ASSERT_TRUE(state.has_value()) << "the first report continues nothing";
        EXPECT_EQ(errorNumberOf([&] { report->build(*state); }), expected.error);
        EXPECT_THAT(linesOf(state->lstView), testing::ElementsAreArray(expected.lines));
    }
}

INSTANTIATE_TEST_SUITE_P(File, GoldenDiaryReports, testing::ValuesIn(goldenFiles()),
                         [](const auto& file) { return file.param; });

} // namespace
} // namespace reports

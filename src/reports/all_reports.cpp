#include "reports/all_reports.h"

#include "reports/basic_report.h"
#include "reports/daily_analysis.h"
#include "reports/diary_report.h"
#include "reports/statistics.h"

#include <algorithm>
#include <array>

namespace reports {

std::span<const Report> allReports()
{
    static const std::array reports = {
        Report{QStringLiteral("basic"), QStringLiteral("Basic Blood Sugar Data"), buildBasicReport},
        Report{QStringLiteral("daily"), QStringLiteral("Daily Analysis"), buildDailyAnalysis},
        Report{QStringLiteral("diary"), QStringLiteral("Overall Diary - Inc Meal"),
               [](ReportState& state) { DisplayDiary(state, true); }},
        Report{QStringLiteral("diary-summary"), QStringLiteral("Overall Diary - Summary"),
               [](ReportState& state) { DisplayDiary(state, false); }},
        Report{QStringLiteral("insulin"), QStringLiteral("Insulin Diary"), DisplayInsulinDiary},
        Report{QStringLiteral("stats"), QStringLiteral("Stats"), buildStatistics},
    };
    return reports;
}

const Report* findReport(const QString& name)
{
    const auto reports = allReports();
    const auto found =
        std::find_if(reports.begin(), reports.end(), [&](const Report& report) { return report.name == name; });
    return found == reports.end() ? nullptr : &*found;
}

} // namespace reports

#include "reports/report_runner.h"

#include "reports/basic_report.h"

#include <algorithm>

namespace reports {

std::span<const Report> allReports()
{
    static const Report reports[] = {
        {QStringLiteral("basic"), QStringLiteral("Basic Blood Sugar Data"), buildBasicReport},
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

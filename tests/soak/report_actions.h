// Reports, filters and Find, as in one main window.
#pragma once

#include "reports/find_in_report.h"
#include "reports/report_state.h"
#include "soak/scene.h"

namespace soak {

class ReportWindow
{
public:
    explicit ReportWindow(const QString& diaryPath);
    ReportWindow(const ReportWindow&) = delete;
    ReportWindow& operator=(const ReportWindow&) = delete;

    /// Sets or clears the filter.
    void filter(Scene& scene);
    /// Every line is compared.
    void basicReport(Scene& scene);
    /// Another report: runs, or ends with the error that it is known to end with.
    void otherReport(Scene& scene);
    void find(Scene& scene);
    /// What the list holds now, on paper.
    void print(Scene& scene);

private:
    [[nodiscard]] bool isInFilter(Minute time) const;

    runtime::FixedClock clock_{runtime::Date{46030.5}};
    reports::ReportState state_{clock_};
    reports::FindInReport find_;
    Minute from_ = 0; ///< of the filter in force
    Minute to_ = 0;
};

} // namespace soak

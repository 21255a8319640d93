// The reports by name, for whoever runs them without a menu.
#pragma once

#include "reports/report_state.h"

#include <QString>

#include <span>

namespace reports {

struct Report {
    QString name;  ///< "basic", "daily", "diary", "diary-summary", "insulin", "stats"
    QString title; ///< as the menu calls it
    void (*build)(ReportState& state);
};

/// In the order of the menu.
[[nodiscard]] std::span<const Report> allReports();
/// Null when there is none of that name.
[[nodiscard]] const Report* findReport(const QString& name);

} // namespace reports

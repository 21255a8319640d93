// What the main window owns and hands to reports and dialogs.
#pragma once

#include "reports/date_filter.h"
#include "reports/nutrient_totals.h"
#include "reports/report_list.h"
#include "runtime/clock.h"

#include <QList>
#include <QString>

namespace reports {

struct ReportState {
    explicit ReportState(const runtime::Clock& clockInForce) : clock(clockInForce) {}

    const runtime::Clock& clock; ///< outlives this
    QString strPath;             ///< full path of the diary file, set once at load
    QString strWhere;            ///< the date filter in force as a where-clause, or empty
    DateFilter fields;           ///< what the filter's fields hold now, in force or not
    QString ReportTitle;         ///< heading of the report now shown; lines end in CR LF
    QList<double> PrintTabs;     ///< horizontal print positions in twips of the report now shown
    ReportList lstView;          ///< the report list's content
    qint16 printedLines = 0;     ///< modDisp's line counter, which outlives a print job
    NutrientTotals dayTotals;    ///< of meals whose day no diary has closed yet; outlives a report
};

} // namespace reports

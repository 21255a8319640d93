// A report with a diary of its own, and what it did.
#pragma once

#include "data/database.h"
#include "reports/report_state.h"
#include "runtime/calendar.h"
#include "runtime/conversions.h"
#include "support/run_time_errors.h"
#include "support/test_diary.h"

#include <QLocale>

#include <string>
#include <vector>

namespace reports {

/// The codes of the readings' types.
enum Type : int { Unclassified, GettingUp, Meal, MealPlus2, MealPlus3, PreBed, Calibration, Exercise, Other };

class ReportUnderTest
{
public:
    explicit ReportUnderTest(void (*builder)(ReportState&)) : builder_(builder)
    {
        QLocale::setDefault(QLocale::c());
        state_.strPath = diary_.path();
    }

    void add(const char* when, double mmol, Type type) { diary_.addReading(QString::fromLatin1(when), mmol, type); }

    void addReadingWithoutLevel(const char* when)
    {
        data::Database database(diary_.path());
        data::Recordset readings = database.openRecordset(QStringLiteral("BloodSugarLevels"));
        readings.addNew();
        readings.set(QStringLiteral("ReadingTime"), runtime::toDate(QString::fromLatin1(when)));
        readings.set(QStringLiteral("ReadingType"), qint32{Meal});
        readings.update();
    }

    void filter(const char* from, const char* to)
    {
        state_.fields = {QString::fromLatin1(from), QString::fromLatin1(to)};
        state_.strWhere = state_.fields.strWhere();
    }

    void build() { builder_(state_); }

    /// The number of the error that the report ends with; 0 without one.
    int errorOfBuild()
    {
        const auto error = errorOf([this] { build(); });
        hint_ = error ? error->hint().toStdString() : std::string();
        return error ? error->number() : 0;
    }
    /// Of the last error.
    [[nodiscard]] const std::string& hint() const { return hint_; }

    [[nodiscard]] std::vector<std::string> lines() const
    {
        std::vector<std::string> lines;
        for (qsizetype line = 0; line < state_.lstView.size(); ++line) {
            lines.push_back(state_.lstView.at(line).text.toStdString());
        }
        return lines;
    }

private:
    runtime::FixedClock clock_{runtime::dateFromParts({2002, 3, 5, 8, 5, 59}).value()};

protected:
    TestDiary diary_;
    ReportState state_{clock_};

private:
    void (*builder_)(ReportState&);
    std::string hint_;
};

} // namespace reports

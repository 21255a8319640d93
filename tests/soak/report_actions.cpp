#include "soak/report_actions.h"

#include "reports/modDisp.h"
#include "reports/all_reports.h"
#include "support/recording_printer.h"

#include <algorithm>

namespace soak {

namespace {

using runtime::ErrorNumber;

constexpr Minute kDay = 24 * 60;

QString typeName(qint32 type)
{
    static const std::vector<QString> names{
        QStringLiteral("Unclassified"), QStringLiteral("Getting Up"), QStringLiteral("Meal"),
        QStringLiteral("Meal + 2"),     QStringLiteral("Meal + 3"),   QStringLiteral("Pre Bed"),
        QStringLiteral("Calibration"),  QStringLiteral("Exercise"),   QStringLiteral("Other")};
    return names.at(type < static_cast<qint32>(names.size()) ? static_cast<std::size_t>(type) : 0);
}

struct Line {
    std::string text;
    int style = 0;
};

Line lineOf(const Reading& reading)
{
    const QString level = tenths(reading.level).rightJustified(4, u'0');
    const int style = reading.level < 4 ? 4 : (reading.level <= 8 ? 8 : 16);
    return {QStringList{level, textOf(reading.time), typeName(reading.type), reading.comment}.join(u'\t').toStdString(),
            style};
}

} // namespace

ReportWindow::ReportWindow(const QString& diaryPath)
{
    state_.strPath = diaryPath;
}

void ReportWindow::filter(Scene& scene)
{
    if (scene.dice.oneIn(3)) {
        scene.action = "clear the filter";
        state_.strWhere.clear();
        return;
    }
    const Minute day = scene.moment() / kDay * kDay;
    from_ = scene.dice.oneIn(2) ? day : scene.moment();
    to_ = from_ + scene.dice.between(1, 10) * kDay;
    const auto typed = [](Minute moment) {
        return moment % kDay == 0 ? dayOf(moment) : dayOf(moment) + u' ' + timeOf(moment);
    };
    state_.fields = {typed(from_), typed(to_)};
    state_.strWhere = state_.fields.strWhere();
    scene.action = "set the filter \"" + state_.strWhere.toStdString() + '"';
}

bool ReportWindow::isInFilter(Minute time) const
{
    return state_.strWhere.isEmpty() || (time > from_ && time < to_);
}

void ReportWindow::basicReport(Scene& scene)
{
    scene.action = "basic report " + state_.strWhere.toStdString();
    std::vector<std::pair<Minute, qint32>> order;
    for (const auto& [number, reading] : scene.expected.readings) {
        if (isInFilter(reading.time))
            order.emplace_back(reading.time, number);
    }
    std::sort(order.begin(), order.end());
    std::vector<Line> lines{{"Mmol\tWhen\tType\tComment", 1}, {"", 0}};
    for (const auto& [time, number] : order)
        lines.push_back(lineOf(scene.expected.readings.at(number)));

    const int error = errorOf([&] { reports::findReport(QStringLiteral("basic"))->build(state_); });
    const int meant = order.empty() ? static_cast<int>(ErrorNumber::NoCurrentRecord) : 0;
    require(error == meant, "it ended with the run-time error " + std::to_string(error));
    require(state_.lstView.size() == static_cast<qsizetype>(lines.size()),
            "it has " + std::to_string(state_.lstView.size()) + " lines and not " + std::to_string(lines.size()));
    for (qsizetype i = 0; i < state_.lstView.size(); ++i) {
        const reports::ReportLine& found = state_.lstView.at(i);
        const Line& expected = lines[static_cast<std::size_t>(i)];
        require(found.text.toStdString() == expected.text && found.style == expected.style,
                "line " + std::to_string(i) + " is \"" + found.text.toStdString() + "\", style " +
                    std::to_string(found.style) + ", and not \"" + expected.text + "\", style " +
                    std::to_string(expected.style));
    }
}

void ReportWindow::otherReport(Scene& scene)
{
    const auto all = reports::allReports();
    const reports::Report& report =
        all[static_cast<std::size_t>(scene.dice.between(1, static_cast<int>(all.size()) - 1))];
    scene.action = "report " + report.name.toStdString() + ' ' + state_.strWhere.toStdString();
    if (state_.lstView.size() > 2000)
        state_.lstView.clear(); // most reports add to the list
    // No record to report on, and days or meals whose averages or shares have nothing to divide by.
    static const std::vector<int> known{0, static_cast<int>(ErrorNumber::NoCurrentRecord),
                                        static_cast<int>(ErrorNumber::DivisionByZero)};
    const int error = errorOf([&] { report.build(state_); });
    require(std::count(known.begin(), known.end(), error) == 1,
            "it ended with the run-time error " + std::to_string(error));
}

void ReportWindow::find(Scene& scene)
{
    static const std::vector<QString> texts{QStringLiteral("meal"), QStringLiteral("ŁÓDŹ"), QStringLiteral("05."),
                                            QStringLiteral("in no line"), QString()};
    const QString& text = scene.dice.oneOf(texts);
    scene.action = "find \"" + text.toStdString() + "\" in the list";
    std::optional<qsizetype> found = find_.find(state_.lstView, text);
    for (qsizetype line = 0; line < state_.lstView.size(); ++line) {
        if (!state_.lstView.at(line).text.contains(text, Qt::CaseInsensitive))
            continue;
        require(found == line, "line " + std::to_string(line) + " was not found");
        found = find_.findNext(state_.lstView);
    }
    require(!found, "a line was found that has no such text");
}

void ReportWindow::print(Scene& scene)
{
    scene.action = "print the list";
    if (state_.PrintTabs.isEmpty())
        return;
    Printout printout;
    RecordingPrinter printer(printout);
    reports::PrintList(printer, {state_.lstView, state_.PrintTabs, state_.ReportTitle, {}}, state_.printedLines);
    require(printout.size() == 1 && printout.front().isPrinted(), "nothing was printed");
}

} // namespace soak

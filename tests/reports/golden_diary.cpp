#include "golden_diary.h"

#include <QFile>
#include <QStringList>

#include <stdexcept>

namespace reports {
namespace {

const QStringList kTypes = {QStringLiteral("Unclassified"), QStringLiteral("Getting Up"), QStringLiteral("Meal"),
                            QStringLiteral("Meal + 2"),     QStringLiteral("Meal + 3"),   QStringLiteral("Pre Bed"),
                            QStringLiteral("Calibration"),  QStringLiteral("Exercise"),   QStringLiteral("Other")};

void require(bool sensible, const char* what)
{
    if (!sensible) {
        throw std::runtime_error(what);
    }
}

GoldenDiary::Reading readingIn(const QString& text)
{
    QStringList columns;
    for (const QString& column : text.split(u'|')) {
        columns.append(column.trimmed());
    }
    require(columns.size() == 3 || columns.size() == 4, "a reading has three or four columns");
    bool isNumber = false;
    const GoldenDiary::Reading reading{columns.at(0), QLocale::c().toDouble(columns.at(1), &isNumber),
                                       static_cast<int>(kTypes.indexOf(columns.at(2))), columns.value(3)};
    require(isNumber, "no level");
    require(reading.type >= 0, "no type of reading");
    return reading;
}

DateFilter filterIn(const QString& text)
{
    const QStringList dates = text.split(QStringLiteral(" to "));
    require(dates.size() == 2, "a filter has two dates");
    return {dates.at(0), dates.at(1)};
}

std::string listLineIn(QString line)
{
    if (line.startsWith(QStringLiteral("> "))) {
        line.remove(0, 2);
    } else if (line == u'>') {
        line.clear();
    } else {
        line.replace(line.indexOf(u'>'), 2, QStringLiteral(">"));
    }
    return line.replace(QStringLiteral("\\t"), QStringLiteral("\t"))
        .replace(QStringLiteral("\\s"), QStringLiteral(" "))
        .toStdString();
}

void take(const QString& line, GoldenDiary& diary)
{
    const QString word = line.section(u' ', 0, 0);
    const QString rest = line.section(u' ', 1);
    if (word.endsWith(u'>')) {
        require(!diary.reports.empty(), "a line of no report");
        diary.reports.back().lines.push_back(listLineIn(line));
    } else if (word == QStringLiteral("locale")) {
        diary.locale = QLocale(rest);
        require(diary.locale.name() == rest, "no locale");
    } else if (word == QStringLiteral("filter")) {
        diary.filter = filterIn(rest);
    } else if (word == QStringLiteral("reading")) {
        diary.readings.push_back(readingIn(rest));
    } else if (word == QStringLiteral("report")) {
        diary.reports.push_back({rest, {}, 0});
    } else if (word == QStringLiteral("error")) {
        require(!diary.reports.empty(), "an error of no report");
        diary.reports.back().error = rest.toInt();
        require(diary.reports.back().error > 0, "no error number");
    } else {
        require(line.isEmpty() || line.startsWith(u'#'), "no word that begins a line");
    }
}

} // namespace

GoldenDiary readGoldenDiary(const QString& path)
{
    QFile file(path);
    require(file.open(QIODevice::ReadOnly), "no such file");
    const QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');

    GoldenDiary diary;
    for (qsizetype number = 0; number < lines.size(); ++number) {
        try {
            take(lines.at(number), diary);
        } catch (const std::runtime_error& fault) {
            throw std::runtime_error("line " + std::to_string(number + 1) + ": " + fault.what());
        }
    }
    require(!diary.reports.empty(), "no report is expected");
    return diary;
}

} // namespace reports

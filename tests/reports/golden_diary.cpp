#include "reports/golden_diary.h"

#include <QFile>
#include <QStringList>

#include <algorithm>
#include <optional>
#include <stdexcept>

namespace reports {
namespace {

const QStringList kTypes = {QStringLiteral("Unclassified"), QStringLiteral("Getting Up"), QStringLiteral("Meal"),
                            QStringLiteral("Meal + 2"),     QStringLiteral("Meal + 3"),   QStringLiteral("Pre Bed"),
                            QStringLiteral("Calibration"),  QStringLiteral("Exercise"),   QStringLiteral("Other")};

const QStringList kMealTypes = {QStringLiteral("-"), QStringLiteral("Breakfast"), QStringLiteral("Lunch"),
                                QStringLiteral("Dinner"), QStringLiteral("Snack")};

void require(bool sensible, const char* what)
{
    if (!sensible) {
        throw std::runtime_error(what);
    }
}

QStringList columnsIn(const QString& text)
{
    QStringList columns;
    for (const QString& column : text.split(u'|')) {
        columns.append(column.trimmed());
    }
    return columns;
}

std::optional<double> numberIn(const QString& text)
{
    if (text == u'-') {
        return std::nullopt;
    }
    bool isNumber = false;
    const double number = QLocale::c().toDouble(text, &isNumber);
    require(isNumber, "no number");
    return number;
}

GoldenDiary::Reading readingIn(const QString& text)
{
    const QStringList columns = columnsIn(text);
    require(columns.size() == 3 || columns.size() == 4, "a reading has three or four columns");
    bool isNumber = false;
    const GoldenDiary::Reading reading{columns.at(0), QLocale::c().toDouble(columns.at(1), &isNumber),
                                       static_cast<int>(kTypes.indexOf(columns.at(2))), columns.value(3)};
    require(isNumber, "no level");
    require(reading.type >= 0, "no type of reading");
    return reading;
}

FoodRow foodIn(const QString& text)
{
    const QStringList columns = columnsIn(text);
    require(columns.size() == 5, "a food has a description and four figures");
    return {columns.at(0), numberIn(columns.at(1)), numberIn(columns.at(2)), numberIn(columns.at(3)),
            numberIn(columns.at(4))};
}

MealRow::Portion portionIn(const QString& text, const std::vector<FoodRow>& foods)
{
    const QString description = text.section(u' ', 1);
    const auto food = std::find_if(foods.begin(), foods.end(),
                                   [&](const FoodRow& known) { return known.description == description; });
    require(food != foods.end(), "a meal of no food above it");
    return {static_cast<qint32>(food - foods.begin()) + 1, numberIn(text.section(u' ', 0, 0))};
}

MealRow mealIn(const QString& text, const std::vector<FoodRow>& foods)
{
    const QStringList columns = columnsIn(text);
    require(columns.size() > 3, "a meal has a time, a type, a dose and foods");
    MealRow meal{columns.at(0), static_cast<int>(kMealTypes.indexOf(columns.at(1))), std::nullopt, {}};
    require(meal.type >= 0, "no type of meal");
    if (const std::optional<double> dose = numberIn(columns.at(2))) {
        meal.dose = static_cast<int>(*dose);
    }
    for (const QString& portion : columns.mid(3)) {
        meal.portions.push_back(portionIn(portion, foods));
    }
    return meal;
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
    } else if (word == QStringLiteral("food")) {
        diary.foods.push_back(foodIn(rest));
    } else if (word == QStringLiteral("meal")) {
        diary.meals.push_back(mealIn(rest, diary.foods));
    } else if (word == QStringLiteral("report")) {
        diary.reports.push_back({rest, {}, 0, false});
    } else if (word == QStringLiteral("then")) {
        require(!diary.reports.empty(), "no report to go on from");
        diary.reports.push_back({rest, diary.reports.back().lines, 0, true});
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

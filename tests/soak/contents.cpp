#include "soak/contents.h"

#include "data/database.h"
#include "runtime/conversions.h"
#include "runtime/format.h"

#include <QProcess>
#include <QStringList>

#include <algorithm>
#include <iterator>
#include <stdexcept>

namespace soak {

namespace {

constexpr double kMinutesOfDay = 1440;

QString number(double value)
{
    return QString::number(value, 'g', 15);
}

QString momentOf(double days)
{
    return runtime::format(runtime::Date{days}, QStringLiteral("dd/mm/yyyy hh:mm:ss"));
}

std::string joined(const QStringList& columns)
{
    return columns.join(QStringLiteral(" | ")).toStdString();
}

/// A table whose records are compared, and the columns that make a line.
struct Table {
    const char* name;
    const char* kind; ///< what the line begins with
    std::vector<const char*> columns;
};

const std::vector<Table>& tables()
{
    static const std::vector<Table> all{
        {"BloodSugarLevels", "reading", {"BloodSugerNo", "BloodSugerLevel", "ReadingTime", "ReadingType", "Comment"}},
        {"Meals", "meal", {"MealNo", "MealTime", "MealDescription", "Insulin Dosage"}},
        {"MealContent", "portion", {"MealID", "NDB_No", "Quantity"}},
        {"NutritionalInformation", "food", {"NDB_No", "Shrt_Desc", "Recipe", "Ingredient", "Carbohydrt", "Energ_Kcal"}},
    };
    return all;
}

QString shown(const runtime::Value& value)
{
    if (const auto* date = std::get_if<runtime::Date>(&value))
        return momentOf(date->days);
    if (const auto* real = std::get_if<double>(&value))
        return number(*real);
    if (const auto* truth = std::get_if<bool>(&value))
        return *truth ? QStringLiteral("1") : QStringLiteral("0");
    return runtime::toText(value);
}

QString shown(const std::optional<double>& value)
{
    return value ? number(*value) : QString();
}

QString shown(bool value)
{
    return value ? QStringLiteral("1") : QStringLiteral("0");
}

/// Its figures have more digits than they need.
QString withFewerDigits(const QString& exported)
{
    bool isNumber = false;
    const double value = exported.toDouble(&isNumber);
    return isNumber ? number(value) : exported;
}

/// None where the program is not installed.
std::optional<QStringList> exportedTable(const QString& diaryPath, const char* table)
{
    const QString program = QStringLiteral(QUILLON_MDB_EXPORT);
    if (program.isEmpty() || program.endsWith(QStringLiteral("-NOTFOUND")))
        return std::nullopt;
    QProcess mdbExport;
    mdbExport.start(program, {QStringLiteral("-Q"), QStringLiteral("-d"), QStringLiteral("\t"), QStringLiteral("-T"),
                              QStringLiteral("%d/%m/%Y %H:%M:%S"), diaryPath, QString::fromLatin1(table)});
    if (!mdbExport.waitForFinished(60000) || mdbExport.exitCode() != 0)
        throw std::runtime_error(std::string("mdb-export cannot read ") + table + ": " +
                                 mdbExport.readAllStandardError().toStdString());
    QStringList lines = QString::fromUtf8(mdbExport.readAllStandardOutput()).split(u'\n');
    if (lines.constLast().isEmpty())
        lines.removeLast();
    return lines;
}

} // namespace

double daysOf(Minute minute)
{
    return static_cast<double>(minute) / kMinutesOfDay;
}

QString textOf(Minute minute)
{
    return minute % static_cast<Minute>(kMinutesOfDay) == 0 ? dayOf(minute) : momentOf(daysOf(minute));
}

QString dayOf(Minute minute)
{
    return runtime::format(runtime::Date{daysOf(minute)}, QStringLiteral("dd/mm/yyyy"));
}

QString timeOf(Minute minute)
{
    return runtime::format(runtime::Date{daysOf(minute)}, QStringLiteral("hh:mm"));
}

Lines linesOf(const Contents& contents)
{
    Lines lines;
    for (const auto& [no, reading] : contents.readings)
        lines.push_back(joined({QStringLiteral("reading"), QString::number(no), number(reading.level),
                                momentOf(daysOf(reading.time)), QString::number(reading.type), reading.comment}));
    for (const auto& [no, meal] : contents.meals)
        lines.push_back(joined({QStringLiteral("meal"), QString::number(no), momentOf(daysOf(meal.time)),
                                QString::number(meal.type), QString::number(meal.dose)}));
    for (const auto& [no, portions] : contents.portions) {
        for (const Portion& portion : portions)
            lines.push_back(joined({QStringLiteral("portion"), QString::number(no), QString::number(portion.food),
                                    number(portion.grams)}));
    }
    for (const auto& [no, food] : contents.foods)
        lines.push_back(joined({QStringLiteral("food"), QString::number(no), food.description, shown(food.isRecipe),
                                shown(food.isIngredient), shown(food.carbohydrate), shown(food.energy)}));
    std::sort(lines.begin(), lines.end());
    return lines;
}

Lines linesIn(data::Database& database)
{
    Lines lines;
    const data::Database::Reading reading(database);
    for (const Table& table : tables()) {
        data::Recordset records = database.openRecordset(QString::fromLatin1(table.name));
        for (; !records.eof(); records.moveNext()) {
            QStringList columns{QString::fromLatin1(table.kind)};
            for (const char* column : table.columns)
                columns.append(shown(records.value(QString::fromLatin1(column))));
            lines.push_back(joined(columns));
        }
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

std::optional<Lines> exportedLines(const QString& diaryPath)
{
    Lines lines;
    for (const Table& table : tables()) {
        const std::optional<QStringList> exported = exportedTable(diaryPath, table.name);
        if (!exported)
            return std::nullopt;
        const QStringList names = exported->constFirst().split(u'\t');
        for (qsizetype line = 1; line < exported->size(); ++line) {
            const QStringList fields = exported->at(line).split(u'\t');
            QStringList columns{QString::fromLatin1(table.kind)};
            for (const char* column : table.columns)
                columns.append(withFewerDigits(fields.value(names.indexOf(QString::fromLatin1(column)))));
            lines.push_back(joined(columns));
        }
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

std::string difference(const Lines& expected, const Lines& found)
{
    Lines missing;
    Lines surplus;
    std::set_difference(expected.begin(), expected.end(), found.begin(), found.end(), std::back_inserter(missing));
    std::set_difference(found.begin(), found.end(), expected.begin(), expected.end(), std::back_inserter(surplus));
    std::string text;
    for (const std::string& line : missing)
        text += "  expected  " + line + '\n';
    for (const std::string& line : surplus)
        text += "  found     " + line + '\n';
    return text;
}

} // namespace soak

#include "data/support/small_diary.h"

#include "data/support/query_rows.h"
#include "runtime/run_time_error.h"

#include <QDate>

namespace data::test {
namespace {

using jet::ColumnType;

jet::IndexSpec primaryKey(const std::string& column)
{
    jet::IndexSpec index;
    index.name = "PrimaryKey";
    index.keys = {{column}};
    index.primaryKey = true;
    return index;
}

jet::IndexSpec plainIndex(const std::string& column)
{
    jet::IndexSpec index;
    index.name = column;
    index.keys = {{column}};
    return index;
}

jet::ColumnSpec text(const std::string& name, std::uint16_t characters)
{
    jet::ColumnSpec column;
    column.name = name;
    column.type = ColumnType::Text;
    column.characters = characters;
    return column;
}

jet::ColumnSpec autoNumber(const std::string& name)
{
    jet::ColumnSpec column;
    column.name = name;
    column.autoNumber = true;
    return column;
}

void createTables(jet::Database& file)
{
    file.createTable({"BloodSugarLevels",
                      {autoNumber("BloodSugerNo"),
                       {"BloodSugerLevel", ColumnType::Double},
                       {"ReadingTime", ColumnType::DateTime},
                       {"ReadingType", ColumnType::Long},
                       text("Comment", 50)},
                      {primaryKey("BloodSugerNo"), plainIndex("ReadingTime")}});
    file.createTable({"BloodSugarReadingTypes", {{"Type", ColumnType::Long}, text("Text", 50)}, {primaryKey("Type")}});
    file.createTable({"Meals",
                      {autoNumber("MealNo"),
                       {"MealTime", ColumnType::DateTime},
                       {"MealDescription", ColumnType::Integer},
                       {"Insulin Dosage", ColumnType::Integer}},
                      {primaryKey("MealNo"), plainIndex("MealTime")}});
    file.createTable({"MealContent",
                      {{"MealID", ColumnType::Long}, {"NDB_No", ColumnType::Long}, {"Quantity", ColumnType::Double}},
                      {plainIndex("MealID"), plainIndex("NDB_No")}});
    file.createTable({"NutritionalInformation",
                      {{"NDB_No", ColumnType::Long},
                       text("Shrt_Desc", 60),
                       {"Energ_Kcal", ColumnType::Double},
                       {"Carbohydrt", ColumnType::Double},
                       {"Recipe", ColumnType::Boolean}},
                      {primaryKey("NDB_No"), plainIndex("Shrt_Desc")}});
}

void fill(jet::Table& table, const std::vector<std::vector<jet::Value>>& rows)
{
    const std::vector<const jet::Column*> columns = table.definition().displayOrder();
    for (const std::vector<jet::Value>& row : rows) {
        std::vector<jet::ColumnValue> values;
        for (std::size_t i = 0; i < row.size(); ++i) {
            values.push_back({columns[i]->number, row[i]});
        }
        table.insert(values);
    }
}

jet::Value at(int year, int month, int dayOfMonth, int hour = 0, int minute = 0)
{
    return jet::DateTime{day(year, month, dayOfMonth, hour, minute)};
}

jet::Value whole(std::int32_t number)
{
    return number;
}

jet::Value small(std::int16_t number)
{
    return number;
}

jet::Value words(const char16_t* text)
{
    return std::u16string(text);
}

void fillTables(jet::Database& file)
{
    const jet::Value null = jet::Null{};
    fill(file.table("BloodSugarReadingTypes"), {{whole(1), words(u"Getting Up")},
                                                {whole(2), words(u"Meal")},
                                                {whole(3), words(u"Meal + 2")},
                                                {whole(4), words(u"Meal + 3")},
                                                {whole(5), words(u"Pre Bed")},
                                                {whole(6), words(u"Calibration")},
                                                {whole(7), words(u"Exercise")},
                                                {whole(8), words(u"Other")}});
    fill(file.table("BloodSugarLevels"), {{whole(1), 5.5, at(2024, 1, 10, 7), whole(1), words(u"before breakfast")},
                                          {whole(2), 8.25, at(2024, 1, 10, 10), whole(3), null},
                                          {whole(3), 4.0, at(2024, 1, 10), whole(0), words(u"")},
                                          {whole(4), 12.5, at(2024, 1, 11, 7, 30), whole(1), words(u"It's high")},
                                          {whole(5), 6.0, at(2024, 1, 12), whole(2), words(u"50% of [it]")},
                                          {whole(6), 7.0, at(2024, 1, 9, 22), whole(5), null},
                                          {whole(7), 9.0, at(2024, 1, 11, 7, 30), whole(8), words(u"same time as 4")}});
    fill(file.table("Meals"), {{whole(1), at(2024, 1, 10, 8), small(1), small(7)},
                               {whole(2), at(2024, 1, 10, 16), small(4), small(0)},
                               {whole(3), at(2024, 1, 11, 8), small(0), small(9)},
                               {whole(4), at(2024, 1, 11, 19), small(3), small(12)}});
    fill(file.table("NutritionalInformation"), {{whole(1001), words(u"BUTTER,WITH SALT"), 717.0, 0.06, false},
                                                {whole(1002), words(u"Milk, whole"), 61.0, 4.8, false},
                                                {whole(1003), words(u"bread"), 266.0, 49.0, false},
                                                {whole(2000), words(u"Porridge"), 70.0, null, true}});
    fill(file.table("MealContent"), {{whole(1), whole(1003), 80.0},
                                     {whole(1), whole(1001), 10.0},
                                     {whole(2), whole(1002), 200.0},
                                     {whole(3), whole(2000), 150.0},
                                     {whole(3), whole(1002), 250.0}});
}

void createQueries(jet::Database& file)
{
    file.createQuery(QueryRows("ExcelHistory")
                         .column(u"[BloodSugarLevels].[BloodSugerLevel]", u"Mmol")
                         .column(u"[BloodSugarLevels].[ReadingTime]", u"When")
                         .column(u"IIf(IsNull([BloodSugarReadingTypes].[Text]),\"Unclassified\","
                                 u"[BloodSugarReadingTypes].[Text])",
                                 u"Type")
                         .column(u"[BloodSugarLevels].[Comment]")
                         .source(u"BloodSugarLevels")
                         .source(u"BloodSugarReadingTypes")
                         .join(QueryRows::kLeft, u"[BloodSugarLevels].[ReadingType]=[BloodSugarReadingTypes].[Type]",
                               u"BloodSugarLevels", u"BloodSugarReadingTypes")
                         .orderBy(u"[BloodSugarLevels].[ReadingTime]")
                         .query());
    file.createQuery(
        QueryRows("MealDetails")
            .column(u"Meals.MealTime", u"When")
            .column(u"Switch([MealDescription]=1,\"Breakfast\",[MealDescription]=2,\"Lunch\",[MealDescription]=3,"
                    u"\"Dinner\",[MealDescription]=4,\"Snack\",True,\"\")",
                    u"MealType")
            .column(u"Meals.[Insulin Dosage]", u"InsulinDosage")
            .column(u"MealContent.Quantity")
            .column(u"NutritionalInformation.Shrt_Desc", u"Desc")
            .column(u"[Energ_Kcal]*[Quantity]/100", u"kCal")
            .column(u"[Carbohydrt]*[Quantity]/100", u"Carb")
            .source(u"Meals")
            .source(u"MealContent")
            .source(u"NutritionalInformation")
            .join(QueryRows::kInner, u"Meals.MealNo = MealContent.MealID", u"Meals", u"MealContent")
            .join(QueryRows::kInner, u"MealContent.NDB_No = NutritionalInformation.NDB_No", u"MealContent",
                  u"NutritionalInformation")
            .orderBy(u"Meals.MealTime")
            .query());
    file.createQuery(QueryRows("ExistingMeals")
                         .column(u"MealTime", u"MTime")
                         .column(u"MealDescription", u"MDesc")
                         .column(u"MealNo")
                         .column(u"[Insulin Dosage]", u"IDose")
                         .source(u"Meals")
                         .query());
    file.createQuery(
        QueryRows("LastBldReading").column(u"Max(ReadingTime)", u"LastReading").source(u"BloodSugarLevels").query());
    file.createQuery(
        QueryRows("Min(NDB)").column(u"Min(NDB_No)", u"MinOfNDB").source(u"NutritionalInformation").query());
}

} // namespace

SmallDiary::SmallDiary()
{
    const auto file = jet::Database::create(jet::posixFileSystem(), path().toStdString(), {day(2024, 1, 1)});
    jet::Transaction transaction(*file);
    createTables(*file);
    fillTables(*file);
    createQueries(*file);
    transaction.commit();
}

QString SmallDiary::rows(const QString& source) const
{
    Database database = open();
    Recordset recordset = database.openRecordset(source);
    return rowsOf(recordset);
}

int SmallDiary::errorOf(const QString& source) const
{
    Database database = open();
    try {
        Recordset recordset = database.openRecordset(source);
        static_cast<void>(rowsOf(recordset));
    } catch (const runtime::RunTimeError& error) {
        return error.number();
    }
    return 0;
}

std::unique_ptr<jet::Database> SmallDiary::engine() const
{
    return jet::Database::open(jet::posixFileSystem(), path().toStdString());
}

void SmallDiary::addQuery(const jet::SavedQuery& query) const
{
    engine()->createQuery(query);
}

QString textOf(const runtime::Value& value)
{
    struct Text {
        QString operator()(runtime::Null) const { return QStringLiteral("null"); }
        QString operator()(bool truth) const { return truth ? QStringLiteral("True") : QStringLiteral("False"); }
        QString operator()(qint32 number) const { return QString::number(number); }
        QString operator()(double number) const
        {
            const QString text = QString::number(number, 'g', QLocale::FloatingPointShortest);
            return text.contains(u'.') || text.contains(u'e') ? text : text + QStringLiteral(".0");
        }
        QString operator()(runtime::Date date) const
        {
            const qint64 seconds = qRound64(date.days * 86400);
            return QDateTime(QDate(1899, 12, 30), QTime(0, 0), Qt::UTC)
                .addSecs(seconds)
                .toString(QStringLiteral("dd/MM/yyyy hh:mm:ss"));
        }
        QString operator()(const QString& text) const { return u'\'' + text + u'\''; }
        QString operator()(const QByteArray& bytes) const
        {
            return QStringLiteral("0x") + QString::fromLatin1(bytes.toHex());
        }
    };
    return std::visit(Text{}, value);
}

QString rowsOf(Recordset& recordset)
{
    QStringList rows;
    for (; !recordset.eof(); recordset.moveNext()) {
        QStringList row;
        for (int i = 0; i < recordset.fieldCount(); ++i) {
            row.append(textOf(recordset.value(i)));
        }
        rows.append(row.join(QStringLiteral(", ")));
    }
    return rows.join(QStringLiteral(" | "));
}

double day(int year, int month, int dayOfMonth, int hour, int minute, int second)
{
    const qint64 days = QDate(1899, 12, 30).daysTo(QDate(year, month, dayOfMonth));
    return static_cast<double>(days) + ((hour * 60 + minute) * 60 + second) / 86400.0;
}

} // namespace data::test

#include "data/new_diary/diary_builder.h"

#include "data/engine/error_translation.h"
#include "data/new_diary/diary_schema.h"
#include "data/new_diary/foods_csv.h"
#include "data/new_diary/sample_diary.h"
#include "jet/database.h"
#include "runtime/run_time_error.h"

#include <QFile>
#include <QLockFile>

#include <cmath>
#include <map>
#include <string>
#include <utility>

namespace data {

namespace {

using runtime::ErrorNumber;
using runtime::RunTimeError;

/// Puts rows into one table, its columns addressed by name.
class RowWriter
{
public:
    explicit RowWriter(jet::Table& table) : table_(table)
    {
        for (const jet::Column& column : table.definition().columns) {
            numbers_[column.name] = column.number;
        }
    }
    RowWriter& set(const std::string& column, jet::Value value)
    {
        values_.push_back({numbers_.at(column), std::move(value)});
        return *this;
    }
    template <typename Inner>
    RowWriter& set(const std::string& column, const std::optional<Inner>& value)
    {
        return value ? set(column, jet::Value(*value)) : *this;
    }
    /// The new row; values that were not set are null or made by the table.
    jet::RowPointer insert()
    {
        const jet::RowPointer row = table_.insert(values_);
        values_.clear();
        return row;
    }
    [[nodiscard]] jet::Value read(jet::RowPointer row, const std::string& column) const
    {
        return table_.read(row)->value(*table_.definition().columnByNumber(numbers_.at(column)));
    }

private:
    jet::Table& table_;
    std::map<std::string, std::uint16_t> numbers_;
    std::vector<jet::ColumnValue> values_;
};

void makeSchema(jet::Database& file, const FoodTable& foods)
{
    for (const jet::TableSpec& table : diaryTables(foods.nutrients)) {
        file.createTable(table);
    }
    for (const jet::Relationship& relationship : diaryRelationships()) {
        file.createRelationship(relationship);
    }
    for (const jet::SavedQuery& query : diaryQueries()) {
        file.createQuery(query);
    }
    RowWriter types(file.table("BloodSugarReadingTypes"));
    for (const ReadingType& type : readingTypes()) {
        types.set("Type", std::int32_t{type.code}).set("Text", std::u16string(type.text)).insert();
    }
}

void addFoods(jet::Database& file, const FoodTable& table)
{
    RowWriter rows(file.table("NutritionalInformation"));
    for (const Food& food : table.foods) {
        rows.set("NDB_No", std::int32_t{food.number}).set("Shrt_Desc", food.description);
        for (std::size_t i = 0; i < table.nutrients.size(); ++i) {
            rows.set(table.nutrients[i], food.nutrients[i]);
        }
        rows.set("GmWt_1", food.measureGrams1).set("GmWt_Desc1", food.measure1);
        rows.set("GmWt_2", food.measureGrams2).set("GmWt_Desc2", food.measure2);
        rows.set("Refuse_Pct", food.refusePercent).set("Recipe", false).set("Ingredient", true);
        rows.insert();
    }
}

jet::DateTime momentOf(int day, int minute)
{
    constexpr double minutesPerDay = 24 * 60;
    return {day + minute / minutesPerDay};
}

std::map<int, double> carbohydrateByFood(const FoodTable& table)
{
    std::map<int, double> result;
    const std::size_t column = table.nutrient("Carbohydrt").value();
    for (const Food& food : table.foods) {
        result[food.number] = food.nutrients[column].value_or(0);
    }
    return result;
}

void addSampleDays(jet::Database& file, const FoodTable& foods, int lastDay, int count, NewDiaryContent& content)
{
    RowWriter readings(file.table("BloodSugarLevels"));
    RowWriter meals(file.table("Meals"));
    RowWriter portions(file.table("MealContent"));
    const std::map<int, double> carbohydrate = carbohydrateByFood(foods);
    for (int day = lastDay - count + 1; day <= lastDay; ++day) {
        const SampleDay sample = sampleDay(day, carbohydrate);
        for (const SampleReading& reading : sample.readings) {
            readings.set("BloodSugerLevel", reading.mmol)
                .set("ReadingTime", momentOf(day, reading.minute))
                .set("ReadingType", std::int32_t{reading.type});
            if (!reading.comment.empty()) {
                readings.set("Comment", reading.comment);
            }
            readings.insert();
            ++content.readings;
        }
        for (const SampleMeal& meal : sample.meals) {
            const jet::RowPointer row = meals.set("MealTime", momentOf(day, meal.minute))
                                            .set("MealDescription", static_cast<std::int16_t>(meal.type))
                                            .set("Insulin Dosage", static_cast<std::int16_t>(meal.insulin))
                                            .insert();
            const jet::Value number = meals.read(row, "MealNo");
            for (const SampleMeal::Portion& portion : meal.foods) {
                portions.set("MealID", number)
                    .set("NDB_No", std::int32_t{portion.food})
                    .set("Quantity", portion.grams)
                    .insert();
            }
            ++content.meals;
        }
    }
}

NewDiaryContent fill(const std::string& path, const FoodTable& foods, const NewDiary& diary, runtime::Date now)
{
    NewDiaryContent content;
    content.foods = static_cast<int>(foods.foods.size());
    const auto file = jet::Database::create(jet::posixFileSystem(), path, jet::DateTime{now.days});
    jet::Transaction transaction(*file);
    makeSchema(*file, foods);
    addFoods(*file, foods);
    const int yesterday = static_cast<int>(std::floor(now.days)) - 1;
    addSampleDays(*file, foods, yesterday, diary.sampleDays, content);
    transaction.commit();
    return content;
}

FoodTable foodsFor(const NewDiary& diary)
{
    if (!diary.foodsCsv.isEmpty()) {
        return readFoods(diary.foodsCsv.toStdString());
    }
    FoodTable none;
    none.nutrients = requiredNutrients();
    return none;
}

/// A file in the making, removed unless it was put in its place.
class Draft
{
public:
    /// Removes what a making that was cut short has left.
    explicit Draft(QString path) : path_(std::move(path)) { remove(); }
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;
    ~Draft() { remove(); }
    [[nodiscard]] const QString& path() const { return path_; }

private:
    void remove() const
    {
        QFile::remove(path_);
        QFile::remove(path_ + QStringLiteral("-journal"));
    }

    QString path_;
};

[[noreturn]] void refuseToOverwrite(const QString& path)
{
    throw RunTimeError(ErrorNumber::FileAlreadyExists)
        .withHint(QStringLiteral("There is something at %1 already. It was left as it is.").arg(path));
}

/// A journal without its file is of one that was moved or removed; the new file would be taken for that one.
void requireFree(const QString& path)
{
    if (QFile::exists(path)) {
        refuseToOverwrite(path);
    }
    if (const QString journal = path + QStringLiteral("-journal"); QFile::exists(journal)) {
        throw RunTimeError(ErrorNumber::FileAlreadyExists)
            .withHint(
                QStringLiteral("There is %1, left by a diary that is not there any more. Put that diary back beside "
                               "the journal, or move the journal away.")
                    .arg(journal));
    }
}

} // namespace

NewDiaryContent createDiary(const NewDiary& diary, const runtime::Clock& clock)
{
    requireFree(diary.path);
    const FoodTable foods = foodsFor(diary);
    return translating(diary.path, [&] {
        // Made beside its place and moved there when it is whole; QFile::rename never replaces a file.
        const QString unfinished = diary.path + QStringLiteral("-unfinished");
        QLockFile alone(unfinished + QStringLiteral(".lock"));
        alone.setStaleLockTime(0); // good for as long as its program runs
        if (!alone.tryLock() && alone.error() == QLockFile::LockFailedError) {
            throw RunTimeError(ErrorNumber::FileInUse,
                               QStringLiteral("Could not use '%1'; file already in use.").arg(diary.path),
                               QStringLiteral("Another program is making this diary."));
        }
        requireFree(diary.path);
        const Draft draft(unfinished);
        const NewDiaryContent content = fill(draft.path().toStdString(), foods, diary, clock.now());
        QFile file(draft.path());
        if (!file.rename(diary.path)) {
            requireFree(diary.path);
            throw RunTimeError(ErrorNumber::DiskError, QStringLiteral("Disk or network error."),
                               QStringLiteral("%1: %2").arg(diary.path, file.errorString()));
        }
        jet::posixFileSystem().syncFolderOf(diary.path.toStdString());
        return content;
    });
}

} // namespace data

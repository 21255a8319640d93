#include "cli/commands.h"
#include "cli/supplied_foods.h"
#include "data/new_diary/diary_builder.h"
#include "runtime/clock.h"

namespace cli {
namespace {

constexpr int kMostSampleDays = 36600; // a hundred years

QString foodsFor(const QCommandLineParser& options)
{
    const QString foods = QStringLiteral("foods");
    if (options.isSet(QStringLiteral("no-foods"))) {
        if (options.isSet(foods)) {
            throw UsageError(QStringLiteral("--foods and --no-foods exclude each other."));
        }
        return {};
    }
    if (!options.isSet(foods)) {
        return suppliedFoods();
    }
    if (options.value(foods).isEmpty()) {
        throw UsageError(QStringLiteral("--foods takes the name of a file."));
    }
    return options.value(foods);
}

int sampleDaysFor(const QCommandLineParser& options)
{
    const QString sample = QStringLiteral("sample");
    if (!options.isSet(sample)) {
        return 0;
    }
    bool isNumber = false;
    const int days = options.value(sample).toInt(&isNumber);
    if (!isNumber || days < 1 || days > kMostSampleDays) {
        throw UsageError(QStringLiteral("--sample takes a number of days from 1 to %1.").arg(kMostSampleDays));
    }
    return days;
}

ExitStatus create(const Call& call)
{
    const QString path = call.arguments.constFirst();
    const data::NewDiary diary{path, foodsFor(call.options), sampleDaysFor(call.options)};
    const data::NewDiaryContent content = data::createDiary(diary, runtime::SystemClock());
    call.output.writeLine(path + QStringLiteral(": %1 foods, %2 readings, %3 meals")
                                     .arg(content.foods)
                                     .arg(content.readings)
                                     .arg(content.meals));
    return ExitStatus::Done;
}

} // namespace

Command createCommand()
{
    return {
        QStringLiteral("create"),
        QStringLiteral("Make a new diary. An existing file is never overwritten."),
        {{QStringLiteral("FILE"), QStringLiteral("The file to make.")}},
        {{QStringLiteral("foods"), QStringLiteral("Fill in the foods of this table instead of the supplied one."),
          QStringLiteral("CSV")},
         {QStringLiteral("no-foods"), QStringLiteral("Fill in no foods.")},
         {QStringLiteral("sample"),
          QStringLiteral("Add so many invented days up to yesterday: readings, meals and doses to try the program with."),
          QStringLiteral("DAYS")}},
        create};
}

} // namespace cli

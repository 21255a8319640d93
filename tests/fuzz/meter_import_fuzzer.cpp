// Any bytes as a meter's file: after the import the diary is sound and holds the readings that the import counted, each
// later than the cut-off, and the same file again with the latest moment as the cut-off adds nothing.
#include "fuzz/fuzz_driver.h"

#include "data/database.h"
#include "fuzz/diary_template.h"
#include "readings/meter_import.h"
#include "runtime/conversions.h"
#include "support/test_diary.h"

#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <limits>
#include <optional>

namespace {

constexpr std::size_t kLargestFile = 256 * 1024;
const QString kAfter = QStringLiteral("01/01/2000");

[[noreturn]] void fail(const char* what, const QString& more = {})
{
    std::cerr << what << " " << more.toStdString() << "\n";
    std::abort();
}

QString meterFileOf(const std::uint8_t* data, std::size_t size)
{
    static const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("meter.txt"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) ||
        file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size)) != static_cast<qint64>(size)) {
        fail("The meter's file cannot be written:", file.errorString());
    }
    return path;
}

/// How many readings the import says that it added; nothing where a line stopped it.
std::optional<int> import(const QString& diary, const QString& meterFile, const QString& after)
{
    try {
        return readings::ImportReadings({diary, meterFile, after});
    } catch (const runtime::RunTimeError&) {
        return std::nullopt;
    }
}

struct Stored {
    int count = 0;
    runtime::Date latest{-std::numeric_limits<double>::infinity()};
};

Stored storedIn(const QString& diary)
{
    data::Database database(diary);
    if (const data::Database::Faults faults = database.check(); !faults.empty()) {
        fail("The import damaged the diary:", (faults.damage + faults.leftovers).constFirst());
    }
    Stored stored;
    const double cutOff = runtime::toDate(kAfter).days;
    data::Recordset rows = database.openRecordset(QStringLiteral("BloodSugarLevels"));
    for (; !rows.eof(); rows.moveNext()) {
        const auto time = std::get<runtime::Date>(rows.value(QStringLiteral("ReadingTime")));
        if (!(cutOff < time.days)) {
            fail("A reading is not later than the cut-off:", runtime::toText(time));
        }
        if (!std::isfinite(std::get<double>(rows.value(QStringLiteral("BloodSugerLevel"))))) {
            fail("A reading is no number of a size:", runtime::toText(time));
        }
        if (runtime::toLong(rows.value(QStringLiteral("ReadingType"))) != 0) {
            fail("A reading is classified:", runtime::toText(time));
        }
        ++stored.count;
        stored.latest.days = std::max(stored.latest.days, time.days);
    }
    return stored;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const DiaryTemplate empty([](TestDiary&) {});
    if (size > kLargestFile) {
        return 0;
    }
    const QString meterFile = meterFileOf(data, size);
    const QString diary = empty.fresh();
    const std::optional<int> counted = import(diary, meterFile, kAfter);
    const Stored stored = storedIn(diary);
    if (counted && *counted != stored.count) {
        fail("The import counted other readings than are stored.");
    }
    if (counted && stored.count > 0 && import(diary, meterFile, runtime::toText(stored.latest)) != 0) {
        fail("The same file adds readings again after", runtime::toText(stored.latest));
    }
    return 0;
}

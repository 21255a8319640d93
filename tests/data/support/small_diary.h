// A small diary file with known content, made with the engine alone.
#pragma once

#include "data/database.h"
#include "data/support/print_text.h"
#include "jet/database.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace data::test {

/// The tables and saved queries of a diary. Readings (number, level, time, type, comment), in the order of entry:
///   1   5.5  10/01/2024 07:00  1  "before breakfast"
///   2   8.25 10/01/2024 10:00  3  null
///   3   4.0  10/01/2024 00:00  0  ""
///   4  12.5  11/01/2024 07:30  1  "It's high"
///   5   6.0  12/01/2024 00:00  2  "50% of [it]"
///   6   7.0  09/01/2024 22:00  5  null
///   7   9.0  11/01/2024 07:30  8  "same time as 4"
/// Meals: 1 breakfast 10/01/2024 08:00 dose 7; 2 snack 10/01/2024 16:00 dose 0; 3 no type 11/01/2024 08:00 dose 9;
/// 4 dinner 11/01/2024 19:00 dose 12, without foods.
/// Foods: 1001 "BUTTER,WITH SALT", 1002 "Milk, whole", 1003 "bread", 2000 "Porridge" (a recipe; carbohydrate null).
/// Contents: meal 1: 1003 x 80, 1001 x 10; meal 2: 1002 x 200; meal 3: 2000 x 150, 1002 x 250.
class SmallDiary : public testing::Test
{
protected:
    SmallDiary();

    [[nodiscard]] Database open() const { return Database(path()); }
    [[nodiscard]] QString path() const { return folder_.filePath(QStringLiteral("Nutrition.mdb")); }
    /// The rows of a source as text: values by ", ", rows by " | ", null as "null", doubles in the fewest digits.
    [[nodiscard]] QString rows(const QString& source) const;
    /// The run-time error that opening the source raises; 0 for none.
    [[nodiscard]] int errorOf(const QString& source) const;
    /// Changes the file behind the data layer's back.
    [[nodiscard]] std::unique_ptr<jet::Database> engine() const;
    void addQuery(const jet::SavedQuery& query) const;

private:
    QTemporaryDir folder_;
};

[[nodiscard]] QString rowsOf(Recordset& recordset);
[[nodiscard]] QString textOf(const runtime::Value& value);
/// A date-time from its parts, worked out with QDate alone.
[[nodiscard]] double day(int year, int month, int dayOfMonth, int hour = 0, int minute = 0, int second = 0);

} // namespace data::test

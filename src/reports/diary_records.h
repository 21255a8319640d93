// What a diary reads: the foods of the meals and the readings, both in the order of time.
#pragma once

#include "data/recordset.h"
#include "reports/nutrient_totals.h"
#include "runtime/value.h"

#include <QString>

namespace reports {

/// Foods as eaten. Their fields are looked up once for all records; 3265 where one is not there.
class MealRecords
{
public:
    explicit MealRecords(data::Recordset records);

    [[nodiscard]] bool eof() const { return records_.eof(); }
    void moveNext() { records_.moveNext(); }

    // Of the meal that the food belongs to. Without a time or a dose, 94 with a hint.
    [[nodiscard]] runtime::Date time() const;
    [[nodiscard]] qint16 dose() const;
    [[nodiscard]] QString type() const;

    [[nodiscard]] QString description() const; ///< as stored
    [[nodiscard]] runtime::Value grams() const;

    /// What is in the grams eaten; null where the food table leaves it open or the quantity is unknown.
    struct Portion {
        runtime::Value energy;
        runtime::Value carbohydrate;
        runtime::Value fat;
        runtime::Value protein;
    };
    [[nodiscard]] Portion portion() const;
    /// Adds what is known of the portion; 94 with a hint where the quantity is not.
    void addTo(NutrientTotals& meal) const;

private:
    [[nodiscard]] runtime::Value portionOf(int nutrient, const runtime::Value& grams) const;

    data::Recordset records_;
    int time_;
    int dose_;
    int type_;
    int description_;
    int grams_;
    // For 100 g.
    int energy_;
    int carbohydrate_;
    int fat_;
    int protein_;
};

/// Readings, with a cursor that moves both ways.
class HistoryRecords
{
public:
    explicit HistoryRecords(data::Recordset records);

    [[nodiscard]] bool eof() const { return records_.eof(); }
    [[nodiscard]] qsizetype count() const { return records_.recordCount(); }
    void moveFirst() { records_.moveFirst(); }
    void moveNext() { records_.moveNext(); }
    void movePrevious() { records_.movePrevious(); }

    [[nodiscard]] runtime::Date time() const;
    [[nodiscard]] double level() const; ///< mmol/l; 94 with a hint where there is none
    [[nodiscard]] QString type() const;
    [[nodiscard]] QString comment() const;

private:
    data::Recordset records_;
    int time_;
    int level_;
    int type_;
    int comment_;
};

} // namespace reports

#include "meals/insulin_caption.h"

#include "meals/meal_sheet.h"
#include "meals/meal_type.h"
#include "runtime/conversions.h"
#include "runtime/format.h"

namespace meals {

namespace {

/// Without the dots that follow; may be empty.
QString captionText(const QString& before, double dose, std::optional<int> mealType, const MealSheet& sheet)
{
    if (dose == 0 || !sheet.hasFood() || !mealType) {
        return {};
    }
    if (mealType == kSnack) {
        return before;
    }
    return QStringLiteral("Insulin ") + runtime::format(sheet.totalCarbohydrate() / dose, QStringLiteral("#0.00")) +
           QStringLiteral(" gms/unit");
}

} // namespace

std::optional<QString> insulinCaption(const QString& before, const QString& dose, std::optional<int> mealType,
                                      const MealSheet& sheet, const std::function<double(const QString&)>& width)
{
    if (!runtime::isNumeric(dose)) {
        return std::nullopt;
    }
    QString caption = captionText(before, runtime::toDouble(dose), mealType, sheet);
    if (caption.isEmpty()) {
        caption = QStringLiteral("Insulin ");
    }
    const double widthBefore = width(before);
    do {
        caption += u'.';
    } while (width(caption) < widthBefore);
    return caption;
}

} // namespace meals

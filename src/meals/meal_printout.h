// The meal being composed, on paper.
#pragma once

#include "runtime/value.h"

namespace reports {
class Printer;
}

namespace meals {

class MealSheet;

/// Prints all lines of the meal in plain black; `now` goes into the heading, which only pages after the first have.
/// `lineCounter` as for reports::PrintList; 482 when the printer fails.
void printMeal(reports::Printer& printer, const MealSheet& sheet, runtime::Date now, qint16& lineCounter);

} // namespace meals

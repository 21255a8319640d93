// The groups of rows of the comparison, a file each. A group compares what both sides yield, or at least how many
// rows, and throws std::runtime_error when it differs.
#pragma once

#include "comparison.h"

namespace bench {

void compareScan(ComparisonTable& table);         ///< all values of all tables, beside mdb-export
void compareQueries(ComparisonTable& table);      ///< the results of saved queries, beside SQLite
void compareOverallDiary(ComparisonTable& table); ///< the largest report, beside SQLite's rows for it
void compareDurableAdd(ComparisonTable& table);   ///< a reading that is safe when the call returns, beside SQLite
void compareImport(ComparisonTable& table);       ///< a meter's file, beside SQLite
void compareFoodSearch(ComparisonTable& table);   ///< beside SQLite's LIKE
void compareList(ComparisonTable& table);         ///< a very long report on the screen, beside Qt's own list
void compareFirstPaint(ComparisonTable& table);   ///< the program's start, beside an empty window of Qt

} // namespace bench

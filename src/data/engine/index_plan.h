// Which index of a table answers a question of SQLite's planner best.
#pragma once

#include "jet/format/table_definition.h"

#include <string>
#include <vector>

namespace data {

/// An index that can be searched: positions of its columns in the virtual table, in key order.
struct SearchableIndex {
    struct Key {
        int column = 0;
        bool ascending = true;
    };
    std::size_t realIndex = 0;
    std::vector<Key> keys;
    bool unique = false;
    bool required = false; ///< no column of it is null
    bool ignoresNulls = false;
    double rowsPerKey = 1;  ///< an estimate
    bool keepsOrder = true; ///< false where keys do not order all values (texts cut off at 255 characters)
};

struct PlanQuestion {
    enum class Comparison { Equal, Lower, Upper }; ///< = ; > >= ; < <=
    struct Constraint {
        int column = 0;
        Comparison comparison = Comparison::Equal;
        int number = 0; ///< SQLite's number of it
    };
    struct Order {
        int column = 0;
        bool descending = false;
    };
    std::vector<Constraint> constraints; ///< only those that can be used
    std::vector<Order> order;
    int addressColumn = 0; ///< the column that holds the row's address
    double rowCount = 0;
};

/// How to find the rows. As idxNum: 0 to walk the table in the order of entry, else the real index's position plus 1,
/// with kBackwards for the opposite direction. As idxStr: a character for each value that xFilter gets, in order: '='
/// for each leading column of the index, then '>' for a lower and '<' for an upper bound of the column after them.
/// Bounds are taken as inclusive and SQLite checks each row again, so that a plan may yield too many rows but never too
/// few.
struct IndexPlan {
    static constexpr int kBackwards = 1 << 16;

    int number = 0;
    std::string values;
    std::vector<int> constraints; ///< SQLite's numbers of the constraints, in the order of `values`
    double cost = 0;
    double rows = 0;
    bool ordered = false; ///< the rows come in the order asked for
};

[[nodiscard]] IndexPlan bestPlan(const PlanQuestion& question, const std::vector<SearchableIndex>& indexes);

} // namespace data

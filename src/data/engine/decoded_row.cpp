#include "data/engine/decoded_row.h"

#include <algorithm>

namespace data {

void DecodedRow::show(const jet::Row& row)
{
    row_ = &row;
    known_.clear();
}

const jet::Value& DecodedRow::value(const jet::Column& column)
{
    const auto known = std::find_if(known_.begin(), known_.end(),
                                    [&](const KnownValue& candidate) { return candidate.column == column.number; });
    if (known == known_.end()) {
        return known_.emplace_back(KnownValue{column.number, row_->value(column)}).value;
    }
    return known->value;
}

} // namespace data

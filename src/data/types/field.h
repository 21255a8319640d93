// What is known of a field of a recordset.
#pragma once

#include <QString>

namespace data {

enum class FieldType {
    Boolean,
    Byte,
    Integer,
    Long,
    Currency,
    Single,
    Double,
    Date,
    Binary,
    Text,
    Memo,
    Guid,
    Decimal
};

struct Field {
    QString name;
    FieldType type = FieldType::Text;
    int size = 0; ///< Text: the most characters it holds; 0 where there is no limit
};

} // namespace data

// Report lines from records.
#pragma once

#include <QString>

namespace data {
class Recordset;
}

namespace reports {

/// The current record as one line, a tab between each two fields: a field of type double as "00.0", any other as plain
/// text, null as nothing. 94 for a null in a field of type double, 3021 without a current record.
[[nodiscard]] QString FormatRecordLine(const data::Recordset& records);

} // namespace reports

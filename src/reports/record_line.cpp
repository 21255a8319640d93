#include "reports/modDisp.h"

#include "data/recordset.h"
#include "runtime/conversions.h"
#include "runtime/format.h"
#include "runtime/run_time_error.h"

#include <QStringList>

namespace reports {
namespace {

QString columnText(const data::Field& field, const runtime::Value& value)
{
    if (field.type != data::FieldType::Double) {
        return runtime::toText(value);
    }
    if (runtime::isNull(value)) {
        throw runtime::RunTimeError(runtime::ErrorNumber::InvalidUseOfNull);
    }
    return runtime::format(value, QStringLiteral("00.0"));
}

} // namespace

QString FormatRecordLine(const data::Recordset& records)
{
    QStringList columns;
    for (int position = 0; position < records.fieldCount(); ++position) {
        columns.append(columnText(records.field(position), records.value(position)));
    }
    return columns.join(u'\t');
}

} // namespace reports

#include "cli/tsv.h"

#include "cli/output.h"
#include "runtime/conversions.h"
#include "runtime/format.h"
#include "runtime/run_time_error.h"

#include <QStringList>

#include <array>
#include <charconv>
#include <optional>

namespace cli {
namespace {

template <typename Number>
QString shortest(Number number)
{
    std::array<char, 32> text{};
    const char* const end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
    return QString::fromLatin1(text.data(), end - text.data());
}

QString dateColumn(runtime::Date date)
{
    try {
        return runtime::format(date, QStringLiteral("dd/mm/yyyy hh:mm:ss"));
    } catch (const runtime::RunTimeError&) {
        return shortest(date.days);
    }
}

QString lineOf(const data::Recordset& records)
{
    QStringList columns;
    for (int position = 0; position < records.fieldCount(); ++position) {
        columns.append(column(records.value(position), records.field(position).type));
    }
    return columns.join(u'\t');
}

/// The next records. A table's are read under one lock, for to lock the file takes longer than to read a record; the
/// lock is held for a moment only, so that nobody has to wait for it. Computed records are in memory already.
void readLines(data::Database& database, data::Recordset& records, QStringList& lines)
{
    constexpr qsizetype kMostLines = 500;
    constexpr qsizetype kMostCharacters = 1 << 20;
    std::optional<data::Database::Reading> reading;
    if (records.isUpdatable()) {
        reading.emplace(database);
    }
    qsizetype characters = 0;
    for (; !records.eof() && lines.size() < kMostLines && characters < kMostCharacters; records.moveNext()) {
        lines.append(lineOf(records));
        characters += lines.constLast().size();
    }
}

void writeLines(const QStringList& lines, Output& output)
{
    for (const QString& line : lines) {
        output.writeLine(line);
    }
}

} // namespace

QString escaped(const QString& text)
{
    QString escaped;
    escaped.reserve(text.size());
    for (const QChar character : text) {
        switch (character.unicode()) {
        case u'\\':
            escaped += QStringLiteral("\\\\");
            break;
        case u'\t':
            escaped += QStringLiteral("\\t");
            break;
        case u'\n':
            escaped += QStringLiteral("\\n");
            break;
        case u'\r':
            escaped += QStringLiteral("\\r");
            break;
        default:
            escaped += character;
        }
    }
    return escaped;
}

QString column(const runtime::Value& value, data::FieldType type)
{
    if (const auto* number = std::get_if<double>(&value)) {
        // As a double, a single such as 0.1 would show digits that nobody stored.
        return type == data::FieldType::Single ? shortest(static_cast<float>(*number)) : shortest(*number);
    }
    if (const auto* date = std::get_if<runtime::Date>(&value)) {
        return dateColumn(*date);
    }
    return escaped(runtime::toText(value));
}

void writeRecords(data::Database& database, data::Recordset& records, Output& output)
{
    QStringList names;
    for (int position = 0; position < records.fieldCount(); ++position) {
        names.append(escaped(records.field(position).name));
    }
    output.writeLine(names.join(u'\t'));
    while (!records.eof()) {
        QStringList lines;
        try {
            readLines(database, records, lines);
        } catch (const runtime::RunTimeError&) {
            writeLines(lines, output);
            throw;
        }
        writeLines(lines, output);
    }
}

} // namespace cli

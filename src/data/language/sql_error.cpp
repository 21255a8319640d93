#include "data/language/sql_error.h"

#include <QStringList>

namespace data {
namespace {

constexpr qsizetype kMostCharactersShown = 60;

QString excerpt(const QString& sql, qsizetype begin, qsizetype end)
{
    const QString text = sql.mid(begin, end - begin).simplified();
    return text.size() <= kMostCharactersShown ? text : text.left(kMostCharactersShown) + QStringLiteral("...");
}

} // namespace

runtime::RunTimeError syntaxError(const QString& sql, qsizetype position)
{
    const QString rest = excerpt(sql, position, sql.size());
    const QString whole = excerpt(sql, 0, sql.size());
    const QString hint =
        rest.isEmpty() ? QStringLiteral("The SQL text ends before the statement is complete.")
                       : QStringLiteral("The SQL text cannot be understood from character %1 on.").arg(position + 1);
    return {runtime::ErrorNumber::QuerySyntax,
            QStringLiteral("Syntax error in query expression '%1'.").arg(rest.isEmpty() ? whole : rest), hint};
}

runtime::RunTimeError expressionError(const QString& reason, const QString& sql, TextRange place)
{
    return {runtime::ErrorNumber::QuerySyntax,
            QStringLiteral("%1 in query expression '%2'.").arg(reason, excerpt(sql, place.begin, place.end))};
}

runtime::RunTimeError unknownTableOrQuery(const QString& name)
{
    return {runtime::ErrorNumber::UnknownTableOrQuery,
            QStringLiteral("Could not find the table or query '%1'.").arg(name),
            QStringLiteral("Make sure that it exists in this diary and that its name is spelled correctly.")};
}

runtime::RunTimeError unknownFields(const QStringList& names)
{
    return {runtime::ErrorNumber::TooFewParameters,
            QStringLiteral("Too few parameters. Expected %1.").arg(names.size()),
            names.size() == 1 ? QStringLiteral("There is no field called '%1'.").arg(names.front())
                              : QStringLiteral("There are no fields called '%1'.").arg(names.join(u"', '"))};
}

} // namespace data

#include "data/language/relation.h"

#include <QStringList>

namespace data {

QString orderAlias(std::size_t position)
{
    return u'k' + QString::number(position);
}

bool isHidden(const OrderTerm& term)
{
    return term.sql.startsWith(u'k');
}

QString columnList(const Relation& relation)
{
    QStringList list;
    for (std::size_t i = 0; i < relation.columns.size(); ++i) {
        list.append(columnAlias(i));
    }
    for (const OrderTerm& term : relation.order) {
        if (isHidden(term)) {
            list.append(term.sql);
        }
    }
    return list.join(QStringLiteral(", "));
}

QString termSql(const OrderTerm& term)
{
    QString sql = term.sql;
    if (term.isText) {
        sql += QStringLiteral(" COLLATE ") + kTextCollation;
    }
    return term.descending ? sql + QStringLiteral(" DESC") : sql;
}

QString orderClause(const std::vector<OrderTerm>& terms)
{
    QStringList list;
    for (const OrderTerm& term : terms) {
        list.append(termSql(term));
    }
    return list.isEmpty() ? QString() : QStringLiteral(" ORDER BY ") + list.join(QStringLiteral(", "));
}

} // namespace data

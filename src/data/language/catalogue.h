// What a statement can refer to.
#pragma once

#include "data/types/field.h"

#include <QString>

#include <optional>
#include <vector>

namespace data {

/// The collation of texts: tables declare it, statements name it, and the connection registers it.
inline const QString kTextCollation = QStringLiteral("jet_text");

/// "c0" and so on: a column in SQLite, by its place.
[[nodiscard]] inline QString columnAlias(std::size_t position)
{
    return u'c' + QString::number(position);
}

/// A table as a source of rows. SQLite knows it under generated names, so that no name of a file needs quoting: columns
/// are c0, c1 ... (columnAlias) in the order of `columns`, and the last one, `row`, is the row's address, which rises
/// in the order of entry.
struct SourceTable {
    QString name;    ///< as in the file
    QString sqlName; ///< as in SQLite
    std::vector<Field> columns;
};

class Catalogue
{
public:
    Catalogue() = default;
    Catalogue(const Catalogue&) = delete;
    Catalogue& operator=(const Catalogue&) = delete;
    virtual ~Catalogue() = default;

    /// Names are looked up without regard to case. Null: there is none. The table stays good as long as the catalogue.
    [[nodiscard]] virtual const SourceTable* table(const QString& name) = 0;
    /// A saved query's SQL in Jet's dialect.
    [[nodiscard]] virtual std::optional<QString> query(const QString& name) = 0;
};

} // namespace data

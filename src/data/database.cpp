#include "data/database.h"

#include "data/change_announcement.h"
#include "data/engine/diary_file.h"
#include "data/engine/error_translation.h"
#include "data/engine/session.h"
#include "data/language/sql_error.h"
#include "data/language/sql_translator.h"
#include "data/row_sources.h"

#include <algorithm>

namespace data {
namespace {

/// Whether the text is meant as a statement and not as a name.
bool looksLikeSql(const QString& source)
{
    const QString text = source.trimmed();
    qsizetype end = 0;
    while (end < text.size() && text.at(end).isLetter()) {
        ++end;
    }
    return text.startsWith(u'(') || (end > 0 && end < text.size() && (text.at(end).isSpace() || text.at(end) == u'['));
}

QString withoutBrackets(const QString& name)
{
    const QString text = name.trimmed();
    return text.startsWith(u'[') && text.endsWith(u']') ? text.mid(1, text.size() - 2) : text;
}

} // namespace

class Database::Implementation
{
public:
    explicit Implementation(const QString& path) : session(std::make_shared<Session>(path)) {}

    std::unique_ptr<Recordset::Source> rowsOf(const QString& source)
    {
        const ReadScope reading(session->database());
        FileCatalogue& catalogue = session->catalogue();
        const QString name = withoutBrackets(source);
        if (const SourceTable* table = catalogue.table(name)) {
            return rowsOfTable(session, table->name);
        }
        if (catalogue.query(name)) {
            return rowsOfQuery(session, translateName(name, catalogue, session->clock()));
        }
        if (!looksLikeSql(source)) {
            throw unknownTableOrQuery(name);
        }
        return rowsOfQuery(session, translateQuery(source, catalogue, session->clock()));
    }

    std::shared_ptr<Session> session;
};

Database::Database(const QString& path) : implementation_(std::make_unique<Implementation>(path)) {}
Database::Database(Database&&) noexcept = default;
Database& Database::operator=(Database&&) noexcept = default;
Database::~Database()
{
    if (implementation_ != nullptr) {
        implementation_->session->close();
    }
}

Recordset Database::openRecordset(const QString& source)
{
    return translating(implementation_->session->path(), [&] { return Recordset(implementation_->rowsOf(source)); });
}

qsizetype Database::execute(const QString& sql)
{
    Session& session = *implementation_->session;
    return translating(session.path(), [&] {
        announceChange(session);
        jet::Database& file = session.database();
        std::optional<jet::Transaction> transaction;
        if (!file.inTransaction()) {
            transaction.emplace(file);
        }
        const TranslatedDelete statement = translateDelete(sql, session.catalogue(), session.clock());
        const std::vector<qint64> addresses = session.addresses(statement.addresses);
        jet::Table& table = file.table(statement.table.toStdString());
        qsizetype count = 0;
        for (const qint64 rowId : addresses) {
            // A relationship may have taken it along with a row before.
            if (table.read(addressOf(rowId)) != nullptr) {
                table.erase(addressOf(rowId));
                ++count;
            }
        }
        session.countChange();
        if (transaction) {
            transaction->commit();
        }
        return count;
    });
}

void Database::setClock(const runtime::Clock& clock)
{
    implementation_->session->setClock(clock);
}

QStringList Database::tableNames() const
{
    Session& session = *implementation_->session;
    return translating(session.path(), [&] {
        QStringList names;
        for (const jet::TableEntry& entry : session.database().tables()) {
            if (!entry.system) {
                names.append(QString::fromStdString(entry.name));
            }
        }
        return names;
    });
}

QList<Database::Query> Database::queries() const
{
    Session& session = *implementation_->session;
    return translating(session.path(), [&] {
        QList<Query> result;
        for (const jet::SavedQuery& query : session.database().queries()) {
            result.append({QString::fromStdString(query.name), QString::fromStdString(jet::sqlOf(query))});
        }
        return result;
    });
}

Database::Faults Database::check()
{
    Session& session = *implementation_->session;
    return translating(session.path(), [&] {
        Faults faults;
        for (const jet::Fault& fault : session.database().check()) {
            (fault.kind == jet::Fault::Kind::Damage ? faults.damage : faults.leftovers).append(textOf(fault));
        }
        return faults;
    });
}

void Database::close()
{
    implementation_->session->close();
}

Database::Reading::Reading(Database& database) : database_(&database)
{
    Session& session = *database.implementation_->session;
    translating(session.path(), [&] { session.database().beginRead(); });
}

Database::Reading::~Reading()
{
    Session& session = *database_->implementation_->session;
    if (session.isOpen()) {
        session.database().endRead();
    }
}

Database::Batch::Batch(Database& database) : database_(&database)
{
    Session& session = *database.implementation_->session;
    translating(session.path(), [&] {
        announceChange(session);
        session.database().begin();
    });
}

Database::Batch::~Batch()
{
    if (database_ != nullptr && database_->implementation_->session->isOpen()) {
        Session& session = *database_->implementation_->session;
        session.countChange();
        session.database().rollback();
    }
}

void Database::Batch::commit()
{
    Session& session = *database_->implementation_->session;
    database_ = nullptr;
    translating(session.path(), [&] { session.database().commit(); });
}

} // namespace data

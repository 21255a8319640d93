// One open diary file with the SQL connection over it; what a Database and its recordsets share.
#pragma once

#include "data/engine/sql_connection.h"
#include "jet/database.h"
#include "runtime/clock.h"

#include <QHash>

#include <memory>

namespace data {

/// The file's tables and saved queries as the translator sees them. A table becomes known to SQLite when a statement
/// first names it.
class FileCatalogue final : public Catalogue
{
public:
    FileCatalogue(jet::Database& database, SqlConnection& connection) : database_(database), connection_(connection) {}

    [[nodiscard]] const SourceTable* table(const QString& name) override;
    [[nodiscard]] std::optional<QString> query(const QString& name) override;

private:
    void readQueries();

    jet::Database& database_;
    SqlConnection& connection_;
    QHash<QString, std::shared_ptr<SourceTable>> tables_;    ///< by name in lower case
    std::optional<QHash<QString, jet::SavedQuery>> queries_; ///< likewise
};

class Session
{
public:
    explicit Session(const QString& path, jet::FileSystem& fileSystem = jet::posixFileSystem());

    [[nodiscard]] const QString& path() const { return path_; }
    [[nodiscard]] bool isOpen() const { return database_ != nullptr; }
    void close();
    /// 3420 when it is closed.
    [[nodiscard]] jet::Database& database();

    void setClock(const runtime::Clock& clock) { clock_ = &clock; }
    [[nodiscard]] const runtime::Clock& clock() const { return *clock_; }

    /// Between beginRead and endRead of the file. Both are made anew when the file's definitions have changed.
    [[nodiscard]] FileCatalogue& catalogue();
    [[nodiscard]] SqlConnection& connection();

    /// Rises with every change made through this session; rows read before may be stale then.
    [[nodiscard]] quint64 changes() const { return changes_; }
    void countChange() { ++changes_; }

    /// The addresses that the statement yields.
    [[nodiscard]] std::vector<qint64> addresses(const SqlText& text);

private:
    struct Workspace {
        explicit Workspace(jet::Database& database)
            : version(database.catalogueVersion()), catalogue(database, connection)
        {
        }
        std::uint64_t version;
        SqlConnection connection;
        FileCatalogue catalogue;
    };
    Workspace& workspace();

    QString path_;
    std::unique_ptr<jet::Database> database_;
    std::unique_ptr<Workspace> workspace_; ///< gone before the file is, whose tables it refers to
    runtime::SystemClock systemClock_;
    const runtime::Clock* clock_ = &systemClock_;
    quint64 changes_ = 0;
};

/// Holds a read of the file for as long as it lives.
class ReadScope
{
public:
    explicit ReadScope(jet::Database& database) : database_(database) { database_.beginRead(); }
    ReadScope(const ReadScope&) = delete;
    ReadScope& operator=(const ReadScope&) = delete;
    ~ReadScope() { database_.endRead(); }

private:
    jet::Database& database_;
};

} // namespace data

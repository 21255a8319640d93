// The diary file as the rest of the program sees it: recordsets and SQL in Jet's dialect.
#pragma once

#include "data/recordset.h"
#include "runtime/clock.h"

#include <QString>
#include <QStringList>

#include <memory>

namespace data {

/// Open, work, close within one action, in one thread, its recordsets included. All errors are runtime::RunTimeError.
class Database
{
public:
    /// Opens the file for reading and writing, or for reading where the file may not be written: 3024 no such file,
    /// 3343 not an Access 2000 file, 3045 locked by another program, 3051 no permission.
    explicit Database(const QString& path);
    Database(Database&&) noexcept;
    Database& operator=(Database&&) noexcept;
    ~Database();

    /// A table's name, a saved query's name (also one like "Min(NDB)") or an SQL text. 3078 unknown name, 3075 syntax.
    [[nodiscard]] Recordset openRecordset(const QString& source);
    /// A delete statement; returns how many records went. Atomic and durable when it returns.
    qsizetype execute(const QString& sql);
    /// What Date(), Time() and Now() in SQL ask; the system's clock unless another is set, which must outlive this.
    void setClock(const runtime::Clock& clock);

    /// Several changes as one: all of it or nothing. Destroyed without commit it rolls back.
    class Batch
    {
    public:
        explicit Batch(Database& database);
        Batch(const Batch&) = delete;
        Batch& operator=(const Batch&) = delete;
        ~Batch();
        void commit();

    private:
        Database* database_;
    };

    /// Many reads as one: the file is locked once for all of them, and no other program changes it in between. Other
    /// programs wait meanwhile, so only for what takes no time to speak of.
    class Reading
    {
    public:
        explicit Reading(Database& database);
        Reading(const Reading&) = delete;
        Reading& operator=(const Reading&) = delete;
        ~Reading();

    private:
        Database* database_;
    };

    [[nodiscard]] QStringList tableNames() const; ///< user tables, by name
    struct Query {
        QString name;
        QString sql;
    };
    [[nodiscard]] QList<Query> queries() const; ///< by name
    /// What is wrong with the file's structure, in words.
    struct Faults {
        QStringList damage;    ///< where the file contradicts itself; none when it is sound
        QStringList leftovers; ///< what other programs leave behind and no reader minds; Quillon leaves none

        [[nodiscard]] bool empty() const { return damage.isEmpty() && leftovers.isEmpty(); }
    };
    /// Reads the whole file.
    [[nodiscard]] Faults check();
    void close();

private:
    class Implementation;
    std::unique_ptr<Implementation> implementation_;
};

} // namespace data

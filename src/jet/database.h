// An Access 2000 file: its catalogue, its tables, and changes to them in transactions.
#pragma once

#include "jet/disk/file.h"
#include "jet/schema.h"
#include "jet/table.h"

#include <memory>
#include <string>
#include <vector>

namespace jet {

/// A fault that check() found.
struct Fault {
    enum class Kind {
        Damage,   ///< the file contradicts itself: data may be lost, or get lost with the next change
        Leftover, ///< what other programs leave behind and no reader minds, such as pages that nothing uses and nothing
                  ///< frees, or stale counters of system tables; a file that only this engine has written has none
    };
    PageNumber page = 0; ///< where, as far as a page can be named
    std::string text;
    Kind kind = Kind::Damage;
};

struct TableEntry {
    std::string name;
    bool system = false; ///< a table of the format's or of Access's own
};

/// One connection to a file, for one thread at a time, its tables and cursors included. Other connections may be used
/// by other threads and programs meanwhile. Every function may throw Io, Corrupt and Locked (another program holds a
/// lock for longer than PagerOptions::patience); what else is named with it.
class Database
{
public:
    /// Opens a file. Throws FileNotFound, NotADatabase, UnsupportedVersion, Encoded, Locked, ReadOnly ...
    [[nodiscard]] static std::unique_ptr<Database> open(FileSystem& fileSystem, const std::string& path,
                                                        OpenMode mode = OpenMode::ReadWrite);
    /// Makes a file with the system tables and nothing else. Throws FileExists. `now` becomes the date of creation.
    [[nodiscard]] static std::unique_ptr<Database> create(FileSystem& fileSystem, const std::string& path,
                                                          DateTime now);

    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;
    ~Database();

    [[nodiscard]] const std::string& path() const;
    [[nodiscard]] bool isReadOnly() const;

    // --- Catalogue ---
    [[nodiscard]] std::vector<TableEntry> tables() const; ///< by name
    /// The table of that name without regard to case; throws NoSuchObject.
    [[nodiscard]] Table& table(const std::string& name);
    [[nodiscard]] bool hasTable(const std::string& name) const;
    [[nodiscard]] std::vector<SavedQuery> queries() const; ///< by name; hidden ones (names that begin with ~) left out
    [[nodiscard]] std::vector<Relationship> relationships() const; ///< by name
    /// Rises with every change of tables' or queries' definitions, also when another program made it.
    [[nodiscard]] std::uint64_t catalogueVersion() const;

    // --- Changes to the catalogue; each is a transaction of its own unless one is in progress ---

    // They throw InvalidArgument for what the format cannot hold, ObjectExists for a name that is taken, NoSuchObject
    // for a table or column that is not there, ReadOnly for a file that objects cannot be added to. When they throw,
    // nothing has changed.
    void createTable(const TableSpec& spec);
    void createQuery(const SavedQuery& query);
    /// Throws MissingParent or DuplicateKey where rows that are there do not comply.
    void createRelationship(const Relationship& relationship);

    // --- Reads and transactions ---
    /// Between beginRead and endRead (they nest) the file does not change under the reader.
    void beginRead();
    void endRead();
    /// One transaction at a time; throws ReadOnly. Nothing reaches the file before commit().
    void begin();
    void commit(); ///< durable when it returns; when it throws (DiskFull ...), everything is rolled back
    void rollback();
    [[nodiscard]] bool inTransaction() const;

    /// The full structural check: every page owned once, usage maps against pages, row directories, index order and
    /// completeness both ways, counters, catalogue, relationships. Without damage the file is sound. Reads the whole
    /// file.
    [[nodiscard]] std::vector<Fault> check();

    // --- The file as a whole: safekeeping ---

    /// Makes a copy, byte for byte, of the file as it is now, with what it holds of damage. Whoever may use the file
    /// may use the copy. It appears under its name when it is durable and was read back. Throws FileExists,
    /// InvalidArgument in a transaction that has changed something.
    void copyTo(const std::string& path);
    /// Puts a copy of the other file in the place of this one. Requires a transaction that has changed nothing, and
    /// ends it. When it throws, the file is the old one or the new one, whole. Afterwards the database is to be opened
    /// again: this one, and every other connection to the old file, gives an error that says so.
    void replaceByCopyOf(Database& other);
    /// Puts a copy of this file where a file is that cannot be opened, or none. What is there keeps its bytes under the
    /// name `aside`, in the same folder, with its journal. Throws Locked, FileExists where the name aside is taken.
    void copyOver(const std::string& path, const std::string& aside);
    /// Writes what a file holds to a fresh one without the room that deleted rows left, proves that the new file is
    /// sound and holds the same, rows in the same order, and puts it in the place of the old one. Other programs may
    /// have the file open, as with replaceByCopyOf(). Throws Corrupt for a file that check() finds damaged, ReadOnly or
    /// IndexNotSupported for one that holds what cannot be carried over; the file then stays as it is.
    static void compact(FileSystem& fileSystem, const std::string& path);

private:
    class Implementation;
    explicit Database(std::unique_ptr<Implementation> implementation);
    std::unique_ptr<Implementation> implementation_;
};

/// Rolls back when destroyed without commit().
class Transaction
{
public:
    explicit Transaction(Database& database) : database_(&database) { database.begin(); }
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    ~Transaction()
    {
        if (database_ != nullptr) {
            database_->rollback();
        }
    }
    void commit()
    {
        Database* database = database_;
        database_ = nullptr;
        database->commit();
    }

private:
    Database* database_;
};

} // namespace jet

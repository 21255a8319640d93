#include "jet/database.h"

#include "jet/catalogue_writer.h"
#include "jet/change.h"
#include "jet/check.h"
#include "jet/compaction.h"
#include "jet/compaction_proof.h"
#include "jet/disk/set_aside.h"
#include "jet/disk/unfinished_file.h"
#include "jet/format/at_page.h"
#include "jet/format/header_page.h"
#include "jet/names.h"
#include "jet/new_file.h"
#include "jet/new_relationship.h"
#include "jet/new_table.h"
#include "jet/table_handle.h"

#include <map>

namespace jet {

namespace {

[[nodiscard]] Catalogue::SystemPages systemPagesOf(Pager& pager)
{
    const ReadGuard guard(pager);
    if (pager.pageCount() == 0) {
        throw Error(ErrorCode::NotADatabase, "The file " + pager.path() + " is not an Access database");
    }
    return atPage(0, [&pager] { return decodeHeaderPage(*pager.read(0)).systemTables; });
}

void requireSound(Pager& pager, const std::string& what)
{
    for (const Fault& fault : checkFile(pager)) {
        if (fault.kind == Fault::Kind::Damage) {
            throw Error(ErrorCode::Corrupt, fault.page, what + " is damaged: " + fault.text);
        }
    }
}

} // namespace

class Database::Implementation
{
public:
    Implementation(FileSystem& files, const std::string& path, OpenMode mode)
        : fileSystem(files), pager(files, path, mode), catalogue(pager, systemPagesOf(pager))
    {
    }

    FileSystem& fileSystem;
    Pager pager;
    Catalogue catalogue;
    std::map<std::string, std::unique_ptr<TableHandle>> handles; ///< by name as the catalogue spells it
};

Database::Database(std::unique_ptr<Implementation> implementation) : implementation_(std::move(implementation)) {}

Database::~Database() = default;

std::unique_ptr<Database> Database::open(FileSystem& fileSystem, const std::string& path, OpenMode mode)
{
    if (mode == OpenMode::Create) {
        return create(fileSystem, path, localNow());
    }
    return std::unique_ptr<Database>(new Database(std::make_unique<Implementation>(fileSystem, path, mode)));
}

std::unique_ptr<Database> Database::create(FileSystem& fileSystem, const std::string& path, DateTime now)
{
    makeFile(fileSystem, path, now);
    return open(fileSystem, path, OpenMode::ReadWrite);
}

const std::string& Database::path() const
{
    return implementation_->pager.path();
}

bool Database::isReadOnly() const
{
    return implementation_->pager.isReadOnly();
}

// --- Catalogue ---

std::vector<TableEntry> Database::tables() const
{
    const ReadGuard guard(implementation_->pager);
    std::vector<TableEntry> tables;
    for (const CatalogueEntry& entry : implementation_->catalogue.childrenOf(object_id::kTables)) {
        if (entry.is(ObjectType::Table)) {
            tables.push_back({.name = entry.name, .system = entry.isSystem()});
        }
    }
    return tables;
}

Table& Database::table(const std::string& name)
{
    const ReadGuard guard(implementation_->pager);
    const std::optional<CatalogueEntry> entry = implementation_->catalogue.find(object_id::kTables, name);
    if (!entry.has_value() || !entry->is(ObjectType::Table)) {
        throw Error(ErrorCode::NoSuchObject, "There is no table called \"" + name + "\" in this file");
    }
    std::unique_ptr<TableHandle>& handle = implementation_->handles[entry->name];
    if (handle == nullptr) {
        handle = std::make_unique<TableHandle>(implementation_->catalogue, *entry);
    }
    return *handle;
}

bool Database::hasTable(const std::string& name) const
{
    const ReadGuard guard(implementation_->pager);
    const std::optional<CatalogueEntry> entry = implementation_->catalogue.find(object_id::kTables, name);
    return entry.has_value() && entry->is(ObjectType::Table);
}

std::vector<SavedQuery> Database::queries() const
{
    const ReadGuard guard(implementation_->pager);
    return implementation_->catalogue.queries();
}

std::vector<Relationship> Database::relationships() const
{
    const ReadGuard guard(implementation_->pager);
    return implementation_->catalogue.relationships();
}

std::uint64_t Database::catalogueVersion() const
{
    const ReadGuard guard(implementation_->pager);
    return implementation_->catalogue.version();
}

// --- Changes to the catalogue ---

void Database::createTable(const TableSpec& spec)
{
    const TableDefinition definition = definitionOf(spec);
    Catalogue& catalogue = implementation_->catalogue;
    runChange(implementation_->pager, [&] {
        ChangeScope scope(catalogue.tables());
        CatalogueWriter writer(catalogue);
        const PageNumber page = storeNewTable(implementation_->pager, definition);
        writer.addUserObject({.id = static_cast<std::int32_t>(page),
                              .parent = object_id::kTables,
                              .name = spec.name,
                              .type = static_cast<std::int16_t>(ObjectType::Table)});
        scope.keep();
        catalogue.noteChange();
    });
}

void Database::createQuery(const SavedQuery& query)
{
    checkName(query.name, "a query");
    Catalogue& catalogue = implementation_->catalogue;
    runChange(implementation_->pager, [&] {
        ChangeScope scope(catalogue.tables());
        CatalogueWriter writer(catalogue);
        const CatalogueEntry entry{.id = writer.nextId(),
                                   .parent = object_id::kTables,
                                   .name = query.name,
                                   .type = static_cast<std::int16_t>(ObjectType::Query),
                                   .flags = static_cast<std::uint32_t>(query.flags)};
        writer.addUserObject(entry);
        for (const QueryRow& row : query.rows) {
            writer.addQueryRow(entry.id, row);
        }
        scope.keep();
        catalogue.noteChange();
    });
}

void Database::createRelationship(const Relationship& relationship)
{
    runChange(implementation_->pager, [&] { makeRelationship(implementation_->catalogue, relationship); });
}

// --- Reads and transactions ---

void Database::beginRead()
{
    implementation_->pager.beginRead();
}

void Database::endRead()
{
    implementation_->pager.endRead();
}

void Database::begin()
{
    implementation_->pager.begin();
}

void Database::commit()
{
    implementation_->pager.commit();
}

void Database::rollback()
{
    implementation_->pager.rollback();
}

bool Database::inTransaction() const
{
    return implementation_->pager.inTransaction();
}

std::vector<Fault> Database::check()
{
    return checkFile(implementation_->pager);
}

// --- Safekeeping ---

void Database::copyTo(const std::string& path)
{
    const ReadGuard guard(implementation_->pager);
    requireFreePath(implementation_->fileSystem, path);
    UnfinishedFile copy(implementation_->fileSystem, path);
    implementation_->pager.copyTo(copy);
    copy.finish();
}

void Database::replaceByCopyOf(Database& other)
{
    Pager& pager = implementation_->pager;
    UnfinishedFile copy(implementation_->fileSystem, pager.resolvedPath());
    {
        const ReadGuard guard(other.implementation_->pager);
        other.implementation_->pager.copyTo(copy);
    }
    pager.replaceBy(copy.path());
}

void Database::copyOver(const std::string& path, const std::string& aside)
{
    FileSystem& fileSystem = implementation_->fileSystem;
    const ReadGuard guard(implementation_->pager);
    UnfinishedFile copy(fileSystem, path);
    implementation_->pager.copyTo(copy);
    setAside(fileSystem, path, aside);
    copy.finish();
}

void Database::compact(FileSystem& fileSystem, const std::string& path)
{
    Implementation source(fileSystem, path, OpenMode::ReadWrite);
    source.pager.begin();
    requireSound(source.pager, "The file");
    std::vector<MovedTable> tables = tablesToCarryOver(source.catalogue);
    UnfinishedFile file(fileSystem, source.pager.resolvedPath());
    file.create(source.pager.resolvedPath());
    {
        Pager target(fileSystem, file.path(), OpenMode::ReadWrite);
        carryOver(source.catalogue, target, tables);
    }
    {
        Pager target(fileSystem, file.path(), OpenMode::ReadOnly);
        const ReadGuard guard(target);
        requireSound(target, "The new file");
        requireCarriedOver(source.catalogue, target, tables);
    }
    source.pager.replaceBy(file.path());
}

} // namespace jet

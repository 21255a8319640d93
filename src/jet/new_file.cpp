#include "jet/new_file.h"

#include "jet/catalogue_writer.h"
#include "jet/disk/unfinished_file.h"
#include "jet/format/header_page.h"
#include "jet/new_table.h"
#include "jet/store/page_allocator.h"

#include <algorithm>
#include <bit>

namespace jet {

namespace {

/// The mask of the accounts depends on the header's date of creation in a way that is not known. This is a pair that
/// belongs together; the true date stands in the catalogue.
constexpr std::uint64_t kCreatedBits = 0x40E4AB3E3BD3853EU;
constexpr std::uint16_t kAccountMask = 0x8A67;

/// Pages 2 to 13: the four definitions, the page with all their maps, the roots of their indexes.
Catalogue::SystemPages storeSystemTables(Pager& pager)
{
    std::array<TableDefinition, 4> definitions = systemTableDefinitions();
    for (TableDefinition& definition : definitions) {
        for (const Column& column : definition.columns) {
            if (column.isLongValue()) {
                definition.longValues.push_back({.columnNumber = column.number, .owned = {}, .withSpace = {}});
            }
        }
    }
    const std::vector<PageNumber> stored = storeNewTables(pager, definitions);
    Catalogue::SystemPages pages{};
    std::copy(stored.begin(), stored.end(), pages.begin());
    return pages;
}

void addSystemObjects(CatalogueWriter& writer, const Catalogue::SystemPages& pages, DateTime now)
{
    using namespace object_id;
    const auto add = [&writer, now](std::int32_t id, std::int32_t parent, const char* name, ObjectType type,
                                    Account owner) {
        writer.addObject(
            {.id = id, .parent = parent, .name = name, .type = static_cast<std::int16_t>(type), .flags = kSystemObject},
            owner, now);
    };
    add(kTables, kRoot, "Tables", ObjectType::Container, Account::Engine);
    add(kDatabases, kRoot, "Databases", ObjectType::Container, Account::Engine);
    add(kRelationships, kRoot, "Relationships", ObjectType::Container, Account::Engine);
    add(kMSysDb, kDatabases, "MSysDb", ObjectType::Database, Account::Admin);
    for (std::size_t i = 0; i < pages.size(); ++i) {
        add(static_cast<std::int32_t>(pages[i]), kTables, kSystemTableNames[i], ObjectType::Table, Account::Engine);
    }
}

/// The rights that the format's own engine gives; what the single bits mean does not matter here.
void addSystemPermissions(CatalogueWriter& writer, const Catalogue::SystemPages& pages)
{
    using namespace object_id;
    struct Permission {
        std::int32_t object;
        Account account;
        std::uint32_t rights;
        bool inheritable;
    };
    const auto page = [&pages](std::size_t i) { return static_cast<std::int32_t>(pages[i]); };
    const std::array permissions{
        Permission{page(0), Account::Admin, 0x60000, false},
        Permission{page(1), Account::Admin, 0x60000, false},
        Permission{page(2), Account::Admin, 0x60000, false},
        Permission{page(3), Account::Admin, 0xE0000, false},
        Permission{kTables, Account::Creator, 0xF00FE, true},
        Permission{kTables, Account::Admin, 0x60001, false},
        Permission{kRelationships, Account::Creator, 0xF00FE, true},
        Permission{kRelationships, Account::Admin, 0x60001, false},
        Permission{kDatabases, Account::Admin, 0x60000, false},
        Permission{kMSysDb, Account::Admin, 0x6000E, false},
        Permission{kMSysDb, Account::Users, 0x0000E, false},
        Permission{page(2), Account::Users, 0x00014, false},
        Permission{page(3), Account::Users, 0x00014, false},
        Permission{page(0), Account::Users, 0x00014, false},
        Permission{kTables, Account::Users, 0xFFEFF, true},
        Permission{kRelationships, Account::Users, 0xFFFFF, true},
    };
    for (const Permission& permission : permissions) {
        writer.addPermission(permission.object, permission.account, permission.rights, permission.inheritable);
    }
}

void fillNewFile(Pager& pager, DateTime now)
{
    pager.begin();
    static_cast<void>(pager.append());
    static_cast<void>(pager.append());
    HeaderPage header;
    header.created = {std::bit_cast<double>(kCreatedBits)};
    pager.modify(0) = encodeHeaderPage(header);
    PageAllocator::initialize(pager);
    const Catalogue::SystemPages pages = storeSystemTables(pager);
    Catalogue catalogue(pager, pages);
    CatalogueWriter writer(catalogue, kAccountMask);
    addSystemObjects(writer, pages, now);
    addSystemPermissions(writer, pages);
    pager.commit();
}

} // namespace

void makeFile(FileSystem& fileSystem, const std::string& path, DateTime now)
{
    requireFreePath(fileSystem, path);
    UnfinishedFile file(fileSystem, path);
    {
        Pager pager(fileSystem, file.path(), OpenMode::Create);
        fillNewFile(pager, now);
    }
    file.finish();
}

} // namespace jet

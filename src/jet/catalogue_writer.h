// New objects in the catalogue (FORMAT.md, "System tables").
#pragma once

#include "jet/catalogue.h"
#include "jet/row_writer.h"

namespace jet {

/// Who may own objects and have rights on them; two bytes each, scrambled in the file with the file's own mask.
enum class Account : std::uint16_t { Engine = 0x0302, Users = 0x0102, Admin = 0x0103, Creator = 0x0402 };

/// The date and time of day of the machine, local as all dates of a file.
[[nodiscard]] DateTime localNow();

/// All functions require a transaction and throw what RowWriter throws.
class CatalogueWriter
{
public:
    /// Learns the mask from the file.
    explicit CatalogueWriter(Catalogue& catalogue);
    /// For a file without objects yet; the mask as the two bytes stand in the file, the first one low.
    CatalogueWriter(Catalogue& catalogue, std::uint16_t mask);

    /// Adds the row of an object alone. Throws ObjectExists when its container has one of that name.
    void addObject(const CatalogueEntry& entry, Account owner, DateTime now);
    void addPermission(std::int32_t object, Account account, std::uint32_t rights, bool inheritable);
    /// Adds the row of a user's object and its rights.
    void addUserObject(const CatalogueEntry& entry);

    /// For objects other than tables.
    [[nodiscard]] std::int32_t nextId();

    void addQueryRow(std::int32_t query, const QueryRow& row);
    void addRelationshipRows(const Relationship& relationship);

private:
    [[nodiscard]] Bytes scrambled(Account account) const;

    Catalogue* catalogue_;
    RowWriter rows_;
    std::uint16_t mask_ = 0;
};

} // namespace jet

#include "jet/catalogue_writer.h"

#include "jet/format/utf.h"

#include <chrono>
#include <ctime>
#include <limits>

namespace jet {

namespace {

constexpr std::uint32_t kAllRights = 0x000FFFFF;

[[nodiscard]] Value textOrNull(const std::optional<std::u16string>& text)
{
    return text.has_value() ? Value{*text} : Value{Null{}};
}

[[nodiscard]] std::uint32_t flagsOf(const Relationship& relationship)
{
    using namespace relationship_flag;
    return (relationship.oneToOne ? kOneToOne : 0U) | (relationship.enforced ? 0U : kNotEnforced) |
           (relationship.cascadeUpdates ? kCascadeUpdates : 0U) | (relationship.cascadeDeletes ? kCascadeDeletes : 0U) |
           (relationship.setNullOnDelete ? kSetNullOnDelete : 0U);
}

} // namespace

DateTime localNow()
{
    constexpr double kDaysFrom1899To1970 = 25569;
    constexpr double kSecondsADay = 86400;
    const std::time_t seconds = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    std::tm local{};
    if (localtime_r(&seconds, &local) == nullptr) {
        return {kDaysFrom1899To1970 + static_cast<double>(seconds) / kSecondsADay};
    }
    const auto date = std::chrono::sys_days(std::chrono::year(local.tm_year + 1900) /
                                            std::chrono::month(static_cast<unsigned>(local.tm_mon + 1)) /
                                            std::chrono::day(static_cast<unsigned>(local.tm_mday)));
    const double time = local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec;
    return {kDaysFrom1899To1970 + static_cast<double>(date.time_since_epoch().count()) + time / kSecondsADay};
}

CatalogueWriter::CatalogueWriter(Catalogue& catalogue) : catalogue_(&catalogue), rows_(catalogue.tables())
{
    const std::optional<Bytes> owner = catalogue.ownerOf(object_id::kRoot, "Tables");
    if (!owner.has_value() || owner->size() != 2) {
        throw Error(ErrorCode::ReadOnly, "The file belongs to accounts of a workgroup; objects cannot be added to it");
    }
    mask_ = getU16(*owner, 0) ^ static_cast<std::uint16_t>(Account::Engine);
}

CatalogueWriter::CatalogueWriter(Catalogue& catalogue, std::uint16_t mask)
    : catalogue_(&catalogue), rows_(catalogue.tables()), mask_(mask)
{
}

Bytes CatalogueWriter::scrambled(Account account) const
{
    Bytes bytes(2);
    putU16(bytes, 0, static_cast<std::uint16_t>(static_cast<std::uint16_t>(account) ^ mask_));
    return bytes;
}

void CatalogueWriter::addObject(const CatalogueEntry& entry, Account owner, DateTime now)
{
    if (catalogue_->find(entry.parent, entry.name).has_value()) {
        throw Error(ErrorCode::ObjectExists, "There is an object called \"" + entry.name + "\" already");
    }
    const std::array row{systemValue(ObjectColumn::Id, entry.id),
                         systemValue(ObjectColumn::ParentId, entry.parent),
                         systemValue(ObjectColumn::Name, toUtf16(entry.name)),
                         systemValue(ObjectColumn::Type, entry.type),
                         systemValue(ObjectColumn::DateCreate, now),
                         systemValue(ObjectColumn::DateUpdate, now),
                         systemValue(ObjectColumn::Owner, scrambled(owner)),
                         systemValue(ObjectColumn::Flags, static_cast<std::int32_t>(entry.flags))};
    rows_.insert(catalogue_->objects(), row);
}

void CatalogueWriter::addPermission(std::int32_t object, Account account, std::uint32_t rights, bool inheritable)
{
    const std::array row{systemValue(AceColumn::ObjectId, object), systemValue(AceColumn::Sid, scrambled(account)),
                         systemValue(AceColumn::Acm, static_cast<std::int32_t>(rights)),
                         systemValue(AceColumn::Inheritable, inheritable)};
    rows_.insert(catalogue_->permissions(), row);
}

void CatalogueWriter::addUserObject(const CatalogueEntry& entry)
{
    addObject(entry, Account::Admin, localNow());
    addPermission(entry.id, Account::Admin, kAllRights, false);
    addPermission(entry.id, Account::Users, kAllRights, false);
}

std::int32_t CatalogueWriter::nextId()
{
    const std::optional<std::int32_t> highest = catalogue_->highestSyntheticId();
    if (highest == -1) {
        throw Error(ErrorCode::Overflow, "The file has used up its numbers for objects");
    }
    return highest.has_value() ? *highest + 1 : std::numeric_limits<std::int32_t>::min();
}

void CatalogueWriter::addQueryRow(std::int32_t query, const QueryRow& row)
{
    Bytes order(4);
    putBigEndian<std::uint32_t>(order, 0, row.order);
    const std::array values{systemValue(QueryColumn::ObjectId, query),
                            systemValue(QueryColumn::Attribute, row.attribute),
                            systemValue(QueryColumn::Order, std::move(order)),
                            systemValue(QueryColumn::Name1, textOrNull(row.name1)),
                            systemValue(QueryColumn::Name2, textOrNull(row.name2)),
                            systemValue(QueryColumn::Expression, textOrNull(row.expression)),
                            systemValue(QueryColumn::Flag, row.flag.has_value() ? Value{*row.flag} : Value{Null{}})};
    rows_.insert(catalogue_->queryRows(), values);
}

void CatalogueWriter::addRelationshipRows(const Relationship& relationship)
{
    const auto count = static_cast<std::int32_t>(relationship.columns.size());
    for (std::int32_t i = 0; i < count; ++i) {
        const Relationship::Pair& pair = relationship.columns[static_cast<std::size_t>(i)];
        const std::array values{
            systemValue(RelationshipColumn::Name, toUtf16(relationship.name)),
            systemValue(RelationshipColumn::Flags, static_cast<std::int32_t>(flagsOf(relationship))),
            systemValue(RelationshipColumn::ColumnCount, count),
            systemValue(RelationshipColumn::ColumnIndex, i),
            systemValue(RelationshipColumn::Object, toUtf16(relationship.referencingTable)),
            systemValue(RelationshipColumn::Column, toUtf16(pair.referencing)),
            systemValue(RelationshipColumn::ReferencedObject, toUtf16(relationship.referencedTable)),
            systemValue(RelationshipColumn::ReferencedColumn, toUtf16(pair.referenced))};
        rows_.insert(catalogue_->relationshipRows(), values);
    }
}

} // namespace jet

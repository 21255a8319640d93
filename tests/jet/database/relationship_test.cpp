// Enforced relationships: refusals and cascades.
#include "jet/database/builders.h"
#include "jet/database/small_diary.h"
#include "jet/disk/memory_file.h"
#include "jet/support/error_matchers.h"

#include <functional>
#include <gtest/gtest.h>

namespace jet::test {
namespace {

class Relationships : public testing::Test
{
protected:
    Relationships() : database_(Database::create(files_, "/a.mdb", DateTime{36900}))
    {
        database_->createTable({"Parents",
                                {column("Key", ColumnType::Text, 10), column("Data", ColumnType::Long)},
                                {primaryKey({{"Key"}})}});
        database_->createTable(
            {"Children", {counter("Id"), column("Parent", ColumnType::Text, 10)}, {primaryKey({{"Id"}})}});
    }

    ~Relationships() override { EXPECT_EQ(faultsOf(*database_), ""); }

    /// Children.Parent -> Parents.Key, as the function makes it.
    void relate(const std::function<void(Relationship&)>& change = {})
    {
        Relationship spec = relationship("ParentsChildren", "Children", "Parent", "Parents", "Key");
        if (change) {
            change(spec);
        }
        database_->createRelationship(spec);
    }

    RowPointer parent(const std::u16string& key) { return parents().insert(values(parents(), {{"Key", key}})); }
    RowPointer child(const Value& key) { return children().insert(values(children(), {{"Parent", key}})); }
    Table& parents() { return database_->table("Parents"); }
    Table& children() { return database_->table("Children"); }

    MemoryFileSystem files_;
    std::unique_ptr<Database> database_;
};

TEST_F(Relationships, ARowWithoutItsParentIsRefused)
{
    relate();
    parent(u"a");
    child(u"A");
    EXPECT_THAT([&] { child(u"b"); }, throwsError(ErrorCode::MissingParent, "Parents"));
    const RowPointer orphan = child(Null{});
    EXPECT_THAT(
        [&] {
            children().update(orphan, values(children(), {{"Parent", u"b"}}));
        },
        throwsError(ErrorCode::MissingParent));
    EXPECT_EQ(listed(children()), "1 A\n3 -\n");
}

TEST_F(Relationships, AParentWithChildrenIsNeitherErasedNorRekeyed)
{
    relate();
    const RowPointer a = parent(u"a");
    const RowPointer b = parent(u"b");
    child(u"a");
    EXPECT_THAT([&] { parents().erase(a); }, throwsError(ErrorCode::HasChildren, "Children"));
    EXPECT_THAT([&] { parents().update(a, values(parents(), {{"Key", u"c"}})); }, throwsError(ErrorCode::HasChildren));
    parents().update(a, values(parents(), {{"Data", 5}}));
    parents().update(a, values(parents(), {{"Key", u"A"}})); // the same key
    parents().erase(b);
    EXPECT_EQ(listed(parents()), "A 5\n");
}

TEST_F(Relationships, AKeyThatChangesIsPassedOnWhereSoMarked)
{
    relate([](Relationship& spec) { spec.cascadeUpdates = true; });
    const RowPointer a = parent(u"a");
    parent(u"b");
    child(u"a");
    child(u"b");
    child(u"a");
    parents().update(a, values(parents(), {{"Key", u"z"}}));
    EXPECT_EQ(listed(children()), "1 z\n2 b\n3 z\n");
    EXPECT_THAT([&] { parents().erase(a); }, throwsError(ErrorCode::HasChildren));
}

TEST_F(Relationships, ChildrenGoWithTheirParentWhereSoMarked)
{
    relate([](Relationship& spec) { spec.cascadeDeletes = true; });
    const RowPointer a = parent(u"a");
    parent(u"b");
    for (int i = 0; i < 3; ++i) {
        child(u"a");
        child(u"b");
    }
    parents().erase(a);
    EXPECT_EQ(listed(parents()), "b -\n");
    EXPECT_EQ(listed(children()), "2 b\n4 b\n6 b\n");
    EXPECT_EQ(children().rowCount(), 3U);
}

TEST_F(Relationships, ChildrenLoseTheirParentWhereSoMarked)
{
    relate([](Relationship& spec) { spec.setNullOnDelete = true; });
    const RowPointer a = parent(u"a");
    child(u"a");
    parents().erase(a);
    EXPECT_EQ(listed(children()), "1 -\n");
}

TEST_F(Relationships, ACascadeStopsAtARefusalAndChangesNothing)
{
    relate([](Relationship& spec) { spec.cascadeDeletes = true; });
    database_->createTable({"Grandchildren", {column("Child", ColumnType::Long)}, {}});
    database_->createRelationship(relationship("G", "Grandchildren", "Child", "Children", "Id"));
    const RowPointer a = parent(u"a");
    child(u"a");
    child(u"a");
    Table& grandchildren = database_->table("Grandchildren");
    grandchildren.insert(values(grandchildren, {{"Child", 2}}));
    EXPECT_THAT([&] { parents().erase(a); }, throwsError(ErrorCode::HasChildren, "Grandchildren"));
    EXPECT_EQ(listed(parents()), "a -\n");
    EXPECT_EQ(listed(children()), "1 a\n2 a\n");
}

TEST_F(Relationships, CascadesRunOnToGrandchildren)
{
    relate([](Relationship& spec) { spec.cascadeDeletes = true; });
    database_->createTable({"Grandchildren", {column("Child", ColumnType::Long)}, {}});
    Relationship spec = relationship("G", "Grandchildren", "Child", "Children", "Id");
    spec.cascadeDeletes = true;
    database_->createRelationship(spec);
    Table& grandchildren = database_->table("Grandchildren");
    const RowPointer a = parent(u"a");
    parent(u"b");
    child(u"a");
    child(u"b");
    for (const std::int32_t id : {1, 2, 1}) {
        grandchildren.insert(values(grandchildren, {{"Child", id}}));
    }
    parents().erase(a);
    EXPECT_EQ(listed(children()), "2 b\n");
    EXPECT_EQ(listed(grandchildren), "2\n");
}

TEST_F(Relationships, ARowMayReferToItself)
{
    database_->createTable(
        {"Tree", {column("Id", ColumnType::Long), column("Above", ColumnType::Long)}, {primaryKey({{"Id"}})}});
    Relationship spec = relationship("TreeTree", "Tree", "Above", "Tree", "Id");
    spec.cascadeDeletes = true;
    spec.cascadeUpdates = true;
    database_->createRelationship(spec);
    Table& tree = database_->table("Tree");
    const RowPointer root = tree.insert(values(tree, {{"Id", 1}, {"Above", 1}}));
    tree.insert(values(tree, {{"Id", 2}, {"Above", 1}}));
    tree.insert(values(tree, {{"Id", 3}, {"Above", 2}}));
    EXPECT_THAT([&] { tree.insert(values(tree, {{"Id", 4}, {"Above", 5}})); }, throwsError(ErrorCode::MissingParent));
    tree.update(root, values(tree, {{"Id", 9}}));
    EXPECT_EQ(listed(tree), "9 9\n2 9\n3 2\n");
    tree.erase(root);
    EXPECT_EQ(listed(tree), "");
}

TEST_F(Relationships, ARowThatRefersToItselfCanBeErasedWithoutACascade)
{
    database_->createTable(
        {"Tree", {column("Id", ColumnType::Long), column("Above", ColumnType::Long)}, {primaryKey({{"Id"}})}});
    database_->createRelationship(relationship("TreeTree", "Tree", "Above", "Tree", "Id"));
    Table& tree = database_->table("Tree");
    const RowPointer root = tree.insert(values(tree, {{"Id", 1}, {"Above", 1}}));
    const RowPointer leaf = tree.insert(values(tree, {{"Id", 2}, {"Above", 1}}));
    EXPECT_THAT([&] { tree.erase(root); }, throwsError(ErrorCode::HasChildren));
    tree.erase(leaf);
    tree.erase(root);
    EXPECT_EQ(listed(tree), "");
}

TEST_F(Relationships, ARowCannotReferToTheKeyThatItGivesUp)
{
    database_->createTable(
        {"Tree", {column("Id", ColumnType::Long), column("Above", ColumnType::Long)}, {primaryKey({{"Id"}})}});
    database_->createRelationship(relationship("TreeTree", "Tree", "Above", "Tree", "Id"));
    Table& tree = database_->table("Tree");
    const RowPointer row = tree.insert(values(tree, {{"Id", 1}}));
    EXPECT_THAT(
        [&] {
            tree.update(row, values(tree, {{"Id", 2}, {"Above", 1}}));
        },
        throwsError(ErrorCode::MissingParent));
    tree.update(row, values(tree, {{"Id", 2}, {"Above", 2}}));
    EXPECT_EQ(listed(tree), "2 2\n");
}

TEST_F(Relationships, RowsThatReferToEachOtherInARingGoTogether)
{
    database_->createTable(
        {"Ring", {column("Id", ColumnType::Long), column("Next", ColumnType::Long)}, {primaryKey({{"Id"}})}});
    Relationship spec = relationship("RingRing", "Ring", "Next", "Ring", "Id");
    spec.cascadeDeletes = true;
    database_->createRelationship(spec);
    Table& ring = database_->table("Ring");
    std::vector<RowPointer> rows;
    for (std::int32_t id = 0; id < 5; ++id) {
        rows.push_back(ring.insert(values(ring, {{"Id", id}})));
    }
    for (std::int32_t id = 0; id < 5; ++id) {
        ring.update(rows[static_cast<std::size_t>(id)], values(ring, {{"Next", (id + 1) % 5}}));
    }
    ring.erase(rows[3]);
    EXPECT_EQ(listed(ring), "");
}

TEST_F(Relationships, ALongChainOfCascadesIsNoTroubleForTheStack)
{
    database_->createTable(
        {"Chain", {column("Id", ColumnType::Long), column("Above", ColumnType::Long)}, {primaryKey({{"Id"}})}});
    Relationship spec = relationship("ChainChain", "Chain", "Above", "Chain", "Id");
    spec.cascadeDeletes = true;
    database_->createRelationship(spec);
    Table& chain = database_->table("Chain");
    database_->begin();
    const RowPointer first = chain.insert(values(chain, {{"Id", 0}}));
    for (std::int32_t id = 1; id < 1000; ++id) {
        chain.insert(values(chain, {{"Id", id}, {"Above", id - 1}}));
    }
    chain.erase(first);
    database_->commit();
    EXPECT_EQ(chain.rowCount(), 0U);
}

TEST_F(Relationships, ExistingRowsMustComply)
{
    child(u"nobody");
    EXPECT_THAT([&] { relate(); }, throwsError(ErrorCode::MissingParent));
    EXPECT_TRUE(database_->relationships().empty());
    EXPECT_EQ(children().definition().realIndexes.size(), 1U);
    relate([](Relationship& spec) { spec.enforced = false; });
    ASSERT_EQ(database_->relationships().size(), 1U);
    EXPECT_FALSE(database_->relationships().front().enforced);
    child(u"nor he");
}

TEST_F(Relationships, AnIndexOnTheReferencingColumnsIsMadeAndFilled)
{
    parent(u"a");
    parent(u"b");
    child(u"b");
    child(Null{});
    child(u"a");
    relate();
    const TableDefinition& definition = children().definition();
    ASSERT_EQ(definition.realIndexes.size(), 2U);
    EXPECT_EQ(definition.realIndexes[1].flags, RealIndex::kAlways);
    EXPECT_EQ(listed(*children().range(1, {}), definition), "2 -\n3 a\n1 b\n");
}

TEST_F(Relationships, AnIndexThatIsThereIsShared)
{
    database_->createTable({"Other", {column("Parent", ColumnType::Text, 10)}, {index("ByParent", {{"Parent"}})}});
    database_->createRelationship(relationship("ParentsOther", "Other", "Parent", "Parents", "Key"));
    const TableDefinition& definition = database_->table("Other").definition();
    ASSERT_EQ(definition.realIndexes.size(), 1U);
    ASSERT_EQ(definition.logicalIndexes.size(), 2U);
    EXPECT_EQ(definition.logicalIndexes[1].name, "ParentsOther");
    EXPECT_EQ(definition.logicalIndexes[1].realIndex, 0U);
    const TableDefinition& other = parents().definition();
    ASSERT_EQ(other.logicalIndexes.size(), 2U);
    EXPECT_EQ(other.logicalIndexes[1].name, ".rB");
    EXPECT_EQ(other.logicalIndexes[1].role, LogicalIndex::Role::Referenced);
}

TEST_F(Relationships, KeysOfSeveralColumnsAreComparedColumnByColumn)
{
    database_->createTable({"Rooms",
                            {column("House", ColumnType::Long), column("Room", ColumnType::Text, 5)},
                            {primaryKey({{"Room", false}, {"House"}})}});
    database_->createTable({"Beds", {column("R", ColumnType::Text, 5), column("H", ColumnType::Long)}, {}});
    Relationship spec = relationship("RoomsBeds", "Beds", "H", "Rooms", "House");
    spec.columns.push_back({"R", "Room"});
    spec.cascadeUpdates = true;
    database_->createRelationship(spec);
    Table& rooms = database_->table("Rooms");
    Table& beds = database_->table("Beds");
    const RowPointer room = rooms.insert(values(rooms, {{"House", 1}, {"Room", u"x"}}));
    beds.insert(values(beds, {{"H", 1}, {"R", u"x"}}));
    beds.insert({});
    EXPECT_THAT([&] { beds.insert(values(beds, {{"H", 2}, {"R", u"x"}})); }, throwsError(ErrorCode::MissingParent));
    EXPECT_THAT([&] { beds.insert(values(beds, {{"H", 1}})); }, throwsError(ErrorCode::MissingParent));
    rooms.update(room, values(rooms, {{"Room", u"y"}}));
    EXPECT_EQ(listed(beds), "y 1\n- -\n");
}

TEST_F(Relationships, DescriptionsThatDoNotFitAreRefused)
{
    const auto refused = [&](const std::function<void(Relationship&)>& change, ErrorCode code) {
        EXPECT_THAT([&] { relate(change); }, throwsError(code));
    };
    refused([](Relationship& spec) { spec.name = "a.b"; }, ErrorCode::InvalidArgument);
    refused([](Relationship& spec) { spec.columns.clear(); }, ErrorCode::InvalidArgument);
    refused([](Relationship& spec) { spec.referencedTable = "Nobody"; }, ErrorCode::NoSuchObject);
    refused([](Relationship& spec) { spec.columns[0].referenced = "Nothing"; }, ErrorCode::NoSuchObject);
    refused([](Relationship& spec) { spec.columns[0].referencing = "Id"; }, ErrorCode::InvalidArgument);
    refused(
        [](Relationship& spec) {
            spec.columns[0] = {"Id", "Data"};
        },
        ErrorCode::InvalidArgument); // no unique index
    refused([](Relationship& spec) { spec.referencedTable = "MSysObjects"; }, ErrorCode::ReadOnly);
    EXPECT_TRUE(database_->relationships().empty());
    relate();
    refused({}, ErrorCode::ObjectExists);
    ASSERT_EQ(database_->relationships().size(), 1U);
    EXPECT_EQ(database_->relationships().front().name, "ParentsChildren");
}

TEST_F(Relationships, WhatIsStoredReadsBackTheSame)
{
    relate([](Relationship& spec) {
        spec.cascadeDeletes = true;
        spec.cascadeUpdates = true;
    });
    database_.reset();
    database_ = Database::open(files_, "/a.mdb");
    ASSERT_EQ(database_->relationships().size(), 1U);
    const Relationship stored = database_->relationships().front();
    EXPECT_EQ(stored.name, "ParentsChildren");
    EXPECT_EQ(stored.referencingTable, "Children");
    EXPECT_EQ(stored.referencedTable, "Parents");
    ASSERT_EQ(stored.columns.size(), 1U);
    EXPECT_EQ(stored.columns[0].referencing, "Parent");
    EXPECT_EQ(stored.columns[0].referenced, "Key");
    EXPECT_TRUE(stored.enforced && stored.cascadeDeletes && stored.cascadeUpdates);
    EXPECT_FALSE(stored.oneToOne || stored.setNullOnDelete);
}

} // namespace
} // namespace jet::test

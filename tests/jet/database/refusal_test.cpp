// Tables that cannot be kept up are readable and not written to; properties that are rules are kept.
#include "jet/catalogue_writer.h"
#include "jet/database/builders.h"
#include "jet/database/small_diary.h"
#include "jet/disk/memory_file.h"
#include "jet/format/property_blob.h"
#include "jet/support/error_matchers.h"
#include "jet/support/property_blob_encoder.h"

#include <functional>
#include <gtest/gtest.h>

namespace jet::test {
namespace {

const std::string kPath = "/a.mdb";

class Refusals : public testing::Test
{
protected:
    Refusals()
    {
        open(Database::create(files_, kPath, DateTime{36900}));
        database_->createTable(
            {"T",
             {counter("Id"), column("Name", ColumnType::Text, 20), column("Note", ColumnType::Text, 20)},
             {primaryKey({{"Id"}}), index("ByName", {{"Name"}})}});
        table().insert(values(table(), {{"Name", u"first"}}));
    }

    void open(std::unique_ptr<Database> database) { database_ = std::move(database); }
    Table& table() { return database_->table("T"); }

    /// Lets the function change the descriptor of the column of that number in the table's definition.
    void patchColumn(std::uint16_t number, const std::function<void(MutableBytes)>& patch)
    {
        database_.reset();
        Bytes file = files_.content(kPath);
        for (std::size_t page = 16 * kPageSize; page + kPageSize <= file.size(); page += kPageSize) {
            const MutableBytes bytes = slice(MutableBytes(file), page, kPageSize);
            if (getU8(bytes, 0) != 2) {
                continue;
            }
            const std::size_t descriptors = 63 + 12U * getU32(bytes, 51);
            patch(slice(bytes, descriptors + 25U * number, 25));
        }
        files_.setContent(kPath, file);
        open(Database::open(files_, kPath));
    }

    /// Gives the table one Boolean property of a column.
    void setProperty(const char* column, const char* name, bool on)
    {
        const Property property{
            .name = name, .structural = true, .type = 1, .data = Bytes(1, on ? std::byte{0xFF} : std::byte{0})};
        const PropertyBlob blob{.sets = {{.owner = column, .kind = 1, .properties = {property}}}, .names = {}};
        database_.reset();
        {
            Pager pager(files_, kPath, OpenMode::ReadWrite);
            Catalogue catalogue(pager, {2, 3, 4, 5});
            pager.begin();
            const std::int32_t id = catalogue.find(object_id::kTables, "T").value().id;
            const std::shared_ptr<LoadedTable> objects = catalogue.objects().loaded();
            const TableIndex& byId = objects->indexes[1];
            RowValues key = objects->emptyRow();
            key[0] = id;
            const std::optional<RowPointer> row = byId.tree.find(byId.keyOf(key).bytes);
            ASSERT_TRUE(row.has_value());
            const std::array change{systemValue(ObjectColumn::LvProp, test::encodePropertyBlob(blob))};
            RowWriter(catalogue.tables()).update(catalogue.objects(), *row, change);
            pager.commit();
        }
        open(Database::open(files_, kPath));
    }

    MemoryFileSystem files_;
    std::unique_ptr<Database> database_;
};

TEST_F(Refusals, AnIndexOfAnotherSortOrderIsNamed)
{
    patchColumn(1, [](MutableBytes descriptor) { putU16(descriptor, 11, 1031); });
    EXPECT_EQ(listed(table()), "1 first -\n");
    EXPECT_FALSE(table().isSearchable(1));
    EXPECT_TRUE(table().isSearchable(0));
    EXPECT_NE(table().whyReadOnly().find("ByName"), std::string::npos);
    EXPECT_THAT([&] { table().insert({}); }, throwsError(ErrorCode::IndexNotSupported, "ByName"));
    const RowPointer row = [&] {
        const auto cursor = table().scan();
        return cursor->next() ? cursor->row().address() : RowPointer{};
    }();
    EXPECT_THAT(
        [&] {
            table().update(row, values(table(), {{"Note", u"n"}}));
        },
        throwsError(ErrorCode::IndexNotSupported, "ByName"));
    EXPECT_THAT([&] { table().erase(row); }, throwsError(ErrorCode::IndexNotSupported, "ByName"));
    EXPECT_THAT([&] { static_cast<void>(table().range(1, {})); }, throwsError(ErrorCode::IndexNotSupported, "ByName"));
    const KeyBound one{{1}, true};
    EXPECT_EQ(listed(*table().range(0, {one, one}), table().definition()), "1 first -\n");
}

TEST_F(Refusals, AnIndexOnAnUnknownTypeIsNamed)
{
    patchColumn(1, [](MutableBytes descriptor) { putU8(descriptor, 0, 18); });
    EXPECT_THAT([&] { table().insert({}); }, throwsError(ErrorCode::IndexNotSupported, "ByName"));
    const auto cursor = table().scan();
    EXPECT_TRUE(cursor->next());
}

TEST_F(Refusals, AColumnOfUnknownTypeIsCopiedAndTakesNoValue)
{
    table().insert(values(table(), {{"Name", u"second"}, {"Note", u"kept"}}));
    patchColumn(2, [](MutableBytes descriptor) { putU8(descriptor, 0, 18); });
    RowPointer row;
    for (const auto cursor = table().scan(); cursor->next();) {
        row = cursor->row().address();
    }
    EXPECT_EQ(table().whyReadOnly(), "");
    EXPECT_THAT(
        [&] {
            table().update(row, values(table(), {{"Note", Bytes(2)}}));
        },
        throwsError(ErrorCode::ReadOnly, "Note"));
    table().update(row, values(table(), {{"Name", u"changed"}}));
    table().insert(values(table(), {{"Name", u"third"}}));
    patchColumn(2, [](MutableBytes descriptor) { putU8(descriptor, 0, 10); });
    EXPECT_EQ(listed(table()), "1 first -\n2 changed kept\n3 third -\n");
}

TEST_F(Refusals, ARequiredColumnTakesNoNull)
{
    setProperty("Note", "Required", true);
    EXPECT_THAT(
        [&] {
            table().insert(values(table(), {{"Name", u"x"}}));
        },
        throwsError(ErrorCode::NullNotAllowed, "Note"));
    const RowPointer row = table().insert(values(table(), {{"Note", u""}}));
    EXPECT_THAT(
        [&] {
            table().update(row, values(table(), {{"Note", Null{}}}));
        },
        throwsError(ErrorCode::NullNotAllowed, "Note"));
    table().update(row, values(table(), {{"Name", u"y"}}));
}

TEST_F(Refusals, AColumnThatTakesNoEmptyTextTakesNull)
{
    setProperty("Note", "AllowZeroLength", false);
    EXPECT_THAT(
        [&] {
            table().insert(values(table(), {{"Note", u""}}));
        },
        throwsError(ErrorCode::InvalidArgument, "Note"));
    table().insert(values(table(), {{"Note", Null{}}, {"Name", u""}}));
    EXPECT_EQ(table().rowCount(), 2U);
}

} // namespace
} // namespace jet::test

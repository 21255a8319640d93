// Files of ours as an independent program reads them.
#include "jet/database/builders.h"
#include "jet/database/mdbtools.h"
#include "jet/database/small_diary.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace jet::test {
namespace {

TEST(Mdbtools, KnowsTheVersionAndTheTables)
{
    const TemporaryFolder folder;
    const std::string path = folder.path("a.mdb");
    static_cast<void>(createSmallDiary(posixFileSystem(), path));
    EXPECT_EQ(runMdbtool("mdb-ver", {path}), "JET4\n");
    EXPECT_EQ(runMdbtool("mdb-tables", {"-1", path}), "Readings\nMeals\nFoods\n");
    EXPECT_EQ(runMdbtool("mdb-tables", {"-1", "-S", path}),
              "MSysObjects\nMSysACEs\nMSysQueries\nMSysRelationships\nReadings\nMeals\nFoods\n");
}

TEST(Mdbtools, ReadsTheSchema)
{
    const TemporaryFolder folder;
    const std::string path = folder.path("a.mdb");
    static_cast<void>(createSmallDiary(posixFileSystem(), path));
    const std::string schema = runMdbtool("mdb-schema", {path, "postgres"});
    for (const char* line : {"\t\"id\"\t\t\tSERIAL,", "\t\"comment\"\t\t\tVARCHAR (200),", "\t\"notes\"\t\t\tTEXT,",
                             "ADD CONSTRAINT \"foods_pkey\" PRIMARY KEY (\"mealno\", \"position\");",
                             "CREATE UNIQUE INDEX \"readings_code_idx\" ON \"readings\" (\"code\");",
                             "FOREIGN KEY (\"mealno\") REFERENCES \"Meals\"(\"mealno\") ON DELETE CASCADE"}) {
        EXPECT_THAT(schema, testing::HasSubstr(line));
    }
}

TEST(Mdbtools, ReadsTheRowsOfADiary)
{
    const TemporaryFolder folder;
    const std::string path = folder.path("a.mdb");
    const auto diary = createSmallDiary(posixFileSystem(), path);
    fillSmallDiary(*diary);
    EXPECT_EQ(expectSameRowsAsMdbExport(path, diary->table("Readings")), 5U);
    EXPECT_EQ(expectSameRowsAsMdbExport(path, diary->table("Meals")), 2U);
    EXPECT_EQ(expectSameRowsAsMdbExport(path, diary->table("Foods")), 4U);
}

TEST(Mdbtools, ReadsValuesOfEveryType)
{
    const TemporaryFolder folder;
    const std::string path = folder.path("a.mdb");
    const auto database = Database::create(posixFileSystem(), path, DateTime{46000});
    auto decimals = column("ANumeric", ColumnType::Numeric);
    decimals.scale = 4;
    TableSpec spec{"Types",
                   {counter("Id"), column("ABoolean", ColumnType::Boolean), column("AByte", ColumnType::Byte),
                    column("AnInteger", ColumnType::Integer), column("ALong", ColumnType::Long),
                    column("ACurrency", ColumnType::Currency), column("ASingle", ColumnType::Single),
                    column("ADouble", ColumnType::Double), column("ADate", ColumnType::DateTime),
                    column("ABinary", ColumnType::Binary, 100), column("AText", ColumnType::Text, 255),
                    column("AnOle", ColumnType::Ole), column("AMemo", ColumnType::Memo),
                    column("AGuid", ColumnType::Guid), decimals},
                   {primaryKey({{"Id"}})}};
    for (const ColumnSpec& each : std::vector<ColumnSpec>(spec.columns)) {
        if (each.type != ColumnType::Ole) {
            spec.indexes.push_back(index("Up" + each.name, {{each.name}}));
            spec.indexes.push_back(index("Down" + each.name, {{each.name, false}}));
        }
    }
    database->createTable(spec);
    Table& table = database->table("Types");

    Bytes bytes(90);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<std::byte>(i * 7 + 1);
    }
    Guid guid;
    for (std::size_t i = 0; i < guid.bytes.size(); ++i) {
        guid.bytes[i] = static_cast<std::byte>(0xA0 + i);
    }
    const auto add = [&table](bool flag, std::uint8_t small, std::int16_t medium, std::int32_t large, double number,
                              const std::u16string& text, const std::u16string& memo, const Bytes& binary,
                              const Guid& id, std::size_t blob) {
        const bool negative = number < 0;
        const auto scaled = static_cast<std::uint32_t>(std::abs(number) * 10000);
        table.insert(values(table, {{"ABoolean", flag},
                                    {"AByte", small},
                                    {"AnInteger", medium},
                                    {"ALong", large},
                                    {"ACurrency", Currency{static_cast<std::int64_t>(number * 10000)}},
                                    {"ASingle", static_cast<float>(number)},
                                    {"ADouble", number},
                                    {"ADate", DateTime{36900.25 + number}},
                                    {"ABinary", binary},
                                    {"AText", text},
                                    {"AnOle", Bytes(blob, std::byte{0x5A})},
                                    {"AMemo", memo},
                                    {"AGuid", id},
                                    {"ANumeric", Numeric{negative, {0, 0, 0, scaled}, 4}}}));
    };
    add(true, 255, 32767, 2147483647, 1234.5678, u"Latin only", u"short", bytes, guid, 10);
    add(false, 0, -32768, -2147483647 - 1, -0.5, u"\u0416\u0438\u0437\u043D\u044C \u20AC",
        std::u16string(3000, u'\u00E9'), Bytes(1), Guid{}, 3000);
    add(true, 1, 0, 0, 0, u"x", std::u16string(20000, u'\u0436'), bytes, guid, 50000);
    table.insert({});

    EXPECT_EQ(expectSameRowsAsMdbExport(path, table), 4U);
    for (std::size_t i = 0; i < table.definition().realIndexes.size(); ++i) {
        std::size_t count = 0;
        if (table.isSearchable(i)) {
            for (const auto cursor = table.range(i, {}); cursor->next();) {
                ++count;
            }
            EXPECT_EQ(count, 4U) << i;
        }
    }
    EXPECT_EQ(faultsOf(*database), "");
}

} // namespace
} // namespace jet::test

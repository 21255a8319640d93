// Files, tables and saved queries from nothing.
#include "jet/database/builders.h"
#include "jet/database/small_diary.h"
#include "jet/disk/memory_file.h"
#include "jet/disk/page.h"
#include "jet/support/error_matchers.h"
#include "jet/support/forwarding_file_system.h"

#include <gtest/gtest.h>

namespace jet::test {
namespace {

const std::string kPath = "/a.mdb";

[[nodiscard]] ByteView pageOf(const Bytes& file, std::size_t number)
{
    return slice(ByteView(file), number * kPageSize, kPageSize);
}

/// Counts the calls that read the files.
class CountingFileSystem final : public ForwardingFileSystem
{
public:
    using ForwardingFileSystem::ForwardingFileSystem;

    [[nodiscard]] std::unique_ptr<File> open(const std::string& path, OpenMode mode) override
    {
        return std::make_unique<CountingFile>(ForwardingFileSystem::open(path, mode), reads_);
    }
    [[nodiscard]] std::size_t reads() const { return reads_; }

private:
    class CountingFile final : public ForwardingFile
    {
    public:
        CountingFile(std::unique_ptr<File> file, std::size_t& reads) : ForwardingFile(std::move(file)), reads_(&reads)
        {
        }
        void readAt(std::uint64_t offset, MutableBytes buffer) override
        {
            ++*reads_;
            ForwardingFile::readAt(offset, buffer);
        }

    private:
        std::size_t* reads_;
    };

    std::size_t reads_ = 0;
};

class Creation : public testing::Test
{
protected:
    MemoryFileSystem files_;
};

TEST_F(Creation, AFileFromNothingHasSixteenPagesOfTheseKinds)
{
    const auto database = Database::create(files_, kPath, DateTime{46000.25});
    const Bytes file = files_.content(kPath);
    ASSERT_EQ(file.size(), 16 * kPageSize);
    const std::vector<unsigned> kinds{0, 1, 2, 2, 2, 2, 1, 4, 4, 4, 4, 4, 4, 4, 1, 1};
    for (std::size_t page = 0; page < kinds.size(); ++page) {
        EXPECT_EQ(getU8(pageOf(file, page), 0), kinds[page]) << page;
    }
    EXPECT_EQ(getU32(pageOf(file, 1), 4), 1U) << "the owner of the page of the global map";
    EXPECT_EQ(getU32(pageOf(file, 6), 4), 0U) << "the owner of the page of maps";
    EXPECT_EQ(getU16(pageOf(file, 6), 12), 31U) << "maps";
    EXPECT_EQ(getU16(pageOf(file, 6), 2), 1881U) << "free bytes among the maps";
    EXPECT_EQ(getU16(pageOf(file, 14), 12), 8U) << "objects";
    EXPECT_EQ(getU16(pageOf(file, 15), 12), 16U) << "permissions";
    EXPECT_EQ(faultsOf(*database), "");
}

TEST_F(Creation, TheDefinitionsOfTheSystemTablesHaveTheLengthsOfTheOriginal)
{
    static_cast<void>(Database::create(files_, kPath, DateTime{46000.25}));
    const Bytes file = files_.content(kPath);
    EXPECT_EQ(getU32(pageOf(file, 2), 8), 1050U);
    EXPECT_EQ(getU32(pageOf(file, 3), 8), 335U);
    EXPECT_EQ(getU32(pageOf(file, 4), 8), 525U);
    EXPECT_EQ(getU32(pageOf(file, 5), 8), 813U);
}

TEST_F(Creation, TheGlobalMapMarksAllPagesFromSixteenOnAsFree)
{
    static_cast<void>(Database::create(files_, kPath, DateTime{46000.25}));
    const Bytes file = files_.content(kPath);
    const ByteView page = pageOf(file, 1);
    ASSERT_EQ(getU16(page, 14), 4027U);
    EXPECT_EQ(getU16(page, 16), 3958U);
    EXPECT_EQ(getU16(page, 2), 3940U);
    EXPECT_EQ(getU8(page, 4027), 0U);
    EXPECT_EQ(getU32(page, 4028), 0U);
    EXPECT_EQ(getU16(page, 4032), 0U);
    for (std::size_t byte = 4034; byte < kPageSize; ++byte) {
        ASSERT_EQ(getU8(page, byte), 0xFFU) << byte;
    }
}

TEST_F(Creation, TheAccountsAreScrambledWithTheMaskOfTheHeadersDate)
{
    const auto database = Database::create(files_, kPath, DateTime{46000.25});
    Table& objects = database->table("MSysObjects");
    const TableDefinition& definition = objects.definition();
    const auto cursor = objects.scan();
    ASSERT_TRUE(cursor->next());
    EXPECT_EQ(std::get<std::u16string>(cursor->row().value(*definition.columnByName("Name"))), u"Tables");
    EXPECT_EQ(std::get<Bytes>(cursor->row().value(*definition.columnByName("Owner"))),
              (Bytes{std::byte{0x65}, std::byte{0x89}}));
    EXPECT_EQ(std::get<DateTime>(cursor->row().value(*definition.columnByName("DateCreate"))).days, 46000.25);
}

TEST_F(Creation, AFileThatIsThereIsNotReplaced)
{
    files_.setContent(kPath, Bytes(5));
    EXPECT_THAT([&] { static_cast<void>(Database::create(files_, kPath, DateTime{})); },
                throwsError(ErrorCode::FileExists, kPath));
    EXPECT_EQ(files_.content(kPath), Bytes(5));
    EXPECT_EQ(files_.files().size(), 1U);
}

TEST_F(Creation, TheJournalOfALostFileIsNotTakenForTheNewOnes)
{
    files_.setContent(kPath + "-journal", Bytes(5));
    EXPECT_THAT([&] { static_cast<void>(Database::create(files_, kPath, DateTime{})); },
                throwsError(ErrorCode::JournalDamaged, kPath + "-journal"));
    EXPECT_EQ(files_.files().size(), 1U);
}

TEST_F(Creation, NothingElseIsLeftBesideTheFile)
{
    files_.setContent(kPath + "-unfinished", Bytes(5)); // of a creation that was cut short
    static_cast<void>(Database::create(files_, kPath, DateTime{}));
    EXPECT_EQ(files_.files().size(), 1U);
}

TEST_F(Creation, OpeningSomethingElseSaysWhatItIs)
{
    files_.setContent("/empty.mdb", {});
    files_.setContent("/zero.mdb", Bytes(kPageSize));
    EXPECT_THAT([&] { static_cast<void>(Database::open(files_, "/none.mdb")); }, throwsError(ErrorCode::FileNotFound));
    EXPECT_THAT([&] { static_cast<void>(Database::open(files_, "/empty.mdb")); }, throwsError(ErrorCode::NotADatabase));
    EXPECT_THAT([&] { static_cast<void>(Database::open(files_, "/zero.mdb")); }, throwsError(ErrorCode::NotADatabase));
}

TEST_F(Creation, TablesAndQueriesAreListedByName)
{
    const auto database = createSmallDiary(files_, kPath);
    std::string tables;
    for (const TableEntry& entry : database->tables()) {
        tables += (entry.system ? "(" + entry.name + ")" : entry.name) + " ";
    }
    EXPECT_EQ(tables, "Foods Meals (MSysACEs) (MSysObjects) (MSysQueries) (MSysRelationships) Readings ");
    ASSERT_EQ(database->queries().size(), 1U);
    EXPECT_EQ(database->queries().front().name, "Menu");
    EXPECT_EQ(database->queries().front().rows.size(), 10U);
}

TEST_F(Creation, AQueryReadsBackInTheOrderOfItsRows)
{
    const auto database = Database::create(files_, kPath, DateTime{});
    SavedQuery query;
    query.name = "Q";
    query.flags = 0x50;
    query.rows = {{255, 1, {}, {}, {}, {}},
                  {6, 2, std::int16_t{0}, u"Second", {}, {}},
                  {6, 300, std::int16_t{-32768}, std::u16string(3000, u'e'), u"alias", u"target"},
                  {6, 1, std::int16_t{0}, u"", {}, {}},
                  {0, 1, std::int16_t{0}, {}, {}, {}}};
    database->createQuery(query);
    ASSERT_EQ(database->queries().size(), 1U);
    const SavedQuery stored = database->queries().front();
    EXPECT_EQ(stored.flags, 0x50);
    ASSERT_EQ(stored.rows.size(), 5U);
    const std::vector<std::size_t> order{4, 3, 1, 2, 0};
    for (std::size_t i = 0; i < order.size(); ++i) {
        const QueryRow& expected = query.rows[order[i]];
        EXPECT_EQ(stored.rows[i].attribute, expected.attribute) << i;
        EXPECT_EQ(stored.rows[i].order, expected.order) << i;
        EXPECT_EQ(stored.rows[i].flag, expected.flag) << i;
        EXPECT_EQ(stored.rows[i].expression, expected.expression) << i;
        EXPECT_EQ(stored.rows[i].name1, expected.name1) << i;
        EXPECT_EQ(stored.rows[i].name2, expected.name2) << i;
    }
}

TEST_F(Creation, QueriesThatBeginWithATildeAreHidden)
{
    const auto database = Database::create(files_, kPath, DateTime{});
    SavedQuery query;
    query.name = "~sq_fForm";
    query.flags = 3;
    database->createQuery(query);
    EXPECT_TRUE(database->queries().empty());
}

TEST_F(Creation, ObjectsThatAreNoTablesAreNumberedFromTheLeastNumber)
{
    const auto database = Database::create(files_, kPath, DateTime{});
    SavedQuery query;
    for (const char* name : {"A", "B"}) {
        query.name = name;
        database->createQuery(query);
    }
    Table& objects = database->table("MSysObjects");
    const TableDefinition& definition = objects.definition();
    std::string ids;
    for (const auto cursor = objects.range(1, {}); cursor->next();) {
        ids += std::to_string(std::get<std::int32_t>(cursor->row().value(*definition.columnByName("Id")))) + " ";
    }
    EXPECT_EQ(ids, "-2147483648 -2147483647 2 3 4 5 251658241 251658242 251658243 268435456 ");
}

TEST_F(Creation, NamesAreFoundWithoutRegardToCase)
{
    const auto database = createSmallDiary(files_, kPath);
    EXPECT_TRUE(database->hasTable("rEADINGS"));
    EXPECT_EQ(&database->table("READINGS"), &database->table("readings"));
    EXPECT_EQ(database->table("READINGS").name(), "Readings");
    EXPECT_FALSE(database->hasTable("Menu"));
    EXPECT_THAT([&] { static_cast<void>(database->table("Menu")); }, throwsError(ErrorCode::NoSuchObject, "Menu"));
}

TEST_F(Creation, ATableAndAQueryCannotShareAName)
{
    const auto database = createSmallDiary(files_, kPath);
    EXPECT_THAT([&] { database->createTable({"MENU", {counter("Id")}, {}}); }, throwsError(ErrorCode::ObjectExists));
    SavedQuery query;
    query.name = "meals";
    EXPECT_THAT([&] { database->createQuery(query); }, throwsError(ErrorCode::ObjectExists));
    EXPECT_EQ(faultsOf(*database), "");
}

TEST_F(Creation, DescriptionsThatTheFormatCannotHoldAreRefused)
{
    const auto database = Database::create(files_, kPath, DateTime{});
    const Bytes before = files_.content(kPath);
    const auto refused = [&database](const TableSpec& spec, ErrorCode code) {
        EXPECT_THAT([&] { database->createTable(spec); }, throwsError(code)) << spec.name;
    };
    const auto id = counter("Id");
    for (const char* name : {"", " a", "a.b", "a!b", "a[b", "a]b", "a`b", "a\tb"}) {
        refused({name, {id}, {}}, ErrorCode::InvalidArgument);
        refused({"T", {column(name, ColumnType::Long)}, {}}, ErrorCode::InvalidArgument);
    }
    refused({std::string(65, 'x'), {id}, {}}, ErrorCode::InvalidArgument);
    refused({"none", {}, {}}, ErrorCode::InvalidArgument);
    refused({"twice", {id, column("ID", ColumnType::Long)}, {}}, ErrorCode::ObjectExists);
    refused({"counters", {id, counter("Id2")}, {}}, ErrorCode::InvalidArgument);
    refused({"text0", {column("T", ColumnType::Text, 0)}, {}}, ErrorCode::InvalidArgument);
    refused({"text256", {column("T", ColumnType::Text, 256)}, {}}, ErrorCode::InvalidArgument);
    refused({"binary511", {column("B", ColumnType::Binary, 511)}, {}}, ErrorCode::InvalidArgument);
    refused({"block", {column("B", ColumnType::Block)}, {}}, ErrorCode::InvalidArgument);
    refused({"keys",
             {id, column("B", ColumnType::Long)},
             {primaryKey({{"Id"}}),
              [] {
                  auto second = primaryKey({{"B"}});
                  second.name = "Second";
                  return second;
              }()}},
            ErrorCode::InvalidArgument);
    refused({"index0", {id}, {index("I", {})}}, ErrorCode::InvalidArgument);
    refused({"index?", {id}, {index("I", {{"Nothing"}})}}, ErrorCode::NoSuchObject);
    refused({"index2", {id}, {index("I", {{"Id"}, {"id", false}})}}, ErrorCode::InvalidArgument);
    refused({"indexOle", {column("O", ColumnType::Ole)}, {index("I", {{"O"}})}}, ErrorCode::InvalidArgument);
    auto decimals = column("N", ColumnType::Numeric);
    decimals.precision = 29;
    refused({"numeric", {decimals}, {}}, ErrorCode::InvalidArgument);
    TableSpec many{"many", {}, {}};
    for (int i = 0; i < 256; ++i) {
        many.columns.push_back(column("C" + std::to_string(i), ColumnType::Long));
    }
    refused(many, ErrorCode::InvalidArgument);
    TableSpec indexes{"indexes", {id}, {}};
    for (int i = 0; i < 33; ++i) {
        indexes.indexes.push_back(index("I" + std::to_string(i), {{"Id"}}));
    }
    refused(indexes, ErrorCode::InvalidArgument);
    EXPECT_EQ(files_.content(kPath), before);
    EXPECT_EQ(database->tables().size(), 4U);
}

TEST_F(Creation, ATableOf255ColumnsAnd32IndexesIsMade)
{
    const auto database = Database::create(files_, kPath, DateTime{});
    TableSpec spec{std::string(64, 'n'), {}, {}};
    for (int i = 0; i < 255; ++i) {
        spec.columns.push_back(column("A column of number " + std::to_string(i), ColumnType::Long));
    }
    for (int i = 0; i < 32; ++i) {
        spec.indexes.push_back(index("I" + std::to_string(i), {{"A column of number " + std::to_string(i * 7)}}));
    }
    database->createTable(spec);
    Table& table = database->table(spec.name);
    table.insert(std::vector<ColumnValue>{{7, 70}, {254, 5}});
    ASSERT_EQ(table.definition().columns.size(), 255U);
    const auto cursor = table.range(1, {KeyBound{{70}, true}, KeyBound{{70}, true}});
    ASSERT_TRUE(cursor->next());
    EXPECT_EQ(std::get<std::int32_t>(cursor->row().value(*table.definition().columnByNumber(254))), 5);
    EXPECT_EQ(faultsOf(*database), "");
}

TEST_F(Creation, EverythingMadeInARolledBackTransactionIsGone)
{
    const auto database = Database::create(files_, kPath, DateTime{});
    const Bytes before = files_.content(kPath);
    database->begin();
    database->createTable({"T", {counter("Id")}, {primaryKey({{"Id"}})}});
    Table& table = database->table("T");
    table.insert({});
    database->rollback();
    EXPECT_FALSE(database->hasTable("T"));
    EXPECT_THAT([&] { static_cast<void>(table.rowCount()); }, throwsError(ErrorCode::NoSuchObject));
    EXPECT_EQ(files_.content(kPath), before);
    database->createTable({"T", {counter("Id")}, {primaryKey({{"Id"}})}});
    table.insert({});
    EXPECT_EQ(faultsOf(*database), "");
}

TEST_F(Creation, TheCatalogueVersionRisesWithDefinitionsAndNotWithRows)
{
    const auto database = createSmallDiary(files_, kPath);
    const std::uint64_t before = database->catalogueVersion();
    fillSmallDiary(*database);
    EXPECT_EQ(database->catalogueVersion(), before);
    database->createTable({"T", {counter("Id")}, {}});
    EXPECT_GT(database->catalogueVersion(), before);
}

TEST_F(Creation, AnotherConnectionSeesWhatIsNew)
{
    const auto database = Database::create(files_, kPath, DateTime{});
    const auto other = Database::open(files_, kPath);
    const std::uint64_t before = other->catalogueVersion();
    EXPECT_FALSE(other->hasTable("T"));
    database->createTable({"T", {counter("Id")}, {primaryKey({{"Id"}})}});
    EXPECT_GT(other->catalogueVersion(), before);
    Table& theirs = other->table("T");
    database->table("T").insert({});
    theirs.insert({});
    EXPECT_EQ(listed(database->table("T")), "1\n2\n");
}

TEST_F(Creation, OpeningAndOneLookUpCostAFewPagesWhateverTheSize)
{
    {
        const auto database = createSmallDiary(files_, kPath);
        database->begin();
        Table& readings = database->table("Readings");
        for (int i = 0; i < 2000; ++i) {
            readings.insert(
                values(readings, {{"When", DateTime{36900.0 + i}}, {"Comment", std::u16string(150, u'c')}}));
        }
        database->commit();
    }
    ASSERT_GT(files_.content(kPath).size(), 80 * kPageSize);
    CountingFileSystem counting(files_);
    const auto database = Database::open(counting, kPath);
    EXPECT_LE(counting.reads(), 4U);
    const std::size_t opened = counting.reads();
    Table& readings = database->table("Readings");
    const KeyBound key{{1234}, true};
    EXPECT_EQ(listed(*readings.range(0, {key, key}), readings.definition()).substr(0, 5), "1234 ");
    EXPECT_LE(counting.reads() - opened, 20U);
}

} // namespace
} // namespace jet::test
